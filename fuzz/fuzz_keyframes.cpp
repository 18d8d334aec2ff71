// Key frame sections: read, write back, and evaluate the track.
#include <sstream>

#include "TCKeyframes.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  TCKeyframes track;
  track.read(in);
  std::ostringstream out;
  track.write(out);
  TCVector p;
  double chi, phi, theta;
  track.pose_at(-1.0, p, chi, phi, theta);
  track.pose_at(0.5, p, chi, phi, theta);
  track.pose_at(1e6, p, chi, phi, theta);
  TCKeyframes copy(track);
  copy.position_at(2.0, p);
  copy.angles_at(2.0, chi, phi);
  return 0;
}
