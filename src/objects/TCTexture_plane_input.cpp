#include "TCTexture_plane_input.h"

#include <cstdlib>
#include <new>

#include "TCData_file.h"

namespace {

// A range array of count doubles, zeroed; at least one so that a negative
// count from a hostile file never reaches new[]. Null on failure.
double* new_range(int count) {
  return new (std::nothrow) double[count > 0 ? count : 1]();
}

void fail_allocation(const char* message) {
  std::cout << message;
  std::cout.flush();
  std::exit(1);
}

void copy_values(double* target, const double* source, int count) {
  if (target == nullptr || source == nullptr) return;
  for (int i = 0; i < count; i++) target[i] = source[i];
}

}  // namespace

TCTexture_plane_input::TCTexture_plane_input()
    : width(0.0),
      height(0.0),
      whole_picture(1),
      first_x(0),
      last_x(0),
      first_y(0),
      last_y(0),
      make_levels(1),
      periodic(0),
      side_code(0),
      n_bands(0),
      min_above(nullptr),
      max_above(nullptr),
      min_below(nullptr),
      max_below(nullptr),
      priority(0),
      center_x(0.0),
      center_y(0.0),
      orientation(0.0),
      animation_flag(0),
      v_x(0.0),
      v_y(0.0),
      t_o(0.0),
      new_picture_flag(0),
      update_flag(1),
      above_storage(0),
      below_storage(0) {
  picture_file[0] = '\0';
  base_file_name[0] = '\0';
}

TCTexture_plane_input::TCTexture_plane_input(const TCTexture_plane_input& other)
    : min_above(nullptr),
      max_above(nullptr),
      min_below(nullptr),
      max_below(nullptr),
      above_storage(0),
      below_storage(0) {
  copy_from(other);
}

TCTexture_plane_input& TCTexture_plane_input::operator=(const TCTexture_plane_input& other) {
  if (this != &other) copy_from(other);
  return *this;
}

TCTexture_plane_input::~TCTexture_plane_input() {
  release_above();
  release_below();
}

void TCTexture_plane_input::copy_from(const TCTexture_plane_input& other) {
  release_above();
  release_below();
  width = other.width;
  height = other.height;
  copy_text(picture_file, other.picture_file, 256);
  whole_picture = other.whole_picture;
  first_x = other.first_x;
  last_x = other.last_x;
  first_y = other.first_y;
  last_y = other.last_y;
  make_levels = other.make_levels;
  periodic = other.periodic;
  side_code = other.side_code;
  n_bands = other.n_bands;
  priority = other.priority;
  center_x = other.center_x;
  center_y = other.center_y;
  orientation = other.orientation;
  animation_flag = other.animation_flag;
  v_x = other.v_x;
  v_y = other.v_y;
  t_o = other.t_o;
  copy_text(base_file_name, other.base_file_name, 256);
  new_picture_flag = other.new_picture_flag;
  update_flag = other.update_flag;

  if (other.min_above != nullptr) {
    above_storage = other.above_storage;
    min_above = new_range(above_storage);
    max_above = new_range(above_storage);
    if (min_above == nullptr)
      fail_allocation("Error allocating min_radiance array in texture_plane_input\n");
    if (max_above == nullptr)
      fail_allocation("Error allocating max_radiance array in texture_plane_input\n");
    copy_values(min_above, other.min_above, above_storage);
    copy_values(max_above, other.max_above, above_storage);
  }
  if (other.min_below != nullptr) {
    below_storage = other.below_storage;
    min_below = new_range(below_storage);
    max_below = new_range(below_storage);
    if (min_below == nullptr)
      fail_allocation("Error allocating min_radiance_below in TCTexture_plane_input\n");
    if (max_below == nullptr)
      fail_allocation("Error allocating max_radiance_below in TCTexture_plane_input\n");
    copy_values(min_below, other.min_below, below_storage);
    copy_values(max_below, other.max_below, below_storage);
  }
}

void TCTexture_plane_input::release_above() {
  delete[] min_above;
  delete[] max_above;
  min_above = nullptr;
  max_above = nullptr;
  above_storage = 0;
}

void TCTexture_plane_input::release_below() {
  delete[] min_below;
  delete[] max_below;
  min_below = nullptr;
  max_below = nullptr;
  below_storage = 0;
}

int TCTexture_plane_input::read_texture_grid(std::istream& in, int version) {
  skip_token(in);  // "Center:"
  read_double(in, center_x);
  read_double(in, center_y);
  skip_token(in);  // "Orientation:", degrees on file
  double degrees = 0.0;
  if (read_double(in, degrees)) orientation = radians_from_file(degrees);
  skip_token(in);  // "Dimensions:"
  read_double(in, width);
  read_double(in, height);
  skip_token(in);  // "MakePeridoic:"
  read_int(in, periodic);

  if (version >= 2) {
    skip_token(in);  // "AnimationFlag:"
    read_int(in, animation_flag);
    if (animation_flag != 0) {
      skip_token(in);  // "V_x:"
      read_double(in, v_x);
      skip_token(in);  // "V_y:"
      read_double(in, v_y);
      skip_token(in);  // "t_o:"
      read_double(in, t_o);
    }
    skip_token(in);  // "NewPictureFlag:"
    read_int(in, new_picture_flag);
    if (new_picture_flag != 0) {
      skip_token(in);  // "BaseFileName:"
      read_token(in, base_file_name, 256);
    }
  } else {
    animation_flag = 0;
    v_x = 0.0;
    v_y = 0.0;
    t_o = 0.0;
    new_picture_flag = 0;
    base_file_name[0] = '\0';
  }

  skip_token(in);  // "PictureFile:"
  read_token(in, picture_file, 256);
  skip_token(in);  // "Priority:"
  read_int(in, priority);
  skip_token(in);  // "Picture_bands:"
  read_int(in, n_bands);

  // What the file cannot say: the whole picture, with its pyramid. The ranges
  // come from the block's sections that follow.
  update_flag = 1;
  whole_picture = 1;
  make_levels = 1;
  first_x = 0;
  last_x = 0;
  first_y = 0;
  last_y = 0;
  side_code = 0;
  release_above();
  release_below();
  return 1;
}

int TCTexture_plane_input::print_texture_grid(std::ostream& out, int version) const {
  set_file_precision(out);
  out << "Center: " << center_x << " " << center_y << "\n";
  out << "Orientation: " << degrees_for_file(orientation) << "\n";
  out << "Dimensions: " << width << " " << height << "\n";
  out << "MakePeridoic: " << periodic << "\n";
  if (version >= 2) {
    out << "AnimationFlag: " << animation_flag << "\n";
    if (animation_flag != 0) {
      out << "V_x: " << v_x << "\n";
      out << "V_y: " << v_y << "\n";
      out << "t_o: " << t_o << "\n";
    }
    out << "NewPictureFlag: " << new_picture_flag << "\n";
    if (new_picture_flag != 0) out << "BaseFileName: " << base_file_name << "\n";
  }
  out << "PictureFile: " << picture_file << "\n";
  out << "Priority: " << priority << "\n";
  return out.good() ? 1 : 0;
}

void TCTexture_plane_input::set_above(int count, const double* min, const double* max) {
  release_above();
  if (count == 0) {
    side_code = 0;
    n_bands = 0;
    return;
  }
  side_code = 1;
  n_bands = count;
  min_above = new_range(count);
  if (min_above == nullptr)
    fail_allocation("Error allocating min_radiance array in texture_plane_input\n");
  max_above = new_range(count);
  if (max_above == nullptr)
    fail_allocation("Error allocating max_radiance array in texture_plane_input\n");
  above_storage = count > 0 ? count : 1;
  copy_values(min_above, min, count);
  copy_values(max_above, max, count);
}

void TCTexture_plane_input::set_below(int count, const double* min, const double* max) {
  release_below();
  int storage = count;
  if (side_code == 1) {
    if (count != n_bands) {
      std::cout << "Number of bands below water (" << count << ") not equal to number"
                << " of bands above (" << n_bands << ")\n";
    }
    // The mismatch is reported, not refused; room for the larger count keeps
    // a lookup over n_bands inside the arrays.
    if (n_bands > storage) storage = n_bands;
    side_code = 3;
  } else {
    // Below only: the count given is the texture's count.
    side_code = 2;
    n_bands = count;
  }
  min_below = new_range(storage);
  if (min_below == nullptr)
    fail_allocation("Error allocating min_radiance_below in TCTexture_plane_input\n");
  max_below = new_range(storage);
  if (max_below == nullptr)
    fail_allocation("Error allocating max_radiance_below in TCTexture_plane_input\n");
  below_storage = storage > 0 ? storage : 1;
  copy_values(min_below, min, count);
  copy_values(max_below, max, count);
}
