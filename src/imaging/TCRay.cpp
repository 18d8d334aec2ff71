#include "TCRay.h"

TCRay::TCRay() {
  for (int i = 0; i < 6; i++) r[i] = 0.0;
}

TCRay::TCRay(const TCVector& origin, const TCVector& direction) {
  set_origin(origin);
  set_direction(direction);
}

void TCRay::set_origin(const TCVector& p) {
  r[0] = p.x;
  r[1] = p.y;
  r[2] = p.z;
}

void TCRay::set_direction(const TCVector& d) {
  r[3] = d.x;
  r[4] = d.y;
  r[5] = d.z;
}
