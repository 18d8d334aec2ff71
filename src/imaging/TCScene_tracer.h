#ifndef TC_SCENE_TRACER_H
#define TC_SCENE_TRACER_H

class TCBand;
class TCObject_list;
class TCRay;
class TCSpectrum;
class TCStar;
class TCVector;
class TCView;
class object_contour;

// What an object that traces rays through the rest of the scene may ask of
// it: the thermal box, the air and the camera see the scene only through
// this, so that they need nothing of the list that holds them. Objects are
// named by their index in the scene; rays and points are in the world frame.
class TCScene_tracer {
 public:
  // Most objects a scene holds; also the size of a contour's active flags
  // and of any per-object flag array handed in here.
  static constexpr int max_objects = 100;

  virtual ~TCScene_tracer() {}

  // The scene's band table: band_count() entries, null when there are none.
  virtual int band_count() const = 0;
  virtual const TCBand* band_table() const = 0;

  // The scene's frame being made, for objects that take a file per frame.
  virtual int frame_number() const = 0;

  // The scene's sun, or null.
  virtual const TCStar* star() const = 0;
  // The sun's irradiance reaching point in each band of out, after
  // everything along the way but object excluded_id (-1 for none). Without a
  // sun out is left as it is and the answer is 0.
  virtual int sun_irradiance_at(const TCVector& point, TCSpectrum& out, int excluded_id) = 0;

  // Objects in the scene (indices 0 to object_count() - 1), an object's name
  // and kind code; null and -1 where there is no object.
  virtual int object_count() const = 0;
  virtual const char* object_name(int index) const = 0;
  virtual int object_kind(int index) const = 0;
  // An object's position (world, metres): 1, or 0 where there is no object.
  virtual int object_position(int index, TCVector& out) const = 0;
  // For a surface object (the sea): the surface height under a world point
  // and the point's own height, both over the surface's mean level
  // (metres); 1, or 0 for any other object.
  virtual int surface_height_under(int index, const TCVector& point, double& height,
                                   double& own_height) const = 0;
  // index becomes the last object of exactly that name: 1, or -1 and 0 when
  // none has it.
  virtual int find_by_name(const char* name, int& index) const = 0;

  // The sky along a world ray from the scene's air into the bands of out (its
  // ids say which): 1, or 0 with out untouched when the scene has no air.
  virtual int air_radiance(const TCRay& ray, TCSpectrum& out) = 0;

  // The nearest object a ray hits: its index + 1 (hit is then the hit
  // point), 0 when nothing is hit, -(index + 1) when the ray starts inside
  // it (hit is the origin). Either all objects but skip_index, or those
  // whose flag is set.
  virtual int nearest_except(int skip_index, const TCRay& ray, TCVector& hit) = 0;
  virtual int nearest_active(const int* flags, const TCRay& ray, TCVector& hit) = 0;
  // Radiance reaching the ray's origin from object index along the ray, that
  // object told the asker is source_object.
  virtual void radiance_from(int index, int source_object, const TCRay& ray, TCSpectrum& out) = 0;

  // Every active object of the contour but source_object paints its layer
  // into the contour, merged front to back as it goes; the contour is used
  // as it stands.
  virtual void image_contour_for_source(int source_object, TCView& view,
                                        object_contour& contour) = 0;
  // The scene's passes over a view into radiance_out ([band][pixel]): the
  // main pass, the main pass over all but source_object, and the surface-line
  // pass. active and keep_flag are as the object list takes them.
  virtual void image_scene(int* active, TCView& view, TCSpectrum* spectrum, float** radiance_out,
                           double min_distance, object_contour* contour, int keep_flag) = 0;
  virtual void image_scene_for_source(int source_object, TCView& view, TCSpectrum* spectrum,
                                      float** radiance_out, double min_distance,
                                      object_contour* contour) = 0;
  // The pass for a reflected or refracted view: objects paint as they are
  // seen in a mirror, the air is switched off, no pixel is refined.
  virtual void image_scene_secondary(int* active, TCView& view, TCSpectrum* spectrum,
                                     float** radiance_out, double min_distance,
                                     object_contour* contour, int keep_flag) = 0;
  virtual void image_surface_line(int* active, TCView& view, TCSpectrum* spectrum,
                                  float** radiance_out, double min_distance,
                                  object_contour* contour, int keep_flag) = 0;
};

// The object list as a tracer, null for null; defined with the list, so that
// a holder of a bare list pointer needs nothing else of it.
TCScene_tracer* scene_tracer_of(TCObject_list* list);

#endif
