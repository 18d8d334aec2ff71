// TCAir::image_contour: the scene first, then the air along every pixel,
// each ray worked out exactly.

#include <cmath>
#include <cstdlib>
#include <iostream>
#include <new>

#include "TCAir.h"
#include "TCConstants.h"
#include "TCMatte_fields.h"
#include "TCObject_list.h"
#include "TCSettings.h"
#include "TCView.h"
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

}  // namespace

void TCAir::image_contour(TCView& view, object_contour& contour) {
  // Everything else paints first, merged front to back as the list would.
  contour.first_flag = 1;
  if (list != nullptr) {
    for (int i = 0; i < list->n_objects && i < TCObject_list::max_objects; i++) {
      if (i == object_id || !contour.active[i] || list->objects[i] == nullptr) continue;
      list->objects[i]->image_contour(view, contour);
      if (contour.first_flag == 0) {
        contour.first_flag = 1;
      } else {
        contour.merge_layer();
      }
    }
  }
  exact_count = 0;
  const int n_out = contour.spectrum != nullptr ? contour.spectrum->n : 0;
  if (n_out <= 0) return;

  TCView local;
  view_in_object_frame(view, local);
  const int rows = view.n_rows < contour.n_rows ? view.n_rows : contour.n_rows;
  const int cols = view.n_cols < contour.n_cols ? view.n_cols : contour.n_cols;

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
      double near = contour.min_distance;
      if (contour.near_limit_flag && contour.near_limit != nullptr)
        near = contour.near_limit[row][col];
      const double s_near = near > 0.0 ? std::sqrt(near) : 0.0;
      const double depth = contour.total_distance[row][col];
      double s_object = depth > 0.0 ? std::sqrt(depth) : 0.0;
      if (s_object > tc_nothing) s_object = tc_nothing;

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
              local_path_radiance(ray, molecular, aerosol, s_near, s_end);
              local_scatter_phase(ray.direction(), molecular, aerosol);
              exact_count++;
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
    std::cout << "aux table  : " << 0 << "\n";
    std::cout << "main table : " << 0 << "\n";
    std::cout << "exact      : " << exact_count << "\n";
  }

  delete[] temp_radiance;
  delete[] channel;
  delete[] transmission;
  delete[] matte_path;
  delete[] matte_trans;
  delete[] matte_no_air;
  delete[] band_of;
}
