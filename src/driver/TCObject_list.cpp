#include "TCObject_list.h"

#include <cstdlib>
#include <cstring>
#include <new>

#include "Bobbing_box_input.h"
#include "Cloud_input.h"
#include "Picture_input.h"
#include "Skydome_input.h"
#include "Solid_box_input.h"
#include "TCAir.h"
#include "TCAir_input.h"
#include "TCBobbing_box.h"
#include "TCCamera.h"
#include "TCCamera_input.h"
#include "TCError.h"
#include "TCObject.h"
#include "TCObject_input.h"
#include "TCObject_kinds.h"
#include "TCObject_list_input.h"
#include "TCOcean.h"
#include "TCPicture.h"
#include "TCPoly_object.h"
#include "TCPoly_object_input.h"
#include "TCRay.h"
#include "TCSkydome.h"
#include "TCSolid_Box.h"
#include "TCSpectrum.h"
#include "TCStar.h"
#include "TCStar_input.h"
#include "TCThermal_Box.h"
#include "TCVector.h"
#include "TCView.h"
#include "Thermal_box_input.h"
#include "cloud_class.h"
#include "object_contour.h"
#include "ocean_input.h"

namespace {

// The kinds the surface queries look at: the ones a point can be under.
int is_surface_kind(int type) {
  return type == TC_KIND_OCEAN || type == TC_KIND_AIR || type == TC_KIND_LAND;
}

void contour_allocation_failed() {
  std::cout << " unable to allocate object_contour array "
            << "\n";
  std::exit(1);
}

void refinement_allocation_failed() {
  std::cout << "unable to allocate memory for imaging"
            << "\n";
  std::exit(1);
}

}  // namespace

TCObject_list::TCObject_list()
    : n_objects(0),
      n_cameras(0),
      sun(nullptr),
      number_of_bands(0),
      objects_spectrum(nullptr),
      current_frame(1) {
  for (int i = 0; i < max_objects; i++) {
    objects[i] = nullptr;
    cameras[i] = nullptr;
    adopted_[i] = nullptr;
  }
}

TCObject_list::~TCObject_list() {
  destroy();
}

void TCObject_list::destroy() {
  for (int i = 0; i < max_objects; i++) {
    if (objects[i] != nullptr && objects[i] == adopted_[i]) delete objects[i];
    objects[i] = nullptr;
    adopted_[i] = nullptr;
  }
  n_objects = 0;
  for (int i = 0; i < max_objects; i++) {
    delete cameras[i];
    cameras[i] = nullptr;
  }
  n_cameras = 0;
  delete sun;
  sun = nullptr;
  delete[] objects_spectrum;
  objects_spectrum = nullptr;
  number_of_bands = 0;
}

int TCObject_list::add_runtime_object(TCObject* object) {
  if (object == nullptr) return 0;
  if (n_objects >= max_objects) {
    std::cout << "maximum number of objects exceeded "
              << "\n";
    return 0;
  }
  object->object_id = n_objects;
  object->list = this;
  object->scene = this;
  objects[n_objects] = object;
  adopted_[n_objects] = object;
  n_objects++;
  return 1;
}

int TCObject_list::remove_object(int index) {
  if (index < 0 || index >= n_objects || index >= max_objects) return 0;
  if (objects[index] != nullptr && objects[index] == adopted_[index]) delete objects[index];
  for (int i = index; i + 1 < n_objects; i++) {
    objects[i] = objects[i + 1];
    adopted_[i] = adopted_[i + 1];
    if (objects[i] != nullptr) objects[i]->object_id = i;
  }
  n_objects--;
  objects[n_objects] = nullptr;
  adopted_[n_objects] = nullptr;
  return 1;
}

int TCObject_list::set_bands(int count, const TCBand* bands) {
  if (count < 1 || bands == nullptr) {
    std::cout << "must define atleast one band"
              << "\n";
    return 0;
  }
  TCBand* copy = new (std::nothrow) TCBand[count];
  if (copy == nullptr) {
    std::cout << "unable to allocate bands "
              << "\n";
    std::exit(1);
  }
  for (int i = 0; i < count; i++) copy[i] = bands[i];
  delete[] objects_spectrum;
  objects_spectrum = copy;
  number_of_bands = count;
  return 1;
}

int TCObject_list::band_index(int id) const {
  for (int i = 0; i < number_of_bands; i++) {
    if (objects_spectrum[i].band_id == id) return i;
  }
  return -1;
}

// ---- Imaging passes ----

void TCObject_list::image_scene(int* active, TCView& view, TCSpectrum* spectrum,
                                float** radiance_out, double min_distance, object_contour* contour,
                                int keep_flag) {
  image_pass(main_pass, active, view, spectrum, radiance_out, min_distance, contour, keep_flag);
}

// A surface that sees the scene sees everything but itself.
void TCObject_list::all_but_source(int source_object, int* flags) {
  for (int i = 0; i < max_objects; i++) flags[i] = 1;
  if (source_object >= 0 && source_object < max_objects) flags[source_object] = 0;
}

void TCObject_list::image_scene_for_source(int source_object, TCView& view, TCSpectrum* spectrum,
                                           float** radiance_out, double min_distance,
                                           object_contour* contour) {
  int flags[max_objects];
  all_but_source(source_object, flags);
  image_pass(main_pass, flags, view, spectrum, radiance_out, min_distance, contour, 1);
}

void TCObject_list::image_with_contour(TCView& view, object_contour& contour) {
  image_pass(main_pass, contour.active, view, contour.spectrum, contour.radiance_out,
             contour.min_distance, &contour, 1);
}

void TCObject_list::image_scene_secondary(int* active, TCView& view, TCSpectrum* spectrum,
                                          float** radiance_out, double min_distance,
                                          object_contour* contour, int keep_flag) {
  image_pass(secondary_pass, active, view, spectrum, radiance_out, min_distance, contour,
             keep_flag);
}

void TCObject_list::image_scene_secondary_for_source(int source_object, TCView& view,
                                                     TCSpectrum* spectrum, float** radiance_out,
                                                     double min_distance, object_contour* contour) {
  int flags[max_objects];
  all_but_source(source_object, flags);
  image_pass(secondary_pass, flags, view, spectrum, radiance_out, min_distance, contour, 1);
}

void TCObject_list::image_secondary_with_contour(TCView& view, object_contour& contour) {
  image_pass(secondary_pass, contour.active, view, contour.spectrum, contour.radiance_out,
             contour.min_distance, &contour, 1);
}

void TCObject_list::image_surface_line(int* active, TCView& view, TCSpectrum* spectrum,
                                       float** radiance_out, double min_distance,
                                       object_contour* contour, int keep_flag) {
  image_pass(surface_line_pass, active, view, spectrum, radiance_out, min_distance, contour,
             keep_flag);
}

void TCObject_list::image_surface_line_for_source(int source_object, TCView& view,
                                                  TCSpectrum* spectrum, float** radiance_out,
                                                  double min_distance, object_contour* contour) {
  int flags[max_objects];
  all_but_source(source_object, flags);
  image_pass(surface_line_pass, flags, view, spectrum, radiance_out, min_distance, contour, 1);
}

void TCObject_list::image_surface_line_with_contour(TCView& view, object_contour& contour) {
  image_pass(surface_line_pass, contour.active, view, contour.spectrum, contour.radiance_out,
             contour.min_distance, &contour, 1);
}

void TCObject_list::paint(Pass pass, int index, TCView& view, object_contour& contour) {
  TCObject* object = objects[index];
  if (object == nullptr) return;
  if (pass == secondary_pass) {
    object->image_reflected(view, contour);
  } else if (pass == surface_line_pass) {
    object->image_surface_line(view, contour);
  } else {
    object->image_contour(view, contour);
  }
}

// The first layer of a contour whose first_flag is off is left in the layer
// for the next merge to carry.
void TCObject_list::paint_and_merge(Pass pass, int index, TCView& view, object_contour& contour) {
  paint(pass, index, view, contour);
  if (contour.first_flag == 0) {
    contour.first_flag = 1;
  } else {
    contour.merge_layer();
  }
}

void TCObject_list::image_pass(Pass pass, int* active, TCView& view, TCSpectrum* spectrum,
                               float** radiance_out, double min_distance, object_contour* contour,
                               int keep_flag) {
  const int n_bands = spectrum != nullptr ? spectrum->n : 0;
  const long n_pixels = static_cast<long>(view.n_rows) * view.n_cols;
  if (radiance_out != nullptr) {
    for (int b = 0; b < n_bands; b++) {
      for (long k = 0; k < n_pixels; k++) radiance_out[b][k] = 0.0f;
    }
  }
  if (n_objects <= 0) return;

  object_contour* own = nullptr;
  if (contour == nullptr) {
    own = new (std::nothrow)
        object_contour(view.n_rows, view.n_cols, spectrum, radiance_out,
                       static_cast<float>(min_distance), view.anti_alias, nullptr, nullptr);
    if (own == nullptr) contour_allocation_failed();
    contour = own;
  } else if (!keep_flag) {
    // A fresh start for the painting state only: which objects take part
    // and which one is forced are this pass's requests.
    int saved_active[max_objects];
    for (int i = 0; i < max_objects; i++) saved_active[i] = contour->active[i];
    const int saved_forced = contour->forced_object;
    contour->reset();
    for (int i = 0; i < max_objects; i++) contour->active[i] = saved_active[i];
    contour->forced_object = saved_forced;
  }

  // A reflected view carries no path radiance: the air paints it only once,
  // along the primary view.
  if (pass == secondary_pass) {
    for (int i = 0; i < n_objects; i++) {
      if (objects[i] != nullptr && objects[i]->get_type() == TC_KIND_AIR) active[i] = 0;
    }
  }

  for (int i = 0; i < n_objects; i++) {
    if (active[i] == 0) contour->active[i] = 0;
    active[i] = contour->active[i];
  }

  const int inside = object_containing(active, view.position);
  if (inside >= 0 && contour->min_distance == 0.0f && contour->near_limit_flag == 0) {
    // The view starts inside this object, so nothing else can be seen.
    paint(pass, inside, view, *contour);
    if (contour->first_flag) {
      if (pass != secondary_pass) contour->note_scene_of_lone_layer();
      if (radiance_out != nullptr) {
        for (int b = 0; b < n_bands; b++) {
          for (int row = 0; row < contour->n_rows && row < view.n_rows; row++) {
            for (int col = 0; col < contour->n_cols && col < view.n_cols; col++) {
              radiance_out[b][static_cast<long>(row) * view.n_cols + col] =
                  contour->layer_radiance[b][row][col];
            }
          }
        }
      }
    } else if (pass != secondary_pass) {
      contour->first_flag = 1;
    }
  } else if (contour->forced_object >= 0 && contour->forced_object < n_objects &&
             active[contour->forced_object]) {
    paint_and_merge(pass, contour->forced_object, view, *contour);
  } else if (pass == surface_line_pass) {
    for (int i = 0; i < n_objects; i++) {
      if (active[i] && objects[i] != nullptr && objects[i]->get_type() == TC_KIND_POLY) {
        paint_and_merge(pass, i, view, *contour);
      }
    }
    for (int i = 0; i < n_objects; i++) {
      if (active[i] && objects[i] != nullptr && objects[i]->get_type() == TC_KIND_OCEAN) {
        paint_and_merge(pass, i, view, *contour);
      }
    }
  } else {
    for (int i = 0; i < n_objects; i++) {
      if (active[i]) paint_and_merge(pass, i, view, *contour);
    }
  }

  if (pass != secondary_pass && view.anti_alias && contour->anti_alias && contour->any_marked) {
    refine_marked(pass, active, view, spectrum, radiance_out, *contour);
  }

  delete own;
}

// Each marked pixel is imaged again as a small view of its own with
// anti-aliasing off, so the inner pass never refines in turn. The sub-pixels
// keep the contour's min_distance and forced object; a per-pixel near limit
// is not carried into them.
void TCObject_list::refine_marked(Pass pass, int* active, TCView& view, TCSpectrum* spectrum,
                                  float** radiance_out, object_contour& contour) {
  const int sub_rows = view.resampling_elevation;
  const int sub_cols = view.resampling_azimuth;
  if (sub_rows < 1 || sub_cols < 1 || radiance_out == nullptr) return;
  const int n_bands = spectrum != nullptr ? spectrum->n : 0;
  const long n_sub = static_cast<long>(sub_rows) * sub_cols;

  float** scratch = new (std::nothrow) float*[n_bands > 0 ? n_bands : 1]();
  if (scratch == nullptr) refinement_allocation_failed();
  for (int b = 0; b < n_bands; b++) {
    scratch[b] = new (std::nothrow) float[n_sub]();
    if (scratch[b] == nullptr) refinement_allocation_failed();
  }

  for (int row = 0; row < contour.n_rows && row < view.n_rows; row++) {
    for (int col = 0; col < contour.n_cols && col < view.n_cols; col++) {
      if (!contour.marked[row][col]) continue;
      TCView sub_view;
      view.pixel_view(row, col, sub_view);
      sub_view.set_resolution(sub_rows, sub_cols);
      sub_view.anti_alias = 0;
      // A forced object stays forced in the sub-pixels it was forced in.
      object_contour sub_contour(sub_rows, sub_cols, spectrum, scratch, contour.min_distance, 0,
                                 nullptr, nullptr);
      sub_contour.forced_object = contour.forced_object;
      image_pass(pass, active, sub_view, spectrum, scratch, contour.min_distance, &sub_contour, 1);
      const long k = static_cast<long>(row) * view.n_cols + col;
      for (int b = 0; b < n_bands; b++) {
        double sum = 0.0;
        for (long s = 0; s < n_sub; s++) sum += scratch[b][s];
        radiance_out[b][k] = static_cast<float>(sum / n_sub);
      }
    }
  }

  for (int b = 0; b < n_bands; b++) delete[] scratch[b];
  delete[] scratch;
}

// ---- Single-ray queries ----

int TCObject_list::nearest_of(const int* wanted, const TCRay& ray, TCVector& hit) {
  const TCVector origin = ray.origin();
  int nearest = 0;
  double nearest_distance = 0.0;
  for (int i = 0; i < n_objects; i++) {
    if (!wanted[i] || objects[i] == nullptr) continue;
    if (objects[i]->point_inside_world(origin)) {
      hit = origin;
      return -(i + 1);
    }
    TCVector point;
    double distance = 0.0;
    if (objects[i]->ray_intersection(ray, point, distance) > 0) {
      if (nearest == 0 || distance < nearest_distance) {
        nearest = i + 1;
        nearest_distance = distance;
        hit = point;
      }
    }
  }
  return nearest;
}

int TCObject_list::nearest_except(int skip_index, const TCRay& ray, TCVector& hit) {
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) wanted[i] = i != skip_index;
  return nearest_of(wanted, ray, hit);
}

int TCObject_list::nearest_active(const int* flags, const TCRay& ray, TCVector& hit) {
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) wanted[i] = i < n_objects && flags[i] != 0;
  return nearest_of(wanted, ray, hit);
}

int TCObject_list::nearest_above_priority(int skip_index, const TCRay& ray, TCVector& hit) {
  const int in_range = skip_index >= 0 && skip_index < n_objects && objects[skip_index] != nullptr;
  const double floor = in_range ? objects[skip_index]->get_priority() : 0.0;
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) {
    wanted[i] =
        i < n_objects && objects[i] != nullptr && (!in_range || objects[i]->get_priority() > floor);
  }
  return nearest_of(wanted, ray, hit);
}

// Strictly greater keeps the earlier of equal priorities.
int TCObject_list::highest_of(const int* wanted, double floor, const TCVector& point) {
  int best = -1;
  double best_priority = floor;
  for (int i = 0; i < n_objects; i++) {
    if (!wanted[i] || objects[i] == nullptr) continue;
    const double priority = objects[i]->get_priority();
    if (priority <= best_priority) continue;
    if (objects[i]->point_inside_world(point)) {
      best = i;
      best_priority = priority;
    }
  }
  return best;
}

int TCObject_list::highest_inside(int skip_index, const TCVector& point) {
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) wanted[i] = i != skip_index;
  return highest_of(wanted, -1.0, point);
}

int TCObject_list::object_containing(const int* flags, const TCVector& point) {
  double floor = -1.0;
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) wanted[i] = 0;
  for (int i = 0; i < n_objects; i++) {
    if (objects[i] == nullptr) continue;
    if (flags[i]) {
      wanted[i] = 1;
    } else if (objects[i]->get_priority() > floor) {
      floor = objects[i]->get_priority();
    }
  }
  return highest_of(wanted, floor, point);
}

int TCObject_list::highest_surface_inside(const TCVector& point) {
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) {
    wanted[i] = i < n_objects && objects[i] != nullptr && is_surface_kind(objects[i]->get_type());
  }
  return highest_of(wanted, -1.0, point);
}

int TCObject_list::highest_surface_inside_flagged(const int* flags, const TCVector& point) {
  int wanted[max_objects];
  for (int i = 0; i < max_objects; i++) {
    wanted[i] = i < n_objects && flags[i] != 0 && objects[i] != nullptr &&
                is_surface_kind(objects[i]->get_type());
  }
  return highest_of(wanted, -1.0, point);
}

int TCObject_list::find_air() const {
  int air = -1;
  for (int i = 0; i < n_objects; i++) {
    if (objects[i] != nullptr && objects[i]->get_type() == TC_KIND_AIR) air = i;
  }
  return air;
}

int TCObject_list::find_by_name(const char* name, int& index) const {
  index = -1;
  if (name == nullptr) return 0;
  for (int i = 0; i < n_objects && i < max_objects; i++) {
    if (objects[i] != nullptr && std::strcmp(name, objects[i]->get_name()) == 0) index = i;
  }
  return index >= 0 ? 1 : 0;
}

// ---- The tracer's other queries ----

int TCObject_list::band_count() const {
  return number_of_bands;
}

const TCBand* TCObject_list::band_table() const {
  return objects_spectrum;
}

const TCStar* TCObject_list::star() const {
  return sun;
}

int TCObject_list::sun_irradiance_at(const TCVector& point, TCSpectrum& out, int excluded_id) {
  if (sun == nullptr) return 0;
  sun->irradiance_at(point, out, this, excluded_id);
  return 1;
}

int TCObject_list::object_count() const {
  return n_objects;
}

const char* TCObject_list::object_name(int index) const {
  if (index < 0 || index >= n_objects || index >= max_objects || objects[index] == nullptr)
    return nullptr;
  return objects[index]->get_name();
}

int TCObject_list::object_kind(int index) const {
  if (index < 0 || index >= n_objects || index >= max_objects || objects[index] == nullptr)
    return -1;
  return objects[index]->get_type();
}

int TCObject_list::air_radiance(const TCRay& ray, TCSpectrum& out) {
  const int air = find_air();
  if (air < 0) return 0;
  objects[air]->radiance(ray, out);
  return 1;
}

int TCObject_list::object_position(int index, TCVector& out) const {
  if (index < 0 || index >= n_objects || index >= max_objects || objects[index] == nullptr)
    return 0;
  out = objects[index]->get_position();
  return 1;
}

int TCObject_list::surface_height_under(int index, const TCVector& point, double& height,
                                        double& own_height) const {
  if (object_kind(index) != TC_KIND_OCEAN) return 0;
  const TCSurface_object* surface = dynamic_cast<const TCSurface_object*>(objects[index]);
  if (surface == nullptr) return 0;
  height = surface->point_height(point, own_height);
  return 1;
}

void TCObject_list::radiance_from(int index, int source_object, const TCRay& ray, TCSpectrum& out) {
  if (index < 0 || index >= n_objects || index >= max_objects || objects[index] == nullptr) return;
  objects[index]->radiance_from(source_object, ray, out);
}

// Not the list's own dispatch: no reset, no refinement, and the caller's
// first_flag decides whether the first layer is merged.
void TCObject_list::image_contour_for_source(int source_object, TCView& view,
                                             object_contour& contour) {
  for (int i = 0; i < n_objects && i < max_objects; i++) {
    if (i == source_object || !contour.active[i] || objects[i] == nullptr) continue;
    objects[i]->image_contour(view, contour);
    if (contour.first_flag == 0) {
      contour.first_flag = 1;
    } else {
      contour.merge_layer();
    }
  }
}

TCScene_tracer* scene_tracer_of(TCObject_list* list) {
  return list;
}

// ---- Frame data and state ----

void TCObject_list::write_all_frame_data(const char* stream_name, const char* frame_text,
                                         int with_whitecaps) {
  (void)with_whitecaps;  // read by the ocean's whitecap dump, when there is one
  for (int i = 0; i < n_objects; i++) {
    if (objects[i] != nullptr) objects[i]->write_frame_data(stream_name, frame_text);
  }
}

void TCObject_list::print_all(std::ostream& out) {
  if (sun != nullptr) {
    out << "  ";
    sun->print_state(out);
  }
  for (int i = 0; i < n_objects; i++) {
    if (objects[i] != nullptr) objects[i]->print_state(out);
  }
  for (int i = 0; i < n_cameras; i++) {
    out << "Camera " << i + 1 << "\n";
    if (cameras[i] != nullptr) cameras[i]->print_state(out);
  }
}

// The runtime object for a record, by kind; null for a kind this build has no
// runtime class for (the caller reports it). Kinds arrive here with their
// classes.
// The record's class follows from its code: the list input makes each record
// by the same table. known is 0 for a kind this build has no runtime class
// for; with known 1, null means the allocation failed.
static TCObject* make_runtime_object(TCObject_input& record, int& known) {
  known = 1;
  switch (record.type_code) {
    case TC_KIND_AIR:
      return new (std::nothrow) TCAir(static_cast<const TCAir_input&>(record));
    case TC_KIND_SOLID_BOX:
      return new (std::nothrow) TCSolid_Box(static_cast<const Solid_box_input&>(record));
    case TC_KIND_THERMAL_BOX:
      return new (std::nothrow) TCThermal_Box(static_cast<const Thermal_box_input&>(record));
    case TC_KIND_BOBBING_BOX:
      return new (std::nothrow) TCBobbing_box(static_cast<const Bobbing_box_input&>(record));
    case TC_KIND_SKYDOME:
      return new (std::nothrow) TCSkydome(static_cast<const Skydome_input&>(record));
    case TC_KIND_PICTURE:
      return new (std::nothrow) TCPicture(static_cast<const Picture_input&>(record));
    case TC_KIND_OCEAN:
      return new (std::nothrow) TCOcean(static_cast<const ocean_input&>(record));
    case TC_KIND_POLY:
      return new (std::nothrow) TCPoly_object(static_cast<const TCPoly_object_input&>(record));
    case TC_KIND_CLOUD:
      return new (std::nothrow) cloud_class(static_cast<const Cloud_input&>(record));
    default:
      known = 0;
      return nullptr;
  }
}

// Object codes of the kind table, 12 included: it names no kind, yet, like
// "caustic", it is known to the files and reported as missing from the build.
static int known_object_kind(int type) {
  return type >= TC_KIND_CLOUD && type <= TC_KIND_POLY;
}

// Kinds that change by themselves from frame to frame.
static int evolves_by_itself(int type) {
  return type == TC_KIND_CLOUD || type == TC_KIND_SPRAY || type == TC_KIND_BLOB ||
         type == TC_KIND_OCEAN || type == TC_KIND_BLOB_LITE || type == TC_KIND_SPRAY_LITE;
}

// A skydome or picture animated by "frames" loads its picture in set_time,
// so it must be updated every frame even when nothing else moves.
static int animated_by_frames(const TCObject_input& record) {
  if (record.type_code == TC_KIND_SKYDOME)
    return static_cast<const Skydome_input&>(record).animation == 101;
  if (record.type_code == TC_KIND_PICTURE)
    return static_cast<const Picture_input&>(record).animation == 101;
  return 0;
}

int TCObject_list::build(TCObject_list_input& input, int& needs_updates) {
  if (input.number_of_bands < 1 || input.objects_spectrum == nullptr) {
    std::cout << "must define atleast one band"
              << "\n";
    return 0;
  }
  if (!set_bands(input.number_of_bands, input.objects_spectrum)) return 0;
  needs_updates = 0;

  if (input.sun_flag && input.star_input != nullptr) {
    sun = new (std::nothrow) TCStar(*input.star_input);
    if (sun != nullptr && input.star_input->track.number_of_times > 1) needs_updates = 1;
  } else {
    sun = new (std::nothrow) TCStar();
  }
  if (sun == nullptr) {
    std::cout << "unable to allocate sun "
              << "\n";
    std::exit(1);
  }

  for (int i = 0; i < input.n_objects && i < max_objects; i++) {
    TCObject_input* record = input.objects[i];
    if (record == nullptr) continue;
    if (record->track.number_of_times > 1) needs_updates = 1;
    if (animated_by_frames(*record)) needs_updates = 1;
    record->object_id = i;
    record->start_time = 0.0;
    if (!known_object_kind(record->type_code)) {
      std::cout << "object type not valid "
                << "\n";
      return 0;
    }
    int known = 0;
    TCObject* object = make_runtime_object(*record, known);
    if (!known) {
      // A kind the files know whose runtime class this build does not have.
      std::cout << "CODING TCError: valid object type " << record->type_code
                << " not defined in program"
                << "\n";
      return 0;
    }
    if (object != nullptr && record->type_code == TC_KIND_OCEAN) {
      // The sea is built in steps that may fail, and it reads the scene's
      // bands while it is built.
      object->object_id = n_objects;
      object->list = this;
      object->scene = this;
      if (!static_cast<TCOcean*>(object)->construct(static_cast<const ocean_input&>(*record))) {
        delete object;
        object = nullptr;
      }
    }
    if (object == nullptr) {
      std::cout << "unable to allocate object " << i + 1 << "\n";
    }
    if (object == nullptr || !add_runtime_object(object)) {
      std::cout << "unable to add object " << i << " to object list "
                << "\n";
      std::exit(1);
    }
  }
  for (int i = 0; i < n_objects; i++) {
    if (evolves_by_itself(objects[i]->get_type())) needs_updates = 1;
  }

  for (int i = 0; i < input.n_cameras && i < max_objects; i++) {
    TCCamera_input* record = input.cameras[i];
    if (record == nullptr) continue;
    record->object_id = -1;
    TCCamera* camera = nullptr;
    if (record->type_code == TC_KIND_BOBBING_CAMERA) {
      camera = new (std::nothrow)
          TCBobbing_camera(static_cast<const TCBobbing_camera_input&>(*record), this);
    } else if (record->type_code == TC_KIND_CAMERA) {
      camera = new (std::nothrow) TCCamera(*record, this);
    } else {
      report_error("TCObject_list::build", "TCCamera type NOT valid", "");
      std::exit(1);
    }
    if (camera == nullptr) {
      std::cout << "unable to allocate camera" << i + 1 << "\n";
      std::exit(1);
    }
    cameras[n_cameras++] = camera;
  }
  return 1;
}
