#include "TCVector.h"

double& TCVector::operator[](int i) {
  if (i == 0) return x;
  if (i == 1) return y;
  return z;
}

double TCVector::operator[](int i) const {
  if (i == 0) return x;
  if (i == 1) return y;
  return z;
}

TCVector TCVector::operator+(const TCVector& other) const {
  return TCVector(x + other.x, y + other.y, z + other.z);
}

TCVector TCVector::operator-(const TCVector& other) const {
  return TCVector(x - other.x, y - other.y, z - other.z);
}

TCVector TCVector::operator*(double scale) const {
  return TCVector(x * scale, y * scale, z * scale);
}

double TCVector::dot(const TCVector& other) const {
  return x * other.x + y * other.y + z * other.z;
}
