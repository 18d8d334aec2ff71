#include "TCStar.h"

#include <cmath>

#include "TCConstants.h"
#include "TCData_file.h"
#include "TCObject.h"
#include "TCObject_list.h"
#include "TCRay.h"
#include "TCStar_input.h"

namespace {

const double default_solid_angle = 6.76e-05;  // steradians

// The sun's irradiance in a band, 0 for a band it does not have.
double irradiance_in(const TCSpectrum& irradiance, int band) {
  const int i = irradiance.index_of(band);
  return i < 0 ? 0.0 : irradiance.radiance_in_band[i];
}

void set_all(TCSpectrum& out, double value) {
  for (int i = 0; i < out.n; i++) out.radiance_in_band[i] = value;
}

}  // namespace

TCStar::TCStar()
    : present(0),
      on(1),
      position_method_flag(0),
      zenith(0.0),
      azimuth(0.0),
      irradiance(),
      track(),
      solid_angle(default_solid_angle) {
  // The direction of the zero angles, straight down; still no sun.
  set_angles(0.0, 0.0);
  present = 0;
}

TCStar::TCStar(const TCStar_input& input)
    : present(0),
      on(1),
      position_method_flag(0),
      zenith(0.0),
      azimuth(0.0),
      irradiance(),
      track(),
      solid_angle(default_solid_angle) {
  // Angles stay 0 until the first set_time.
  set_angles(0.0, 0.0);
  set_from_input(input);
}

// A copy keeps its own defaults for on and solid_angle.
TCStar::TCStar(const TCStar& other)
    : present(1),
      on(1),
      position_method_flag(other.position_method_flag),
      zenith(other.zenith),
      azimuth(other.azimuth),
      direction(other.direction),
      irradiance(other.irradiance),
      track(other.track),
      solid_angle(default_solid_angle) {}

TCStar::~TCStar() {}

void TCStar::set_from_input(const TCStar_input& input) {
  track = input.track;
  position_method_flag = input.position_method_flag;
  irradiance = input.irradiance;
  present = 1;
}

void TCStar::set_time(double t) {
  double zenith_now = zenith;
  double azimuth_now = azimuth;
  if (position_method_flag == 0) {
    track.angles_at(t, zenith_now, azimuth_now);
  } else {
    // The clock, t in hours: rises in the east at 6, overhead at 12, sets at
    // 18, and goes on below the horizon after that.
    zenith_now = ((t - 6.0) / 12.0 + 0.5) * tc_pi;
    azimuth_now = 1.5707963267948966;
  }
  set_angles(zenith_now, azimuth_now);
}

void TCStar::set_angles(double zenith_in, double azimuth_in) {
  zenith = zenith_in;
  azimuth = azimuth_in;
  direction.x = -std::sin(zenith) * std::cos(azimuth);
  direction.y = -std::sin(zenith) * std::sin(azimuth);
  direction.z = -std::cos(zenith);
  present = 1;
}

void TCStar::irradiance_at(const TCVector& point, TCSpectrum& out, TCObject_list* list,
                           int excluded_id) const {
  if (!present) {
    set_all(out, 0.0);
    return;
  }
  if (list == nullptr) {
    for (int i = 0; i < out.n; i++)
      out.radiance_in_band[i] = irradiance_in(irradiance, out.band_id[i]);
    return;
  }

  int n = list->n_objects;
  if (n > TCObject_list::max_objects) n = TCObject_list::max_objects;
  if (n < 0) n = 0;
  // Every object takes part but the excluded one. The objects along the way
  // learn the exclusion as their source object.
  int enabled[TCObject_list::max_objects];
  for (int i = 0; i < n; i++) enabled[i] = 1;
  int source = -1;
  if (excluded_id >= 0 && excluded_id < n) {
    enabled[excluded_id] = 0;
    source = excluded_id;
  }

  const TCRay ray(point, direction);
  set_all(out, 1.0);

  // The object holding the point with the largest measure along the ray,
  // and otherwise the nearest one the ray meets.
  int inside = -1;
  double inside_measure = 0.0;
  int nearest = -1;
  double nearest_distance = 0.0;
  for (int i = 0; i < n; i++) {
    TCObject* object = list->objects[i];
    if (!enabled[i] || object == nullptr) continue;
    if (object->point_inside_world(point)) {
      const double measure = object->ray_measure(ray);
      if (inside < 0 || measure > inside_measure) {
        inside = i;
        inside_measure = measure;
      }
    }
    if (inside < 0) {
      TCVector hit;
      double distance = 0.0;
      if (object->ray_intersection(ray, hit, distance) > 0 &&
          (nearest < 0 || distance < nearest_distance)) {
        nearest = i;
        nearest_distance = distance;
      }
    }
  }

  // What is met turns the 1.0 into the transmission along the ray, asking
  // in turn whatever lies behind it.
  if (inside >= 0) {
    list->objects[inside]->radiance_from(source, ray, out);
  } else if (nearest >= 0) {
    list->objects[nearest]->radiance_from(source, ray, out);
  }
  for (int i = 0; i < out.n; i++)
    out.radiance_in_band[i] *= irradiance_in(irradiance, out.band_id[i]);
}

void TCStar::print_state(std::ostream& out) const {
  // Adding 0.0 prints the sines of zero angles as 0 rather than -0.
  out << "sun zenith " << degrees_for_file(zenith) << " azimuth " << degrees_for_file(azimuth)
      << " direction " << direction.x + 0.0 << " " << direction.y + 0.0 << " " << direction.z + 0.0
      << "\n";
}
