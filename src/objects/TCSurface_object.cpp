#include "TCSurface_object.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include "TCScene_tracer.h"
#include "TCStar.h"
#include "TCTexture_plane.h"
#include "surface_object_input.h"

const double TCSurface_object::no_sun_zenith = 9.42477796;

namespace {

const int default_fresnel_axis_n = 201;
const int default_azimuth_axis_n = 91;

}  // namespace

TCSurface_object::TCSurface_object(const surface_object_input& input)
    : box_class(input),
      lattice(nullptr),
      object_spectrum(nullptr),
      n_bands(0),
      sun_on(0),
      sun_irradiance(nullptr),
      sun_zenith(no_sun_zenith),
      sun_azimuth(0.0),
      sun_direction(0.0, 0.0, -1.0),
      sun_direction_local(0.0, 0.0, -1.0),
      ray_step(1.0),
      max_distance(99999999.0),
      external_radiance(nullptr),
      external_radiance_mean(nullptr),
      fresnel_axis_n(default_fresnel_axis_n),
      azimuth_axis_n(default_azimuth_axis_n),
      fresnel_first(0.0),
      fresnel_last(0.0),
      fresnel_step(0.0),
      fresnel_inverse_step(0.0),
      azimuth_first(0.0),
      azimuth_last(0.0),
      azimuth_step(0.0),
      azimuth_inverse_step(0.0),
      table_ready(0),
      band_radiance(nullptr),
      box_centre(0.0, 0.0, 0.0),
      matte_fields(nullptr),
      underwater_plane(0),
      mattes_only(0) {}

TCSurface_object::~TCSurface_object() {
  delete[] band_radiance;
  delete[] external_radiance_mean;
  delete[] external_radiance;
  delete[] sun_irradiance;
  delete object_spectrum;
}

void TCSurface_object::ray_to_box(const TCRay& world_ray, TCRay& out) const {
  ray_to_object(world_ray, out);
  out[0] -= box_centre.x;
  out[1] -= box_centre.y;
  out[2] -= box_centre.z;
}

void TCSurface_object::point_to_box(const TCVector& world_point, TCVector& out) const {
  point_to_object(world_point, out);
  out = out - box_centre;
}

int TCSurface_object::point_inside(const TCVector& point) {
  return inside(point - box_centre);
}

int TCSurface_object::intersect(const TCRay& ray, TCVector& hit, double& distance) {
  TCRay in_box = ray;
  in_box[0] -= box_centre.x;
  in_box[1] -= box_centre.y;
  in_box[2] -= box_centre.z;
  const int found = distance_to_surface(in_box, hit, distance);
  if (found) hit = hit + box_centre;
  return found;
}

void TCSurface_object::image_contour(TCView& view, object_contour& contour) {
  image_surface(view, contour);
}

void TCSurface_object::set_table_axes() {
  fresnel_first = -1.0;
  fresnel_last = 1.0;
  fresnel_step = fresnel_axis_n > 1 ? (fresnel_last - fresnel_first) / (fresnel_axis_n - 1) : 0.0;
  fresnel_inverse_step = fresnel_step > 0.0 ? 1.0 / fresnel_step : 0.0;
  azimuth_first = -3.1415926535;
  azimuth_last = 3.1415926535;
  azimuth_step = azimuth_axis_n > 1 ? (azimuth_last - azimuth_first) / (azimuth_axis_n - 1) : 0.0;
  azimuth_inverse_step = azimuth_step > 0.0 ? 1.0 / azimuth_step : 0.0;
}

void TCSurface_object::set_box(const TCVector& box_length, const TCVector& centre) {
  length = box_length;
  box_centre = centre;
}

int TCSurface_object::is_round(const char* word) {
  return word == nullptr || std::strcmp(word, "flat") != 0;
}

int TCSurface_object::march(double start, double end, double step, const TCVector& origin,
                            const TCVector& direction, double& distance, int refine) {
  if (inside(origin + direction * start)) {
    // The ray is in the water where it enters the box.
    distance = 0.0;
    return 1;
  }
  if (!(step > 0.0) || !(end - start < step * 4.0e9)) {
    // No way forward, or more steps than can be counted.
    distance = 0.0;
    return 0;
  }
  // A count of steps rather than a running sum, so that no step is lost to
  // rounding at the far end.
  double last_outside = start;
  for (long n = 1;; n++) {
    const double s = start + n * step;
    if (s > end + 0.5 * step) break;
    if (inside(origin + direction * s)) {
      if (refine) {
        bisect(last_outside, s, step, origin, direction, distance);
      } else {
        distance = last_outside;
      }
      return 1;
    }
    last_outside = s;
  }
  distance = 0.0;
  return 0;
}

void TCSurface_object::bisect(double a, double b, double, const TCVector& origin,
                              const TCVector& direction, double& distance) {
  double outside_end = a;
  double water_end = b;
  for (int k = 0; k < 5; k++) {
    const double middle = 0.5 * (outside_end + water_end);
    if (inside(origin + direction * middle)) {
      water_end = middle;
    } else {
      outside_end = middle;
    }
  }
  distance = 0.5 * (outside_end + water_end);
}

void TCSurface_object::surface_radiance(const TCRay&, const TCVector&, const TCVector&, TCSpectrum&,
                                        int, float*, double) {}

void TCSurface_object::set_footprint(double) {}

void TCSurface_object::set_reflection_footprint(double) {}

int TCSurface_object::inside(const TCVector& point) const {
  if (lattice == nullptr) return 0;
  return point.z < lattice->height_at(point.x, point.y, 0);
}

int TCSurface_object::distance_to_surface(const TCRay& ray, TCVector& hit, double& distance) {
  distance = -1.0;
  double entry = 0.0;
  TCVector entry_point;
  if (!box_intersect(ray, entry_point, entry) || !(entry < max_distance)) {
    hit = ray.origin();
    return 0;
  }
  double exit = 0.0;
  TCVector exit_point;
  if (!far_intersect(ray, exit_point, exit)) {
    hit = ray.origin();
    return 0;
  }
  if (exit > max_distance) exit = max_distance;
  const double n = std::trunc((exit - entry) / ray_step) + 1.0;
  const double step = (exit - entry) / n;
  // A lattice without a positive spacing cannot be marched at all.
  if (!(ray_step > 0.0) || !(step >= 0.1 * ray_step)) {
    // Only a corner of the box lies along the ray.
    hit = ray.origin();
    return 0;
  }
  const TCVector origin = ray.origin();
  const TCVector direction = ray.direction();
  double found = 0.0;
  if (!march(entry, exit, step, origin, direction, found, 1)) {
    distance = 0.0;
    hit = origin;
    return 0;
  }
  // A ray that is in the water where it enters the box meets the water at
  // the entry point, and the distance goes with that hit: 0 past where the
  // march starts, which is 0 for a ray that starts in the box.
  if (found == 0.0) {
    distance = entry;
    hit = entry_point;
  } else {
    distance = found;
    hit = origin + direction * found;
  }
  return 1;
}

void TCSurface_object::allocate_surface_arrays() {
  if (object_spectrum == nullptr) {
    std::cout << "can not allocate surface arrays since "
              << "\n"
              << "objects_spectrum has not yet been set"
              << "\n";
    std::exit(1);
  }
  set_table_axes();
  n_bands = object_spectrum->n;
  delete[] band_radiance;
  delete[] external_radiance;
  delete[] external_radiance_mean;
  delete[] sun_irradiance;
  sun_irradiance = new (std::nothrow) float[n_bands > 0 ? n_bands : 1]();
  const long table = static_cast<long>(n_bands) * fresnel_axis_n * azimuth_axis_n;
  band_radiance = new (std::nothrow) double[n_bands > 0 ? n_bands : 1]();
  external_radiance = new (std::nothrow) double[table > 0 ? table : 1]();
  external_radiance_mean =
      new (std::nothrow) double[n_bands * fresnel_axis_n > 0 ? n_bands * fresnel_axis_n : 1]();
  if (sun_irradiance == nullptr || band_radiance == nullptr || external_radiance == nullptr ||
      external_radiance_mean == nullptr) {
    std::cout << "unable to allocate surface arrays "
              << "\n";
    std::exit(1);
  }
}

double TCSurface_object::point_height(const TCVector& point, double& z_out) const {
  TCVector in_box;
  point_to_box(point, in_box);
  const double offset = lattice != nullptr ? lattice->z_offset : 0.0;
  z_out = in_box.z - offset;
  if (lattice == nullptr) return 0.0;
  return lattice->height_at(in_box.x, in_box.y, 0) - offset;
}

void TCSurface_object::project_to_surface(const TCVector& point, TCVector& out) const {
  out = point;
  if (lattice != nullptr) out.z = lattice->height_at(point.x, point.y, 0);
}

double TCSurface_object::curvature_angle(const TCRay& ray, double azimuth) const {
  if (lattice == nullptr || !lattice->round_flag) return 0.0;
  const double radius = lattice->radius;
  const double h = ray[2] - lattice->z_offset;
  const double b = ray[3] * std::cos(azimuth) + ray[4] * std::sin(azimuth);
  const double s = b < 0.0 ? -1.0 : 1.0;
  const double rh = radius + h;
  return std::acos((s * b - std::sqrt(rh * rh - radius * radius)) / (b * b / rh + rh)) -
         1.57079632675;
}

int TCSurface_object::write_height_grid(const char* definition_file, const char* suffix) {
  if (lattice == nullptr) return 0;
  // Heights over the object's z = 0, as point_height gives them, not in the
  // box frame, which moves with every frame's wave range.
  const double box_offset = lattice->z_offset;
  lattice->z_offset = 0.0;
  const int written = lattice->write_height_grid(definition_file, get_name(), suffix);
  lattice->z_offset = box_offset;
  return written;
}

int TCSurface_object::radiance_texture_surface(TCTexture_plane& texture, int n_points,
                                               const double* xs, const double* ys, double footprint,
                                               int side, double* out) {
  if (n_points > most_texture_points) {
    std::cout << "Error in radiance_texture_surface: too many points: " << n_points << "\n";
    return 0;
  }
  texture.average_list(out, footprint, n_points, xs, ys, side);
  return 1;
}

void TCSurface_object::update_sun(const TCScene_tracer* tracer) {
  const TCStar* star = tracer != nullptr ? tracer->star() : nullptr;
  if (star == nullptr || !star->present) {
    sun_on = 0;
    for (int b = 0; b < n_bands && sun_irradiance != nullptr; b++) sun_irradiance[b] = 0.0f;
    sun_zenith = no_sun_zenith;
    sun_azimuth = 0.0;
    sun_direction = TCVector(0.0, 0.0, -1.0);
    direction_to_object(sun_direction, sun_direction_local);
    return;
  }
  sun_on = 1;
  for (int b = 0; b < n_bands && sun_irradiance != nullptr; b++) {
    const int k = star->irradiance.index_of(object_spectrum->band_id[b]);
    sun_irradiance[b] = k >= 0 ? static_cast<float>(star->irradiance.radiance_in_band[k]) : 0.0f;
  }
  sun_zenith = star->zenith;
  sun_azimuth = star->azimuth;
  sun_direction = TCVector(-std::sin(sun_zenith) * std::cos(sun_azimuth),
                           -std::sin(sun_zenith) * std::sin(sun_azimuth), -std::cos(sun_zenith));
  direction_to_object(sun_direction, sun_direction_local);
}
