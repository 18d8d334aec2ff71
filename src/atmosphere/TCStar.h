#ifndef TC_STAR_H
#define TC_STAR_H

#include <iostream>

#include "TCKeyframes.h"
#include "TCSpectrum.h"
#include "TCVector.h"

class TCObject_list;
class TCStar_input;

// The scene's one sun: a direction and an irradiance per band, not an imaged
// object. It is moved by the scene before any object sees the frame.
class TCStar {
 public:
  // No sun: present 0, on 1, angles 0, one band of irradiance 0.
  TCStar();
  explicit TCStar(const TCStar_input& input);
  // Takes angles, method, direction, spectrum and track; sets present.
  TCStar(const TCStar& other);
  virtual ~TCStar();

  // Copies track, method and spectrum; sets present.
  void set_from_input(const TCStar_input& input);
  // Position by method (key frames, or the clock with t in hours), then
  // set_angles.
  void set_time(double t);
  // Stores both (radians), recomputes direction, sets present.
  void set_angles(double zenith_in, double azimuth_in);
  // Irradiance reaching point in each band of out (out's band ids are the
  // ones asked for), after everything in list that lies along the way; list
  // may be null. excluded_id is an object id to leave out, or -1. The object
  // asked for the transmission gets excluded_id as its source_object (-1 when
  // it names no object of the list), to pass on down the chain.
  void irradiance_at(const TCVector& point, TCSpectrum& out, TCObject_list* list,
                     int excluded_id) const;
  // One line: the zenith and azimuth in degrees and the direction.
  void print_state(std::ostream& out) const;

  int present;
  int on;
  int position_method_flag;
  double zenith;   // radians
  double azimuth;  // radians
  // From a point towards the sun.
  TCVector direction;
  TCSpectrum irradiance;
  TCKeyframes track;
  double solid_angle;  // steradians

 private:
  TCStar& operator=(const TCStar&);
};

#endif
