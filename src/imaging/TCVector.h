#ifndef TC_VECTOR_H
#define TC_VECTOR_H

// A point or direction in metres, world or object frame.
class TCVector {
 public:
  TCVector() : x(0.0), y(0.0), z(0.0) {}
  TCVector(double x_in, double y_in, double z_in) : x(x_in), y(y_in), z(z_in) {}

  // Components 0, 1, 2 are x, y, z; any other index gives z.
  double& operator[](int i);
  double operator[](int i) const;

  TCVector operator+(const TCVector& other) const;
  TCVector operator-(const TCVector& other) const;
  TCVector operator*(double scale) const;
  double dot(const TCVector& other) const;

  double x;
  double y;
  double z;
};

#endif
