// The OBJ reader: whatever it reads must hold only corners that name its
// points, faces that tile the corner list, and surfaces that exist.
#include <cstdio>
#include <cstdlib>
#include <string>

#include "TCObj_file.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  if (size == 0) return 0;  // fmemopen refuses an empty buffer
  std::FILE* f = fmemopen(const_cast<uint8_t*>(data), size, "r");
  if (f == nullptr) std::abort();
  TCObj_file obj;
  const int read = obj.read_file(f, "fuzz.obj");
  std::fclose(f);
  if (!read) {
    if (obj.n_points != 0 || obj.n_faces != 0 || obj.n_surfaces != 0) std::abort();
    return 0;
  }
  int next = 0;
  for (int i = 0; i < obj.n_faces; i++) {
    if (obj.face_first[i] != next || obj.face_size[i] < 3 || obj.face_size[i] >= 350) std::abort();
    if (obj.face_surface[i] < 0 || obj.face_surface[i] >= obj.n_surfaces) std::abort();
    next += obj.face_size[i];
  }
  if (next != obj.n_corners) std::abort();
  for (int i = 0; i < obj.n_corners; i++)
    if (obj.corners[i] < 0 || obj.corners[i] >= obj.n_points) std::abort();
  for (int i = 0; i < obj.n_points; i++) {
    volatile double sum = obj.x[i] + obj.y[i] + obj.z[i] + obj.u[i] + obj.v[i] + obj.nx[i];
    (void)sum;
  }
  return 0;
}
