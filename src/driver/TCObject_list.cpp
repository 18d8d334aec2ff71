#include "TCObject_list.h"

#include <cstring>

#include "TCObject.h"

namespace {

// strcmp as -1, 0 or 1. glibc gives the byte difference, so the lookup's
// "equals 1" test would otherwise depend on the library and on the letters.
int compare_sign(const char* a, const char* b) {
  const int c = std::strcmp(a, b);
  if (c > 0) return 1;
  if (c < 0) return -1;
  return 0;
}

}  // namespace

TCObject_list::TCObject_list() : n_objects(0) {
  for (int i = 0; i < max_objects; i++) objects[i] = nullptr;
}

TCObject_list::~TCObject_list() {}

int TCObject_list::find_by_name(const char* name, int& index) const {
  index = -1;
  if (name == nullptr) return 0;
  // Kept as it has always been: meant to catch "scene" (result 0), it catches
  // every name after it instead, and lets "scene" itself through to the search.
  if (compare_sign(name, "scene") == 1) {
    index = n_objects;
    return 1;
  }
  for (int i = 0; i < n_objects && i < max_objects; i++) {
    if (objects[i] != nullptr && std::strcmp(name, objects[i]->get_name()) == 0) index = i;
  }
  return index >= 0 ? 1 : 0;
}
