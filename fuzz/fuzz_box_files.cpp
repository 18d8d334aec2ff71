// Solid, thermal and bobbing box files. The first byte picks the kind. A
// file that reads must read back from its own writing to the same writing,
// must survive packing, and must give a runtime box that scans a small view
// and answers rays without fault.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "Bobbing_box_input.h"
#include "Solid_box_input.h"
#include "TCBobbing_box.h"
#include "TCConstants.h"
#include "TCSolid_Box.h"
#include "TCThermal_Box.h"
#include "TCView.h"
#include "Thermal_box_input.h"
#include "object_contour.h"
#include "quiet_streams.h"

namespace {

// Packs input and unpacks the arrays into receiver; both must succeed.
template <class Record>
void pack_round_trip(Record& input, Record& receiver) {
  int* ints = nullptr;
  double* doubles = nullptr;
  char* chars = nullptr;
  int int_bytes = 0, double_bytes = 0, char_bytes = 0;
  if (input.pack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) {
    receiver.set_sizes_from_packed(ints, doubles, chars);
    if (!receiver.unpack(ints, int_bytes, doubles, double_bytes, chars, char_bytes)) std::abort();
  }
  delete[] ints;
  delete[] doubles;
  delete[] chars;
}

template <class Record>
int exercise(Record& input, const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  if (!input.read_stream(in)) return 0;
  std::ostringstream first;
  if (!input.write_stream(first)) std::abort();
  // NUL bytes cut a word short of what the stream took as one.
  if (std::memchr(data, 0, size) == nullptr) {
    Record again;
    std::istringstream back(first.str());
    if (!again.read_stream(back)) std::abort();
    std::ostringstream second;
    if (!again.write_stream(second) || second.str() != first.str()) std::abort();
  }
  Record receiver;
  pack_round_trip(input, receiver);
  std::ostringstream third;
  if (!receiver.write_stream(third) || third.str() != first.str()) std::abort();
  return 1;
}

// A small view onto the box from outside and a few rays through it.
void render(box_class& box, int n_bands, const int* ids) {
  TCSpectrum bands(n_bands);
  for (int i = 0; i < n_bands; i++) bands.band_id[i] = ids[i];
  float* plane = new float[n_bands * 16]();
  float** planes = new float*[n_bands > 0 ? n_bands : 1];
  for (int b = 0; b < n_bands; b++) planes[b] = plane + 16 * b;
  TCView view;
  view.set_pose(TCVector(3.0, -2.0, 4.0), 2.5, 0.7, 0.1);
  view.set_grid(4, -1.0, 1.0, 4, -1.0, 1.0);
  {
    object_contour contour(4, 4, &bands, planes, 0.0f, 1, nullptr, nullptr);
    box.image_contour(view, contour);
  }
  TCRay ray(TCVector(-5.0, 0.1, 0.2), TCVector(1.0, 0.0, 0.0));
  box.surface_radiance(ray, bands, view);
  box.radiance(ray, bands);
  TCVector hit;
  double distance = 0.0;
  box.intersect(ray, hit, distance);
  box.far_intersect(ray, hit, distance);
  box.ray_measure(ray);
  delete[] planes;
  delete[] plane;
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size < 1) return 0;
  const int selector = data[0] % 3;
  // Rendering cost grows with the bands; a few suffice to reach every path.
  const int most_rendered_bands = 16;
  if (selector == 0) {
    Solid_box_input input;
    if (exercise(input, data + 1, size - 1) && input.number_of_bands <= most_rendered_bands) {
      TCSolid_Box box(input);
      render(box, input.number_of_bands, input.band_ids.band_id);
    }
  } else if (selector == 1) {
    Thermal_box_input input;
    if (exercise(input, data + 1, size - 1) && input.number_of_bands <= most_rendered_bands) {
      TCThermal_Box box(input);
      box.prepare_frame();
      render(box, input.number_of_bands, input.band_ids.band_id);
    }
  } else {
    Bobbing_box_input input;
    if (exercise(input, data + 1, size - 1) && input.number_of_bands <= most_rendered_bands) {
      TCBobbing_box box(input);
      box.set_time(1.0);
      render(box, input.number_of_bands, input.band_ids.band_id);
    }
  }
  return 0;
}
