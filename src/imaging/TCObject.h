#ifndef TC_OBJECT_H
#define TC_OBJECT_H

#include <iostream>

#include "TCKeyframes.h"
#include "TCMatrix.h"
#include "TCRay.h"
#include "TCSpectrum.h"
#include "TCVector.h"

class TCCamera;
class TCObject_input;
class TCObject_list;
class TCScene_tracer;
class TCView;
class object_contour;

// Root of the runtime objects. An object sits on its key frame track; its
// rotation maps world directions into its own frame.
class TCObject {
 public:
  // Copies what the input names and takes the pose at the input's start time.
  explicit TCObject(const TCObject_input& input);
  // An object named "object_<id>", posed at start_time; time is stored as given.
  TCObject(const TCKeyframes& track_in, double start_time, double time_in, int object_id_in,
           TCObject_list* list_in, int type_code_in);

  virtual ~TCObject();
  virtual void print_dimensions();
  virtual void prepare_frame();
  virtual void prepare_camera(TCCamera* camera);
  virtual void set_position(const TCVector& position_in, double chi_in, double phi_in,
                            double theta_in);
  virtual void set_time(double t);
  virtual void print_state(std::ostream& out);
  virtual void write_frame_data(const char* stream_name, const char* frame_text);
  virtual double ray_measure(TCRay ray);
  virtual void radiance(const TCRay& ray, TCSpectrum& out);
  virtual void radiance_from(int source_object, const TCRay& ray, TCSpectrum& out);
  virtual void image_contour(TCView& view, object_contour& contour);
  virtual void image_reflected(TCView& view, object_contour& contour);
  virtual void image_surface_line(TCView& view, object_contour& contour);
  // Object frame.
  virtual int point_inside(const TCVector& point);
  // Object frame; positive on a hit.
  virtual int intersect(const TCRay& ray, TCVector& hit, double& distance);

  void ray_to_object(const TCRay& ray, TCRay& out) const;
  void point_to_object(const TCVector& p, TCVector& out) const;
  void direction_to_object(const TCVector& d, TCVector& out) const;
  void ray_to_world(const TCRay& ray, TCRay& out) const;
  void point_to_world(const TCVector& p, TCVector& out) const;
  void direction_to_world(const TCVector& d, TCVector& out) const;

  // World ray; the hit comes back in the world frame.
  int ray_intersection(const TCRay& world_ray, TCVector& hit, double& distance);
  int point_inside_world(const TCVector& p);
  // A ray starting inside meets the object at its own origin, distance 0.
  int first_contact(const TCRay& world_ray, TCVector& hit, double& distance);

  // The view as seen from this object's frame: same grid, position and
  // rotation relative to the object, and the four cached matrices set.
  void view_in_object_frame(const TCView& view, TCView& out_view);

  TCVector get_position() const { return position; }
  void get_pose(TCVector& p, double& chi_out, double& phi_out, double& theta_out) const;
  double get_priority() const { return priority; }
  void set_priority(double p) { priority = p; }
  int get_object_id() const { return object_id; }
  int get_type() const { return type_code; }
  void set_type(int code) { type_code = code; }
  const char* get_name() const { return name; }
  void set_name(const char* new_name);
  double get_time() const { return time; }
  void set_time_value(double t) { time = t; }

  TCMatrix view_to_world;
  TCMatrix world_to_view;
  TCMatrix world_to_object_view;
  TCMatrix object_view_to_world;
  TCVector position;
  double chi;
  double phi;
  double theta;
  double time;
  double priority;
  TCMatrix object_to_world;
  TCMatrix world_to_object;
  TCObject_list* list;
  // The same list as seen by objects that trace through the scene: the list
  // sets it beside list when it adopts the object; otherwise null.
  TCScene_tracer* scene;
  int object_id;
  int type_code;
  char name[256];
  TCKeyframes track;
  int print_flag;

 private:
  TCObject(const TCObject&);
  TCObject& operator=(const TCObject&);
};

#endif
