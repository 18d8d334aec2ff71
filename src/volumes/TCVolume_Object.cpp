#include "TCVolume_Object.h"

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCMatte_fields.h"
#include "TCObject_kinds.h"
#include "TCScene_tracer.h"
#include "TCSettings.h"
#include "TCStar.h"
#include "TCView.h"
#include "TCVolume_Object_class.h"
#include "object_contour.h"

namespace {

const double volume_pi = 3.1415926535;
const double degrees_per_radian = 57.29577951471995;
const double no_far_limit = 99999999.0;
// Above this share of the summed axis fractions one axis alone carries the
// sun's path; below, this much is taken off each before weighing them.
const double single_axis_share = 0.7;
const double axis_share_offset = 0.30000000000000004;
// A place on the lattice this close outside its bounds still counts as on it.
const double lattice_slack = 1e-9;

void allocation_failed(const char* words) {
  std::cout << words << "\n";
  std::exit(1);
}

// Kinds that light passes through: they bound no march.
int is_medium_kind(int kind) {
  return kind == TC_KIND_AIR || kind == TC_KIND_CLOUD || kind == TC_KIND_SPRAY ||
         kind == TC_KIND_BLOB || kind == TC_KIND_BLOB_LITE || kind == TC_KIND_SPRAY_LITE ||
         kind == TC_KIND_THERMAL_BOX;
}

double clamp_index(double u, int n) {
  if (u < 0.0) return 0.0;
  if (u > n - 1) return n - 1;
  return u;
}

}  // namespace

TCVolume_Object::TCVolume_Object(const TCVolume_Object_class& input)
    : box_class(input),
      n_x(input.number_points_x > 0 ? input.number_points_x : 1),
      n_y(input.number_points_y > 0 ? input.number_points_y : 1),
      n_z(input.number_points_z > 0 ? input.number_points_z : 1),
      num_bands(input.num_bands > 0 ? input.num_bands : 0),
      band_list(input.num_bands > 0 ? input.num_bands : 1),
      extinction_band(nullptr),
      scattering_band(nullptr),
      absorption_band(nullptr),
      phase_table(nullptr),
      threshold_density(input.threshold_density),
      scattering_method(input.scattering_method),
      integration_scale(input.integration_scale),
      cutoff(input.transmission_cutoff > 0.0 ? -std::log(input.transmission_cutoff) : 1e300),
      subdivide_threshold(input.subdivide_threshold),
      sun_direction(0.0, 0.0, 1.0),
      sun_radiance(input.num_bands > 0 ? input.num_bands : 1),
      step_limit(0.0),
      density_changed(1),
      shared_in_use_(0),
      sun_known_(0) {
  spacing[0] = input.lattice_spacing_x;
  spacing[1] = input.lattice_spacing_y;
  spacing[2] = input.lattice_spacing_z;
  // The box is the lattice, whatever lengths the record carried.
  length = TCVector((n_x - 1) * spacing[0], (n_y - 1) * spacing[1], (n_z - 1) * spacing[2]);
  shared_.n_bands = 0;
  shared_.integrand = nullptr;
  shared_.density = nullptr;
  shared_.tau = nullptr;
  shared_.sun_column = nullptr;
  shared_.coefficients = nullptr;

  if (num_bands > 0 && input.n_phase_function_angles != phase_angles) {
    std::cout << "only 181 phase function angles currently supported by api "
              << "\n";
    std::exit(1);
  }
  const int count = num_bands > 0 ? num_bands : 1;
  extinction_band = new (std::nothrow) double[count]();
  scattering_band = new (std::nothrow) double[count]();
  absorption_band = new (std::nothrow) double[count]();
  phase_table = new (std::nothrow) double*[count]();
  if (!extinction_band || !scattering_band || !absorption_band || !phase_table)
    allocation_failed("unable to allocate volume object ");
  for (int m = 0; m < count; m++) {
    phase_table[m] = new (std::nothrow) double[phase_angles]();
    if (phase_table[m] == nullptr) allocation_failed("unable to allocate volume object ");
  }
  for (int m = 0; m < num_bands; m++) {
    band_list.band_id[m] = input.band_id != nullptr ? input.band_id[m] : m + 1;
    sun_radiance.band_id[m] = band_list.band_id[m];
    sun_radiance.radiance_in_band[m] = 0.0;
    if (input.absorption) absorption_band[m] = input.absorption[m];
    if (input.scattering) scattering_band[m] = input.scattering[m];
    if (input.extinction) extinction_band[m] = input.extinction[m];
    if (input.phase_functions != nullptr && input.phase_functions[m] != nullptr) {
      for (int a = 0; a < phase_angles; a++) phase_table[m][a] = input.phase_functions[m][a];
    }
  }
  if (num_bands == 0) {
    band_list.band_id[0] = -1;
    sun_radiance.band_id[0] = -1;
    sun_radiance.radiance_in_band[0] = 0.0;
  }
}

TCVolume_Object::~TCVolume_Object() {
  free_march(shared_);
  if (phase_table != nullptr) {
    for (int m = 0; m < (num_bands > 0 ? num_bands : 1); m++) delete[] phase_table[m];
  }
  delete[] phase_table;
  delete[] extinction_band;
  delete[] scattering_band;
  delete[] absorption_band;
}

void TCVolume_Object::print_dimensions() {
  box_class::print_dimensions();
  std::cout << "VOLUME PARAMETERS"
            << "\n";
  std::cout << "lattice points        " << n_x << " " << n_y << " " << n_z << "\n";
  std::cout << "lattice spacing       " << spacing[0] << " " << spacing[1] << " " << spacing[2]
            << "\n";
  std::cout << "box size              " << length.x << " " << length.y << " " << length.z << "\n";
  if (scattering_method == 1) {
    std::cout << "SCATTERING METHOD: multiple"
              << "\n";
  } else {
    std::cout << "SCATTERING METHOD: single"
              << "\n";
  }
  std::cout << "integration step precision    " << integration_scale << "\n";
  std::cout << "max absorption lengths        " << cutoff << "\n";
  std::cout << "small scale int thresh        " << subdivide_threshold << "\n";
  std::cout << "OPTICAL PROPERTIES    "
            << "\n";
  std::cout << "number of bands       " << num_bands << "\n";
  std::cout << "band id               ";
  for (int m = 0; m < num_bands; m++) std::cout << " " << band_list.band_id[m];
  std::cout << "\n";
  std::cout << "a                     ";
  for (int m = 0; m < num_bands; m++) std::cout << " " << absorption_band[m];
  std::cout << "\n";
  std::cout << "b                     ";
  for (int m = 0; m < num_bands; m++) std::cout << " " << scattering_band[m];
  std::cout << "\n";
  std::cout << "density threshold:   " << threshold_density << "\n";
  std::cout << "phase function:      ";
  for (int m = 0; m < num_bands; m++) std::cout << " " << phase_table[m][0];
  std::cout << "\n";
}

// ---- The lattice look-ups the kinds fill ----

int TCVolume_Object::face_scan_in(const TCRay&, TCVector&, double&) {
  return 0;
}
int TCVolume_Object::face_scan_out(const TCRay&, TCVector&, double&) {
  return 0;
}
double TCVolume_Object::density_at_ray(const TCRay&, double) {
  return 0.0;
}
double TCVolume_Object::density_point(const TCVector&, double& density, double& extinction) {
  density = 0.0;
  extinction = 0.0;
  return 0.0;
}
double TCVolume_Object::density_lattice(const TCVector&, double& density) {
  density = 0.0;
  return 0.0;
}
double TCVolume_Object::small_scale_factor() {
  return 0.0;
}
double TCVolume_Object::extinction_scale() {
  return 0.0;
}
double TCVolume_Object::density_of_index(long) {
  return 0.0;
}
void TCVolume_Object::set_extinction(long, double) {}
double TCVolume_Object::get_extinction(long) {
  return 0.0;
}
double TCVolume_Object::phase_scale() {
  return 1.0;
}

int TCVolume_Object::object_band(int id) const {
  for (int m = 0; m < num_bands; m++) {
    if (band_list.band_id[m] == id) return m;
  }
  return -1;
}

// ---- Optics ----

double TCVolume_Object::phase_lookup(double angle, int m) const {
  if (m < 0 || m >= num_bands) return 0.0;
  const double a = std::fabs(angle);
  const double place = a / volume_pi * 180.0;
  if (!(place < 181.0)) return 0.0;
  const int i = static_cast<int>(std::floor(place));
  if (i < 180) {
    const double f = a * degrees_per_radian - i;
    return (1.0 - f) * phase_table[m][i] + f * phase_table[m][i + 1];
  }
  if (i == 180) return phase_table[m][180];
  return 0.0;
}

double TCVolume_Object::multiple_scattering_factor(double scattering_depth, double phase) const {
  if (scattering_method == 1 && scattering_depth > 2.0 && phase > 0.0) {
    const double e = std::exp(-(scattering_depth - 2.0) / 10.0);
    return (1.0 - e) / (12.566371 * phase) + e;
  }
  return 1.0;
}

// ---- The field of optical depth towards the sun ----

TCVector TCVolume_Object::lattice_point(int i, int j, int k) const {
  return TCVector(-length.x / 2 + i * spacing[0], -length.y / 2 + j * spacing[1],
                  -length.z / 2 + k * spacing[2]);
}

void TCVolume_Object::make_extinction_field() {
  if (verbose) std::cout << "making the extinction field  of object " << object_id << "\n";
  const long n_points = static_cast<long>(n_x) * n_y * n_z;
  for (long idx = 0; idx < n_points; idx++) set_extinction(idx, 0.0);

  double share[3];
  double total = 0.0;
  for (int a = 0; a < 3; a++) {
    share[a] = spacing[a] > 0.0 ? std::fabs(sun_direction[a] / spacing[a]) : 0.0;
    total += share[a];
  }
  if (total > 0.0) {
    for (int a = 0; a < 3; a++) share[a] /= total;
    double weight[3] = {0.0, 0.0, 0.0};
    int alone = -1;
    for (int a = 0; a < 3; a++) {
      if (share[a] > single_axis_share) alone = a;
    }
    if (alone >= 0) {
      weight[alone] = 1.0;
    } else {
      double sum = 0.0;
      for (int a = 0; a < 3; a++) {
        weight[a] = share[a] - axis_share_offset;
        if (weight[a] < 0.0) weight[a] = 0.0;
        sum += weight[a];
      }
      for (int a = 0; a < 3; a++) weight[a] = sum > 0.0 ? weight[a] / sum : 0.0;
    }
    double* column = new (std::nothrow) double[n_points > 0 ? n_points : 1];
    if (column == nullptr) allocation_failed(" memory allocation of volume failed ");
    for (int a = 0; a < 3; a++) {
      if (weight[a] <= 0.0) continue;
      walk_axis(a, column);
      for (long idx = 0; idx < n_points; idx++)
        set_extinction(idx, get_extinction(idx) + weight[a] * column[idx]);
    }
    delete[] column;
  }
  field_sun_ = sun_direction;
  sun_known_ = 1;
  density_changed = 0;
  if (verbose)
    std::cout << "done making extinction field "
              << "\n";
}

// Planes square to `axis`, from the one nearest the sun away from it. A
// point's column is the column where the sun ray through it crosses the
// plane before (bilinear in the other two axes) plus the mean density of the
// two ends times the path between the planes. What is interpolated is the
// mean density along the rest of the sun's path in the box (column over
// that path's length), which, unlike the column, has no kinks where the
// exit face changes: a uniform box comes out exact. A point whose sun ray
// leaves the box through a side before reaching that plane takes its own
// density times that shorter path; the plane facing the sun has none.
void TCVolume_Object::walk_axis(int axis, double* column) {
  const int n[3] = {n_x, n_y, n_z};
  const int p = (axis + 1) % 3;
  const int q = (axis + 2) % 3;
  const double s_axis = sun_direction[axis];
  const int first = s_axis > 0.0 ? n[axis] - 1 : 0;
  const int toward = s_axis > 0.0 ? -1 : 1;
  const double path = std::fabs(spacing[axis] / s_axis);
  // The crossing's offset from the point, in metres and in lattice steps.
  const double offset_p = spacing[axis] * sun_direction[p] / std::fabs(s_axis);
  const double offset_q = spacing[axis] * sun_direction[q] / std::fabs(s_axis);
  const double step_p = spacing[p] > 0.0 ? offset_p / spacing[p] : 0.0;
  const double step_q = spacing[q] > 0.0 ? offset_q / spacing[q] : 0.0;
  const int flat_p = !(spacing[p] > 0.0) && offset_p != 0.0;
  const int flat_q = !(spacing[q] > 0.0) && offset_q != 0.0;
  // Lattice strides of the three axes.
  const long stride[3] = {1, n_x, static_cast<long>(n_x) * n_y};

  // The plane before's mean density along the rest of the sun's path and
  // its density, point by point (u fastest).
  const long plane_points = static_cast<long>(n[p]) * n[q];
  double* buffers = new (std::nothrow) double[4 * plane_points];
  if (buffers == nullptr) allocation_failed(" memory allocation of volume failed ");
  double* prev_mean = buffers;
  double* prev_rho = buffers + plane_points;
  double* cur_mean = buffers + 2 * plane_points;
  double* cur_rho = buffers + 3 * plane_points;

  int index[3];
  for (int m = 0; m < n[axis]; m++) {
    const int plane = first + toward * m;  // m planes away from the sun's side
    index[axis] = plane;
    for (int v = 0; v < n[q]; v++) {
      for (int u = 0; u < n[p]; u++) {
        index[p] = u;
        index[q] = v;
        const long idx = index[0] * stride[0] + index[1] * stride[1] + index[2] * stride[2];
        const long here = u + static_cast<long>(n[p]) * v;
        const double rho = density_of_index(idx);
        const double remaining = sun_path(lattice_point(index[0], index[1], index[2]));
        double value = 0.0;
        double up = u + step_p;
        double vq = v + step_q;
        if (m == 0) {
          value = 0.0;
        } else if (flat_p || flat_q || up < -lattice_slack || up > n[p] - 1 + lattice_slack ||
                   vq < -lattice_slack || vq > n[q] - 1 + lattice_slack || remaining < path) {
          // Out through a side: the path to that side alone.
          value = rho * (remaining < path ? remaining : path);
        } else {
          up = clamp_index(up, n[p]);
          vq = clamp_index(vq, n[q]);
          int u0 = static_cast<int>(std::floor(up));
          int v0 = static_cast<int>(std::floor(vq));
          if (u0 > n[p] - 2) u0 = n[p] - 2;
          if (v0 > n[q] - 2) v0 = n[q] - 2;
          if (u0 < 0) u0 = 0;
          if (v0 < 0) v0 = 0;
          const double fu = n[p] > 1 ? up - u0 : 0.0;
          const double fv = n[q] > 1 ? vq - v0 : 0.0;
          double mean = 0.0, rho_before = 0.0;
          for (int cv = 0; cv < 2; cv++) {
            for (int cu = 0; cu < 2; cu++) {
              const double w = (cu ? fu : 1.0 - fu) * (cv ? fv : 1.0 - fv);
              if (w == 0.0 || u0 + cu >= n[p] || v0 + cv >= n[q]) continue;
              const long c = (u0 + cu) + static_cast<long>(n[p]) * (v0 + cv);
              mean += w * prev_mean[c];
              rho_before += w * prev_rho[c];
            }
          }
          value = mean * (remaining - path) + 0.5 * (rho + rho_before) * path;
        }
        column[idx] = value;
        cur_mean[here] = remaining > 0.0 ? value / remaining : rho;
        cur_rho[here] = rho;
      }
    }
    double* swap = prev_mean;
    prev_mean = cur_mean;
    cur_mean = swap;
    swap = prev_rho;
    prev_rho = cur_rho;
    cur_rho = swap;
  }
  delete[] buffers;
}

double TCVolume_Object::sun_path(const TCVector& point) const {
  const double half[3] = {length.x / 2, length.y / 2, length.z / 2};
  double t = -1.0;
  for (int a = 0; a < 3; a++) {
    if (sun_direction[a] == 0.0) continue;
    const double face = sun_direction[a] > 0.0 ? half[a] : -half[a];
    const double t_a = (face - point[a]) / sun_direction[a];
    if (t < 0.0 || t_a < t) t = t_a;
  }
  return t > 0.0 ? t : 0.0;
}

long TCVolume_Object::lattice_index(int i, int j, int k) const {
  return i + static_cast<long>(n_x) * (j + static_cast<long>(n_y) * k);
}

// ---- The march ----

int TCVolume_Object::allocate_march(March_arrays& arrays, int n_bands) {
  arrays.n_bands = n_bands;
  arrays.integrand = new (std::nothrow) double*[n_bands > 0 ? n_bands : 1]();
  arrays.density = new (std::nothrow) double[MAX_INTEGRAND];
  arrays.tau = new (std::nothrow) double[MAX_INTEGRAND];
  arrays.sun_column = new (std::nothrow) double[MAX_INTEGRAND];
  arrays.coefficients = new (std::nothrow) double[6 * (n_bands > 0 ? n_bands : 1)];
  if (!arrays.integrand || !arrays.density || !arrays.tau || !arrays.sun_column ||
      !arrays.coefficients)
    return 0;
  for (int k = 0; k < n_bands; k++) {
    arrays.integrand[k] = new (std::nothrow) double[MAX_INTEGRAND];
    if (arrays.integrand[k] == nullptr) return 0;
  }
  return 1;
}

void TCVolume_Object::free_march(March_arrays& arrays) {
  if (arrays.integrand != nullptr) {
    for (int k = 0; k < arrays.n_bands; k++) delete[] arrays.integrand[k];
  }
  delete[] arrays.integrand;
  delete[] arrays.density;
  delete[] arrays.tau;
  delete[] arrays.sun_column;
  delete[] arrays.coefficients;
  arrays.n_bands = 0;
  arrays.integrand = nullptr;
  arrays.density = nullptr;
  arrays.tau = nullptr;
  arrays.sun_column = nullptr;
  arrays.coefficients = nullptr;
}

int TCVolume_Object::integrate_ray(const TCRay& world_ray, TCSpectrum& out,
                                   const double* background, double far_limit, int opacity_flag,
                                   TCMatte_sample* matte, int double_step, double* transmission,
                                   double* entry, double* exit) {
  const int n_bands = out.n;
  for (int k = 0; k < n_bands; k++) {
    out.radiance_in_band[k] = background != nullptr ? background[k] : 0.0;
    if (transmission != nullptr) transmission[k] = 1.0;
  }
  TCRay ray;
  ray_to_object(world_ray, ray);
  TCVector hit;
  double t_in = 0.0, t_out = 0.0;
  if (far_intersect(ray, hit, t_out) <= 0) return 0;
  if (box_intersect(ray, hit, t_in) <= 0) return 0;
  if (t_out > far_limit) t_out = far_limit;
  if (entry != nullptr) *entry = t_in;
  if (exit != nullptr) *exit = t_out;
  const double length_along = t_out - t_in;
  if (!(length_along > 0.0)) return 0;

  // Claim the kept arrays, or make a set of our own for a nested call.
  March_arrays own;
  own.n_bands = 0;
  own.integrand = nullptr;
  own.density = own.tau = own.sun_column = own.coefficients = nullptr;
  March_arrays* arrays = &own;
  int claimed = 0;
  if (!shared_in_use_ && (shared_.integrand == nullptr || shared_.n_bands >= n_bands)) {
    if (shared_.integrand == nullptr && !allocate_march(shared_, n_bands))
      allocation_failed("unable to allocate integrand value ");
    arrays = &shared_;
    shared_in_use_ = 1;
    claimed = 1;
  } else if (!allocate_march(own, n_bands)) {
    allocation_failed("unable to allocate integrand_value ");
  }

  const TCVector d = ray.direction();
  double step = march_step(d);
  if (double_step) step *= 2.0;
  if (!(step > 0.0)) step = length_along;

  double scale = integration_scale;
  const double small = small_scale_factor();
  if (small > 0.0 && small < scale) scale = small;
  // A scale at or below a hundredth is taken as a hundredth.
  if (!(scale > 0.01)) scale = 0.01;
  int nsub = static_cast<int>(std::floor(1.0 / scale + 0.1)) - 1;
  if (nsub < 0) nsub = 0;

  double cos_angle = d.dot(sun_direction);
  if (cos_angle > 1.0) cos_angle = 1.0;
  if (cos_angle < -1.0) cos_angle = -1.0;
  const double angle = std::acos(cos_angle);
  double* e = arrays->coefficients;
  double* s = e + n_bands;
  double* x = s + n_bands;
  double* P = x + n_bands;
  double* sum = P + n_bands;
  double* g_prev = sum + n_bands;
  for (int k = 0; k < n_bands; k++) {
    const int m = object_band(out.band_id[k]);
    if (m < 0) {
      e[k] = s[k] = x[k] = P[k] = 0.0;
    } else {
      e[k] = opacity_flag ? absorption_band[m] : absorption_band[m] + scattering_band[m];
      s[k] = scattering_band[m];
      x[k] = extinction_band[m];
      P[k] = phase_lookup(angle, m) * phase_scale();
    }
    sum[k] = 0.0;
  }

  const long n = static_cast<long>(std::floor(length_along / step)) + 2;
  if (n > MAX_INTEGRAND) {
    std::cout << "MAX_INTEGRAND not large enough "
              << "\n";
    std::exit(1);
  }
  const double ds = length_along / (n - 1);
  const double first_e = n_bands > 0 ? e[0] : 0.0;
  long n_used = 0;
  double tau = 0.0, rho_prev = 0.0;
  int seen_density = 0;
  double begins = t_in;
  for (long i = 0; i < n; i++) {
    const double t = t_in + i * ds;
    const TCVector point(ray[0] + t * d.x, ray[1] + t * d.y, ray[2] + t * d.z);
    double rho = 0.0, column = 0.0;
    density_point(point, rho, column);
    if (i > 0) tau += (rho + rho_prev) * ds * 0.5;
    // Where the density begins: the sample before the first that holds any.
    if (rho > 0.0 && !seen_density) {
      seen_density = 1;
      begins = i > 0 ? t - ds : t;
    }
    arrays->density[i] = rho;
    arrays->tau[i] = tau;
    arrays->sun_column[i] = column;
    for (int k = 0; k < n_bands; k++) {
      double value = 0.0;
      if (rho > 0.0 && s[k] > 0.0) {
        const double M = multiple_scattering_factor((tau + column) * s[k], P[k]);
        value = M * ds * rho * std::exp(-e[k] * tau - x[k] * column);
      }
      arrays->integrand[k][i] = value;
    }
    rho_prev = rho;
    n_used = i + 1;
    if (first_e * tau > cutoff) break;
  }

  double correction = 0.0;
  if (nsub == 0) {
    for (int k = 0; k < n_bands; k++) {
      double total = 0.0;
      for (long i = 0; i + 1 < n_used; i++)
        total += 0.5 * (arrays->integrand[k][i] + arrays->integrand[k][i + 1]);
      sum[k] = total;
    }
  } else {
    double band0 = 0.0;
    for (long i = 0; i < n_used && n_bands > 0; i++) band0 += arrays->integrand[0][i];
    const double threshold = subdivide_threshold * band0;
    const double h = ds / (nsub + 1);
    for (long i = 0; i + 1 < n_used; i++) {
      const double mean0 =
          n_bands > 0 ? 0.5 * (arrays->integrand[0][i] + arrays->integrand[0][i + 1]) : 0.0;
      if (mean0 <= threshold) {
        for (int k = 0; k < n_bands; k++)
          sum[k] += 0.5 * (arrays->integrand[k][i] + arrays->integrand[k][i + 1]) *
                    std::exp(-e[k] * correction);
        continue;
      }
      // Finer samples across the interval; the change they make to the
      // view's optical depth is carried into the intervals after it.
      double tau_fine = arrays->tau[i] + correction;
      double rho_last = arrays->density[i];
      for (int k = 0; k < n_bands; k++)
        g_prev[k] = arrays->integrand[k][i] / ds * std::exp(-e[k] * correction);
      for (int j = 1; j <= nsub + 1; j++) {
        double rho = 0.0, column = 0.0;
        if (j == nsub + 1) {
          rho = arrays->density[i + 1];
          column = arrays->sun_column[i + 1];
        } else {
          const double t = t_in + i * ds + j * h;
          const TCVector point(ray[0] + t * d.x, ray[1] + t * d.y, ray[2] + t * d.z);
          density_point(point, rho, column);
        }
        tau_fine += (rho + rho_last) * h * 0.5;
        for (int k = 0; k < n_bands; k++) {
          double value = 0.0;
          if (rho > 0.0 && s[k] > 0.0) {
            const double M = multiple_scattering_factor((tau_fine + column) * s[k], P[k]);
            value = M * rho * std::exp(-e[k] * tau_fine - x[k] * column);
          }
          sum[k] += 0.5 * (g_prev[k] + value) * h;
          g_prev[k] = value;
        }
        rho_last = rho;
      }
      correction = tau_fine - arrays->tau[i + 1];
    }
  }
  const double tau_total = arrays->tau[n_used - 1] + correction;

  const int matte_bands_differ = matte != nullptr && matte->on && matte->n_bands != num_bands;
  for (int k = 0; k < n_bands; k++) {
    const int m = object_band(out.band_id[k]);
    const double T = std::exp(-e[k] * tau_total);
    const double scattered = m >= 0 ? sun_radiance.radiance_in_band[m] * s[k] * P[k] * sum[k] : 0.0;
    out.radiance_in_band[k] = scattered + T * (background != nullptr ? background[k] : 0.0);
    if (transmission != nullptr) transmission[k] = T;
    if (matte != nullptr && matte->on && !matte_bands_differ && k < matte->n_bands) {
      int first = -1, planes = 0;
      if (matte->wanted[0] && TCMatte_fields::plane_layout(0, matte->n_bands, first, planes))
        matte->values[first + k] = static_cast<float>(scattered);
      if (matte->wanted[1] && TCMatte_fields::plane_layout(1, matte->n_bands, first, planes))
        matte->values[first + k] = static_cast<float>(1.0 - T);
      if (matte->wanted[2] && TCMatte_fields::plane_layout(2, matte->n_bands, first, planes))
        matte->values[first + k] = static_cast<float>(T);
    }
  }
  if (matte != nullptr && matte->on) {
    if (matte_bands_differ) {
      std::cout << "Number of bands in matte field != number of object bands\n";
      std::cout << "Setting ALL matte fields for this object to zero\n";
      matte->clear();
    } else {
      matte->set_distance(begins * begins);
    }
  }

  if (entry != nullptr) *entry = begins;
  if (claimed) {
    shared_in_use_ = 0;
  } else {
    free_march(own);
  }
  return 1;
}

double TCVolume_Object::smallest_spacing() const {
  double smallest = 0.0;
  for (int a = 0; a < 3; a++) {
    if (spacing[a] > 0.0 && (smallest == 0.0 || spacing[a] < smallest)) smallest = spacing[a];
  }
  return smallest;
}

// About one cell along the ray's main axis: the spacings weighted by
// (d_i / L_i)^2, not below the smallest spacing.
double TCVolume_Object::march_step(const TCVector& d) const {
  double w[3], w_sum = 0.0;
  for (int a = 0; a < 3; a++) {
    w[a] = spacing[a] > 0.0 ? (d[a] / spacing[a]) * (d[a] / spacing[a]) : 0.0;
    w_sum += w[a];
  }
  double step = 0.0;
  for (int a = 0; a < 3; a++) step += (w_sum > 0.0 ? w[a] / w_sum : 0.0) * spacing[a];
  const double smallest = smallest_spacing();
  return step < smallest ? smallest : step;
}

double TCVolume_Object::density_column(const TCRay& object_ray, double t0, double t1) {
  if (!(t1 > t0)) return 0.0;
  const TCVector d = object_ray.direction();
  double step = march_step(d);
  if (!(step > 0.0)) step = t1 - t0;
  long n = static_cast<long>(std::floor((t1 - t0) / step)) + 2;
  if (n > MAX_INTEGRAND) n = MAX_INTEGRAND;
  const double ds = (t1 - t0) / (n - 1);
  double column = 0.0, rho_prev = 0.0;
  for (long i = 0; i < n; i++) {
    const double t = t0 + i * ds;
    const TCVector point(object_ray[0] + t * d.x, object_ray[1] + t * d.y, object_ray[2] + t * d.z);
    double rho = 0.0, sun_column = 0.0;
    density_point(point, rho, sun_column);
    if (i > 0) column += (rho + rho_prev) * ds * 0.5;
    rho_prev = rho;
  }
  return column;
}

int TCVolume_Object::point_inside(const TCVector&) {
  return 0;
}

void TCVolume_Object::radiance(const TCRay& ray, TCSpectrum& out) {
  double* behind = new (std::nothrow) double[out.n > 0 ? out.n : 1];
  if (behind == nullptr)
    allocation_failed("unable to allocate temp_radiance in TCVolume_Object::radiance");
  for (int k = 0; k < out.n; k++) behind[k] = out.radiance_in_band[k];
  integrate_ray(ray, out, behind, no_far_limit, 0, nullptr, 0);
  delete[] behind;
}

void TCVolume_Object::radiance_from(int, const TCRay& world_ray, TCSpectrum& out) {
  TCRay ray;
  ray_to_object(world_ray, ray);
  TCVector hit;
  double t_in = 0.0, t_out = 0.0;
  if (far_intersect(ray, hit, t_out) <= 0 || box_intersect(ray, hit, t_in) <= 0) return;
  const double column = density_column(ray, t_in, t_out);
  for (int k = 0; k < out.n; k++) {
    const int m = object_band(out.band_id[k]);
    if (m >= 0) out.radiance_in_band[k] *= std::exp(-extinction_band[m] * column);
  }
}

// ---- Imaging ----

void TCVolume_Object::image_contour(TCView& view, object_contour& contour) {
  image_volume(view, contour, 1);
}

void TCVolume_Object::image_reflected(TCView& view, object_contour& contour) {
  image_volume(view, contour, 1);
}

void TCVolume_Object::image_surface_line(TCView& view, object_contour& contour) {
  image_volume(view, contour, 1);
}

int TCVolume_Object::box_window(const TCView& view, int& row0, int& row1, int& col0,
                                int& col1) const {
  row0 = 0;
  row1 = view.n_rows - 1;
  col0 = 0;
  col1 = view.n_cols - 1;
  if (view.n_rows < 1 || view.n_cols < 1) return 0;
  if (!(view.step_elevation != 0.0) || !(view.step_azimuth != 0.0)) return 0;
  double r_min = 0.0, r_max = 0.0, c_min = 0.0, c_max = 0.0;
  for (int c = 0; c < 8; c++) {
    const TCVector corner((c & 1 ? 0.5 : -0.5) * length.x, (c & 2 ? 0.5 : -0.5) * length.y,
                          (c & 4 ? 0.5 : -0.5) * length.z);
    TCVector world;
    point_to_world(corner, world);
    const TCVector v = view.world_to_view.times(world - view.position);
    // A corner level with or behind the view: the box may reach any pixel.
    if (!(v.z > 1e-6)) return 1;
    const double e = -v.x / v.z;
    const double a = -v.y / v.z;
    const double r = (e - view.first_elevation) / view.step_elevation;
    const double col = (a - view.first_azimuth) / view.step_azimuth;
    if (c == 0 || r < r_min) r_min = r;
    if (c == 0 || r > r_max) r_max = r;
    if (c == 0 || col < c_min) c_min = col;
    if (c == 0 || col > c_max) c_max = col;
  }
  if (r_max < 0.0 || c_max < 0.0 || r_min > view.n_rows || c_min > view.n_cols) return 0;
  row0 = r_min < 0.0 ? 0 : static_cast<int>(std::floor(r_min));
  col0 = c_min < 0.0 ? 0 : static_cast<int>(std::floor(c_min));
  row1 = r_max >= view.n_rows - 1 ? view.n_rows - 1 : static_cast<int>(std::floor(r_max));
  col1 = c_max >= view.n_cols - 1 ? view.n_cols - 1 : static_cast<int>(std::floor(c_max));
  if (row0 > view.n_rows - 1) row0 = view.n_rows - 1;
  if (col0 > view.n_cols - 1) col0 = view.n_cols - 1;
  return row0 <= row1 && col0 <= col1;
}

// The volume paints one layer: per pixel its scattered light (already
// weighted by the share of the pixel's rays) and an opacity of one less the
// mean transmission, so that the contour's merge lays it over whatever lies
// behind in any order the objects come, and the air in front of it is
// counted once.
void TCVolume_Object::image_volume(TCView& view, object_contour& contour, int total_radiance_flag) {
  if (total_radiance_flag != 1 && total_radiance_flag != 2) {
    std::cout << "total_radiance_flag incorrectly set in volume_object radiance"
              << "\n";
    std::exit(1);
  }
  TCSpectrum* spectrum = contour.spectrum;
  if (spectrum == nullptr || spectrum->n < 1) return;
  const int n_bands = spectrum->n;
  double* temp_radiance = new (std::nothrow) double[3 * n_bands];
  if (temp_radiance == nullptr)
    allocation_failed("unable to allocate temp_radiance in TCVolume_Object::radiance");
  double* external_radiance = new (std::nothrow) double[2 * n_bands];
  if (external_radiance == nullptr)
    allocation_failed("unable to allocate external_radiance in TCVolume_Object::radiance");
  double* sample = temp_radiance + n_bands;
  double* transmission = temp_radiance + 2 * n_bands;
  double* opacity = external_radiance;
  double* scattered = external_radiance + n_bands;

  int row0 = 0, row1 = -1, col0 = 0, col1 = -1;
  if (!box_window(view, row0, row1, col0, col1)) {
    delete[] temp_radiance;
    delete[] external_radiance;
    return;
  }

  // Rays per pixel side: enough that the lattice's cells are all seen when
  // a pixel spans several of them, at most 4 by 4.
  TCVector centre_in_view = position - view.position;
  const double centre_distance = std::sqrt(centre_in_view.dot(centre_in_view));
  double pixel_size = std::fabs(view.step_elevation);
  if (std::fabs(view.step_azimuth) > pixel_size) pixel_size = std::fabs(view.step_azimuth);
  const double smallest = smallest_spacing();
  int rays_side = 1;
  if (smallest > 0.0) {
    const double cells = pixel_size * centre_distance / smallest;
    rays_side = cells > 4.0 ? 4 : (cells > 1.0 ? static_cast<int>(std::ceil(cells)) : 1);
  }
  const int double_step = contour.level != 0;

  TCMatte_sample matte;
  matte.attach(object_id, contour.matte_target);
  TCMatte_sample ray_matte;
  ray_matte.attach(object_id, contour.matte_target);
  const int matte_bands_differ = matte.on && matte.n_bands != num_bands;
  if (matte_bands_differ) {
    std::cout << "Number of bands in matte field != number of object bands\n";
    std::cout << "Setting ALL matte fields for this object to zero\n";
  }
  // The single rays below leave the mattes to this routine.
  TCSpectrum out;
  out.assign(*spectrum);

  // What can end a march: solid things, not the air, not gas or other
  // volumes (whose boxes are mostly empty), not this volume.
  int bounding[TCScene_tracer::max_objects];
  for (int i = 0; i < TCScene_tracer::max_objects; i++) {
    const int kind = scene != nullptr && i < scene->object_count() ? scene->object_kind(i) : -1;
    bounding[i] = i != object_id && kind >= 0 && !is_medium_kind(kind);
  }

  long rays = 0, pixels = 0;
  for (int row = row0; row <= row1; row++) {
    if (total_radiance_flag == 1 && contour.level == 0 && row % 10 == 0)
      std::cout << " on row " << row << " out of " << row1 << "\n";
    for (int col = col0; col <= col1; col++) {
      for (int k = 0; k < n_bands; k++) opacity[k] = scattered[k] = 0.0;
      double nearest = -1.0, farthest = -1.0;
      int hits = 0;
      if (matte.on) matte.clear();
      // The pixel's centre ray: where the box lies along it, whether
      // anything already covers it in front, and the first other object
      // inside the box, which ends every march of this pixel.
      TCRay centre;
      view.pixel_ray(row, col, centre);
      double far_limit = no_far_limit;
      {
        TCRay local;
        ray_to_object(centre, local);
        TCVector hit;
        double t_in = 0.0, t_out = 0.0;
        if (far_intersect(local, hit, t_out) > 0 && box_intersect(local, hit, t_in) > 0) {
          if (!contour.pixel_wanted(row, col, t_in * t_in, t_out * t_out)) continue;
          if (scene != nullptr) {
            TCVector other;
            const int found = scene->nearest_active(bounding, centre, other);
            // An object holding the camera (the air) bounds nothing.
            if (found > 0) {
              const TCVector gap = other - centre.origin();
              far_limit = std::sqrt(gap.dot(gap));
            }
          }
        } else if (rays_side == 1) {
          continue;
        }
      }
      for (int sr = 0; sr < rays_side; sr++) {
        for (int sc = 0; sc < rays_side; sc++) {
          TCRay ray;
          view.fractional_ray(row, col, (sr + 0.5) / rays_side, (sc + 0.5) / rays_side, ray);
          double t_in = 0.0, t_out = 0.0;
          rays++;
          if (ray_matte.on) ray_matte.clear();
          if (!integrate_ray(ray, out, nullptr, far_limit, 0,
                             ray_matte.on && !matte_bands_differ ? &ray_matte : nullptr,
                             double_step, transmission, &t_in, &t_out))
            continue;
          hits++;
          if (nearest < 0.0 || t_in < nearest) nearest = t_in;
          if (t_out > farthest) farthest = t_out;
          for (int k = 0; k < n_bands; k++) {
            scattered[k] += out.radiance_in_band[k];
            opacity[k] += 1.0 - transmission[k];
          }
          if (matte.on && !matte_bands_differ) matte.add(ray_matte);
        }
      }
      if (hits == 0) continue;
      pixels++;
      // Rays that met only the box's empty cells leave no trace.
      int any = 0;
      for (int k = 0; k < n_bands && !any; k++) any = scattered[k] > 0.0 || opacity[k] > 0.0;
      if (!any) continue;
      const double share = 1.0 / (rays_side * rays_side);
      double coverage = 0.0;
      for (int k = 0; k < n_bands; k++) {
        sample[k] = scattered[k] * share;
        coverage += opacity[k] * share;
      }
      coverage /= n_bands;
      if (matte.on) {
        if (matte_bands_differ) {
          matte.clear();
        } else {
          matte.normalise(hits);
          matte.set_distance(nearest * nearest);
        }
      }
      contour.add_sample(row, col, sample, nearest * nearest, nearest * nearest,
                         farthest * farthest, coverage, object_id, matte.on ? &matte : nullptr);
    }
  }
  if (verbose && pixels > 0)
    std::cout << "average rays per pixel " << static_cast<double>(rays) / pixels << "\n";
  delete[] temp_radiance;
  delete[] external_radiance;
}

void TCVolume_Object::prepare_frame() {
  for (int m = 0; m < sun_radiance.n; m++) sun_radiance.radiance_in_band[m] = 0.0;
  const TCStar* star = scene != nullptr ? scene->star() : nullptr;
  TCVector toward(0.0, 0.0, 1.0);
  if (star != nullptr && star->present) {
    direction_to_object(star->direction, toward);
    if (num_bands > 0) scene->sun_irradiance_at(position, sun_radiance, object_id);
  }
  sun_direction = toward;
  if (density_changed || !sun_known_ || field_sun_.x != sun_direction.x ||
      field_sun_.y != sun_direction.y || field_sun_.z != sun_direction.z)
    make_extinction_field();
}
