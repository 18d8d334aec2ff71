#include "TCObject.h"

#include <cmath>
#include <cstdio>
#include <cstring>
#include <iostream>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCObject_input.h"
#include "TCView.h"
#include "object_contour.h"

TCObject::TCObject(const TCObject_input& input)
    : chi(0.0),
      phi(0.0),
      theta(0.0),
      time(input.start_time),
      priority(input.priority),
      list(nullptr),  // the list sets itself when it adopts the object
      scene(nullptr),
      object_id(input.object_id),
      type_code(input.type_code),
      track(input.track),
      print_flag(1) {
  copy_text(name, input.object_name, sizeof(name));
  TCVector p;
  double c = 0.0, f = 0.0, t = 0.0;
  track.pose_at(input.start_time, p, c, f, t);
  set_position(p, c, f, t);
}

TCObject::TCObject(const TCKeyframes& track_in, double start_time, double time_in, int object_id_in,
                   TCObject_list* list_in, int type_code_in)
    : chi(0.0),
      phi(0.0),
      theta(0.0),
      time(time_in),
      priority(1.0),
      list(list_in),
      scene(nullptr),
      object_id(object_id_in),
      type_code(type_code_in),
      track(track_in),
      print_flag(1) {
  std::snprintf(name, sizeof(name), "object_%d", object_id_in);
  TCVector p;
  double c = 0.0, f = 0.0, t = 0.0;
  track.pose_at(start_time, p, c, f, t);
  set_position(p, c, f, t);
}

TCObject::~TCObject() {}

void TCObject::print_dimensions() {
  std::cout << time << " " << position.x << " " << position.y << " " << position.z << " "
            << degrees_for_file(chi) << " " << degrees_for_file(phi) << " "
            << degrees_for_file(theta) << "\n";
}

void TCObject::prepare_frame() {}

void TCObject::prepare_camera(TCCamera*) {}

void TCObject::set_position(const TCVector& position_in, double chi_in, double phi_in,
                            double theta_in) {
  position = position_in;
  chi = chi_in;
  phi = phi_in;
  theta = theta_in;
  world_to_object = TCMatrix::rotation(chi, phi, theta);
  object_to_world = world_to_object.transpose();
}

void TCObject::set_time(double t) {
  time = t;
  TCVector p;
  double c = 0.0, f = 0.0, a = 0.0;
  track.pose_at(t, p, c, f, a);
  set_position(p, c, f, a);
}

void TCObject::print_state(std::ostream& out) {
  if (!print_flag) return;
  out << name << "\n";
  out << time << " " << position.x << " " << position.y << " " << position.z << " "
      << degrees_for_file(chi) << " " << degrees_for_file(phi) << " " << degrees_for_file(theta)
      << "\n";
}

void TCObject::write_frame_data(const char*, const char*) {}

double TCObject::ray_measure(TCRay ray) {
  return ray[0] * position.x + ray[1] * position.y + ray[2] * position.z;
}

void TCObject::radiance(const TCRay&, TCSpectrum& out) {
  for (int i = 0; i < out.n; i++) out.radiance_in_band[i] = 0.0;
}

void TCObject::radiance_from(int, const TCRay& ray, TCSpectrum& out) {
  radiance(ray, out);
}

// An object that draws nothing still leaves an empty, far layer behind.
void TCObject::image_contour(TCView&, object_contour& contour) {
  const int n_bands = contour.spectrum != nullptr ? contour.spectrum->n : 0;
  for (int row = 0; row < contour.n_rows; row++) {
    for (int col = 0; col < contour.n_cols; col++) {
      for (int band = 0; band < n_bands; band++) contour.layer_radiance[band][row][col] = 0.0f;
      contour.layer_coverage[row][col] = 0.0f;
      contour.layer_distance[row][col] = 1e8f;
    }
  }
}

void TCObject::image_reflected(TCView& view, object_contour& contour) {
  image_contour(view, contour);
}

void TCObject::image_surface_line(TCView& view, object_contour& contour) {
  image_contour(view, contour);
}

int TCObject::point_inside(const TCVector&) {
  return 0;
}

int TCObject::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  distance = 0.0;
  hit = ray.origin();
  return 0;
}

void TCObject::ray_to_object(const TCRay& ray, TCRay& out) const {
  TCVector origin, direction;
  point_to_object(ray.origin(), origin);
  direction_to_object(ray.direction(), direction);
  out.set_origin(origin);
  out.set_direction(direction);
}

void TCObject::point_to_object(const TCVector& p, TCVector& out) const {
  out = world_to_object.times(p - position);
}

void TCObject::direction_to_object(const TCVector& d, TCVector& out) const {
  out = world_to_object.times(d);
}

void TCObject::ray_to_world(const TCRay& ray, TCRay& out) const {
  TCVector origin, direction;
  point_to_world(ray.origin(), origin);
  direction_to_world(ray.direction(), direction);
  out.set_origin(origin);
  out.set_direction(direction);
}

void TCObject::point_to_world(const TCVector& p, TCVector& out) const {
  out = object_to_world.times(p) + position;
}

void TCObject::direction_to_world(const TCVector& d, TCVector& out) const {
  out = object_to_world.times(d);
}

int TCObject::ray_intersection(const TCRay& world_ray, TCVector& hit, double& distance) {
  TCRay local;
  ray_to_object(world_ray, local);
  TCVector local_hit;
  const int result = intersect(local, local_hit, distance);
  if (result > 0) {
    point_to_world(local_hit, hit);
  } else {
    hit = local_hit;
  }
  return result;
}

int TCObject::point_inside_world(const TCVector& p) {
  TCVector local;
  point_to_object(p, local);
  return point_inside(local);
}

int TCObject::first_contact(const TCRay& world_ray, TCVector& hit, double& distance) {
  if (point_inside_world(world_ray.origin())) {
    hit = world_ray.origin();
    distance = 0.0;
    return 1;
  }
  return ray_intersection(world_ray, hit, distance);
}

namespace {

// An angle from its sine and cosine, both already divided by sin(chi), in
// the range -half pi to three halves pi.
double angle_from_parts(double numerator, double denominator) {
  if (denominator != 0.0) {
    double angle = std::atan(numerator / denominator);
    if (denominator < 0.0) angle += tc_pi;
    return angle;
  }
  if (numerator > 0.0) return tc_half_pi;
  if (numerator < 0.0) return tc_three_half_pi;
  return 0.0;
}

}  // namespace

void TCObject::view_in_object_frame(const TCView& view, TCView& out_view) {
  out_view.copy(view);

  view_to_world = view.object_to_world;
  world_to_view = view.world_to_view;
  world_to_object_view = TCMatrix::multiply(world_to_view, object_to_world);
  object_view_to_world = TCMatrix::multiply(world_to_object, view.object_to_world);

  out_view.position = world_to_object.times(view.position - position);
  out_view.world_to_view = world_to_object_view;
  out_view.object_to_world = object_view_to_world;

  // Recover the angles of the composed rotation, which has the layout of
  // TCMatrix::rotation.
  const TCMatrix& r = out_view.world_to_view;
  double cos_chi = r.at(2, 2);
  if (cos_chi > 1.0) cos_chi = 1.0;
  if (cos_chi < -1.0) cos_chi = -1.0;
  out_view.chi = std::acos(cos_chi);
  const double s = std::sin(out_view.chi);
  if (s != 0.0) {
    out_view.phi = angle_from_parts(r.at(2, 1) / s, r.at(2, 0) / s);
    out_view.theta = angle_from_parts(r.at(1, 2) / s, -r.at(0, 2) / s);
  } else {
    // Looking straight along the axis phi and theta are one turn: keep it
    // all in theta.
    out_view.phi = 0.0;
    out_view.theta = std::atan2(r.at(0, 1), r.at(0, 0));
  }
}

void TCObject::get_pose(TCVector& p, double& chi_out, double& phi_out, double& theta_out) const {
  p = position;
  chi_out = chi;
  phi_out = phi;
  theta_out = theta;
}

void TCObject::set_name(const char* new_name) {
  copy_text(name, new_name, sizeof(name));
}
