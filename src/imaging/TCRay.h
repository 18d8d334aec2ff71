#ifndef TC_RAY_H
#define TC_RAY_H

#include "TCVector.h"

// Six doubles: origin x, y, z then direction x, y, z.
class TCRay {
 public:
  TCRay();
  TCRay(const TCVector& origin, const TCVector& direction);

  double& operator[](int i) { return r[i]; }
  double operator[](int i) const { return r[i]; }

  TCVector origin() const { return TCVector(r[0], r[1], r[2]); }
  TCVector direction() const { return TCVector(r[3], r[4], r[5]); }
  void set_origin(const TCVector& p);
  void set_direction(const TCVector& d);

  double r[6];
};

#endif
