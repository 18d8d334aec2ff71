#include "TCOcean.h"

#include <climits>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <new>

#include "Boat_details_input.h"
#include "Height_grid_details_input.h"
#include "Ripple_details_input.h"
#include "Swell_details_input.h"
#include "TCBand.h"
#include "TCDisturbed_grid.h"
#include "TCHeight_grid.h"
#include "TCJerlov_water.h"
#include "TCKelvin_wake.h"
#include "TCMatte_fields.h"
#include "TCObject_kinds.h"
#include "TCOcean_words.h"
#include "TCScene_tracer.h"
#include "TCSettings.h"
#include "TCSwell_spectrum.h"
#include "TCTexture_plane.h"
#include "TCWave_spectrum.h"
#include "TCWind_wave_spectrum.h"
#include "Wake_details_input.h"
#include "Wall_details_input.h"
#include "object_contour.h"
#include "ocean_input.h"

namespace {

const double unbounded = 99999999.0;
const double degrees_per_radian = 180.0 / 3.1415926535;
// The matte of the boat hulls and their water lines.
const int hull_matte_code = 21;

// Lattice steps in a distance, held to what an int can count.
int steps_in(double distance, double spacing) {
  const double steps = std::trunc(distance / spacing);
  if (!(steps > -2.0e9)) return steps < 0.0 ? -2000000000 : 0;
  if (steps > 2.0e9) return 2000000000;
  return static_cast<int>(steps);
}

void copy_name(char* to, const char* from) {
  std::snprintf(to, 256, "%s", from);
}

// Kinds that carry a position of their own and are placed at minus it.
int placed_at_position(int code) {
  return code == TCOcean::code_ripple || code == TCOcean::code_wake ||
         code == TCOcean::code_height_grid || code == TCOcean::code_multiplier_grid ||
         code == TCOcean::code_boat;
}

// Kinds that report a new centre every frame.
int moves(int code) {
  return code == TCOcean::code_wake || code == TCOcean::code_boat ||
         code == TCOcean::code_height_grid || code == TCOcean::code_multiplier_grid;
}

// The allocation line of a kind whose field cannot be made.
const char* allocation_failure(int code) {
  switch (code) {
    case TCOcean::code_reflect:
      return "unable to allocate reflection disturbance ";
    case TCOcean::code_deform:
    case TCOcean::code_ripple:
      return "unable to allocate ripple disturbance ";
    case TCOcean::code_swell:
      return "unable to allocate swell grid ";
    case TCOcean::code_wake:
      return "unable to allocate wake grid ";
    case TCOcean::code_boat:
      return "unable to allocate boat grid ";
    case TCOcean::code_height_grid:
      return "unable to allocate height field grid ";
    case TCOcean::code_multiplier_grid:
      return "unable to allocate multiplier field grid ";
    default:
      return "unable to allocate disturbance ";
  }
}

}  // namespace

TCOcean::TCOcean(const ocean_input& input)
    : TCSurface_object(input),
      primary_seed(0),
      last_index(0),
      doubling_size(0),
      ocean_grid(nullptr),
      holder(nullptr),
      has_disturbances(0),
      ocean_field(nullptr),
      n_fields(0),
      n_walls(0),
      box_depth(input.box_depth),
      reference_time(input.reference_time),
      external_exact(0),
      air_coupling(1),
      reflection_method(0),
      shadow_method(0),
      max_exact_distance_sq(0.0),
      max_shadow_fraction(0.0),
      shadow_distance_sq(0.0),
      sharpening(0.0),
      include(0),
      keep_reflection_table(0),
      index_of_refraction(nullptr),
      snell_cosine(nullptr),
      a(nullptr),
      b(nullptr),
      c(nullptr),
      k(nullptr),
      refl(nullptr),
      spectrum_type(0),
      round_surface(0),
      surface_radius(unbounded),
      wind_speed(0.0),
      wind_direction(0.0),
      variable_wind(0),
      glitter_mode(0),
      sharpening_variable(0),
      n_sharpening(0),
      sharpening_angle(nullptr),
      sharpening_value(nullptr),
      sharpening_factor(0.0),
      glitter_threshold(0.0),
      saturated(0),
      saturation_band(0),
      saturation_threshold(0.0),
      sub_saturation_scale(nullptr),
      saturation_value(nullptr),
      whitecaps_on(0),
      whitecap_record(nullptr),
      cusp_on(0),
      cusp_factor(0.0),
      sunbeam_on(0),
      current_time(input.reference_time),
      height_low(0.0f),
      height_high(0.0f),
      table_level(0),
      n_levels(0),
      table_builds(0),
      reflected_contour(nullptr),
      refracted_contour(nullptr),
      fresnel_table(nullptr),
      irradiance_above(nullptr),
      irradiance_saved(nullptr),
      upwelling(nullptr),
      t_first(0.0),
      t_last(0.0),
      t_step(0.0),
      t_inverse(0.0),
      s_first(0.0),
      s_last(0.0),
      s_step(0.0),
      s_inverse(0.0),
      interior_mode(input.render_disturbances_interior),
      exclude_mask(input.exclude_mask),
      reflection_level(0),
      work_reflectance(nullptr),
      work_glitter(nullptr),
      work_table(nullptr),
      work_matte(nullptr),
      work_reflected(nullptr),
      work_refracted(nullptr),
      work_texture(nullptr),
      work_texture_out(nullptr),
      texture_list(nullptr),
      texture_planes(nullptr),
      n_texture_planes(0),
      texture_centre(nullptr),
      pixel_n(0),
      pixel_xs(nullptr),
      pixel_ys(nullptr),
      glitter_done(nullptr) {
  // From below, the sea is drawn one ray per pixel up to the water over
  // the camera rather than by the ridge-line sampler.
  underwater_plane = 1;
  for (int side = 0; side < 2; side++) {
    radiance_table[side] = nullptr;
    reflection_table[side] = nullptr;
    m_first[side] = m_last[side] = m_step[side] = m_inverse[side] = 0.0;
  }
  for (int i = 0; i < normal_points; i++) normal_table[i] = 0.0f;
  for (int a = 0; a < 71; a++) gauss_u[a] = 0.0;
  for (int b = 0; b < 31; b++) gauss_v[b] = 0.0;
  wind_file[0] = '\0';
  std::memset(&primary, 0, sizeof(Field_entry));
  for (int i = 0; i < most_fields; i++) {
    fields[i] = nullptr;
    std::memset(&field_info[i], 0, sizeof(Field_entry));
    wall_origin[i][0] = wall_origin[i][1] = 0.0;
    wall_orientation[i] = 0.0;
  }
  for (int i = 0; i < 100; i++) object_above[i] = 1;
  stored_sun[0] = stored_sun[1] = stored_sun[2] = unbounded;
  table_done[0] = table_done[1] = nullptr;
}

int TCOcean::whitecap_grid_count() const {
  if (whitecap_record == nullptr) return 1;
  const ocean_input& w = *whitecap_record;
  const double finest = std::fmin(w.whitecap_length_x, w.whitecap_length_y);
  const double count =
      std::floor(std::log(2.0 * w.whitecap_max_distance / finest) / std::log(2.0)) + 2.0;
  if (!(count >= 1.0)) return 1;
  return count > 1000.0 ? 1000 : static_cast<int>(count);
}

TCOcean::~TCOcean() {
  for (int i = 0; i < most_fields; i++) delete fields[i];
  delete ocean_field;
  delete[] index_of_refraction;
  delete[] snell_cosine;
  delete[] a;
  delete[] b;
  delete[] c;
  delete[] k;
  delete[] refl;
  delete[] sharpening_angle;
  delete[] sharpening_value;
  delete[] sub_saturation_scale;
  delete[] saturation_value;
  delete[] table_done[0];
  delete[] table_done[1];
  for (int side = 0; side < 2; side++) {
    delete[] radiance_table[side];
    delete[] reflection_table[side];
  }
  delete[] fresnel_table;
  delete[] irradiance_above;
  delete[] irradiance_saved;
  delete[] upwelling;
  delete[] work_reflectance;
  delete[] work_glitter;
  delete[] work_table;
  delete[] work_matte;
  delete[] work_reflected;
  delete[] work_refracted;
  delete[] work_texture;
  delete[] work_texture_out;
  for (int i = 0; i < n_texture_planes && texture_planes != nullptr; i++) delete texture_planes[i];
  delete[] texture_planes;
  delete[] texture_centre;
  delete[] glitter_done;
  delete reflected_contour;
  delete refracted_contour;
  // The surface layer must not reach the lattice while it is taken down.
  lattice = nullptr;
  delete ocean_grid;
}

int TCOcean::take_grid(const TCGrid_details_input& grid, int code, Field_entry& entry) {
  std::memset(&entry, 0, sizeof(Field_entry));
  entry.field_code = code;
  entry.n_x = grid.n_x;
  entry.n_y = grid.n_y;
  entry.dx = grid.dx;
  entry.dy = grid.dy;
  entry.periodic_x = grid.periodic_x;
  entry.periodic_y = grid.periodic_y;
  entry.record = &grid;
  copy_name(entry.spectrum_file, grid.spectrum_file);
  copy_name(entry.detail_file, grid.detail_file);
  if (code != code_ocean_grid && code != 0) return 1;
  const double ratio = grid.dx / grid.dy;
  if (!(ratio >= 0.999 && ratio <= 1.001)) {
    std::cout << "Error: TCGrid spacing on the ocean surface not square"
              << "\n";
    return 0;
  }
  entry.dy = entry.dx;
  return 1;
}

int TCOcean::construct(const ocean_input& input) {
  // 1. The primary lattice.
  for (int i = 0; i < most_fields; i++) {
    delete fields[i];
    fields[i] = nullptr;
    std::memset(&field_info[i], 0, sizeof(Field_entry));
  }
  n_fields = 0;
  n_walls = 0;
  has_disturbances = 0;
  if (!take_grid(input.primary_grid, 0, primary)) return 0;
  primary_seed = input.primary_grid.generate_file ? input.primary_grid.random_seed : 0;

  // 2. A further ocean lattice.
  if (input.number_aux_oceans > 1) {
    std::cout << "Not allowed more than 1 additional ocean grid"
              << "\n";
    return 0;
  }
  if (input.number_aux_oceans == 1) {
    if (!take_grid(input.secondary_grid, code_ocean_grid, field_info[0])) return 0;
    n_fields = 1;
    has_disturbances = 1;
  }

  // 3. The disturbances: walls to their own list, the rest as fields.
  for (int d = 0; d < input.n_disturbances; d++) {
    const TCGrid_details_input* record = input.disturbance(d);
    if (record == nullptr || record->field_code == 0) continue;
    has_disturbances = 1;
    const int code = record->field_code;
    if (code == code_wall) {
      if (n_walls >= most_fields) {
        std::cout << "unable to allocate reflecting line \n";
        std::cout << "too many disturbances on surface \n";
        std::cout.flush();
        std::exit(1);
      }
      const Wall_details_input& wall = static_cast<const Wall_details_input&>(*record);
      wall_origin[n_walls][0] = wall.position_x;
      wall_origin[n_walls][1] = wall.position_y;
      wall_orientation[n_walls] = wall.angle;
      n_walls++;
      continue;
    }
    if (n_fields >= most_fields) {
      // The lattice's tables hold 100 details.
      std::cout << "too many disturbances on surface: " << n_fields + 1 << ", at most "
                << most_fields << " fit\n";
      return 0;
    }
    Field_entry& entry = field_info[n_fields];
    take_grid(*record, code, entry);
    if (code == code_ripple) {
      const Ripple_details_input& ripple = static_cast<const Ripple_details_input&>(*record);
      entry.n_y = 1;
      entry.centre_x = ripple.position_x;
      entry.centre_y = ripple.position_y;
      entry.start_time = ripple.ripple_start_time;
    } else if (code == code_wake) {
      const Wake_details_input& wake = static_cast<const Wake_details_input&>(*record);
      entry.centre_x = wake.position_x;
      entry.centre_y = wake.position_y;
    } else if (code == code_boat) {
      const Boat_details_input& boat = static_cast<const Boat_details_input&>(*record);
      entry.centre_x = boat.position_x;
      entry.centre_y = boat.position_y;
    } else if (code == code_height_grid || code == code_multiplier_grid) {
      const Height_grid_details_input& grid =
          static_cast<const Height_grid_details_input&>(*record);
      entry.centre_x = grid.position_x;
      entry.centre_y = grid.position_y;
      entry.start_time = grid.number_of_key_times > 0 ? grid.key_times[0] : 0.0;
    }
    n_fields++;
  }

  // 4. The march step and the first box.
  const double spacing = primary.dx < primary.dy ? primary.dx : primary.dy;
  ray_step = spacing * 0.9;
  first_box();

  // 5. Times, shape and distances.
  reference_time = input.reference_time;
  round_surface = input.round_surface;
  surface_radius = input.surface_radius;
  max_distance = input.max_distance;
  last_index = steps_in(input.max_distance, spacing);
  doubling_size = steps_in(input.doubling_distance, spacing);

  // 6. Wind and water.
  variable_wind = input.variable_wind;
  copy_name(wind_file, input.wind_file);
  wind_speed = input.wind_velocity;
  wind_direction = input.wind_direction;
  spectrum_type = input.ocean_spectrum_type;
  if (input.jerlov_water_type < 0 || input.jerlov_water_type > 5) {
    std::cout << "water type " << input.jerlov_water_type << " is not valid"
              << "\n"
              << "must be 1,2,3,4,5,( or 0 for custom parameters)"
              << "\n";
    return 0;
  }

  // 7. Coupling with the rest of the scene.
  external_exact = input.external_exact != 0 ? 1 : 0;
  air_coupling = input.external_exact == 3 ? 0 : 1;
  max_exact_distance_sq =
      external_exact ? input.max_exact_distance * input.max_exact_distance : 9999999800000000.0;
  shadow_distance_sq = input.shadow_distance * input.shadow_distance;
  sharpening = input.exact_sharpening_factor;
  include = input.include;
  reflection_method = input.reflection_method;
  shadow_method = input.shadow_method;
  max_shadow_fraction = input.max_shadow_fraction;
  keep_reflection_table =
      (external_exact || input.texture_maps) && input.reflection_method == 1 ? 1 : 0;
  if (include == 0) external_exact = 0;

  // 8. Glitter, whitecaps and cusps, sunbeams, the bands.
  if (!take_glitter(input)) {
    std::cout << "unable to process glitter input "
              << "\n";
    return 0;
  }
  whitecaps_on = input.whitecaps ? 1 : 0;
  whitecap_record = &input;
  cusp_on = input.cusps ? 1 : 0;
  cusp_factor = input.cusps_scale;
  if (!take_bands(input)) {
    std::cout << "unable to process spectral part of input "
              << "\n";
    return 0;
  }

  // 9. The lattice.
  if (!build_lattice()) return 0;

  // 10. The wave spectra.
  if (!build_spectrum(input)) return 0;

  // 11. The disturbance fields.
  if (!build_fields()) {
    std::cout << "unable to initialize disturbance data structure "
              << "\n";
    return 0;
  }

  // 12. Starting states, written to their spectrum files when asked.
  ocean_field->initialize_field();
  for (int i = 0; i < n_fields; i++) {
    if (fields[i] != nullptr) fields[i]->initialize_field();
  }

  // 13. Table storage.
  allocate_surface_arrays();
  if (!build_textures(input)) {
    std::cout << "Error allocating texture memory\n";
    return 0;
  }
  if (!allocate_tables() || !allocate_light()) {
    std::cout << "unable to allocate ocean radiance tables "
              << "\n";
    return 0;
  }

  // 14. The clock and the sun the tables were made for.
  current_time = reference_time;
  stored_sun[0] = stored_sun[1] = stored_sun[2] = unbounded;
  reflected_contour =
      new (std::nothrow) object_contour(1, 1, object_spectrum, 0.0f, 0, nullptr, nullptr);
  if (reflected_contour == nullptr) {
    std::cout << "unable to allocate reflected contour in ocean constructor "
              << "\n";
    std::exit(1);
  }
  refracted_contour =
      new (std::nothrow) object_contour(1, 1, object_spectrum, 0.0f, 0, nullptr, nullptr);
  if (refracted_contour == nullptr) {
    std::cout << "unable to allocate refracted contour in ocean constructor "
              << "\n";
    std::exit(1);
  }
  // Views off the water are reflected views: objects shown only in
  // reflections draw there, and not in the camera's own view.
  reflected_contour->level = 1;
  refracted_contour->level = 1;
  if (verbose) print_parameters(std::cout);
  return 1;
}

void TCOcean::first_box() {
  // A periodic axis repeats without end; otherwise the box ends with the
  // lattice, or with the first further lattice or disturbance when there is
  // one.
  const Field_entry& sized = has_disturbances && n_fields > 0 ? field_info[0] : primary;
  TCVector extent = length;
  extent.x = primary.periodic_x ? unbounded : sized.n_x * sized.dx;
  extent.y = primary.periodic_y ? unbounded : sized.n_y * sized.dy;
  set_box(extent, box_centre);
  set_box_top(0.0);
}

int TCOcean::take_glitter(const ocean_input& input) {
  glitter_mode = input.glitter;
  sharpening_variable = input.sharpening_type == 1 ? 1 : 0;
  sharpening_factor = input.sharpening_factor;
  glitter_threshold = input.glitter_threshold;
  saturated = input.saturation_type ? 1 : 0;
  saturation_band = input.saturation_band;
  saturation_threshold = input.saturation_threshold;
  n_sharpening = sharpening_variable ? input.n_sharpening_angles : 0;
  if (n_sharpening < 0) n_sharpening = 0;
  if (n_sharpening > 0) {
    if (input.sharpening_angle == nullptr || input.sharpening_value == nullptr) return 0;
    sharpening_angle = new (std::nothrow) double[n_sharpening];
    sharpening_value = new (std::nothrow) double[n_sharpening];
    if (sharpening_angle == nullptr || sharpening_value == nullptr) return 0;
    for (int i = 0; i < n_sharpening; i++) {
      sharpening_angle[i] = input.sharpening_angle[i];
      sharpening_value[i] = input.sharpening_value[i];
    }
  }
  const int bands = input.number_of_bands > 0 ? input.number_of_bands : 0;
  if (saturated && bands > 0) {
    sub_saturation_scale = new (std::nothrow) double[bands]();
    saturation_value = new (std::nothrow) double[bands]();
    if (sub_saturation_scale == nullptr || saturation_value == nullptr) return 0;
    for (int i = 0; i < bands && i < input.n_saturation_values; i++) {
      if (input.sub_saturation_scale != nullptr)
        sub_saturation_scale[i] = input.sub_saturation_scale[i];
      if (input.saturation_values != nullptr) saturation_value[i] = input.saturation_values[i];
    }
  }
  return 1;
}

int TCOcean::take_bands(const ocean_input& input) {
  const int count = input.number_of_bands;
  if (count < 1 || input.band_ids == nullptr || input.index_of_refraction == nullptr) return 0;
  delete object_spectrum;
  object_spectrum = new (std::nothrow) TCSpectrum(count);
  index_of_refraction = new (std::nothrow) float[count];
  snell_cosine = new (std::nothrow) float[count];
  a = new (std::nothrow) double[count]();
  b = new (std::nothrow) double[count]();
  c = new (std::nothrow) double[count]();
  k = new (std::nothrow) double[count]();
  refl = new (std::nothrow) double[count]();
  if (object_spectrum == nullptr || index_of_refraction == nullptr || snell_cosine == nullptr ||
      a == nullptr || b == nullptr || c == nullptr || k == nullptr || refl == nullptr)
    return 0;
  n_bands = count;
  for (int i = 0; i < count; i++) {
    object_spectrum->band_id[i] = input.band_ids[i];
    const double n = input.index_of_refraction[i];
    index_of_refraction[i] = static_cast<float>(n);
    snell_cosine[i] = static_cast<float>(-std::sqrt(1.0 - 1.0 / (n * n)));
    if (input.jerlov_water_type == 0) {
      if (input.a != nullptr) a[i] = input.a[i];
      if (input.b != nullptr) b[i] = input.b[i];
      if (input.c != nullptr) c[i] = input.c[i];
      if (input.k != nullptr) k[i] = input.k[i];
      if (input.refl != nullptr) refl[i] = input.refl[i];
      continue;
    }
    TCJerlov_water water;
    const TCBand* table = scene != nullptr ? scene->band_table() : nullptr;
    const int n_table = scene != nullptr ? scene->band_count() : 0;
    if (!water.compute_for_band(table, n_table, input.band_ids[i], input.jerlov_water_type))
      return 0;
    a[i] = water.a;
    b[i] = water.b;
    c[i] = water.c;
    k[i] = water.k;
    refl[i] = water.refl;
  }
  return 1;
}

int TCOcean::build_lattice() {
  const int both_periodic = primary.periodic_x && primary.periodic_y;
  const int count = n_fields;
  int nx[most_fields], ny[most_fields];
  double dxs[most_fields], dys[most_fields];
  for (int i = 0; i < count; i++) {
    nx[i] = field_info[i].n_x;
    ny[i] = field_info[i].n_y;
    dxs[i] = field_info[i].dx;
    dys[i] = field_info[i].dy;
  }
  if (has_disturbances) {
    holder = both_periodic
                 ? new (std::nothrow)
                       TCDisturbed_grid(primary.n_x, primary.n_y, last_index, doubling_size, count,
                                        nx, ny, dxs, dys, nullptr, primary.dx, primary.dy)
                 : new (std::nothrow) TCDisturbed_grid(primary.n_x, primary.n_y, count, nx, ny, dxs,
                                                       dys, nullptr, primary.dx, primary.dy);
    ocean_grid = holder;
  } else {
    ocean_grid = both_periodic ? new (std::nothrow) TCGrid(primary.n_x, primary.n_y, last_index,
                                                           doubling_size, primary.dx, primary.dy)
                               : new (std::nothrow)
                                     TCGrid(primary.n_x, primary.n_y, primary.dx, primary.dy);
  }
  if (ocean_grid == nullptr) {
    std::cout << "NO MEMORY for ocean surface grid"
              << "\n";
    return 0;
  }
  if (ocean_grid->height == nullptr) {
    std::cout << "unable to allocate surface array for ocean "
              << "\n";
    return 0;
  }
  lattice = ocean_grid;
  ocean_grid->periodic_x = primary.periodic_x;
  ocean_grid->periodic_y = primary.periodic_y;
  ocean_grid->offset_x = primary.dx * 0.5 * primary.n_x;
  ocean_grid->offset_y = primary.dy * 0.5 * primary.n_y;
  if (round_surface) {
    ocean_grid->round_flag = 1;
    ocean_grid->radius = surface_radius;
  }
  if (cusp_on) ocean_grid->set_cusps(cusp_factor);
  set_box_top(0.0);
  if (holder == nullptr) return 1;

  for (int i = 0; i < count; i++) {
    const Field_entry& entry = field_info[i];
    if (entry.field_code == code_reflect) {
      // The scattering solution is laid out from the lattice's corner.
      holder->offset_x = 0.0;
      holder->offset_y = 0.0;
    }
    holder->detail_periodic[i] = entry.periodic_x || entry.periodic_y ? 1 : 0;
    if (placed_at_position(entry.field_code)) {
      holder->detail_offset[i][0] = -entry.centre_x;
      holder->detail_offset[i][1] = -entry.centre_y;
    } else {
      holder->detail_offset[i][0] = 0.5 * entry.dx * entry.n_x - entry.centre_x;
      holder->detail_offset[i][1] = 0.5 * entry.dy * entry.n_y - entry.centre_y;
    }
    switch (entry.field_code) {
      case code_ripple:
        holder->set_detail_radial(i);
        break;
      case code_multiplier_grid:
        holder->set_detail_multiplier(i);
        holder->set_detail_rotation(
            i, static_cast<const Height_grid_details_input*>(entry.record)->orientation);
        break;
      case code_height_grid:
        holder->set_detail_rotation(
            i, static_cast<const Height_grid_details_input*>(entry.record)->orientation);
        break;
      case code_wake:
        holder->set_detail_rotation(
            i, static_cast<const Wake_details_input*>(entry.record)->direction);
        break;
      case code_boat:
        holder->set_detail_rotation(
            i, static_cast<const Boat_details_input*>(entry.record)->direction);
        break;
      default:
        holder->set_detail_cartesian(i);
        break;
    }
  }
  for (int w = 0; w < n_walls; w++)
    holder->add_reflecting_line(wall_origin[w][0], wall_origin[w][1], wall_orientation[w]);
  return 1;
}

int TCOcean::build_spectrum(const ocean_input& input) {
  const double glassy = input.glassy_scale;
  // Two ocean lattices share the wavenumbers both can carry: each lattice's
  // band is the other's range.
  double low = unbounded, high = unbounded;
  // The further grid is field 0 when the file gives it as such, but an
  // ocean grid may also come in the disturbance list, at any place.
  int g = 0;
  while (g < n_fields && field_info[g].field_code != code_ocean_grid) g++;
  if (g < n_fields) {
    const Field_entry& second = field_info[g];
    const double p_low =
        std::fmin(1.0 / (primary.n_x * primary.dx), 1.0 / (primary.n_y * primary.dy));
    const double p_high = std::fmax(1.0 / (2.0 * primary.dx), 1.0 / (2.0 * primary.dy));
    const int seed = second.record->generate_file ? second.record->random_seed : 0;
    float* buffer = holder->detail_field[g];
    TCWave_spectrum* field =
        variable_wind ? new (std::nothrow) TCWind_wave_spectrum(
                            spectrum_type, seed, buffer, second.n_x, second.n_y, second.dx,
                            second.dy, p_low, p_high, wind_file, reference_time, glassy)
                      : new (std::nothrow)
                            TCWave_spectrum(spectrum_type, seed, buffer, second.n_x, second.n_y,
                                            second.dx, second.dy, p_low, p_high, wind_speed,
                                            wind_direction, reference_time, glassy);
    if (field == nullptr) return 0;
    field->set_spectrum_file(second.spectrum_file);
    fields[g] = field;
    low = std::fmin(1.0 / (second.n_x * second.dx), 1.0 / (second.n_y * second.dy));
    high = std::fmax(1.0 / (2.0 * second.dx), 1.0 / (2.0 * second.dy));
  }
  int n_grids = 0;
  for (int i = 0; i < n_fields; i++) n_grids += field_info[i].field_code == code_ocean_grid;
  if (n_grids > 1) {
    std::cout << "more than two ocean grids not yet implemented"
              << "\n";
    return 0;
  }
  if (variable_wind) {
    ocean_field = low < unbounded
                      ? new (std::nothrow)
                            TCWind_wave_spectrum(spectrum_type, primary_seed, ocean_grid->height,
                                                 primary.n_x, primary.n_y, primary.dx, primary.dy,
                                                 low, high, wind_file, reference_time, glassy)
                      : new (std::nothrow) TCWind_wave_spectrum(
                            spectrum_type, primary_seed, ocean_grid->height, primary.n_x,
                            primary.n_y, primary.dx, primary.dy, wind_file, reference_time, glassy);
  } else {
    ocean_field =
        low < unbounded
            ? new (std::nothrow)
                  TCWave_spectrum(spectrum_type, primary_seed, ocean_grid->height, primary.n_x,
                                  primary.n_y, primary.dx, primary.dy, low, high, wind_speed,
                                  wind_direction, reference_time, glassy)
            : new (std::nothrow) TCWave_spectrum(
                  spectrum_type, primary_seed, ocean_grid->height, primary.n_x, primary.n_y,
                  primary.dx, primary.dy, wind_speed, wind_direction, reference_time, glassy);
  }
  if (ocean_field == nullptr) return 0;
  ocean_field->set_spectrum_file(primary.spectrum_file);
  return 1;
}

int TCOcean::build_fields() {
  for (int i = 0; i < n_fields; i++) {
    const Field_entry& entry = field_info[i];
    if (entry.field_code == code_ocean_grid) continue;
    float* buffer = holder->detail_field[i];
    TCSurface_field* field = nullptr;
    switch (entry.field_code) {
      case code_swell:
        field = new (std::nothrow) TCSwell_spectrum(
            static_cast<const Swell_details_input&>(*entry.record), buffer, reference_time);
        break;
      case code_height_grid:
        field = new (std::nothrow)
            TCHeight_grid(static_cast<const Height_grid_details_input&>(*entry.record), buffer);
        break;
      case code_multiplier_grid:
        field = new (std::nothrow)
            TCMultiplier_grid(static_cast<const Height_grid_details_input&>(*entry.record), buffer);
        break;
      case code_wake:
        field = new (std::nothrow)
            TCKelvin_wake(static_cast<const Wake_details_input&>(*entry.record), buffer);
        break;
      default: {
        // Reflecting objects, deformations, ripples and boats are read
        // and placed, but their fields are not part of this build. Nothing
        // failed to allocate here, so the allocation line is not printed.
        const char* word = ocean_disturbance_type_word(entry.field_code);
        std::cout << "the " << (word != nullptr ? word : "unknown")
                  << " disturbance has no field class in this build"
                  << "\n";
        return 0;
      }
    }
    if (field == nullptr) {
      std::cout << allocation_failure(entry.field_code) << i << "\n";
      return 0;
    }
    fields[i] = field;
  }
  for (int i = 0; i < n_fields; i++) {
    if (fields[i] != nullptr) fields[i]->set_spectrum_file(field_info[i].spectrum_file);
  }
  return 1;
}

int TCOcean::allocate_tables() {
  int stride = ocean_grid->doubling_on ? ocean_grid->coarsest_stride() : 1;
  if (stride < 1) stride = 1;
  n_levels =
      static_cast<int>(std::floor(std::log(static_cast<double>(stride)) / std::log(2.0) + 0.001)) +
      2;
  for (int side = 0; side < 2; side++) {
    delete[] table_done[side];
    table_done[side] = new (std::nothrow) short[n_levels]();
    if (table_done[side] == nullptr) return 0;
  }
  return 1;
}

void TCOcean::set_box_top(double top) {
  TCVector extent = length;
  extent.z = box_depth + top;
  TCVector centre = box_centre;
  centre.z = (top - box_depth) * 0.5;
  set_box(extent, centre);
  if (ocean_grid != nullptr) ocean_grid->z_offset = -(top - box_depth) * 0.5;
}

void TCOcean::set_time(double t) {
  update_to_time(t);
}

void TCOcean::update_to_time(double t) {
  const double dt = t - reference_time;
  // Boats first: the other fields read their state.
  for (int i = 0; i < n_fields; i++) {
    if (fields[i] == nullptr || field_info[i].field_code != code_boat) continue;
    fields[i]->evolve_heights(dt);
    fields[i]->transform_to_lattice();
  }
  ocean_field->evolve_heights(dt);
  // Reflecting objects read the primary's spectrum before it is transformed.
  for (int i = 0; i < n_fields; i++) {
    if (fields[i] == nullptr || field_info[i].field_code != code_reflect) continue;
    fields[i]->evolve_heights(dt);
    fields[i]->transform_to_lattice();
  }
  ocean_field->transform_to_lattice();
  for (int i = 0; i < n_fields; i++) {
    const int code = field_info[i].field_code;
    if (code == code_reflect || code == code_boat) continue;
    if (fields[i] != nullptr) {
      fields[i]->evolve_heights(dt);
      fields[i]->transform_to_lattice();
    }
  }
  // Travellers report where they are; each field says so itself, whatever
  // class stands behind its code.
  for (int i = 0; i < n_fields && holder != nullptr; i++) {
    if (!moves(field_info[i].field_code) || fields[i] == nullptr) continue;
    fields[i]->moving_offset(holder->detail_offset[i][0], holder->detail_offset[i][1], dt);
  }
  float low = 0.0f, high = 0.0f;
  ocean_grid->height_range(low, high);
  ocean_grid->set_height_limits(low, high);
  height_low = low;
  height_high = high;
  const double top = high > -low ? high : -low;
  TCObject::set_time(t);
  set_box_top(top * 1.05);
  update_textures(t, scene != nullptr ? scene->frame_number() : 0);
  // Whitecaps would follow here, at their own time step.
  current_time = t;
}

void TCOcean::evolve_potentials(double t) {
  std::cout << "evolving velocity potentials to time " << t << "\n";
  const double dt = t - reference_time;
  ocean_field->evolve_potential(dt);
  for (int i = 0; i < n_fields; i++) {
    if (fields[i] != nullptr) fields[i]->evolve_potential(dt);
  }
}

double TCOcean::surface_height(double x, double y) {
  return ocean_grid->height_at(x, y, 1) - ocean_grid->z_offset;
}

void TCOcean::surface_slope(double x, double y, double& dzdx, double& dzdy) {
  ocean_grid->slope_at(x, y, dzdx, dzdy, 1);
}

int TCOcean::hull_covers(double x, double y) const {
  for (int i = 0; i < n_fields; i++) {
    if (fields[i] == nullptr || field_info[i].field_code != code_wake) continue;
    const TCKelvin_wake* wake = static_cast<const TCKelvin_wake*>(fields[i]);
    if (wake->hull_covers(x, y, current_time - reference_time)) return 1;
  }
  return 0;
}

void TCOcean::hull_mask(unsigned char* buffer, int n_cols, int n_rows) {
  if (buffer == nullptr || n_cols < 1 || n_rows < 1) return;
  // No field of this build draws a hull: the buffer is clear.
  std::memset(buffer, 0, static_cast<size_t>(n_cols) * static_cast<size_t>(n_rows));
}

void TCOcean::prepare_frame() {
  update_sun(scene);
  update_scene();
}

void TCOcean::update_scene() {
  int has_air = 0;
  for (int i = 0; scene != nullptr && i < scene->object_count(); i++) {
    if (scene->object_kind(i) == TC_KIND_AIR) has_air = 1;
  }
  const int moved = sun_direction.x != stored_sun[0] || sun_direction.y != stored_sun[1] ||
                    sun_direction.z != stored_sun[2];
  if (moved || has_air) {
    stored_sun[0] = sun_direction.x;
    stored_sun[1] = sun_direction.y;
    stored_sun[2] = sun_direction.z;
    // The sky's light on the water for this sun; the levels made for the
    // old one are stale.
    update_light();
    table_builds++;
    if (external_exact) {
      for (int side = 0; side < 2; side++) {
        for (int l = 0; l < n_levels && table_done[side] != nullptr; l++) table_done[side][l] = 0;
      }
    }
  }
  for (int i = 0; i < 100; i++) object_above[i] = 1;
  const double own_level = std::trunc(position.z);
  for (int i = 0; scene != nullptr && i < scene->object_count() && i < 100; i++) {
    TCVector where;
    if (!scene->object_position(i, where)) continue;
    if (!(where.z > own_level)) object_above[i] = 0;
  }
  ocean_field->set_footprint(1.0);
  table_level = 1;
}

void TCOcean::print_field(std::ostream& out, const Field_entry& entry) const {
  const char* size = "lattice size:           ";
  const char* spacing = "lattice spacing:        ";
  switch (entry.field_code) {
    case code_ocean_grid:
      out << "  ADDITIONAL OCEAN GRID :"
          << "\n";
      break;
    case code_reflect:
      out << "  REFLECTING GRID"
          << "\n";
      size = "reflecting lattice size:           ";
      spacing = "reflecting lattice spacing:        ";
      break;
    case code_ripple:
      out << " RIPPLE GRID"
          << "\n";
      size = "ripple lattice size:           ";
      spacing = "ripple lattice spacing:        ";
      break;
    case code_deform:
      out << "  DEFORMING GRID"
          << "\n";
      size = "deforming lattice size:           ";
      spacing = "deforming lattice spacing:        ";
      break;
    case code_swell:
      out << "  SWELL GRID"
          << "\n";
      size = "swell lattice size:           ";
      spacing = "swell lattice spacing:        ";
      break;
    case code_wake:
    case code_boat:
    case code_height_grid:
    case code_multiplier_grid:
      out << (entry.field_code == code_wake          ? "  WAKE GRID "
              : entry.field_code == code_boat        ? "  BOAT GRID "
              : entry.field_code == code_height_grid ? "  HEIGHT GRID "
                                                     : "  MULTIPLIER GRID ")
          << "\n";
      size = "grid lattice size:           ";
      spacing = "grid lattice spacing:        ";
      break;
    default:
      out << " REFLECTING WALL"
          << "\n";
      return;
  }
  out << size << entry.n_x << " " << entry.n_y << "\n";
  out << spacing << entry.dx << " " << entry.dy << "\n";
}

void TCOcean::print_parameters(std::ostream& out) const {
  out << "     OCEAN "
      << "\n";
  if (round_surface) {
    out << "surface type:           ROUND"
        << "\n"
        << "radius:                      " << surface_radius << "\n";
  } else {
    out << "surface type:           FLAT"
        << "\n";
  }
  switch (spectrum_type) {
    case 101:
      out << "surface waves:              PHILLIPS"
          << "\n";
      break;
    case 103:
      out << "surface waves:  yes "
          << "\n";
      break;
    case 104:
      out << "surface waves: glassy "
          << "\n";
      break;
    default:
      out << "surface waves:              NO"
          << "\n";
      break;
  }
  out << "maximum distance        " << max_distance << "\n";
  out << "wind velocity:          " << wind_speed << "\n";
  out << "wind direction:         " << wind_direction * degrees_per_radian << "\n";
  if (external_exact == 1) {
    out << "external coupling:     EXACT"
        << "\n"
        << "external_sharpening:  " << sharpening << "\n";
  } else {
    // Coupling is 0 or 1 by now, so the no-air form never shows: an input of
    // 3 prints as EXACT.
    out << "external coupling:     AIR_ONLY"
        << "\n";
  }
  if (verbose) {
    out << "     optical properties "
        << "\n";
    const double* rows[5] = {a, b, c, k, refl};
    const char* names[5] = {" a", " b", " c", " k", " effective reflection"};
    for (int r = 0; r < 5; r++) {
      out << names[r];
      for (int i = 0; i < n_bands && rows[r] != nullptr; i++) out << " " << rows[r][i];
      out << "\n";
    }
  }
  out << "  FIRST OCEAN GRID"
      << "\n";
  out << "lattice size:           " << primary.n_x << " " << primary.n_y << "\n";
  out << "lattice spacing:        " << primary.dx << " " << primary.dy << "\n";
  out << "periodicity:           " << primary.periodic_x << " " << primary.periodic_y << "\n";
  for (int i = 0; i < n_fields; i++) print_field(out, field_info[i]);
  for (int w = 0; w < n_walls; w++) {
    out << "  REFLECTING WALL "
        << "\n";
    out << "origin  " << wall_origin[w][0] << " " << wall_origin[w][1] << "\n";
    out << "orientation " << wall_orientation[w] << "\n";
  }
  if (glitter_mode == 1) {
    out << "glitter:                on"
        << "\n";
  } else if (glitter_mode == 202) {
    out << "glitter:                exact"
        << "\n";
  } else if (glitter_mode == 200) {
    // The exact form is tested inside the enhanced branch, so it never
    // prints there; 201 falls to the off line.
    if (glitter_mode == 201) {
      out << "glitter:                enhanced_exact"
          << "\n";
    } else {
      out << "glitter:                enhanced"
          << "\n";
    }
    if (sharpening_variable) {
      out << "variable_sharpening"
          << "\n"
          << " angle  sharpening"
          << "\n";
      for (int i = 0; i < n_sharpening; i++)
        out << sharpening_angle[i] * degrees_per_radian << " " << sharpening_value[i] << "\n";
    } else {
      out << "sharpening factor:     " << sharpening_factor << "\n";
    }
    out << "threshold:             " << glitter_threshold << "\n";
    if (saturated) {
      out << "glitter saturated"
          << "\n";
      out << "threshold value of          " << saturation_threshold << "\n";
      out << "on band #                   " << saturation_band + 1 << "\n";
      // These texts end in their separator: the values follow one space apart.
      out << "sub saturation scaling: ";
      for (int i = 0; i < n_bands && sub_saturation_scale != nullptr; i++)
        out << (i > 0 ? " " : "") << sub_saturation_scale[i];
      out << "\n";
      out << "saturation values: ";
      for (int i = 0; i < n_bands && saturation_value != nullptr; i++)
        out << (i > 0 ? " " : "") << saturation_value[i];
      out << "\n";
    }
  } else {
    out << "glitter: off"
        << "\n";
  }
  if (whitecaps_on && whitecap_record != nullptr) {
    const ocean_input& w = *whitecap_record;
    out << "whitecaps: on"
        << "\n"
        << "       whitecap parameters      "
        << "\n";
    out << "  sampling region center:  " << w.whitecap_center_x << " " << w.whitecap_center_y
        << "\n";
    out << "  sampling region length:  " << w.whitecap_length_x << " " << w.whitecap_length_y
        << "\n";
    out << "  sampling interval     :  " << w.whitecap_interval_x << " " << w.whitecap_interval_y
        << "\n";
    out << "  number of grids       :  " << whitecap_grid_count() << "\n";
    out << "  reference time:          " << w.whitecap_reference_time << "\n";
    out << "  evolution increment:     " << w.whitecap_time_increment << "\n";
    out << "  ramp up time:            " << w.whitecap_initialization_time << "\n";
    out << "  ramp up increment:       " << w.whitecap_initialization_increment << "\n";
    out << "  formation time:          " << w.whitecap_formation_time << "\n";
    out << "  decay time:              " << w.whitecap_decay_time << "\n";
    out << "  thresholds:              " << w.acceleration_threshold_low << " "
        << w.acceleration_threshold_high << "\n";
    out << "  reflectivities           " << w.whitecap_reflectivity_low << " "
        << w.whitecap_reflectivity_high << "\n";
    out << "  acceleration_offset      " << w.acceleration_time_offset << "\n";
    if (w.whitecap_generation == 1 || w.whitecap_generation == -2 || w.whitecap_generation == 2) {
      out << "  inputting initial whitecap configuration from " << w.initial_state_file << "\n";
    } else {
      out << "  outputting initial whitecap configuration to " << w.initial_state_file << "\n";
    }
  } else {
    out << "whitecaps: off "
        << "\n";
  }
  if (cusp_on) {
    out << "cusps:  on "
        << "\n"
        << "cuspy factor:  " << cusp_factor << "\n";
  } else {
    out << "cusps: off"
        << "\n";
  }
  if (sunbeam_on) {
    out << "Max Range for sunbeam imaging: " << 0.0 << " meters."
        << "\n";
  }
}

void TCOcean::image_contour(TCView& view, object_contour& contour) {
  image_hull_matte(view, contour);
  TCSurface_object::image_contour(view, contour);
}

void TCOcean::image_hull_matte(TCView&, object_contour& contour) {
  int first = 0, count = 0;
  if (contour.matte_target == nullptr ||
      !contour.matte_target->is_wanted(object_id, hull_matte_code, first, count))
    return;
  std::cout << "generating boat hull matte " << std::endl;
  std::cout << "done generating boat hull matte " << std::endl;
}
