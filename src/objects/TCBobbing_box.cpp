#include "TCBobbing_box.h"

#include <cfloat>
#include <cmath>
#include <string>

#include "Bobbing_box_input.h"
#include "TCData_file.h"
#include "TCObject_kinds.h"
#include "TCScene_tracer.h"

namespace {

// Samples each side of the centre along each axis.
const int half_samples = 50;

const int bobbing_box_file_version = 1;

// A number read as a float; one beyond a float's range fails the stream.
int read_float(std::istream& in, float& value) {
  double read_value = 0.0;
  if (!read_double(in, read_value)) return 0;
  if (read_value > FLT_MAX || read_value < -FLT_MAX) {
    in.setstate(std::ios::failbit);
    return 0;
  }
  value = static_cast<float>(read_value);
  return 1;
}

// One sea of the scene, asked for the height under a point and how far the
// point stands over it.
struct Sea_under {
  TCScene_tracer* scene;
  int index;
};

double height_over_sea(void* context, const TCVector& point, double& relative) {
  const Sea_under* sea = static_cast<const Sea_under*>(context);
  double height = 0.0, own = 0.0;
  sea->scene->surface_height_under(sea->index, point, height, own);
  relative = own - height;
  return height;
}

}  // namespace

TCBobbing_box::TCBobbing_box(const Bobbing_box_input& input)
    : TCSolid_Box(input),
      decoupling_height(static_cast<float>(input.decoupling_height)),
      dampening_factor(static_cast<float>(input.dampening_factor)) {}

TCBobbing_box::~TCBobbing_box() {}

void TCBobbing_box::print_dimensions() {
  TCSolid_Box::print_dimensions();
  std::cout << "bobbing parameters "
            << "\n";
  std::cout << "decoupling height  " << decoupling_height << "\n";
  std::cout << "dampening factor   " << dampening_factor << "\n";
}

void TCBobbing_box::set_time(double t) {
  time = t;
  TCVector p;
  double pose_chi = 0.0, pose_phi = 0.0, pose_theta = 0.0;
  track.pose_at(t, p, pose_chi, pose_phi, pose_theta);
  TCVector moved = p;
  for (int i = 0; scene != nullptr && i < scene->object_count(); i++) {
    double height = 0.0, own = 0.0;
    if (!scene->surface_height_under(i, moved, height, own)) continue;
    Sea_under sea = {scene, i};
    ride_surface(height_over_sea, &sea, p, pose_phi, moved, pose_chi, pose_theta);
  }
  set_position(moved, pose_chi, pose_phi, pose_theta);
}

int TCBobbing_box::fit_surface(TCSea_height height, void* context, const TCVector& p, double phi,
                               const TCVector& length, float decoupling, float dampening,
                               TCSea_plane& fit) {
  fit.a = 0.0;
  fit.b = 0.0;
  fit.mean = 0.0;
  fit.offset = TCVector();
  fit.pitch = 0.0f;
  fit.roll = 0.0f;
  if (height == nullptr) return 0;
  double relative = 0.0;
  height(context, p, relative);
  if (!(-decoupling < relative && relative < decoupling)) return 0;

  const int n = half_samples;
  const double step_x = (length.x / (2 * n)) * dampening;
  const double step_y = (length.y / (2 * n)) * dampening;
  const double c = std::cos(phi);
  const double s = std::sin(phi);
  double sum_a = 0.0, sum_b = 0.0, sum_xx = 0.0, sum_yy = 0.0, sum_h = 0.0;
  for (int i = -n; i <= n; i++) {
    for (int j = -n; j <= n; j++) {
      const double x = p.x + c * i * step_x - s * j * step_y;
      const double y = p.y + s * i * step_x + c * j * step_y;
      double ignored = 0.0;
      const double h = height(context, TCVector(x, y, p.z), ignored);
      sum_a += i * h * step_x;
      sum_b += j * h * step_y;
      sum_xx += (i * step_x) * (i * step_x);
      sum_yy += (j * step_y) * (j * step_y);
      sum_h += h;
    }
  }
  sum_h /= (2 * n + 1) * (2 * n + 1);
  // A footprint of no size has no tilt to give.
  fit.a = sum_xx != 0.0 ? sum_a / sum_xx : 0.0;
  fit.b = sum_yy != 0.0 ? sum_b / sum_yy : 0.0;
  fit.mean = sum_h;
  fit.offset = TCVector(fit.a * p.z, fit.b * p.z, sum_h);
  fit.pitch = static_cast<float>(-std::atan(fit.a));
  fit.roll = static_cast<float>(std::atan(fit.b));
  return 1;
}

int TCBobbing_box::ride_surface(TCSea_height height, void* context, const TCVector& p, double phi,
                                TCVector& position_io, double& chi_io, double& theta_io) const {
  TCSea_plane fit;
  if (!fit_surface(height, context, p, phi, length, decoupling_height, dampening_factor, fit))
    return 0;
  position_io = position_io + fit.offset;
  chi_io += fit.pitch;
  theta_io += fit.roll;
  return 1;
}

int TCBobbing_box::read_section(std::istream& in) {
  if (check_header(in, "bobbing_box", bobbing_box_file_version) == 0) {
    std::cout << " cannot process bobbing_box file "
              << "\n";
    return 0;
  }
  float height = decoupling_height;
  float factor = dampening_factor;
  skip_token(in);
  if (read_float(in, height)) {
    skip_token(in);
    read_float(in, factor);
  }
  // A failed read shows the word it stopped at, and fails even when "end"
  // follows. The words are the solid box's on purpose.
  const bool read_failed = in.fail();
  in.clear();
  std::string token;
  in >> token;
  if (read_failed || token != "end") {
    std::cout << "error processing solid_box file "
              << "\n"
              << "read " << token << "instead of end"
              << "\n";
    return 0;
  }
  decoupling_height = height;
  dampening_factor = factor;
  return 1;
}
