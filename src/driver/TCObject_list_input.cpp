#include "TCObject_list_input.h"

#include <cstdlib>
#include <new>

#include "Bobbing_box_input.h"
#include "Cloud_input.h"
#include "Picture_input.h"
#include "Skydome_input.h"
#include "Solid_box_input.h"
#include "TCAir_input.h"
#include "TCCamera_input.h"
#include "TCData_file.h"
#include "TCObject_input.h"
#include "TCObject_kinds.h"
#include "TCPoly_object_input.h"
#include "TCStar_input.h"
#include "Thermal_box_input.h"
#include "ocean_input.h"

namespace {

// Band rows room before any has been read; it then doubles as rows arrive,
// up to the count the file claims.
const int first_band_capacity = 16;

// Object kinds are numbered 1 to 19; 12 is kept free and has no kind.
const int first_object_code = 1;
const int last_object_code = 19;

// Cameras are not objects and never get an object number.
const int camera_object_id = -1;

// The word a record of a kind made here carries on its object line.
const char* object_kind_word(int type_code) {
  switch (type_code) {
    case TC_KIND_CLOUD:
      return "cloud";
    case TC_KIND_WATER:
      return "water";
    case TC_KIND_FLAT_GROUND:
      return "plane";
    case TC_KIND_POINT:
      return "point";
    case TC_KIND_BLOB_LITE:
      return "blob_lite";
    case TC_KIND_SPRAY_LITE:
      return "spray_lite";
    case TC_KIND_POLY:
      return "poly";
    default:
      return "type_name";
  }
}

void report_no_record(int type_code) {
  std::cout << "CODING TCError: valid object type " << type_code << " not defined in program"
            << "\n";
}

}  // namespace

TCObject_list_input::TCObject_list_input()
    : n_objects(0),
      n_cameras(0),
      sun_flag(0),
      star_input(nullptr),
      number_of_bands(0),
      objects_spectrum(nullptr),
      version(2) {
  for (int i = 0; i < max_objects; i++) {
    objects[i] = nullptr;
    cameras[i] = nullptr;
  }
}

TCObject_list_input::~TCObject_list_input() {
  release();
}

void TCObject_list_input::release() {
  for (int i = 0; i < n_objects; i++) {
    delete objects[i];
    objects[i] = nullptr;
  }
  n_objects = 0;
  for (int i = 0; i < n_cameras; i++) {
    delete cameras[i];
    cameras[i] = nullptr;
  }
  n_cameras = 0;
  delete star_input;
  star_input = nullptr;
  sun_flag = 0;
  delete[] objects_spectrum;
  objects_spectrum = nullptr;
  number_of_bands = 0;
}

TCObject_input* TCObject_list_input::new_object_record(int type_code, Record_status& status) {
  TCObject_input* record = nullptr;
  switch (type_code) {
    // Kinds whose file holds nothing beyond the object line.
    case TC_KIND_WATER:
    case TC_KIND_FLAT_GROUND:
    case TC_KIND_POINT:
    case TC_KIND_BLOB_LITE:
    case TC_KIND_SPRAY_LITE:
      record = new (std::nothrow) TCObject_input;
      break;
    case TC_KIND_SOLID_BOX:
      record = new (std::nothrow) Solid_box_input;
      break;
    case TC_KIND_THERMAL_BOX:
      record = new (std::nothrow) Thermal_box_input;
      break;
    case TC_KIND_BOBBING_BOX:
      record = new (std::nothrow) Bobbing_box_input;
      break;
    case TC_KIND_SKYDOME:
      record = new (std::nothrow) Skydome_input;
      break;
    case TC_KIND_PICTURE:
      record = new (std::nothrow) Picture_input;
      break;
    case TC_KIND_OCEAN:
      record = new (std::nothrow) ocean_input;
      break;
    case TC_KIND_AIR:
      record = new (std::nothrow) TCAir_input;
      break;
    case TC_KIND_POLY:
      record = new (std::nothrow) TCPoly_object_input;
      break;
    case TC_KIND_CLOUD:
      record = new (std::nothrow) Cloud_input;
      break;

      // Kinds with records of their own come here as their classes are added:
      // land 2, spray 8, blob 10. Caustic 15 and code 12 never get one.

    default:
      status = (type_code >= first_object_code && type_code <= last_object_code)
                   ? no_record_in_build
                   : no_such_kind;
      return nullptr;
  }
  status = record ? record_made : record_not_allocated;
  return record;
}

int TCObject_list_input::read_list(std::istream& in) {
  release();
  if (!read_bands(in)) return 0;
  if (!read_sun(in)) return 0;
  if (!read_objects(in)) return 0;
  if (!read_cameras(in)) return 0;
  // A value the stream could not give leaves its field as it was; a section
  // cut short or malformed anywhere fails here.
  return in.fail() ? 0 : 1;
}

int TCObject_list_input::read_bands(std::istream& in) {
  skip_token(in);  // "number_of_bands:"
  int count = 0;
  read_int(in, count);
  if (count < 1) {
    std::cout << "must define atleast one band"
              << "\n";
    std::exit(1);
  }
  for (int k = 0; k < 3; k++) skip_token(in);  // "width center_wavelength band_id"

  int capacity = 0;
  while (number_of_bands < count) {
    TCBand row;
    if (!read_int(in, row.band_id) || !read_double(in, row.center_wavelength) ||
        !read_double(in, row.width))
      return 0;
    if (number_of_bands == capacity) {
      int grown = count;
      if (capacity == 0 && count > first_band_capacity) grown = first_band_capacity;
      if (capacity > 0 && capacity <= count / 2) grown = 2 * capacity;
      TCBand* larger = new (std::nothrow) TCBand[grown];
      if (larger == nullptr) return 0;
      for (int i = 0; i < number_of_bands; i++) larger[i] = objects_spectrum[i];
      delete[] objects_spectrum;
      objects_spectrum = larger;
      capacity = grown;
    }
    objects_spectrum[number_of_bands++] = row;
  }
  return 1;
}

int TCObject_list_input::read_sun(std::istream& in) {
  skip_token(in);  // "sun_flag:"
  read_int(in, sun_flag);
  if (sun_flag == 0) return 1;

  star_input = new (std::nothrow) TCStar_input;
  if (star_input == nullptr) {
    std::cout << "unable to allocate Star input pointer "
              << "\n";
    return 0;
  }
  star_input->list = this;
  star_input->version = version;
  if (!star_input->read_list_block(in)) {
    std::cout << "unable to process star input stream "
              << "\n";
    return 0;
  }
  if (!star_input->read_file(star_input->object_file)) {
    std::cout << "unable to process star input file "
              << "\n";
    return 0;
  }
  return 1;
}

int TCObject_list_input::read_objects(std::istream& in) {
  skip_token(in);  // "number_of_objects:"
  int count = 0;
  read_int(in, count);
  if (count > max_objects) {
    std::cout << "can only have " << max_objects << " objects "
              << "\n";
    return 0;
  }

  for (int i = 0; i < count; i++) {
    TCObject_input scratch;
    scratch.version = version;
    // A line cut short is as unusable as one naming an unknown kind.
    if (!scratch.read_object_line(in) || in.fail()) {
      std::cout << "object type not valid "
                << "\n";
      return 0;
    }
    Record_status status = record_made;
    TCObject_input* record = new_object_record(scratch.type_code, status);
    if (record == nullptr) {
      if (status == record_not_allocated) {
        std::cout << "unable to allocate input structure "
                  << "\n";
      } else {
        report_no_record(scratch.type_code);
      }
      return 0;
    }
    objects[n_objects++] = record;

    scratch.object_id = i;
    scratch.list = this;
    scratch.version = version;
    if (!record->process_input(scratch)) {
      std::cout << "unable to process input structure "
                << "\n";
      return 0;
    }
  }
  return 1;
}

int TCObject_list_input::read_cameras(std::istream& in) {
  skip_token(in);  // "number_of_cameras:"
  int count = 0;
  read_int(in, count);
  if (count > max_objects) {
    std::cout << "maximum number of cameras exceeded "
              << "\n";
    return 0;
  }

  for (int i = 0; i < count; i++) {
    TCObject_input scratch;
    scratch.version = version;
    const int line_read = scratch.read_camera_line(in) && !in.fail();
    TCCamera_input* record = nullptr;
    if (line_read && scratch.type_code == TC_KIND_BOBBING_CAMERA) {
      record = new (std::nothrow) TCBobbing_camera_input;
    } else if (line_read && scratch.type_code == TC_KIND_CAMERA) {
      record = new (std::nothrow) TCCamera_input;
    } else {
      std::cout << "TCCamera type NOT valid"
                << "\n";
      return 0;
    }
    if (record == nullptr) {
      std::cout << "unable to allocate camera input "
                << "\n";
      return 0;
    }
    cameras[n_cameras++] = record;

    scratch.object_id = camera_object_id;
    scratch.list = this;
    scratch.version = version;
    record->version = version;
    if (version < 2) {
      // Older lists hold the matte request here, not in the camera's file;
      // the file then sets the slices.
      record->image_slices = 0;
      if (!record->matte.read(in)) {
        std::cout << "unable to process camera file "
                  << "\n";
        return 0;
      }
    }
    if (!record->process_input(scratch)) {
      std::cout << "unable to process camera file "
                << "\n";
      return 0;
    }
    if (!camera_bands_known(*record)) return 0;
  }
  return 1;
}

// A band the table lacks would leave a plane of zeros in every picture.
int TCObject_list_input::camera_bands_known(const TCCamera_input& camera) const {
  for (int b = 0; b < camera.bands.n; b++) {
    const int id = camera.bands.band_id[b];
    if (band_index(id) >= 0) continue;
    std::cout << "camera file " << camera.object_file << ": band_id " << id
              << " is not in the scene's band table"
              << "\n";
    return 0;
  }
  return 1;
}

int TCObject_list_input::write_list(std::ostream& out) const {
  set_file_precision(out);
  out << "number_of_bands: " << number_of_bands << "\n";
  out << "width "
      << "center_wavelength "
      << "band_id "
      << "\n";
  for (int i = 0; i < number_of_bands; i++) {
    const TCBand& band = objects_spectrum[i];
    out << band.band_id << " " << band.center_wavelength << " " << band.width << "\n";
  }

  if (sun_flag != 0 && star_input != nullptr) {
    out << "sun_flag    1 "
        << "\n";
    if (!star_input->write_list_block(out)) return 0;
  } else {
    out << "sun_flag: 0"
        << "\n";
  }

  out << "number_of_objects: " << n_objects << "\n";
  for (int i = 0; i < n_objects; i++) {
    if (!objects[i]->write_object_line(out)) return 0;
  }

  out << "number_of_cameras: " << n_cameras << "\n";
  for (int i = 0; i < n_cameras; i++) {
    if (!cameras[i]->write_camera_line(out)) return 0;
    // Written here from version 2 although the reader then takes it from
    // the camera's own file; kept as the engine has always written it.
    if (version >= 2 && !cameras[i]->matte.write(out)) return 0;
  }
  return out ? 1 : 0;
}

int TCObject_list_input::write_files() const {
  for (int i = 0; i < n_objects; i++) {
    if (!objects[i]->write_file(objects[i]->object_file)) return 0;
  }
  for (int i = 0; i < n_cameras; i++) {
    if (!cameras[i]->write_file(cameras[i]->object_file)) return 0;
  }
  if (star_input != nullptr && !star_input->write_file(star_input->object_file)) return 0;
  return 1;
}

TCObject_input* TCObject_list_input::add_object(int type_code, const char* name, const char* file,
                                                double priority, const TCKeyframes& track) {
  if (n_objects >= max_objects) {
    std::cout << "maximum number of objects exceeded "
              << "\n";
    return nullptr;
  }
  Record_status status = record_made;
  TCObject_input* record = new_object_record(type_code, status);
  if (record == nullptr) {
    if (status == no_such_kind) {
      std::cout << "invalid object type "
                << "\n";
    } else if (status == no_record_in_build) {
      report_no_record(type_code);
    } else {
      std::cout << "unable to allocate object pointer "
                << "\n";
    }
    return nullptr;
  }
  record->track = track;
  record->priority = priority;
  record->list = this;
  record->object_id = n_objects;
  record->start_time = 0.0;
  copy_text(record->object_name, name ? name : "type_name", 256);
  copy_text(record->object_type, object_kind_word(type_code), 256);
  record->type_code = type_code;
  record->version = version;
  copy_text(record->object_file, file ? file : "", 256);
  objects[n_objects++] = record;
  return record;
}

TCCamera_input* TCObject_list_input::add_camera(int type_code, const char* file,
                                                const TCKeyframes& track) {
  if (n_cameras >= max_objects) {
    std::cout << "maximum number of cameras exceeded "
              << "\n";
    return nullptr;
  }
  TCCamera_input* record = nullptr;
  if (type_code == TC_KIND_BOBBING_CAMERA) {
    record = new (std::nothrow) TCBobbing_camera_input;
  } else if (type_code == TC_KIND_CAMERA) {
    record = new (std::nothrow) TCCamera_input;
  } else {
    std::cout << "invalid camera type "
              << "\n";
    return nullptr;
  }
  if (record == nullptr) {
    std::cout << "unable to allocate Camera input pointer "
              << "\n";
    return nullptr;
  }
  // As a camera line read from a list would leave it.
  record->track = track;
  record->priority = -1.0;
  record->list = this;
  record->object_id = camera_object_id;
  copy_text(record->object_name, "type_name", 256);
  record->version = version;
  copy_text(record->object_file, file ? file : "", 256);
  cameras[n_cameras++] = record;
  return record;
}

TCStar_input* TCObject_list_input::add_sun(const char* file) {
  if (star_input != nullptr) {
    std::cout << "sun already allocated "
              << "\n";
    return nullptr;
  }
  star_input = new (std::nothrow) TCStar_input;
  if (star_input == nullptr) {
    std::cout << "unable to allocate Star input pointer "
              << "\n";
    return nullptr;
  }
  star_input->list = this;
  star_input->version = version;
  copy_text(star_input->object_file, file ? file : "", 256);
  sun_flag = 1;
  return star_input;
}

int TCObject_list_input::remove_input(const TCObject_input* pointer) {
  if (pointer != nullptr) {
    for (int i = 0; i < n_objects; i++) {
      if (objects[i] != pointer) continue;
      delete objects[i];
      for (int j = i; j + 1 < n_objects; j++) objects[j] = objects[j + 1];
      objects[--n_objects] = nullptr;
      renumber_objects();
      return 1;
    }
    for (int i = 0; i < n_cameras; i++) {
      if (cameras[i] != pointer) continue;
      delete cameras[i];
      for (int j = i; j + 1 < n_cameras; j++) cameras[j] = cameras[j + 1];
      cameras[--n_cameras] = nullptr;
      return 1;
    }
    if (star_input != nullptr && star_input == pointer) {
      delete star_input;
      star_input = nullptr;
      sun_flag = 0;
      return 1;
    }
  }
  std::cout << " pointer does not match any pointers in object_list_input "
            << "\n"
            << " nothing deleted "
            << "\n";
  return 0;
}

void TCObject_list_input::renumber_objects() {
  for (int i = 0; i < n_objects; i++) objects[i]->object_id = i;
}

int TCObject_list_input::band_index(int id) const {
  for (int i = 0; i < number_of_bands; i++) {
    if (objects_spectrum[i].band_id == id) return i;
  }
  return -1;
}
