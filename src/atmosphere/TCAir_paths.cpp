// Path integrals of TCAir: closed forms over a flat base, the Gaussian form
// of the optical depth and a Romberg integral of the path radiance over a
// round one. Rays are in the air's frame with unit directions.

#include <cmath>

#include "TCAir.h"
#include "TCConstants.h"

namespace {

// Offsets on the sine of the sun's elevation that keep the closed forms away
// from a ray parallel to the sun (mu = mu_s); the molecular one is smaller.
const double aerosol_sun_offset = 0.001;
const double molecular_sun_offset = 0.0001;
// The part beyond a finite upward ray takes this on both sines.
const double beyond_offset = 0.01;
// Ends below this count as finite for the part beyond them, metres.
const double finite_end_limit = 94999999.05;

// Top of the round air, in scale heights of the thicker layer, and the step
// into it from above, metres.
const double shell_scale_heights = 6.0;
const double shell_entry_offset = 0.01;
// Below this |x| the optical depth uses the Gaussian table, above it the
// two-term asymptotic expansion of the tail.
const double gaussian_limit = 3.0;
// Leading term of the shadow cylinder's quadratic below which the ray is
// taken as running along the sun.
const double shadow_parallel_limit = 1e-5;
// Richardson levels at most, and the relative change of every band that
// ends them.
const int max_levels = 12;
const double romberg_tolerance = 0.025;
// Bound of a stretch of the ray that has no end on that side, metres.
const double unbounded = 1e300;

// Real roots r1 <= r2 of a s^2 + b s + c = 0 (a not 0), in the form that
// loses no digits; 0 when there are none or the two coincide.
int solve_quadratic(double a, double b, double c, double& r1, double& r2) {
  const double disc = b * b - 4.0 * a * c;
  if (!(disc > 0.0)) return 0;
  const double q = -0.5 * (b + std::copysign(std::sqrt(disc), b));
  if (q == 0.0) return 0;
  r1 = q / a;
  r2 = c / q;
  if (r1 > r2) {
    const double t = r1;
    r1 = r2;
    r2 = t;
  }
  return 1;
}

// e^(-x^2) (1 / 2x - 1 / 4x^3) with e^(-x^2) given as the exponential of the
// height at that end: the two-term tail of the Gaussian integral beyond x.
double gaussian_tail(double height_term, double x) {
  return height_term * (1.0 / (2.0 * x) - 1.0 / (4.0 * x * x * x));
}

}  // namespace

// ---- Flat base ----

void TCAir::flat_layer(double mu, double oz, double s1, double s2, double mu_s, double h,
                       const double* tau, double* out) const {
  const double r = 1 - mu / mu_s;
  const double u = std::exp(-(mu * s1 + oz) / h);
  double m = 0.0;
  if (s2 >= tc_nothing) {
    m = mu > 0.0 ? 1 / mu : tc_nothing;
  } else {
    const double y = (s2 - s1) * mu / h;
    if (std::fabs(y) <= 0.001) {
      const double l = (s2 - s1) / h;
      m = l - 0.5 * mu * l * l;
    } else {
      m = (1 - std::exp(-y)) / mu;
    }
  }
  for (int b = 0; b < number_of_bands; b++) {
    const double t = tau[b];
    const double e = sun_irradiance[b];
    const double x = t * u * m * r;
    double value = 0.0;
    if (std::fabs(x) < 0.001) {
      // A layer of no depth has the limit of the same form.
      value = t > 0.0 ? (h / t) * e * std::exp(-t * u / mu_s) * std::fabs(t * u * m)
                      : h * e * std::fabs(u * m);
    } else {
      value = (h / t) * e * std::exp(-t * u / mu_s) * std::fabs((1 - std::exp(-x)) / r);
    }
    out[b] += value;
  }
}

void TCAir::flat_path_radiance(const TCRay& ray, double* molecular, double* aerosol, double s_start,
                               double s_end) {
  const double mu_s = sun_direction.z;
  const double mu = ray[5];
  const double oz = ray[2];
  if (!(mu_s > 0.0)) return;
  if (oz < 0.0 && mu <= 0.0) return;
  if (oz < 0.0) {
    const double s = -oz / mu;
    if (s >= s_end) return;
    if (s > s_start) s_start = s;
  }

  if (air_type > 1) {
    if (s_end < finite_end_limit && mu > 0.0) {
      // The aerosol beyond the end, seen through the path, carried in the
      // molecular output.
      double* transmission = scratch(18);
      flat_path_transmission(ray, transmission, s_start, s_end);
      flat_layer(mu + beyond_offset, oz, s_end, tc_nothing, mu_s + beyond_offset, aerosol_height_m,
                 tau_aerosol, molecular);
      for (int b = 0; b < number_of_bands; b++) molecular[b] *= transmission[b];
    }
    flat_layer(mu, oz, s_start, s_end, mu_s + aerosol_sun_offset, aerosol_height_m, tau_aerosol,
               aerosol);
  }
  flat_layer(mu, oz, s_start, s_end, mu_s + molecular_sun_offset, molecular_height_m, tau_molecular,
             molecular);
}

void TCAir::flat_path_transmission(const TCRay& ray, double* out, double s_start, double s_end) {
  for (int b = 0; b < number_of_bands; b++) out[b] = 1.0;
  const double mu = ray[5];
  const double oz = ray[2];
  if (oz < 0.0) {
    if (mu <= 0.0) return;
    const double s = -oz / mu;
    if (s >= s_end) return;
    if (s > s_start) s_start = s;
  }
  if (!(s_start < s_end)) return;

  // Column u * m of each layer: the optical depth is tau times it.
  double column[2] = {0.0, 0.0};
  const double heights[2] = {molecular_height_m, aerosol_height_m};
  for (int layer = 0; layer < layers(); layer++) {
    const double h = heights[layer];
    const double u = std::exp(-(mu * s_start + oz) / h);
    double m = 0.0;
    if (s_end >= tc_nothing) {
      m = mu > 0.0 ? 1 / mu : tc_nothing;
    } else {
      const double y = (s_end - s_start) * mu / h;
      if (std::fabs(y) <= 0.001) {
        const double l = (s_end - s_start) / h;
        m = l - 0.5 * mu * l * l;
      } else {
        m = (1 - std::exp(-y)) / mu;
      }
    }
    column[layer] = u * m;
  }
  for (int b = 0; b < number_of_bands; b++) {
    double depth = tau_molecular[b] * column[0];
    if (air_type > 1) depth += tau_aerosol[b] * column[1];
    out[b] = std::exp(-depth);
  }
}

// ---- Round base ----

int TCAir::sphere_roots(const TCVector& o, const TCVector& d, double& near, double& far) const {
  const double r = surface_radius;
  const double half_b = d.dot(o) + r * d.z;
  const double c = o.dot(o) + 2.0 * r * o.z;
  return solve_quadratic(d.dot(d), 2.0 * half_b, c, near, far);
}

// Along the ray the height is z(s) = z0 + a s + b s^2. With q = sqrt(b H),
// p = a / q and x = q s / H + p / 2, exp(-z / H) = exp(p^2 / 4 - z0 / H - x^2),
// so the integral is a difference of Gaussian integrals: from the table
// while |x| < 3, from the tail's expansion beyond. exp(-z0 / H) is folded
// into each term so that no factor overflows on its own.
double TCAir::round_column(const TCVector& o, const TCVector& d, double s1, double s2,
                           double h) const {
  const double r = surface_radius;
  const double z0 = o.z + (o.x * o.x + o.y * o.y) / 2 / r;
  const double a = (o.x * d.x + o.y * d.y) / r + d.z;
  const double b = (1 - d.z * d.z) / (2 * r);
  const int infinite = s2 >= tc_nothing;

  if (!(b > 0.0)) {
    // A vertical ray: a plain exponential.
    if (a == 0.0) return infinite ? tc_nothing : std::exp(-z0 / h) * (s2 - s1) / h;
    const double e1 = std::exp(-(z0 + a * s1) / h);
    double e2 = 0.0;
    if (!infinite) {
      e2 = std::exp(-(z0 + a * s2) / h);
    } else if (a < 0.0) {
      return tc_nothing;
    }
    return (e1 - e2) / a;
  }

  const double q = std::sqrt(b * h);
  const double p = a / q;
  const double log_e0 = p * p / 4 - z0 / h;
  const double root_pi = std::sqrt(tc_pi);
  const double x1 = q * s1 / h + p / 2;
  const int small1 = std::fabs(x1) < gaussian_limit;
  const double tail1 = small1 ? 0.0 : gaussian_tail(std::exp(-(z0 + a * s1 + b * s1 * s1) / h), x1);

  if (infinite) {
    if (small1) return std::exp(log_e0) * (gaussian.value(100.0) - gaussian.value(x1)) / q;
    double value = tail1;
    if (x1 < 0.0) value += std::exp(log_e0) * root_pi;
    return value / q;
  }

  const double x2 = q * s2 / h + p / 2;
  const int small2 = std::fabs(x2) < gaussian_limit;
  if (small1 && small2) return std::exp(log_e0) * (gaussian.value(x2) - gaussian.value(x1)) / q;
  const double tail2 = small2 ? 0.0 : gaussian_tail(std::exp(-(z0 + a * s2 + b * s2 * s2) / h), x2);
  if (!small1 && !small2) {
    double value = tail1 - tail2;
    // The whole Gaussian lies between ends on either side of the lowest point.
    if (x1 < 0.0 && x2 >= 0.0) value += std::exp(log_e0) * root_pi;
    return value / q;
  }
  // One end of each kind: both as integrals from 0, the tail's through the
  // whole half Gaussian.
  const double e0 = std::exp(log_e0);
  const double from_zero1 =
      small1 ? e0 * gaussian.value(x1) : e0 * root_pi / 2 - tail1 - (x1 < 0.0 ? e0 * root_pi : 0.0);
  const double from_zero2 =
      small2 ? e0 * gaussian.value(x2) : e0 * root_pi / 2 - tail2 - (x2 < 0.0 ? e0 * root_pi : 0.0);
  return (from_zero2 - from_zero1) / q;
}

void TCAir::round_path_transmission(const TCRay& ray, double* out, double s_start, double s_end) {
  for (int b = 0; b < number_of_bands; b++) out[b] = 1.0;
  const TCVector o = ray.origin();
  const TCVector d = ray.direction();
  double near = 0.0, far = 0.0;
  if (sphere_roots(o, d, near, far)) {
    if (near < 0.0 && far > 0.0) {
      // From inside the solid base the air starts where the ray leaves it.
      if (far > s_start) s_start = far;
    } else if (near >= 0.0 && near < s_end) {
      s_end = near;
    }
  }
  if (!(s_start < s_end)) return;
  const double column_m = round_column(o, d, s_start, s_end, molecular_height_m);
  const double column_a = air_type > 1 ? round_column(o, d, s_start, s_end, aerosol_height_m) : 0.0;
  for (int b = 0; b < number_of_bands; b++) {
    double depth = tau_molecular[b] * column_m;
    if (air_type > 1) depth += tau_aerosol[b] * column_a;
    out[b] = std::exp(-depth);
  }
}

void TCAir::integrand(const TCRay& ray, double s_start, double s, double* out) {
  const TCVector o = ray.origin();
  const TCVector d = ray.direction();
  const TCVector point = o + d * s;
  const double z = height_of(point);
  const double ray_m = s > s_start ? round_column(o, d, s_start, s, molecular_height_m) : 0.0;
  const double sun_m = round_column(point, sun_direction, 0.0, tc_nothing, molecular_height_m);
  double ray_a = 0.0, sun_a = 0.0, density_a = 0.0;
  if (air_type > 1) {
    ray_a = s > s_start ? round_column(o, d, s_start, s, aerosol_height_m) : 0.0;
    sun_a = round_column(point, sun_direction, 0.0, tc_nothing, aerosol_height_m);
    density_a = std::exp(-z / aerosol_height_m);
  }
  const double density_m = std::exp(-z / molecular_height_m);
  for (int b = 0; b < number_of_bands; b++) {
    double depth = tau_molecular[b] * (ray_m + sun_m);
    if (air_type > 1) depth += tau_aerosol[b] * (ray_a + sun_a);
    const double t = std::exp(-depth);
    out[b] = density_m * t;
    if (air_type > 1) out[number_of_bands + b] = density_a * t;
  }
}

// Trapezoids halved level by level, each pair of levels extrapolated as
// (4 T_new - T_old) / 3, until every band of both layers moves by less than
// the tolerance from one level to the next.
void TCAir::integrate_segment(const TCRay& ray, double s_start, double a, double b, double* total) {
  const int count = layers() * number_of_bands;
  double* t_old = scratch(4);
  double* t_new = scratch(6);
  double* r_old = scratch(8);
  double* r_new = scratch(10);
  double* f = scratch(12);
  double* sum = scratch(14);

  double h = b - a;
  integrand(ray, s_start, a, f);
  for (int i = 0; i < count; i++) t_old[i] = f[i];
  integrand(ray, s_start, b, f);
  for (int i = 0; i < count; i++) t_old[i] = 0.5 * h * (t_old[i] + f[i]);

  long intervals = 1;
  for (int level = 1; level <= max_levels; level++) {
    for (int i = 0; i < count; i++) sum[i] = 0.0;
    for (long k = 0; k < intervals; k++) {
      integrand(ray, s_start, a + (k + 0.5) * h, f);
      for (int i = 0; i < count; i++) sum[i] += f[i];
    }
    for (int i = 0; i < count; i++) {
      t_new[i] = 0.5 * t_old[i] + 0.5 * h * sum[i];
      r_new[i] = (4 * t_new[i] - t_old[i]) / 3;
    }
    // Every band of every layer must have settled: a weak band can still be
    // far off when the strongest one has.
    int done = level >= 2;
    for (int i = 0; done && i < count; i++) {
      const double change = std::fabs(r_new[i] - r_old[i]);
      if (!(change == 0.0 || change < romberg_tolerance * std::fabs(r_new[i]))) done = 0;
    }
    for (int i = 0; i < count; i++) {
      t_old[i] = t_new[i];
      r_old[i] = r_new[i];
    }
    h *= 0.5;
    intervals *= 2;
    if (done) break;
  }
  for (int i = 0; i < count; i++) total[i] += r_old[i];
}

void TCAir::round_path_radiance(const TCRay& ray, double* molecular, double* aerosol,
                                double s_start, double s_end) {
  if (!sun_present) return;
  const TCVector o = ray.origin();
  const TCVector d = ray.direction();
  const double r = surface_radius;
  const double z0 = o.z + (o.x * o.x + o.y * o.y) / 2 / r;
  const double a = (o.x * d.x + o.y * d.y) / r + d.z;
  const double b = (1 - d.z * d.z) / (2 * r);
  double h_max = molecular_height_m;
  if (air_type > 1 && aerosol_height_m > h_max) h_max = aerosol_height_m;
  const double top = shell_scale_heights * h_max;

  // The stretch of the ray below the top, z(s) < top: (low, high).
  double low = -unbounded, high = unbounded;
  if (b > 0.0) {
    if (!solve_quadratic(b, a, z0 - top, low, high)) return;
  } else if (a != 0.0) {
    const double crossing = (top - z0) / a;
    if (a < 0.0) {
      low = crossing;
    } else {
      high = crossing;
    }
  } else if (z0 >= top) {
    return;
  }
  const double z_start = z0 + a * s_start + b * s_start * s_start;
  if (z_start >= top) {
    if (!(s_start < low)) return;
    s_start = low + shell_entry_offset;
  }
  if (high < s_end) s_end = high;

  double near = 0.0, far = 0.0;
  if (sphere_roots(o, d, near, far)) {
    if (near < 0.0 && far > 0.0) {
      if (far > s_start) s_start = far;
    } else if (near >= 0.0 && near < s_end) {
      s_end = near;
    }
  }
  if (!(s_start < s_end)) return;

  // The earth's shadow: inside the cylinder of radius R about the axis
  // through the centre along the sun, on the side away from it.
  const TCVector& u = sun_direction;
  const TCVector w(o.x, o.y, o.z + r);
  const double du = d.dot(u);
  const double wu = w.dot(u);
  const TCVector dp = d - u * du;
  const TCVector wp = w - u * wu;
  const double qa = dp.dot(dp);
  const double qb = wp.dot(dp);
  const double qc = wp.dot(wp) - r * r;
  int shadow = 0;
  double shadow_low = -unbounded, shadow_high = unbounded;
  if (qa < shadow_parallel_limit) {
    shadow = qc < 0.0;
  } else {
    shadow = solve_quadratic(qa, 2.0 * qb, qc, shadow_low, shadow_high);
  }
  if (shadow) {
    if (du > 0.0) {
      const double s_axis = -wu / du;
      if (s_axis < shadow_high) shadow_high = s_axis;
    } else if (du < 0.0) {
      const double s_axis = -wu / du;
      if (s_axis > shadow_low) shadow_low = s_axis;
    } else if (wu >= 0.0) {
      shadow = 0;
    }
    if (!(shadow_low < shadow_high)) shadow = 0;
  }

  const int count = layers() * number_of_bands;
  double* total = scratch(16);
  for (int i = 0; i < count; i++) total[i] = 0.0;
  if (!shadow || shadow_high <= s_start || shadow_low >= s_end) {
    integrate_segment(ray, s_start, s_start, s_end, total);
  } else {
    if (shadow_low > s_start) integrate_segment(ray, s_start, s_start, shadow_low, total);
    if (shadow_high < s_end) integrate_segment(ray, s_start, shadow_high, s_end, total);
  }
  for (int i = 0; i < number_of_bands; i++) {
    molecular[i] = total[i] * sun_irradiance[i];
    if (air_type > 1) aerosol[i] = total[number_of_bands + i] * sun_irradiance[i];
  }
}
