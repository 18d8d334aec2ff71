#ifndef TC_VECTOR_H
#define TC_VECTOR_H

// A point or direction in metres, world or object frame. Everything is
// inline: the marches call these for every sample.
class TCVector {
 public:
  TCVector() : x(0.0), y(0.0), z(0.0) {}
  TCVector(double x_in, double y_in, double z_in) : x(x_in), y(y_in), z(z_in) {}

  // Components 0, 1, 2 are x, y, z; any other index gives z.
  double& operator[](int i) { return i == 0 ? x : (i == 1 ? y : z); }
  double operator[](int i) const { return i == 0 ? x : (i == 1 ? y : z); }

  TCVector operator+(const TCVector& other) const {
    return TCVector(x + other.x, y + other.y, z + other.z);
  }
  TCVector operator-(const TCVector& other) const {
    return TCVector(x - other.x, y - other.y, z - other.z);
  }
  TCVector operator*(double scale) const { return TCVector(x * scale, y * scale, z * scale); }
  double dot(const TCVector& other) const { return x * other.x + y * other.y + z * other.z; }

  double x;
  double y;
  double z;
};

#endif
