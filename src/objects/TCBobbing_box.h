#ifndef TC_BOBBING_BOX_H
#define TC_BOBBING_BOX_H

#include <iostream>

#include "TCCamera.h"
#include "TCSolid_Box.h"

class Bobbing_box_input;

// A solid box that floats: within decoupling_height of an ocean's surface it
// takes the tilt and the mean height of the water under its footprint,
// turned with the box's heading.
class TCBobbing_box : public TCSolid_Box {
 public:
  explicit TCBobbing_box(const Bobbing_box_input& input);
  ~TCBobbing_box() override;

  // The solid box's lines, then the two bobbing parameters.
  void print_dimensions() override;
  // The key frame pose, moved by every ocean the box is close to.
  void set_time(double t) override;

  // The bobbing section of a box file: header, the two numbers, "end".
  // Prints what is wrong and returns 0, keeping the old values.
  int read_section(std::istream& in);

  // Samples 101 by 101 heights over the footprint of a box of `length`
  // centred on p, shrunk by dampening and turned by phi (radians), at p's
  // height, and fits h = mean + a x' + b y' in the box's own axes. The
  // offset is (a p.z, b p.z, mean); pitch -atan(a), roll atan(b). Returns 0,
  // with a zero fit, unless the clearance at p lies strictly within
  // decoupling of the surface.
  static int fit_surface(TCSea_height height, void* context, const TCVector& p, double phi,
                         const TCVector& length, float decoupling, float dampening,
                         TCSea_plane& fit);
  // Adds one surface's motion to a pose taken at key frame position p with
  // heading phi. Returns 1 when the box rides that surface.
  int ride_surface(TCSea_height height, void* context, const TCVector& p, double phi,
                   TCVector& position_io, double& chi_io, double& theta_io) const;

  float decoupling_height;  // metres
  float dampening_factor;

 private:
  TCBobbing_box(const TCBobbing_box&);
  TCBobbing_box& operator=(const TCBobbing_box&);
};

#endif
