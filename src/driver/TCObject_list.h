#ifndef TC_OBJECT_LIST_H
#define TC_OBJECT_LIST_H

#include <iostream>

#include "TCBand.h"
#include "TCScene_tracer.h"

class TCCamera;
class TCObject;
class TCObject_list_input;
class TCRay;
class TCSpectrum;
class TCStar;
class TCVector;
class TCView;
class object_contour;

// The runtime list of a scene: it owns the objects, the cameras, the sun and
// the bands, and it is the renderer's dispatch. A view goes through the list
// as a patch of pixels; each active object paints its own part into an
// object_contour and the layers merge front to back. It is also the tracer
// the objects that look through the scene are given. max_objects (from the
// tracer) bounds the objects and the cameras alike.
class TCObject_list : public TCScene_tracer {
 public:
  // An empty list: no objects, cameras, sun or bands, every slot null.
  TCObject_list();
  // Calls destroy().
  ~TCObject_list() override;

  // Deletes what the list owns: objects, then cameras, then the sun and the
  // band copy, and leaves the list empty. Slots the caller filled by hand
  // rather than through add_runtime_object are emptied but not deleted.
  void destroy();

  // The runtime list from the file form: bands, the sun (a default one when
  // the scene has none), the objects by kind in file order, then the cameras.
  // needs_updates becomes 1 when anything moves or evolves by itself. Returns
  // 0 after a message for what a scene cannot run with; exits when memory
  // runs out.
  int build(TCObject_list_input& input, int& needs_updates);

  // Adopts a runtime object at the end of the list: the list owns it from
  // here, and sets its object_id (its index) and its list pointer. 0 with
  // "maximum number of objects exceeded " when the list is full, or for a
  // null object; the caller then keeps it.
  int add_runtime_object(TCObject* object);
  // Deletes the object at index (if the list owns it), closes the gap and
  // renumbers the ids of those after it. 0 for an index out of range.
  int remove_object(int index);

  // Copies count bands (ids, centre wavelengths, widths) into the list's own
  // band array, replacing any it had. Fewer than one band prints "must define
  // atleast one band" and gives 0, with the old bands kept.
  int set_bands(int count, const TCBand* bands);
  // Position of a band id in objects_spectrum, or -1.
  int band_index(int id) const;

  // The main pass: every active object paints the view into radiance_out,
  // [band][pixel] floats with pixels row by row, spectrum->n bands.
  //
  // active holds one int per object, 1 to consider it; it is written back
  // with the contour's flags merged in, so either side can only switch an
  // object off. Without a caller's contour (null) the list makes its own,
  // with the view's grid and anti-alias flag, min_distance, and no matte
  // target or mask, and frees it at the end; the camera, which needs mattes
  // and a mask, passes a contour of its own.
  //
  // keep_flag concerns a caller's contour only. Not 0: the contour is used
  // as it stands (its first_flag, totals and marks go on from the last pass),
  // which is what an object keeping a contour for good wants. 0: the contour
  // is first reset to its starting values, but its active flags and forced
  // object, which are the caller's requests for this pass, are kept.
  //
  // Pixels where two objects' depth ranges overlap are imaged again on the
  // view's resampling_elevation x resampling_azimuth sub-grid and take the
  // mean, when the view and the contour both anti-alias. A view with either
  // resampling count below 1 is not refined.
  void image_scene(int* active, TCView& view, TCSpectrum* spectrum, float** radiance_out,
                   double min_distance, object_contour* contour, int keep_flag) override;
  // The main pass over every object but source_object (none when it is
  // below 0): what a flat water surface, a volume or a thermal box sees.
  void image_scene_for_source(int source_object, TCView& view, TCSpectrum* spectrum,
                              float** radiance_out, double min_distance,
                              object_contour* contour) override;
  // The main pass with everything taken from the contour: its active flags,
  // spectrum, output and min_distance; the contour is used as it stands.
  void image_with_contour(TCView& view, object_contour& contour);

  // The pass for a reflected or refracted view: objects paint through
  // image_reflected, the air is switched off (so a secondary view carries no
  // path radiance), and no pixel is refined. When the view starts inside an
  // object, its layer is copied out if first_flag is set, but first_flag is
  // not set otherwise.
  void image_scene_secondary(int* active, TCView& view, TCSpectrum* spectrum, float** radiance_out,
                             double min_distance, object_contour* contour, int keep_flag) override;
  void image_scene_secondary_for_source(int source_object, TCView& view, TCSpectrum* spectrum,
                                        float** radiance_out, double min_distance,
                                        object_contour* contour);
  // The air is switched off in the contour's own flags, and stays so.
  void image_secondary_with_contour(TCView& view, object_contour& contour);

  // The surface-line pass: polygon objects first, then oceans, each through
  // image_surface_line with a merge after it; no other kind paints except a
  // containing or forced object, which paints through image_surface_line as
  // well. Marked pixels are refined with this same pass.
  void image_surface_line(int* active, TCView& view, TCSpectrum* spectrum, float** radiance_out,
                          double min_distance, object_contour* contour, int keep_flag) override;
  void image_surface_line_for_source(int source_object, TCView& view, TCSpectrum* spectrum,
                                     float** radiance_out, double min_distance,
                                     object_contour* contour);
  void image_surface_line_with_contour(TCView& view, object_contour& contour);

  // Single-ray queries, world frame. The nearest_* forms give the position
  // + 1 of the nearest object the ray hits (hit is then its world hit point),
  // 0 when nothing is hit, or -(i + 1) when the ray starts inside object i,
  // asked in list order, with hit the ray's origin. Ties keep the earlier
  // object.
  int nearest_except(int skip_index, const TCRay& ray, TCVector& hit) override;
  int nearest_active(const int* flags, const TCRay& ray, TCVector& hit) override;
  // Only objects of priority strictly above that of skip_index (all objects
  // when skip_index is out of range).
  int nearest_above_priority(int skip_index, const TCRay& ray, TCVector& hit);

  // Highest-priority object containing a world point, or -1. A priority must
  // be strictly above -1.0 to count, and ties keep the earlier object.
  int highest_inside(int skip_index, const TCVector& point);
  // Over flagged objects, and only above the priority of every object not
  // flagged: a switched-off object shadows all of equal or lower priority.
  int object_containing(const int* flags, const TCVector& point);
  // Only oceans, air and land.
  int highest_surface_inside(const TCVector& point);
  int highest_surface_inside_flagged(const int* flags, const TCVector& point);

  // Index of the last air object, or -1.
  int find_air() const;

  // index starts at -1. The name is matched exactly against the object
  // names, the last match winning; 0 when nothing matches. The word "scene"
  // is not special here: callers that give it a meaning test for it first.
  int find_by_name(const char* name, int& index) const override;

  // The rest of the tracer's queries, answered from the list's own fields.
  int band_count() const override;
  const TCBand* band_table() const override;
  const TCStar* star() const override;
  int frame_number() const override { return current_frame; }
  int sun_irradiance_at(const TCVector& point, TCSpectrum& out, int excluded_id) override;
  int object_count() const override;
  const char* object_name(int index) const override;
  int object_kind(int index) const override;
  int object_position(int index, TCVector& out) const override;
  int air_radiance(const TCRay& ray, TCSpectrum& out) override;
  int surface_height_under(int index, const TCVector& point, double& height,
                           double& own_height) const override;
  void radiance_from(int index, int source_object, const TCRay& ray, TCSpectrum& out) override;
  void image_contour_for_source(int source_object, TCView& view, object_contour& contour) override;

  // write_frame_data on every object. with_whitecaps asks an ocean to dump
  // its whitecap state as well; no object kind here has one yet, so it is
  // only carried.
  void write_all_frame_data(const char* stream_name, const char* frame_text, int with_whitecaps);
  // "  " and the sun's state when there is a sun, each object's state, then
  // "Camera " with the camera's index and its state.
  void print_all(std::ostream& out);

  int n_objects;
  TCObject* objects[max_objects];
  int n_cameras;
  TCCamera* cameras[max_objects];
  TCStar* sun;
  int number_of_bands;
  TCBand* objects_spectrum;
  // The scene's frame being rendered, set before the objects' set_time, for
  // kinds that load one file per frame.
  int current_frame;

 private:
  // Which pass a dispatch runs: the object operation it calls and which
  // objects it walks.
  enum Pass { main_pass, secondary_pass, surface_line_pass };

  static void all_but_source(int source_object, int* flags);
  void image_pass(Pass pass, int* active, TCView& view, TCSpectrum* spectrum, float** radiance_out,
                  double min_distance, object_contour* contour, int keep_flag);
  void paint(Pass pass, int index, TCView& view, object_contour& contour);
  void paint_and_merge(Pass pass, int index, TCView& view, object_contour& contour);
  void refine_marked(Pass pass, int* active, TCView& view, TCSpectrum* spectrum,
                     float** radiance_out, object_contour& contour);
  // The shared search of the nearest_* queries: wanted[i] says which
  // objects to ask.
  int nearest_of(const int* wanted, const TCRay& ray, TCVector& hit);
  // Highest-priority wanted object containing point, priority strictly above
  // floor; -1 if none.
  int highest_of(const int* wanted, double floor, const TCVector& point);

  // The objects the list adopted, slot for slot with objects: a slot is
  // deleted only while it still holds the pointer adopted there.
  TCObject* adopted_[max_objects];

  TCObject_list(const TCObject_list&);
  TCObject_list& operator=(const TCObject_list&);
};

#endif
