#include "TCMatrix.h"

#include <cmath>

TCMatrix::TCMatrix() {
  for (int i = 0; i < 9; i++) m[i] = 0.0;
  m[0] = 1.0;
  m[4] = 1.0;
  m[8] = 1.0;
}

TCMatrix TCMatrix::multiply(const TCMatrix& a, const TCMatrix& b) {
  TCMatrix product;
  for (int row = 0; row < 3; row++) {
    for (int column = 0; column < 3; column++) {
      double sum = 0.0;
      for (int k = 0; k < 3; k++) sum += a.at(row, k) * b.at(k, column);
      product.at(row, column) = sum;
    }
  }
  return product;
}

TCMatrix TCMatrix::transpose() const {
  TCMatrix result;
  for (int row = 0; row < 3; row++) {
    for (int column = 0; column < 3; column++) result.at(row, column) = at(column, row);
  }
  return result;
}

TCVector TCMatrix::times(const TCVector& v) const {
  return TCVector(m[0] * v.x + m[1] * v.y + m[2] * v.z, m[3] * v.x + m[4] * v.y + m[5] * v.z,
                  m[6] * v.x + m[7] * v.y + m[8] * v.z);
}

// Chi tilts the object's z axis away from the world's, phi is the azimuth of
// that tilt and theta the spin about the object's own z axis.
TCMatrix TCMatrix::rotation(double chi, double phi, double theta) {
  const double c_chi = std::cos(chi), s_chi = std::sin(chi);
  const double c_phi = std::cos(phi), s_phi = std::sin(phi);
  const double c_theta = std::cos(theta), s_theta = std::sin(theta);
  TCMatrix r;
  r.at(0, 0) = c_theta * c_chi * c_phi - s_theta * s_phi;
  r.at(0, 1) = c_theta * c_chi * s_phi + s_theta * c_phi;
  r.at(0, 2) = -c_theta * s_chi;
  r.at(1, 0) = -s_theta * c_chi * c_phi - c_theta * s_phi;
  r.at(1, 1) = -s_theta * c_chi * s_phi + c_theta * c_phi;
  r.at(1, 2) = s_theta * s_chi;
  r.at(2, 0) = s_chi * c_phi;
  r.at(2, 1) = s_chi * s_phi;
  r.at(2, 2) = c_chi;
  return r;
}
