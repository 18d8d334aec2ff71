#ifndef TC_PICTURE_H
#define TC_PICTURE_H

#include "Picture_input.h"
#include "TCObject.h"
#include "TCVector.h"

class TCCamera;
class TCPolygon;
class TCTexture_plane;

// A flat width by height rectangle in the object's x-y plane, centred on its
// origin. The front is the side towards +z, the back the other (a viewpoint
// in the plane counts as behind it); each is transparent, a solid colour or
// a picture laid over the whole rectangle. The outline is projected and
// scan-converted into the view; pixels its edges cross are covered by the
// area of the outline inside them.
class TCPicture : public TCObject {
 public:
  // A still picture is loaded now; a picture that fails to load, "time"
  // animation of a picture side, or memory running out end the run
  // (status 1).
  explicit TCPicture(const Picture_input& input);
  ~TCPicture() override;

  // With auto scale, the camera's display range replaces the picture's, so
  // that the camera shows the counts stored in the file.
  void prepare_camera(TCCamera* camera) override;
  // "frames" animation loads <file>.<frame, 4 digits>.rgb for the list's
  // current frame (status 1 when it fails). Then the pose.
  void set_time(double t) override;
  // The near edge of the rectangle along the ray's first vector.
  double ray_measure(TCRay ray) override;
  void image_contour(TCView& view, object_contour& contour) override;
  // Hits strictly inside the rectangle, ahead of the origin, on a side that
  // is not transparent; never from an origin in the plane.
  int intersect(const TCRay& ray, TCVector& hit, double& distance) override;

  // 1 for a side that paints nothing (any code but solid and picture).
  int side_is_transparent(int side) const;

  int n_bands;
  int* band_ids;
  int optical_nature[2];  // front (+z), back
  double* color[2];       // per band
  double* reflectivity[2];
  double* transmissivity[2];
  TCVector corners[4];  // a ring: (-w/2, -h/2), (-w/2, h/2), (w/2, h/2), (w/2, -h/2)
  double width;         // metres
  double height;
  char file_name[256];
  int animation;  // 0 none, 100 time, 101 frames
  int alpha_channel;
  int alpha_band;        // n_bands with alpha, else 0
  int tex_band_count;    // n_bands, and one more with alpha
  double* min_radiance;  // tex_band_count entries; alpha 0 to 1.0
  double* max_radiance;
  double* texture_values;  // scratch, tex_band_count
  int no_texture;          // not 0: picture sides show their colour
  int auto_scale;          // 101: range from the camera
  int has_picture_side;
  TCTexture_plane* texture;
  int imaging_method;
  int samples_x;      // per pixel, along elevation
  int samples_y;      // along azimuth
  double** sample_u;  // [samples_x][samples_y] positions in the plane, metres
  double** sample_v;

 private:
  TCTexture_plane* new_texture() const;
  // The outline as seen in view (object frame), in pixel units, cut at the
  // view plane and clipped to the image. 0 when nothing of it is in front.
  int outline_in_image(const TCView& view, TCPolygon& clipped) const;
  // One pixel: samples, depth test, and the sample handed to the contour.
  // inside 1 gives full coverage, 0 the area of clipped within the pixel,
  // -1 the area of clipped in all.
  void paint_pixel(const TCView& view, object_contour& contour, int row, int col, int side,
                   int inside, const TCPolygon& clipped, const int* band_of, double* radiance);

  TCPicture(const TCPicture&);
  TCPicture& operator=(const TCPicture&);
};

#endif
