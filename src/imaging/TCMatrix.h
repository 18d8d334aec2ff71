#ifndef TC_MATRIX_H
#define TC_MATRIX_H

#include "TCVector.h"

// A 3 by 3 rotation, nine doubles row major: m[3 * row + column].
class TCMatrix {
 public:
  TCMatrix();  // identity

  // a times b.
  static TCMatrix multiply(const TCMatrix& a, const TCMatrix& b);

  TCMatrix transpose() const;
  // This matrix times the column vector v.
  TCVector times(const TCVector& v) const;

  // The object rotation from chi, phi, theta (radians): world to object.
  static TCMatrix rotation(double chi, double phi, double theta);

  double& at(int row, int column) { return m[3 * row + column]; }
  double at(int row, int column) const { return m[3 * row + column]; }

  double m[9];
};

#endif
