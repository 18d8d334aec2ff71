#ifndef TC_KEYFRAMES_H
#define TC_KEYFRAMES_H

#include <iostream>

#include "TCVector.h"

// The key frame track of an object: linear between keys and extrapolated along
// the end segments, so an object keeps its last velocity. Angles in radians.
class TCKeyframes {
 public:
  TCKeyframes();  // one key, all zero
  TCKeyframes(const TCKeyframes& other);
  TCKeyframes& operator=(const TCKeyframes& other);
  ~TCKeyframes();

  // Reallocates for n keys, all zero. Counts below 1 keep one zero key of
  // storage while number_of_times records n as given.
  void set_number_of_times(int n);

  // "number_of_times <n>", seven heading tokens, then n rows of
  // time x y z chi phi theta (degrees). Returns 1; a malformed section leaves
  // the stream failed for the caller's "end" check to catch.
  int read(std::istream& in);
  int write(std::ostream& out) const;

  // 1, with the time in time_out, when two keys share a time: the segment
  // between them has no length and interpolates to NaN.
  int repeated_time(double& time_out) const;

  void pose_at(double t, TCVector& position, double& chi_out, double& phi_out,
               double& theta_out) const;
  void position_at(double t, TCVector& position) const;
  void angles_at(double t, double& chi_out, double& phi_out) const;

  int number_of_times;
  double* times;
  TCVector* positions;
  double* chi;
  double* phi;
  double* theta;

 private:
  // Segment and fraction for time t; segment -1 when there is one key or none.
  void segment_for(double t, int& segment, double& fraction) const;
  void allocate(int storage);
  void release();
};

#endif
