// TCAir::image_contour: the scene first, then the air along every pixel,
// from tables of the view's rays over a round base, exactly elsewhere.

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCAir.h"
#include "TCConstants.h"
#include "TCMatte_fields.h"
#include "TCScene_tracer.h"
#include "TCSettings.h"
#include "TCView.h"
#include "air_table.h"
#include "object_contour.h"

namespace {

// A pixel covered this much or more is taken as wholly covered.
const float full_coverage = 0.9999f;
// Sub-rays of a pixel: a 2 by 2 grid at these fractions of its sides.
const int sub_rays = 2;
const double sub_ray_fraction[sub_rays] = {0.25, 0.75};
// Sub-pixels per side of a pixel tested against the sun's disc.
const int sun_sub_pixels = 5;
// A sun_max_radiance at or above this sets no limit.
const double no_radiance_limit = 99999998.0;
// Matte codes of the three values the air leaves per pixel.
const int code_transmission = 2;
const int code_path_radiance = 14;
const int code_no_air = 16;

float* new_floats(int count, const char* message, int object_id) {
  float* values = new (std::nothrow) float[count > 0 ? count : 1]();
  if (values == nullptr) {
    std::cout << message << object_id << "\n";
    std::cout.flush();
    std::exit(1);
  }
  return values;
}

// One of the air's matte values into the planes of one matte object.
void write_matte(TCMatte_fields* fields, int object, int code, int row, int col,
                 const float* values, int n_values) {
  if (fields == nullptr) return;
  int first = -1, n_planes = 0;
  if (!fields->is_wanted(object, code, first, n_planes)) return;
  if (row >= fields->n_rows || col >= fields->n_cols) return;
  const int pixel = row * fields->n_cols + col;
  for (int p = 0; p < n_planes && p < n_values; p++)
    fields->planes[object][first + p][pixel] = values[p];
}

// Table steps, radians: 0.25 degree in elevation, 2 degrees in azimuth.
const double table_theta_step = 0.004363323129985824;
const double table_phi_step = 0.03490658503988659;
// Pictures of fewer pixels than this are imaged exactly, without a table.
const long least_table_pixels = 64;
// Table steps at most this many of the picture's pixels (image-plane units
// taken as radians, which they exceed nowhere).
const double pixels_per_row_step = 2.0;
const double pixels_per_column_step = 16.0;
// Rows at most this share of the angle over which the sky changes at the
// horizon.
const double grazing_fraction = 0.1;
// Near depths at or beyond this have nothing in front of them, metres.
const double near_nothing = 99989999.0001;

// Elevation over the air's horizontal plane of an air-frame direction.
double elevation_of(const TCVector& d) {
  const double length = std::sqrt(d.dot(d));
  double sine = length > 0.0 ? d.z / length : 0.0;
  if (sine > 1.0) sine = 1.0;
  if (sine < -1.0) sine = -1.0;
  return std::asin(sine);
}

// Points along each edge of the window at which its elevation is taken.
const int most_edge_points = 1000;

// The view's range: elevations from its corners and the points along its
// edges between them at each pixel (a straight edge of the plane rises
// above its corners when it runs across the line of sight), and azimuths
// from its corners, relative to phi_offset as one unbroken interval whose
// low end lies in -pi..pi (the whole circle when a pole is in the window,
// which then also reaches it).
void view_range(const TCView& local, double phi_offset, double& e_low, double& e_high,
                double& a_low, double& a_high) {
  const double fe = local.first_elevation, le = local.last_elevation;
  const double fa = local.first_azimuth, la = local.last_azimuth;
  const double edge_e0[4] = {fe, le, fe, fe};
  const double edge_e1[4] = {fe, le, le, le};
  const double edge_a0[4] = {fa, fa, fa, la};
  const double edge_a1[4] = {la, la, fa, la};
  const int edge_pixels[4] = {local.n_cols, local.n_cols, local.n_rows, local.n_rows};
  int first = 1;
  for (int edge = 0; edge < 4; edge++) {
    int points = edge_pixels[edge];
    if (points < 1) points = 1;
    if (points > most_edge_points) points = most_edge_points;
    for (int k = 0; k <= points; k++) {
      const double t = static_cast<double>(k) / points;
      TCRay ray;
      local.plane_ray(edge_e0[edge] + t * (edge_e1[edge] - edge_e0[edge]),
                      edge_a0[edge] + t * (edge_a1[edge] - edge_a0[edge]), ray);
      const double e = elevation_of(ray.direction());
      if (first || e < e_low) e_low = e;
      if (first || e > e_high) e_high = e;
      first = 0;
    }
  }
  double min_azimuth = 0.0, max_azimuth = 0.0;
  if (local.view_limits(min_azimuth, max_azimuth)) {
    TCRay centre;
    local.plane_ray((local.first_elevation + local.last_elevation) * 0.5,
                    (local.first_azimuth + local.last_azimuth) * 0.5, centre);
    if (centre[5] > 0.0) {
      e_high = tc_half_pi;
    } else {
      e_low = -tc_half_pi;
    }
    a_low = -tc_pi;
    a_high = tc_pi;
    return;
  }
  a_low = min_azimuth - phi_offset;
  a_high = max_azimuth - phi_offset;
  if (std::fabs(a_low) > 4.0 * tc_two_pi) {
    const double turns = a_low - std::fmod(a_low, tc_two_pi);
    a_low -= turns;
    a_high -= turns;
  }
  while (a_low < -tc_pi) {
    a_low += tc_two_pi;
    a_high += tc_two_pi;
  }
  while (a_low >= tc_pi) {
    a_low -= tc_two_pi;
    a_high -= tc_two_pi;
  }
}

// How far beyond the window, on the image plane, a node may lie and still
// be the neighbour of a ray inside it: one step of each axis as an angle,
// stretched by the plane's 1 + r^2 at the widest corner, twice over, and
// the pixel margin of the range.
double window_margin(const TCView& local, double pixel_margin, double theta_step, double phi_step) {
  double widest = 0.0;
  const double es[2] = {local.first_elevation, local.last_elevation};
  const double as[2] = {local.first_azimuth, local.last_azimuth};
  for (double e : es) {
    for (double a : as) {
      if (e * e + a * a > widest) widest = e * e + a * a;
    }
  }
  return pixel_margin + 2.0 * (theta_step + phi_step) * (1.0 + widest);
}

// The contour's near depth, metres: at level 0 its one least distance; on a
// reflected view the mean of the pixels' near limits that have something in
// front of them.
double mean_near_depth(const object_contour& contour, int rows, int cols) {
  const double single =
      contour.min_distance > 0.0 ? std::sqrt(static_cast<double>(contour.min_distance)) : 0.0;
  if (contour.level == 0 || !contour.near_limit_flag || contour.near_limit == nullptr)
    return single;
  double sum = 0.0;
  long count = 0;
  for (int row = 0; row < rows; row++) {
    for (int col = 0; col < cols; col++) {
      const double near = air_table::pixel_near(contour, row, col);
      if (near >= near_nothing) continue;
      sum += near;
      count++;
    }
  }
  return count > 0 ? sum / count : single;
}

air_table* new_table(TCAir* air) {
  air_table* table = new (std::nothrow) air_table(air);
  if (table == nullptr) air_table::allocation_failed();
  return table;
}

}  // namespace

void TCAir::build_tables(const TCView& local, object_contour& contour, int rows, int cols,
                         air_table*& main_table, air_table*& aux_table, TCView* world_view) {
  main_table = nullptr;
  aux_table = nullptr;
  table_misses = 0;
  // The table is laid out over the whole picture the view is a slice of, so
  // that its cells do not depend on the slice. Slices are strips of whole
  // columns; anything else is taken as a picture of its own.
  TCView whole;
  int first_col = 0;
  if (world_view != nullptr && local.whole_n_rows == rows && local.whole_first_row == 0 &&
      local.whole_n_cols >= cols && local.whole_first_col >= 0 &&
      local.whole_first_col + cols <= local.whole_n_cols && !contour.near_limit_flag) {
    local.whole_view(whole);
    first_col = local.whole_first_col;
  } else {
    whole.copy(local);
    whole.set_grid(rows, local.first_elevation, local.first_elevation + rows * local.step_elevation,
                   cols, local.first_azimuth, local.first_azimuth + cols * local.step_azimuth);
  }
  // A picture of a few pixels (a refined pixel's patch) is cheaper exactly.
  if (world_view != nullptr && static_cast<long>(whole.n_rows) * whole.n_cols < least_table_pixels)
    return;

  // The range of the view and its margin of two of its smaller pixels.
  const double step_e = std::fabs(whole.step_elevation);
  const double step_a = std::fabs(whole.step_azimuth);
  const double pixel_margin = (step_e < step_a ? step_e : step_a) * 2.0;
  double phi_offset = sun_azimuth;
  if (phi_offset > tc_pi) phi_offset -= tc_two_pi;
  double e_low = 0.0, e_high = 0.0, a_low = 0.0, a_high = 0.0;
  view_range(whole, phi_offset, e_low, e_high, a_low, a_high);

  // A reflected view is seen on finer tables; in a narrow picture the steps
  // follow its pixels, so that a blend never spans more than a few of them.
  double theta_step = table_theta_step;
  double phi_step = table_phi_step;
  if (contour.level != 0) {
    theta_step *= 0.5;
    phi_step /= 10;
  }
  if (theta_step > pixels_per_row_step * step_e) theta_step = pixels_per_row_step * step_e;
  // Near the horizon the sky changes over the angle sqrt(2 H / R) of the
  // lowest layer's scale height H: rows a tenth of it apart follow it.
  const double lowest =
      air_type > 1 && aerosol_height_m < molecular_height_m ? aerosol_height_m : molecular_height_m;
  if (lowest > 0.0 && surface_radius > 0.0) {
    const double grazing = grazing_fraction * std::sqrt(2.0 * lowest / surface_radius);
    if (theta_step > grazing) theta_step = grazing;
  }
  if (phi_step > pixels_per_column_step * step_a) phi_step = pixels_per_column_step * step_a;

  main_table = new_table(this);
  main_table->define(local.position, phi_offset, theta_step, phi_step, e_low, e_high, a_low, a_high,
                     pixel_margin);
  const double s_primary_min = mean_near_depth(contour, rows, cols);
  const double margin = window_margin(whole, pixel_margin, theta_step, phi_step);

  // The ends of the pixels the cells pass through: the slice's own, and
  // those of the whole picture's columns within the margin on either side,
  // imaged here for their depths alone.
  int margin_cols = 0;
  if (world_view != nullptr && step_a > 0.0) {
    const double count = std::ceil(margin / step_a) + 1.0;
    margin_cols = count < whole.n_cols ? static_cast<int>(count) : whole.n_cols;
  }
  const int low_col = first_col - margin_cols > 0 ? first_col - margin_cols : 0;
  const int high_col =
      first_col + cols + margin_cols < whole.n_cols ? first_col + cols + margin_cols : whole.n_cols;
  air_table::pixel_ends ends(rows, low_col, high_col - low_col);
  ends.take(contour, first_col);
  if (low_col < first_col) image_depths(*world_view, contour, low_col, first_col, ends);
  if (high_col > first_col + cols)
    image_depths(*world_view, contour, first_col + cols, high_col, ends);
  main_table->fill_whole(whole, ends, margin, s_primary_min);
}

void TCAir::image_depths(const TCView& view, const object_contour& contour, int first_col,
                         int end_col, air_table::pixel_ends& ends) {
  const int n = end_col - first_col;
  if (n <= 0 || view.whole_n_cols <= 0) return;
  const double step = view.whole_pixel_width();
  TCView part;
  part.copy(view);
  part.set_grid(view.n_rows, view.first_elevation, view.last_elevation, n,
                view.whole_first_azimuth + first_col * step,
                view.whole_first_azimuth + end_col * step);
  object_contour depths(view.n_rows, n, contour.spectrum, contour.min_distance, contour.anti_alias,
                        nullptr, nullptr);
  depths.level = contour.level;
  for (int i = 0; i < TCScene_tracer::max_objects; i++) depths.active[i] = contour.active[i];
  depths.first_flag = 1;
  if (scene != nullptr) scene->image_contour_for_source(object_id, part, depths);
  ends.take(depths, first_col);
}

void TCAir::image_contour(TCView& view, object_contour& contour) {
  // Everything else paints first, merged front to back as the list would.
  contour.first_flag = 1;
  if (scene != nullptr) scene->image_contour_for_source(object_id, view, contour);
  exact_count = 0;
  main_table_count = 0;
  aux_table_count = 0;
  table_misses = 0;
  const int n_out = contour.spectrum != nullptr ? contour.spectrum->n : 0;
  if (n_out <= 0) return;

  TCView local;
  view_in_object_frame(view, local);
  const int rows = view.n_rows < contour.n_rows ? view.n_rows : contour.n_rows;
  const int cols = view.n_cols < contour.n_cols ? view.n_cols : contour.n_cols;

  air_table* main_table = nullptr;
  air_table* aux_table = nullptr;
  if (surface_shape == 1 && air_type != 0 && !external_exact && rows > 0 && cols > 0)
    build_tables(local, contour, rows, cols, main_table, aux_table, &view);

  const int n = number_of_bands;
  double* temp_radiance = new (std::nothrow) double[4 * (n > 0 ? n : 1)]();
  if (temp_radiance == nullptr) {
    std::cout << "unable to allocate temp_radiance in TCObject::radiance" << object_id << "\n";
    std::cout.flush();
    std::exit(1);
  }
  float* channel =
      new_floats(n_out, "unable to allocate channel radiance in air object ", object_id);
  float* transmission =
      new_floats(n_out, "unable to allocate transmission array in air object ", object_id);
  float* matte_path =
      new_floats(n_out, "unable to allocate matte_path_rad array in air object ", object_id);
  float* matte_trans =
      new_floats(n_out, "unable to allocate matte_transmission array in air object ", object_id);
  float* matte_no_air =
      new_floats(n_out, "unable to allocate matte_no_air_rad array in air object ", object_id);
  int* band_of = new (std::nothrow) int[n_out];
  if (band_of == nullptr) {
    std::cout << "unable to allocate channel radiance in air object " << object_id << "\n";
    std::exit(1);
  }
  for (int k = 0; k < n_out; k++) band_of[k] = band_list.index_of(contour.spectrum->band_id[k]);

  // Per air band: the sample being summed, the object sample, the sky
  // sample and the transmission of the first sample.
  double* sample = temp_radiance;
  double* object_path = temp_radiance + n;
  double* sky_path = temp_radiance + 2 * n;
  double* first_transmission = temp_radiance + 3 * n;
  double* molecular = scratch(0);
  double* aerosol = scratch(1);
  double* t = scratch(2);

  for (int row = 0; row < rows; row++) {
    for (int col = 0; col < cols; col++) {
      const float coverage = contour.total_coverage[row][col];
      const long k = static_cast<long>(row) * contour.n_cols + col;
      // Contour depths are squared distances.
      const double s_near = air_table::pixel_near(contour, row, col);
      const double s_object = air_table::pixel_depth(contour, row, col);

      // Samples: the covering object's path and the sky behind, as the
      // coverage asks; each over the pixel's sub-rays.
      const int with_object = coverage > 0.0f;
      const int with_sky = coverage < full_coverage;
      for (int m = 0; m < n; m++) {
        object_path[m] = 0.0;
        sky_path[m] = 0.0;
        first_transmission[m] = 0.0;
      }
      for (int pass = 0; pass < 2; pass++) {
        const int object_pass = pass == 0;
        if (object_pass && !with_object) continue;
        if (!object_pass && !with_sky) continue;
        const int first_sample = object_pass || !with_object;
        const double s_end = object_pass ? s_object : tc_nothing;
        for (int m = 0; m < n; m++) sample[m] = 0.0;
        if (air_type == 0) {
          // Uniform air: a sky of its own radiance, clear along every path.
          for (int m = 0; m < n; m++) {
            if (!object_pass) sample[m] = uniform_radiance[m];
            if (first_sample) first_transmission[m] = 1.0;
          }
        } else {
          const double weight = 1.0 / (sub_rays * sub_rays);
          for (int i = 0; i < sub_rays; i++) {
            for (int j = 0; j < sub_rays; j++) {
              TCRay ray;
              local.fractional_ray(row, col, sub_ray_fraction[i], sub_ray_fraction[j], ray);
              int served = 0;
              if (main_table != nullptr) {
                double e = 0.0, a = 0.0;
                main_table->angles_of(ray.direction(), e, a);
                served = main_table->lookup(e, a, s_near, s_end, molecular, aerosol, t);
                if (served) {
                  main_table_count++;
                } else if (aux_table != nullptr) {
                  served = aux_table->lookup(e, a, s_near, s_end, molecular, aerosol, t);
                  if (served) aux_table_count++;
                }
              }
              if (!served) {
                local_path_radiance(ray, molecular, aerosol, s_near, s_end);
                exact_count++;
              }
              local_scatter_phase(ray.direction(), molecular, aerosol);
              for (int m = 0; m < n; m++) sample[m] += weight * molecular[m];
              if (first_sample) {
                local_path_transmission(ray, t, s_near, s_end);
                for (int m = 0; m < n; m++) first_transmission[m] += weight * t[m];
              }
            }
          }
        }
        double* target = object_pass ? object_path : sky_path;
        for (int m = 0; m < n; m++) target[m] = sample[m];
      }

      // Radiance out is premultiplied by coverage, so the object's term is
      // coverage * (object * T + path) written without the division.
      for (int b = 0; b < n_out; b++) {
        const int m = band_of[b];
        const double scene = contour.radiance_out != nullptr ? contour.radiance_out[b][k] : 0.0;
        double value = 0.0, path = 0.0, through = 1.0;
        if (m >= 0) {
          through = first_transmission[m];
          if (!with_object) {
            path = sky_path[m];
            value = path;
          } else if (!with_sky) {
            path = object_path[m];
            value = scene * through + path;
          } else {
            path = coverage * object_path[m] + (1.0 - coverage) * sky_path[m];
            value = scene * through + path;
          }
        } else {
          value = with_object ? scene : 0.0;
        }
        channel[b] = static_cast<float>(value);
        matte_path[b] = static_cast<float>(path);
        matte_trans[b] = static_cast<float>(through);
        matte_no_air[b] = static_cast<float>(scene);
        transmission[b] = static_cast<float>(through);
      }

      if (sun_present && coverage < full_coverage) {
        // The sun's disc, widened by a pixel's diagonal on the image plane.
        TCRay centre;
        local.pixel_ray(row, col, centre);
        const double sun_radius = std::acos(sun_cos_radius);
        const double pixel = std::sqrt(local.step_elevation * local.step_elevation +
                                       local.step_azimuth * local.step_azimuth);
        const double reach = sun_radius + pixel;
        const double cos_reach = reach < tc_pi ? std::cos(reach) : -1.0;
        if (centre.direction().dot(sun_direction) >= cos_reach) {
          int inside = 0;
          for (int i = 0; i < sun_sub_pixels; i++) {
            for (int j = 0; j < sun_sub_pixels; j++) {
              TCRay ray;
              local.fractional_ray(row, col, (i + 0.5) / sun_sub_pixels, (j + 0.5) / sun_sub_pixels,
                                   ray);
              if (ray.direction().dot(sun_direction) < sun_cos_radius) continue;
              if (surface_shape == 1) {
                double hit_near = 0.0, hit_far = 0.0;
                if (sphere_roots(ray.origin(), ray.direction(), hit_near, hit_far) && hit_far > 0.0)
                  continue;
              } else if (!(ray[5] > 0.0)) {
                continue;
              }
              inside++;
            }
          }
          if (inside > 0) {
            const double weight = static_cast<double>(inside) / (sun_sub_pixels * sun_sub_pixels);
            double largest = 0.0;
            for (int m = 0; m < n; m++) {
              const double disc = sun_irradiance[m] / sun_solid_angle;
              if (disc > largest) largest = disc;
            }
            double scale = 1.0;
            if (sun_max_radiance < no_radiance_limit && largest > 0.0) {
              scale = sun_max_radiance / largest;
              if (scale > 1.0) scale = 1.0;
            }
            for (int m = 0; m < n; m++) t[m] = 1.0;
            if (air_type != 0) local_path_transmission(centre, t, s_near, tc_nothing);
            for (int b = 0; b < n_out; b++) {
              const int m = band_of[b];
              if (m < 0) continue;
              const double added =
                  (1.0 - coverage) * scale * sun_irradiance[m] / sun_solid_angle * weight * t[m];
              channel[b] = static_cast<float>(channel[b] + added);
            }
          }
        }
      }

      for (int b = 0; b < n_out; b++) contour.layer_radiance[b][row][col] = channel[b];
      contour.layer_coverage[row][col] = 1.0f;
      contour.layer_distance[row][col] = contour.total_distance[row][col];
      TCMatte_fields* fields = contour.matte_target;
      if (fields != nullptr) {
        const int targets[2] = {object_id, fields->n_objects};
        for (int target = 0; target < 2; target++) {
          write_matte(fields, targets[target], code_path_radiance, row, col, matte_path, n_out);
          write_matte(fields, targets[target], code_transmission, row, col, matte_trans, n_out);
          write_matte(fields, targets[target], code_no_air, row, col, matte_no_air, n_out);
        }
      }
    }
  }

  if (verbose) {
    std::cout << "radiance calculation statistics : "
              << "\n";
    std::cout << "aux table  : " << aux_table_count << "\n";
    std::cout << "main table : " << main_table_count << "\n";
    std::cout << "exact      : " << exact_count << "\n";
  }

  delete[] temp_radiance;
  delete[] channel;
  delete[] transmission;
  delete[] matte_path;
  delete[] matte_trans;
  delete[] matte_no_air;
  delete[] band_of;
  delete main_table;
  delete aux_table;
}
