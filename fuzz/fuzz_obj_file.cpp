// The OBJ reader: whatever it reads must hold only corners that name its
// points, faces that tile the corner list, and surfaces that exist.
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>

#include "TCObj_file.h"
#include "quiet_streams.h"

namespace {
std::string scratch_path;
}

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  scratch_path = "/tmp/fuzz_obj_file_" + std::to_string(getpid()) + ".obj";
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::FILE* f = std::fopen(scratch_path.c_str(), "wb");
  if (f == nullptr) std::abort();
  if (size > 0 && std::fwrite(data, 1, size, f) != size) std::abort();
  std::fclose(f);
  TCObj_file obj;
  if (!obj.read(scratch_path.c_str())) {
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
