#ifndef TC_CAMERA_H
#define TC_CAMERA_H

#include <iostream>

#include "TCCamera_input.h"
#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject.h"
#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCVector.h"
#include "TCView.h"

class TCObject_list;

// A camera at run time: it keeps the view of its pose, cuts the picture into
// vertical slices when asked, has the object list image each slice, rescales,
// averages sub-pixels, writes the picture and its mattes, and merges slice
// files into the files one unsliced run would have written.
//
// The image plane stands at unit distance in front of the camera; pixels are
// uniform on it, so their angles are not. Rows run along elevation, columns
// along azimuth, and every picture or matte plane is row-major, row 0 first.
//
// Every failure of allocation or of file writing prints its line and ends the
// process with status 1; a camera that cannot be built does the same.
class TCCamera : public TCObject {
 public:
  // Builds the camera for list (cameras are never among its objects): the
  // matte request resolved against the list, the camera's own fields, the
  // image plane, the efficiency matte check, the summary (with verbose) and
  // the view of the whole window. The camera keeps list_in as list but asks
  // the scene everything through scene, the list's tracer.
  TCCamera(const TCCamera_input& input, TCObject_list* list_in);
  ~TCCamera() override;

  void print_dimensions() override;
  // Both also rebuild the view for the whole window.
  void set_position(const TCVector& position_in, double chi_in, double phi_in,
                    double theta_in) override;
  void set_time(double t) override;
  void print_state(std::ostream& out) override;

  // The object form (painting into a contour) stays visible beside the
  // camera's own pass of that name.
  using TCObject::image_surface_line;

  // Extension of the picture files, into a buffer of 256 characters: ".img"
  // for hdf, ".rgb" for SGI RGB, ".tiff" for tiff.
  void get_file_type(char* buffer) const;

  // Renders the picture and its mattes into prefix + frame_text + suffix,
  // slice by slice, and merges the slice files unless single slices were
  // named on the command line.
  void image(const char* prefix, const char* frame_text, const char* suffix);
  // The same through the list's surface-line pass, with "_surfaceline" behind
  // the prefix.
  void image_surface_line(const char* prefix, const char* frame_text, const char* suffix);
  // Merges the slice files of one frame (prefix + "s" + slice number) into the
  // whole picture and its mattes, then removes them. The strips follow from
  // the window and the slice count alone, so files written by separate runs
  // merge exactly as those of one run. Returns 1; every failure exits.
  int recombine_slices(const char* prefix, const char* frame_text, const char* suffix);

  // Columns start..end of strip i when columns first..last are cut into n
  // strips: equal widths by integer division, the last strip to last. A
  // window narrower than n leaves the first strips empty (end < start).
  static void strip_columns(int first, int last, int n, int i, int& start, int& end);

  // Image-plane bounds of pixels first..last on an axis of n_pixel pixels
  // spanning size.
  static void plane_window(double size, int n_pixel, int first, int last, double& low,
                           double& high);

  // The view's grid for the pixels first..last on each axis, n_sub samples to
  // a pixel, at the camera's current pose.
  void set_view_window(int first_e, int last_e, int first_a, int last_a);

  // The world ray through plane point (e, a) of the current pose.
  void plane_ray(double e, double a, TCRay& ray) const;

  TCView& get_view() { return view; }
  const TCView& get_view() const { return view; }
  TCSpectrum* get_spectrum() const { return spectrum; }
  const TCMatte_fields& get_mattes() const { return mattes; }
  const TCMatte_input& get_matte_request() const { return matte_request; }
  int get_image_format() const { return image_format; }
  int get_rescale_method() const { return rescale_method; }
  float get_gamma() const { return gamma; }
  float get_min_value() const { return min_value; }
  float get_max_value() const { return max_value; }
  int get_anti_alias() const { return anti_alias; }
  int get_efficiency_matte() const { return efficiency_matte; }
  int get_n_pixel_elevation() const { return n_pixel_elevation; }
  int get_n_pixel_azimuth() const { return n_pixel_azimuth; }
  double get_fov_elevation() const { return fov_elevation; }  // half angle, radians
  double get_fov_azimuth() const { return fov_azimuth; }      // half angle, radians
  double get_pixel_size_elevation() const { return pixel_size_elevation; }
  double get_pixel_size_azimuth() const { return pixel_size_azimuth; }
  double get_size_elevation() const { return size_elevation; }
  double get_size_azimuth() const { return size_azimuth; }
  int get_n_sub_elevation() const { return n_sub_elevation; }
  int get_n_sub_azimuth() const { return n_sub_azimuth; }
  int get_first_elevation() const { return first_elevation; }
  int get_first_azimuth() const { return first_azimuth; }
  int get_last_elevation() const { return last_elevation; }
  int get_last_azimuth() const { return last_azimuth; }
  int get_picture_fraction() const { return picture_fraction; }
  int get_image_slices() const { return image_slices; }
  const int* get_slices_to_be_imaged() const { return slices_to_be_imaged; }
  int get_slices_not_recombined() const { return slices_not_recombined; }
  int get_need_picture() const { return need_picture; }

  int image_format;
  TCMatte_input matte_request;  // resolved against the list
  float min_value;
  float max_value;
  int rescale_method;
  float gamma;
  int anti_alias;
  int resampling_elevation;
  int resampling_azimuth;
  int efficiency_matte;  // 0 once the matte proved unusable
  char efficiency_matte_file[256];
  int n_pixel_elevation;
  int n_pixel_azimuth;
  double fov_elevation;  // degrees as read, then the half angle in radians
  double fov_azimuth;
  double pixel_size_elevation;  // on the unit-distance plane
  double pixel_size_azimuth;
  double size_elevation;
  double size_azimuth;
  int n_sub_elevation;
  int n_sub_azimuth;
  int first_elevation;  // inclusive pixel numbers of the imaged window
  int first_azimuth;
  int last_elevation;
  int last_azimuth;
  int picture_fraction;
  int image_slices;
  int* slices_to_be_imaged;  // image_slices flags
  int slices_not_recombined;
  TCSpectrum* spectrum;
  TCView view;
  TCMatte_fields mattes;
  int need_picture;

 protected:
  // Which of the list's passes paints a slice.
  enum Pass { picture_pass, surface_line_pass };

  // The slices of one frame and their merge.
  void image_with_pass(Pass pass, const char* prefix, const char* frame_text, const char* suffix);
  // One window of pixels into files named from prefix.
  void image_slice(Pass pass, const char* prefix, const char* frame_text, const char* suffix,
                   int first_e, int last_e, int first_a, int last_a);

  // Block means of n_sub samples into the packed output grid, written as a
  // file of n_planes planes. planes hold the slice's samples, row-major.
  void write_full(float** planes, const char* prefix, const char* frame_text, const char* suffix,
                  int n_planes, int matte_code);
  // The whole picture, cleared, with the window's block means in place.
  void write_fraction(float** planes, const char* prefix, const char* frame_text,
                      const char* suffix, int n_planes, int matte_code);

 private:
  void take_camera_part(const TCCamera_input& input);
  void compute_image_plane();
  void check_efficiency_matte();
  // The slice's mask from the efficiency matte's first channel; all 0 once
  // the file can no longer be read.
  void read_efficiency_mask(unsigned char* mask, int rows, int cols);
  void print_summary() const;

  // The picture copied into the scene's radiance matte, when it is wanted.
  void scene_radiance(float** planes, int n_bands, long n_pixels);
  void rescale_slice(float** planes, int n_bands, long n_pixels);
  void distances_and_normals(long n_pixels);
  void write_slice_mattes(float** planes, int n_work, const char* prefix, const char* frame_text,
                          const char* suffix);
  void write_planes(float** planes, const char* prefix, const char* frame_text, const char* suffix,
                    int n_planes, int matte_code);

  // prefix + frame_text + suffix, the suffix ".img" for the float mattes
  // (19, 20, 33) when it names an 8-bit format; matte_code -1 is the picture.
  void file_name(int matte_code, const char* prefix, const char* frame_text, const char* suffix,
                 char* out, int length) const;
  // The same with the matte naming of an object's prefix; object -1 is the
  // picture itself.
  void object_file_name(int object, int matte_code, const char* prefix, const char* frame_text,
                        const char* suffix, char* out, int length) const;
  const char* matte_object_name(int object) const;
  // Prefix of a matte file of object (the scene at the list's count): a
  // matte that follows another object ("reflect-", "alpha-") is named after
  // it, as "<name>_reflected" and "<name>_alpha".
  void matte_prefix(int object, int code, const char* prefix, char* out, int length) const;
  // 1 when the request asks for a file of this matte for this object (or the
  // scene, at the list's object count).
  int matte_file_wanted(int object, int code) const;
  int requested(int object, int code) const;
  // Planes in a matte's file: the band count below 18, 3 for 32 and 33, else 1.
  int matte_file_planes(int code) const;

  // One merged file from the slice files of a picture (object -1) or matte;
  // strip holds one strip's plane, picture a whole picture per plane.
  void merge_file(int object, int matte_code, const char* prefix, const char* frame_text,
                  const char* suffix, float* strip, float* picture);
  void remove_slice_files(int object, int matte_code, const char* prefix, const char* frame_text,
                          const char* suffix);

  // The window of the slice being imaged.
  int slice_first_elevation_;
  int slice_first_azimuth_;
  // Degrees as read, for the printouts.
  double fov_elevation_degrees_;
  double fov_azimuth_degrees_;

  TCCamera(const TCCamera&);
  TCCamera& operator=(const TCCamera&);
};

// Sea surface height (metres, over the sea's mean level) at a world point,
// with the point's own height over that level in clearance.
typedef double (*TCSea_height)(void* context, const TCVector& point, double& clearance);

// A plane fitted to the sea under a camera and the motion it gives.
struct TCSea_plane {
  double a;     // slope along x
  double b;     // slope along y
  double mean;  // mean height, metres
  TCVector offset;
  float pitch;  // radians, added to chi
  float roll;   // radians, added to theta
};

// A camera that rides the sea: within decouple_height of an ocean's surface it
// takes the tilt and the mean height of the water under its base.
class TCBobbing_camera : public TCCamera {
 public:
  TCBobbing_camera(const TCBobbing_camera_input& input, TCObject_list* list_in);
  ~TCBobbing_camera() override;

  void print_dimensions() override;
  // The key frame pose, moved by every ocean the camera is close to.
  void set_time(double t) override;

  // Samples 101 by 101 heights over a square of base_size centred under
  // `under`, at its height, and fits h = mean + a x + b y. The offset is
  // (a z, b z, mean) with z = pose_height; pitch -atan(a), roll atan(b).
  // Returns 0, with a zero fit, when the clearance at `under` is not below
  // decouple_height in size.
  static int fit_sea_plane(TCSea_height height, void* context, const TCVector& under,
                           double pose_height, double decouple_height, double base_size,
                           TCSea_plane& fit);
  // Adds one sea's motion to a pose taken at key frame position `pose`.
  // Returns 1 when the camera rides that sea.
  int ride_sea(TCSea_height height, void* context, const TCVector& pose, TCVector& position_io,
               double& chi_io, double& theta_io) const;

  double decouple_height;      // metres
  double decouple_relax_time;  // seconds; printed, never applied
  double base_size;            // metres

 private:
  TCBobbing_camera(const TCBobbing_camera&);
  TCBobbing_camera& operator=(const TCBobbing_camera&);
};

#endif
