// Matte sections of camera files: read, write back and read again (the two
// writings must agree), then resolve against a small list and paint a pixel.
#include <cstdlib>
#include <cstring>
#include <sstream>
#include <string>

#include "TCKeyframes.h"
#include "TCMatte_fields.h"
#include "TCMatte_input.h"
#include "TCObject.h"
#include "TCObject_list.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::istringstream in(text_of(data, size));
  TCMatte_input record;
  const int read_ok = record.read(in);
  std::ostringstream first;
  record.write(first);

  TCMatte_input copy;
  copy.copy_from(record);
  if (!read_ok) return 0;

  // A section that read must read back from its own writing unchanged. Not
  // so with NUL bytes, which cut a word short of what the stream took as one.
  if (std::memchr(data, 0, size) == nullptr) {
    std::istringstream again(first.str());
    TCMatte_input reread;
    if (!reread.read(again)) std::abort();
    std::ostringstream second;
    reread.write(second);
    if (second.str() != first.str()) std::abort();
  }

  TCKeyframes track;
  TCObject_list list;
  TCObject boat(track, 0.0, 0.0, 0, &list, 2);
  boat.set_name("boat");
  list.objects[0] = &boat;
  list.n_objects = 1;

  TCMatte_fields fields;
  int need_picture = 1;
  if (!process_matte_input(copy, list, fields, need_picture)) return 0;
  fields.prepare(2, 2, 2, copy);
  const double radiance[2] = {1.0, 2.0};
  TCMatte_sample sample;
  for (int object = 0; object <= list.n_objects; object++) {
    sample.attach(object, &fields);
    sample.clear();
    sample.set_distance(4.0);
    sample.normalise(2.0);
    fields.accumulate(1, 1, object, 0.5, 0.5, 1.0, 1.0, 4.0, radiance, nullptr);
    fields.accumulate(1, 0, object, 0.5, 0.5, 1.0, 1.0, 4.0, radiance, &sample);
    int first_plane = 0;
    int n_planes = 0;
    for (int code = 0; code < 40; code++) fields.is_wanted(object, code, first_plane, n_planes);
  }
  fields.set_scene_distance(3, 9.0);
  fields.clear_all();
  fields.release();
  return 0;
}
