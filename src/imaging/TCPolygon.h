#ifndef TC_POLYGON_H
#define TC_POLYGON_H

// A closed ring of vertices on the image plane, in pixel units: x runs along
// the columns and y along the rows, so pixel (row, col) is the square
// x in [col, col + 1], y in [row, row + 1]. Objects that rasterise their own
// outline (box faces, pictures) clip a ring to the image and to each pixel
// and take the area that is left as the pixel's coverage.
class TCPolygon {
 public:
  TCPolygon();
  ~TCPolygon();
  TCPolygon(const TCPolygon& other);
  TCPolygon& operator=(const TCPolygon& other);

  void clear();
  // Appends a vertex, growing the storage as needed.
  void add_vertex(double x, double y);
  int size() const { return n; }

  // The part of this ring inside x0 <= x <= x1, y0 <= y <= y1, into out
  // (which may not be this ring). Fewer than three vertices: nothing is left.
  void clip_to_rectangle(double x0, double x1, double y0, double y1, TCPolygon& out) const;
  // Unsigned area; 0 below three vertices.
  double area() const;
  // Area centroid; the vertex mean when the area is 0; 0, 0 when empty.
  void centroid(double& cx, double& cy) const;
  // Bounding box of the vertices.
  void bounds(double& x0, double& x1, double& y0, double& y1) const;

  // Marks a rows x cols byte mask (row by row): 1 for a pixel wholly inside
  // the ring, 2 for a pixel the ring's edge passes through, 0 outside.
  // Gives the bounding rows and columns of the marked pixels, clamped to the
  // image; returns 0 when no pixel is marked.
  int scan_mask(unsigned char* mask, int rows, int cols, int& row0, int& row1, int& col0,
                int& col1) const;

  int n;
  double* x;
  double* y;

 private:
  int capacity_;
};

#endif
