// The light the sea returns: the Fresnel table, the sky over the water, the
// radiance and reflection tables averaged over the slopes the lattice does
// not resolve, and the sun's glint in closed form.
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include "TCDisturbed_grid.h"
#include "TCOcean.h"
#include "TCScene_tracer.h"
#include "TCSettings.h"
#include "TCView.h"
#include "TCWave_spectrum.h"
#include "object_contour.h"

namespace {

const double pi = 3.1415926535;
const double half_pi = 1.57079632675;
// The matte code with a place in the record and no name: the fixed colour
// of saturated glints goes there.
const int saturation_colour_code = 15;
const double root_two_pi = 2.5066283;

// Axis ends of the light tables.
const double t_low = 0.1, t_high = 0.995;
const double m_above_low = 0.005, m_above_high = 0.995;
const double m_below_low = -0.995, m_below_high = -0.005;

int side_index(int side) {
  return side == -1 ? 1 : 0;
}

// Position on an axis of count nodes: the lower node and the weight of the
// upper, clamped to the ends.
void axis_position(double v, double first, double inverse, int count, int& node, double& weight) {
  const double u = (v - first) * inverse;
  if (!(u > 0.0)) {
    node = 0;
    weight = 0.0;
    return;
  }
  if (u >= count - 1) {
    node = count - 1;
    weight = 0.0;
    return;
  }
  node = static_cast<int>(u);
  weight = u - node;
}

// A table row looked up linearly at v on its axis, clamped at both ends.
double linear_in(const double* row, double v, double first, double inverse, int count) {
  int node = 0;
  double weight = 0.0;
  axis_position(v, first, inverse, count, node, weight);
  return weight > 0.0 ? row[node] * (1.0 - weight) + row[node + 1] * weight : row[node];
}

}  // namespace

double TCOcean::fresnel_reflectance(double angle, double n) {
  const double q = std::sin(pi - angle) / n;
  if (!(q < 1.0)) return 1.0;
  const double b = angle <= half_pi ? std::asin(q) : pi - std::asin(q);
  if (std::fabs(pi - angle) < 0.001 || std::fabs(angle) < 0.001) {
    return (1.0 - n) * (1.0 - n) / ((n + 1.0) * (n + 1.0));
  }
  const double s1 = std::sin(b - angle), s2 = std::sin(b + angle);
  const double t1 = std::tan(b - angle), t2 = std::tan(b + angle);
  const double r = 0.5 * (s1 * s1 / (s2 * s2) + t1 * t1 / (t2 * t2));
  return r > 1.0 ? 1.0 : r;
}

int TCOcean::allocate_light() {
  const int bands = n_bands > 0 ? n_bands : 1;
  fresnel_table = new (std::nothrow) double[static_cast<long>(bands) * fresnel_axis_n]();
  irradiance_above = new (std::nothrow) double[bands]();
  irradiance_saved = new (std::nothrow) double[bands]();
  upwelling = new (std::nothrow) double[bands]();
  work_reflectance = new (std::nothrow) double[bands]();
  work_glitter = new (std::nothrow) double[bands]();
  work_table = new (std::nothrow) double[bands]();
  work_matte = new (std::nothrow) double[bands]();
  work_reflected = new (std::nothrow) double[bands]();
  work_refracted = new (std::nothrow) double[bands]();
  work_texture_out = new (std::nothrow) double[bands]();
  glitter_done = new (std::nothrow) int[bands]();
  if (fresnel_table == nullptr || irradiance_above == nullptr || irradiance_saved == nullptr ||
      upwelling == nullptr || work_reflectance == nullptr || work_glitter == nullptr ||
      work_table == nullptr || work_matte == nullptr || work_reflected == nullptr ||
      work_refracted == nullptr || work_texture_out == nullptr || glitter_done == nullptr)
    return 0;
  for (int side = 0; side < 2; side++) {
    const long cells = table_cells(side) * n_levels;
    radiance_table[side] = new (std::nothrow) float[cells > 0 ? cells : 1]();
    if (radiance_table[side] == nullptr) return 0;
    if (keep_reflection_table) {
      reflection_table[side] = new (std::nothrow) float[cells > 0 ? cells : 1]();
      if (reflection_table[side] == nullptr) return 0;
    }
  }
  // The Fresnel table: c above 0 is light leaving the water.
  for (int band = 0; band < n_bands; band++) {
    const double n = index_of_refraction[band];
    for (int i = 0; i < fresnel_axis_n; i++) {
      const double c = fresnel_first + i * fresnel_step;
      fresnel_table[band * fresnel_axis_n + i] =
          fresnel_reflectance(std::acos(c), c > 0.0 ? 1.0 / n : n);
    }
  }
  for (int a = 0; a < 71; a++) {
    const double u = -3.0 + a * 0.1;
    gauss_u[a] = std::exp(-u * u / 2.0);
  }
  for (int b = 0; b < 31; b++) {
    const double v = -3.0 + b * 0.2;
    gauss_v[b] = std::exp(-v * v / 2.0);
  }
  for (int i = 0; i < normal_points; i++) {
    const double z = -4.0 + i / 100.0;
    normal_table[i] = static_cast<float>(0.5 * std::erfc(-z / std::sqrt(2.0)));
  }
  t_first = t_low;
  t_last = t_high;
  t_step = (t_last - t_first) / (t_points - 1);
  t_inverse = 1.0 / t_step;
  m_first[0] = m_above_low;
  m_last[0] = m_above_high;
  m_first[1] = m_below_low;
  m_last[1] = m_below_high;
  for (int side = 0; side < 2; side++) {
    const int count = side == 0 ? m_points_above : m_points_below;
    m_step[side] = (m_last[side] - m_first[side]) / (count - 1);
    m_inverse[side] = 1.0 / m_step[side];
  }
  set_s_axis();
  return 1;
}

void TCOcean::set_s_axis() {
  const double resolved = ocean_field != nullptr ? ocean_field->slope_resolved : 0.0;
  s_first = 0.0;
  s_last = 9.0 * resolved * resolved;
  s_step = (s_last - s_first) / (s_points - 1);
  s_inverse = s_step > 0.0 ? 1.0 / s_step : 0.0;
}

long TCOcean::table_cells(int side) const {
  const long m = side == 0 ? m_points_above : m_points_below;
  return static_cast<long>(n_bands) * t_points * s_points * m;
}

float* TCOcean::level_table(float* const* tables, int side, int level) const {
  if (tables[side] == nullptr || level < 0 || level >= n_levels) return nullptr;
  return tables[side] + table_cells(side) * level;
}

void TCOcean::fresnel(double c, double* out) const {
  for (int band = 0; band < n_bands; band++)
    out[band] = linear_in(fresnel_table + band * fresnel_axis_n, c, fresnel_first,
                          fresnel_inverse_step, fresnel_axis_n);
}

void TCOcean::external_radiance_at(double z, double phi, double* out) const {
  if (external_radiance == nullptr) {
    std::cout << "attempt to look up unallocated external_radiance table"
              << "\n";
    std::exit(1);
  }
  int i = 0, j = 0;
  double wi = 0.0, wj = 0.0;
  axis_position(z, fresnel_first, fresnel_inverse_step, fresnel_axis_n, i, wi);
  // The azimuth axis turns with the sun; a full turn wraps.
  const double first = azimuth_first + sun_azimuth;
  const double turn = azimuth_last - azimuth_first;
  double u = std::fmod(phi - first, turn);
  if (u < 0.0) u += turn;
  u *= azimuth_inverse_step;
  int j0 = static_cast<int>(u);
  if (j0 >= azimuth_axis_n - 1) j0 = azimuth_axis_n - 2;
  if (j0 < 0) j0 = 0;
  j = j0;
  wj = u - j0;
  if (wj > 1.0) wj = 1.0;
  const int i1 = wi > 0.0 ? i + 1 : i;
  for (int band = 0; band < n_bands; band++) {
    const double* table =
        external_radiance + static_cast<long>(band) * fresnel_axis_n * azimuth_axis_n;
    const double a0 = table[i * azimuth_axis_n + j], a1 = table[i * azimuth_axis_n + j + 1];
    const double b0 = table[i1 * azimuth_axis_n + j], b1 = table[i1 * azimuth_axis_n + j + 1];
    const double at_i = a0 * (1.0 - wj) + a1 * wj;
    const double at_i1 = b0 * (1.0 - wj) + b1 * wj;
    out[band] = at_i * (1.0 - wi) + at_i1 * wi;
  }
}

void TCOcean::external_radiance_mean_at(double z, double* out) const {
  if (external_radiance_mean == nullptr) {
    std::cout << "attempt to look up unallocated external_radiance table"
              << "\n";
    std::exit(1);
  }
  for (int band = 0; band < n_bands; band++)
    out[band] = linear_in(external_radiance_mean + band * fresnel_axis_n, z, fresnel_first,
                          fresnel_inverse_step, fresnel_axis_n);
}

void TCOcean::update_light() {
  // The sky seen from the water, per direction, at the surface's height.
  const long per_band = static_cast<long>(fresnel_axis_n) * azimuth_axis_n;
  TCSpectrum sky(n_bands);
  for (int band = 0; band < n_bands; band++) sky.band_id[band] = object_spectrum->band_id[band];
  int has_air = 1;
  for (int i = 0; i < fresnel_axis_n && has_air; i++) {
    const double z = fresnel_first + i * fresnel_step;
    const double across = std::sqrt(z * z < 1.0 ? 1.0 - z * z : 0.0);
    for (int j = 0; j < azimuth_axis_n; j++) {
      const double phi = azimuth_first + sun_azimuth + j * azimuth_step;
      TCVector local(across * std::cos(phi), across * std::sin(phi), z);
      TCVector world_direction;
      direction_to_world(local, world_direction);
      TCVector from;
      point_to_world(TCVector(0.0, 0.0, ocean_grid->z_offset) + box_centre, from);
      for (int band = 0; band < n_bands; band++) sky.radiance_in_band[band] = 0.0;
      if (scene == nullptr || !scene->air_radiance(TCRay(from, world_direction), sky)) {
        has_air = 0;
        break;
      }
      for (int band = 0; band < n_bands; band++)
        external_radiance[band * per_band + i * azimuth_axis_n + j] = sky.radiance_in_band[band];
    }
  }
  if (!has_air) {
    std::cout << "warning : running ocean without atmosphere "
              << "\n";
    for (long e = 0; e < per_band * n_bands; e++) external_radiance[e] = 0.0;
  }
  for (int band = 0; band < n_bands; band++) {
    for (int i = 0; i < fresnel_axis_n; i++) {
      double sum = 0.0;
      for (int j = 0; j < azimuth_axis_n; j++)
        sum += external_radiance[band * per_band + i * azimuth_axis_n + j];
      external_radiance_mean[band * fresnel_axis_n + i] = sum / (azimuth_axis_n * 1.0);
    }
  }
  // Irradiance on the water from the sky's upper half (trapezoids over the
  // zenith cosine, 2 pi of azimuth) and the sun when it is up.
  const double sun_up = sun_direction_local.z;
  for (int band = 0; band < n_bands; band++) {
    double sum = 0.0;
    for (int i = 0; i + 1 < fresnel_axis_n; i++) {
      const double z0 = fresnel_first + i * fresnel_step;
      const double z1 = z0 + fresnel_step;
      if (z1 <= 0.0) continue;
      const double f0 = z0 > 0.0 ? external_radiance_mean[band * fresnel_axis_n + i] * z0 : 0.0;
      const double f1 = external_radiance_mean[band * fresnel_axis_n + i + 1] * z1;
      sum += 0.5 * (f0 + f1) * (z1 - (z0 > 0.0 ? z0 : 0.0));
    }
    double irradiance = 2.0 * pi * sum;
    if (sun_up > 0.0 && sun_irradiance != nullptr) irradiance += sun_irradiance[band] * sun_up;
    irradiance_above[band] = irradiance;
    const double n = index_of_refraction[band];
    upwelling[band] = refl[band] * irradiance / (n * pi * n);
  }
  set_s_axis();
}

void TCOcean::set_footprint(double scale) {
  table_level = level_for(scale);
  ocean_field->set_footprint(scale);
}

void TCOcean::set_reflection_footprint(double scale) {
  if (!glitter_mode && !keep_reflection_table) return;
  reflection_level = level_for(scale);
  ocean_field->set_reflection_footprint(scale);
}

int TCOcean::level_for(double r) const {
  if (!(r > 0.0)) return 0;
  const int level = static_cast<int>(std::floor(std::log(r) / std::log(2.0) + 0.001)) + 1;
  return level > n_levels - 1 ? 0 : level;
}

void TCOcean::facet_limits(double m, double s, int side, double& lo, double& hi) {
  const double e = m * m < 1.0 ? std::sqrt((1.0 - m * m) * s) : 0.0;
  const double f = std::sqrt(s + 1.0);
  lo = (m - e) / f;
  hi = (m + e) / f;
  if (side == -1) {
    if (lo > 0.0) lo = 0.0;
    if (hi > 0.0) hi = 0.0;
  } else {
    if (lo < 0.0) lo = 0.0;
    if (hi < 0.0) hi = 0.0;
  }
}

double TCOcean::local_radiance(int band, double k, double S, double m, int side) const {
  const double R = linear_in(fresnel_table + band * fresnel_axis_n, -k, fresnel_first,
                             fresnel_inverse_step, fresnel_axis_n);
  const double z = 2.0 * k / std::sqrt(S + 1.0) - m;
  const double L = linear_in(external_radiance_mean + band * fresnel_axis_n, z, fresnel_first,
                             fresnel_inverse_step, fresnel_axis_n);
  if (side == -1) return R * upwelling[band] + (1.0 - R) * L;
  return (1.0 - R) * upwelling[band] + R * L;
}

double TCOcean::facet_radiance(int band, double c, double s, double m, int side,
                               int reflection) const {
  const double w = std::sqrt(1.0 - m * m);
  double p0 = (c * std::sqrt(s + 1.0) - m) / w;
  double q0 = 0.0;
  if (!(p0 * p0 > s)) {
    q0 = std::sqrt(s - p0 * p0);
  } else {
    p0 = std::sqrt(s);
    q0 = 0.0;
  }
  const double T = std::fabs(m) < 1e-05 ? w / 1e-05 : w / std::fabs(m);
  const double g = ocean_field->slope_unresolved;
  double sum = 0.0, weights = 0.0;
  for (int a = 0; a < 71; a++) {
    const double u = -3.0 + a * 0.1;
    const double p = u * g + p0;
    if (!(1.0 + T * p > 0.0)) continue;
    const double along = (1.0 + T * p) * gauss_u[a];
    for (int b = 0; b < 31; b++) {
      const double v = -3.0 + b * 0.2;
      const double q = v * g + q0;
      const double weight = along * gauss_v[b];
      const double S = p * p + q * q;
      const double k = (p * w + m) / std::sqrt(S + 1.0);
      if (reflection) {
        const double z = 2.0 * k / std::sqrt(S + 1.0) - m;
        if (z > 0.0)
          sum += weight * linear_in(fresnel_table + band * fresnel_axis_n, -k, fresnel_first,
                                    fresnel_inverse_step, fresnel_axis_n);
      } else {
        sum += weight * local_radiance(band, k, S, m, side);
      }
      weights += weight;
    }
  }
  return weights > 0.0 ? sum / weights : 0.0;
}

void TCOcean::make_tables(int side) {
  const int which = side_index(side);
  const int level = table_level;
  if (table_done[which] == nullptr || level < 0 || level >= n_levels) return;
  if (table_done[which][level]) return;
  table_done[which][level] = 1;
  const int m_count = which == 0 ? m_points_above : m_points_below;
  float* radiance = level_table(radiance_table, which, level);
  float* reflection = keep_reflection_table ? level_table(reflection_table, which, level) : nullptr;
  std::cout << "Calculating Radiance Table " << level << "\n";
  if (reflection != nullptr)
    std::cout << "Calculating Reflection Table "
              << "\n";
  for (int band = 0; band < n_bands; band++) {
    for (int si = 0; si < s_points; si++) {
      const double s = s_first + si * s_step;
      for (int mi = 0; mi < m_count; mi++) {
        const double m = m_first[which] + mi * m_step[which];
        double lo = 0.0, hi = 0.0;
        facet_limits(m, s, side, lo, hi);
        for (int ti = 0; ti < t_points; ti++) {
          const double t = t_first + ti * t_step;
          const double c = (hi - lo) * t + lo;
          const long cell =
              ((static_cast<long>(band) * t_points + ti) * s_points + si) * m_count + mi;
          if (radiance != nullptr)
            radiance[cell] =
                air_coupling ? static_cast<float>(facet_radiance(band, c, s, m, side, 0)) : 0.0f;
          if (reflection != nullptr)
            reflection[cell] = static_cast<float>(facet_radiance(band, c, s, m, side, 1));
        }
      }
    }
  }
}

void TCOcean::lookup(const float* table, double c, double m, double s, double* out,
                     int side) const {
  const int which = side_index(side);
  const int m_count = which == 0 ? m_points_above : m_points_below;
  if (table == nullptr) {
    for (int band = 0; band < n_bands; band++) out[band] = 0.0;
    return;
  }
  double lo = 0.0, hi = 0.0;
  facet_limits(m, s, side, lo, hi);
  const double t = lo == hi ? 0.1 : (c - lo) / (hi - lo);
  int ti = 0, si = 0, mi = 0;
  double wt = 0.0, ws = 0.0, wm = 0.0;
  axis_position(t, t_first, t_inverse, t_points, ti, wt);
  if (s_step > 0.0) {
    axis_position(s, s_first, s_inverse, s_points, si, ws);
  }
  axis_position(m, m_first[which], m_inverse[which], m_count, mi, wm);
  const int ti1 = wt > 0.0 ? ti + 1 : ti;
  const int si1 = ws > 0.0 ? si + 1 : si;
  const int mi1 = wm > 0.0 ? mi + 1 : mi;
  for (int band = 0; band < n_bands; band++) {
    double sum = 0.0;
    for (int a = 0; a < 2; a++) {
      const int tt = a ? ti1 : ti;
      const double fa = a ? wt : 1.0 - wt;
      for (int b = 0; b < 2; b++) {
        const int ss = b ? si1 : si;
        const double fb = b ? ws : 1.0 - ws;
        for (int d = 0; d < 2; d++) {
          const int mm = d ? mi1 : mi;
          const double fd = d ? wm : 1.0 - wm;
          const long cell =
              ((static_cast<long>(band) * t_points + tt) * s_points + ss) * m_count + mm;
          sum += fa * fb * fd * table[cell];
        }
      }
    }
    out[band] = sum;
  }
}

void TCOcean::radiance_lookup(double c, double m, double s, double* out, int side) const {
  lookup(level_table(radiance_table, side_index(side), table_level), c, m, s, out, side);
}

void TCOcean::reflection_lookup(double c, double m, double s, double* out, int side) const {
  lookup(level_table(reflection_table, side_index(side), table_level), c, m, s, out, side);
}

double TCOcean::sharpening_at(double view_zenith) const {
  if (glitter_mode != 200 && glitter_mode != 201) return 1.0;
  if (!sharpening_variable || n_sharpening < 1) return sharpening_factor;
  if (view_zenith <= sharpening_angle[0]) return sharpening_value[0];
  for (int i = 1; i < n_sharpening; i++) {
    if (view_zenith <= sharpening_angle[i]) {
      const double span = sharpening_angle[i] - sharpening_angle[i - 1];
      const double f = span > 0.0 ? (view_zenith - sharpening_angle[i - 1]) / span : 1.0;
      return sharpening_value[i - 1] * (1.0 - f) + sharpening_value[i] * f;
    }
  }
  return sharpening_value[n_sharpening - 1];
}

double TCOcean::glitter_normaliser(double T, double pu, double sigma) const {
  const double W = T == 0.0 ? 1000000000.0 : 1.0 / T + pu;
  const double z = T * sigma == 0.0 ? -4.0 : -W / sigma;
  if (z > -4.0) {
    int index = static_cast<int>(std::trunc(z * 100.0)) + 400;
    if (index < 0) index = 0;
    if (index > normal_points - 1) index = normal_points - 1;
    return (1.0 - normal_table[index]) * (T * pu + 1.0) * sigma * root_two_pi +
           std::exp(-z * z / 2.0) * T * sigma * sigma;
  }
  double d = (T * pu + 1.0) * sigma * root_two_pi;
  if (T * sigma != 0.0) d += std::exp(-z * z / 2.0) * T * sigma * sigma;
  return d;
}

void TCOcean::glitter_intensity(double px, double py, const TCVector& ray, double* out, int side) {
  for (int band = 0; band < n_bands; band++) {
    out[band] = 0.0;
    glitter_done[band] = 0;
  }
  const TCVector& sun = sun_direction_local;
  if (!(sun.z > 0.0)) return;
  const double ms = sun.z;
  const double ws = std::sqrt(1.0 - ms * ms);
  // Azimuth of the way towards the sun.
  const double across = std::sqrt(sun.x * sun.x + sun.y * sun.y);
  const double cs = across > 0.0 ? sun.x / across : 1.0;
  const double ss = across > 0.0 ? sun.y / across : 0.0;
  const double mv0 = -ray.z;
  const double sigma = sharpening_at(std::acos(mv0 < -1.0 ? -1.0 : (mv0 > 1.0 ? 1.0 : mv0))) *
                       ocean_field->slope_current;
  double* reflectance = work_reflectance;
  for (int band = 0; band < n_bands; band++) {
    if (glitter_done[band]) continue;
    const double n = index_of_refraction[band];
    double mv = mv0;
    const double wv = -std::sqrt(1.0 - mv * mv > 0.0 ? 1.0 - mv * mv : 0.0);
    const double i = 1.0 / std::sqrt(px * px + py * py + 1.0);
    const double c0 = (px * ray.x + py * ray.y + mv) * i;
    double ex = 0.0, ey = 0.0;
    if (side == -1) {
      const double h = 1.0 - (1.0 - c0 * c0) * n * n;
      if (h < 0.0) {
        glitter_done[band] = 1;
        continue;
      }
      const double e = std::sqrt(h);
      ex = -px * e + (ray.x - c0 * px) * n;
      ey = -py * e + (ray.y - c0 * py) * n;
      // Scaled by the square, without a root: kept so.
      const double scale = 1.0 / (ex * ex + ey * ey);
      ex *= scale;
      ey *= scale;
      mv = e * i + (mv - c0 * i) * n;
    } else {
      const double length = std::sqrt(ray.x * ray.x + ray.y * ray.y);
      if (length > 0.0) {
        ex = ray.x / length;
        ey = ray.y / length;
      }
    }
    if (ms + mv == 0.0) {
      glitter_done[band] = 1;
      continue;
    }
    const double au = (ss * ey + cs * ex) * ws;
    const double ac = (ss * ex - cs * ey) * ws;
    const double su = -(au + wv) / (ms + mv);
    const double sc = -ac / (ms + mv);
    double pu = py * ey + px * ex;
    const double pc = py * ex - px * ey;
    const double du = su - pu;
    const double dc = sc - pc;
    if (!(mv - wv * pu > 0.0)) pu = mv == 0.0 ? -9.99e-10 : (mv / wv) * 0.999;
    const double T = mv == 0.0 ? 1000000000.0 : -wv / mv;
    const double W = T == 0.0 ? 1000000000.0 : 1.0 / T + pu;
    const double z = T * sigma == 0.0 ? -4.0 : -W / sigma;
    if (z > 4.0) {
      glitter_done[band] = 1;
      continue;
    }
    const double D = glitter_normaliser(T, pu, sigma);
    const double A = (T * su + 1.0) * std::exp(-du * du / (2.0 * sigma * sigma)) / D;
    const double B = std::exp(-dc * dc / (2.0 * sigma * sigma)) / (sigma * root_two_pi);
    // Cosine of the angle between the sun and the way back to the camera,
    // which is twice the angle of incidence on the mirroring facet. Its
    // sign stays: beyond 45 degrees of incidence it is negative.
    const double d = ms * mv + au * wv;
    const double k = d >= 1.0 ? 1.0 : std::cos(0.5 * std::acos(d < -1.0 ? -1.0 : d));
    fresnel(-k, reflectance);
    const double w = 1.0 / (su * su + sc * sc + 1.0);
    const double denominator = std::pow(w, 1.5) * 4.0 * k;
    double g = denominator != 0.0 ? A * B / denominator : 0.0;
    if (!(g >= 0.0)) g = 0.0;
    if (g < glitter_threshold) g = 0.0;
    for (int other = band; other < n_bands; other++) {
      if (glitter_done[other] || index_of_refraction[other] != index_of_refraction[band]) continue;
      const double r = side == -1 ? 1.0 - reflectance[other] : reflectance[other];
      out[other] = g * r;
      glitter_done[other] = 1;
    }
  }
}

void TCOcean::trace_cone(const TCVector& from, const TCVector& direction, double width_x,
                         double width_y, int below, object_contour* contour, double* radiance,
                         double& fraction, double& distance, int only) {
  for (int band = 0; band < n_bands; band++) radiance[band] = 0.0;
  fraction = 0.0;
  distance = contour_empty_distance;
  if (scene == nullptr || contour == nullptr) return;
  // A view whose line of sight (its z axis) is the direction.
  TCVector d = direction;
  const double length = std::sqrt(d.dot(d));
  if (!(length > 0.0)) return;
  d = d * (1.0 / length);
  TCVector a = std::fabs(d.z) < 0.9 ? TCVector(0.0, 0.0, 1.0) : TCVector(1.0, 0.0, 0.0);
  TCVector e1 = TCVector(a.y * d.z - a.z * d.y, a.z * d.x - a.x * d.z, a.x * d.y - a.y * d.x);
  e1 = e1 * (1.0 / std::sqrt(e1.dot(e1)));
  const TCVector e2(d.y * e1.z - d.z * e1.y, d.z * e1.x - d.x * e1.z, d.x * e1.y - d.y * e1.x);
  TCView cone;
  cone.position = from;
  for (int r = 0; r < 3; r++) {
    cone.object_to_world.m[3 * r + 0] = e1[r];
    cone.object_to_world.m[3 * r + 1] = e2[r];
    cone.object_to_world.m[3 * r + 2] = d[r];
  }
  cone.world_to_view = cone.object_to_world.transpose();
  const double half_x = std::tan(0.5 * width_x), half_y = std::tan(0.5 * width_y);
  cone.set_grid(1, -half_y, half_y, 1, -half_x, half_x);
  cone.anti_alias = 0;
  int active[TCScene_tracer::max_objects];
  for (int i = 0; i < TCScene_tracer::max_objects; i++) {
    active[i] = i == object_id ? 0 : (only >= 0 ? i == only : (below ? object_above[i] : 1));
    contour->active[i] = active[i];
  }
  contour->forced_object = -1;
  scene->image_scene_secondary(active, cone, contour->spectrum, contour->radiance_out, 0.0, contour,
                               0);
  for (int band = 0; band < n_bands && band < contour->spectrum->n; band++)
    radiance[band] = contour->radiance_out[band][0];
  fraction = contour->total_coverage[0][0];
  distance = contour->total_distance[0][0];
}

void TCOcean::surface_radiance(const TCRay& ray, const TCVector& point, const TCVector& normal_in,
                               TCSpectrum& spectrum, int side, float* matte_values,
                               double footprint) {
  make_tables(side);
  TCVector normal = normal_in;
  TCVector view;
  direction_to_object(ray.direction(), view);
  // Water behind a wall is the wall's inside, and the water under a hull
  // the hull's.
  if (holder != nullptr &&
      (holder->behind_reflecting_line(point.x, point.y) || hull_covers(point.x, point.y))) {
    if (interior_mode == 0) {
      for (int b = 0; b < spectrum.n; b++) spectrum.radiance_in_band[b] = 0.0;
      return;
    }
    if (interior_mode == 1) normal = TCVector(0.0, 0.0, 1.0);
  }
  double* total = band_radiance;
  double* glitter = work_glitter;
  int colour_taken = 0;  // a saturated glint took its fixed colour
  double* table_total = work_table;
  double* table_reflectance = work_matte;
  const double c = -normal.dot(view);
  const double m = -view.z;
  const double s = normal.z != 0.0
                       ? (normal.x * normal.x + normal.y * normal.y) / (normal.z * normal.z)
                       : 99999999.0;
  if (air_coupling) {
    radiance_lookup(c, m, s, total, side);
  } else {
    for (int band = 0; band < n_bands; band++) total[band] = 0.0;
  }
  if (matte_values != nullptr || texture_list != nullptr) {
    // The view from above meets the water from the air side.
    if (keep_reflection_table) {
      reflection_lookup(c, m, s, table_reflectance, side);
    } else {
      fresnel(-c, table_reflectance);
    }
  }
  for (int band = 0; band < n_bands; band++) {
    table_total[band] = total[band];
    glitter[band] = 0.0;
  }
  double* reflected = work_reflected;
  double* refracted = work_refracted;
  for (int band = 0; band < n_bands; band++) reflected[band] = refracted[band] = 0.0;
  const TCVector camera = ray.origin();
  TCVector world_point;
  point_to_world(point + box_centre, world_point);
  const double gap_x = camera.x - world_point.x, gap_y = camera.y - world_point.y;
  const int far = gap_x * gap_x > max_exact_distance_sq || gap_y * gap_y > max_exact_distance_sq;
  if (external_exact && !far) {
    // Rays leaving the surface go on through the scene; the tables keep the
    // sky and the water's own light.
    double* reflectance = work_reflectance;
    if (reflection_method == 2) {
      for (int band = 0; band < n_bands; band++) reflectance[band] = 1.0;
    } else if (keep_reflection_table) {
      reflection_lookup(c, m, s, reflectance, side);
    } else {
      fresnel(-c, reflectance);
    }
    if (side == -1) {
      for (int band = 0; band < n_bands; band++) {
        if (c > snell_cosine[band]) reflectance[band] = 1.0;
      }
    }
    const int trace_reflected = side == 1 ? (include & 1) : (include & 2);
    const int trace_refracted = side == 1 ? (include & 2) : (include & 1);
    const double to_point = std::sqrt(gap_x * gap_x + gap_y * gap_y +
                                      (camera.z - world_point.z) * (camera.z - world_point.z));
    const double pixel = to_point > 0.0 ? footprint / to_point : 0.0;
    const double spread = ocean_field->slope_current * sharpening;
    const double width = std::sqrt(spread * spread + pixel * pixel);
    double fraction = 0.0, distance = 0.0;
    const TCVector d = view;
    const double dn = d.dot(normal);
    if (trace_reflected) {
      TCVector mirror = d - normal * (2.0 * dn);
      TCVector world_mirror;
      direction_to_world(mirror, world_mirror);
      trace_cone(world_point, world_mirror, width, width, side == -1, reflected_contour, reflected,
                 fraction, distance, -1);
      // How much of the mirror cone each object the mattes name fills.
      for (int k = 0; k < 5 && matte_values != nullptr && matte_fields != nullptr; k++) {
        const int named = matte_fields->reflected_objects[k];
        if (named < 0) continue;
        double named_fraction = 0.0, named_distance = 0.0;
        trace_cone(world_point, world_mirror, width, width, side == -1, reflected_contour,
                   work_texture_out, named_fraction, named_distance, named);
        for (int band = 0; band < n_bands; band++)
          matte_values[n_bands * (7 + k) + band] = static_cast<float>(named_fraction);
      }
      if (shadow_method && distance * distance < shadow_distance_sq) {
        for (int band = 0; band < n_bands; band++)
          table_total[band] *= 1.0 - fraction * max_shadow_fraction;
      }
    }
    int partial = 0;
    for (int band = 0; band < n_bands; band++) partial |= reflectance[band] < 1.0;
    if (trace_refracted && partial) {
      double mean_n = 0.0;
      for (int band = 0; band < n_bands; band++) mean_n += index_of_refraction[band];
      mean_n /= n_bands;
      // Snell's law through the facet, from the side the view comes from.
      const double ratio = side == 1 ? 1.0 / mean_n : mean_n;
      const double cos_in = -dn;
      const double under = 1.0 - ratio * ratio * (1.0 - cos_in * cos_in);
      if (under > 0.0) {
        const double cos_out = std::sqrt(under);
        const double sign = cos_in >= 0.0 ? 1.0 : -1.0;
        TCVector bent = d * ratio + normal * (ratio * cos_in - sign * cos_out);
        TCVector world_bent;
        direction_to_world(bent, world_bent);
        trace_cone(world_point, world_bent, width, width, side == 1, refracted_contour, refracted,
                   fraction, distance, -1);
      }
    }
    for (int band = 0; band < n_bands; band++) {
      total[band] = reflectance[band] * reflected[band] +
                    (1.0 - reflectance[band]) * refracted[band] + table_total[band];
      table_reflectance[band] = reflectance[band];
    }
  }
  if (glitter_mode && normal.z != 0.0) {
    glitter_intensity(-normal.x / normal.z, -normal.y / normal.z, view, glitter, side);
    if (glitter_mode == 1 || glitter_mode == 200) {
      for (int band = 0; band < n_bands; band++) glitter[band] *= sun_irradiance[band];
    } else if (n_bands > 0 && sun_irradiance[0] * glitter[0] > 0.005 && scene != nullptr) {
      // Only pixels with some glint pay for the sun's walk through the scene.
      TCSpectrum sun(n_bands);
      for (int band = 0; band < n_bands; band++) sun.band_id[band] = object_spectrum->band_id[band];
      TCVector world_point;
      point_to_world(point + box_centre, world_point);
      scene->sun_irradiance_at(world_point, sun, object_id);
      for (int band = 0; band < n_bands; band++) glitter[band] *= sun.radiance_in_band[band];
    }
    if (saturated && saturation_band >= 0 && saturation_band < n_bands) {
      const double G = glitter[saturation_band];
      for (int band = 0; band < n_bands; band++) {
        if (!(G > saturation_threshold)) {
          if (sub_saturation_scale != nullptr) glitter[band] *= sub_saturation_scale[band];
        } else if (saturation_value != nullptr) {
          glitter[band] = saturation_value[band];
          colour_taken = 1;
        }
      }
    }
    if (!(exclude_mask & 1)) {
      for (int band = 0; band < n_bands; band++) total[band] += glitter[band];
    }
  }
  // Whitecaps would blend in here, once the sea has them.
  double* texture_out = work_texture_out;
  for (int band = 0; band < n_bands; band++) texture_out[band] = 0.0;
  if (texture_list != nullptr && !(exclude_mask & 2))
    apply_textures(point, side, footprint, table_reflectance, total, texture_out);
  pixel_n = 0;
  for (int b = 0; b < spectrum.n; b++) {
    const int band = object_spectrum->index_of(spectrum.band_id[b]);
    spectrum.radiance_in_band[b] = band >= 0 ? total[band] : 0.0;
  }
  if (matte_values != nullptr) {
    for (int band = 0; band < n_bands; band++) {
      matte_values[n_bands * 0 + band] = static_cast<float>(total[band]);
      matte_values[n_bands * 3 + band] = static_cast<float>(table_reflectance[band]);
      matte_values[n_bands * 4 + band] = static_cast<float>(table_total[band]);
      matte_values[n_bands * 5 + band] = static_cast<float>(reflected[band]);
      matte_values[n_bands * 6 + band] = static_cast<float>(refracted[band]);
      matte_values[n_bands * 12 + band] = static_cast<float>(glitter[band]);
      matte_values[n_bands * 17 + band] = static_cast<float>(texture_out[band]);
      // The fixed colour of a saturated glint, in the record's unnamed place.
      matte_values[n_bands * saturation_colour_code + band] =
          colour_taken ? static_cast<float>(saturation_value[band]) : 0.0f;
    }
  }
}
