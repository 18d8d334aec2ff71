#include "Point_list.h"

#include <cstdlib>
#include <iostream>

Point_list::Point_list(int capacity_)
    : capacity(capacity_ > 0 ? capacity_ : 0),
      n_primary(0),
      n_duplicates(0),
      // calloc: fresh zero pages cost nothing until a slot is touched, and
      // most files touch few of the 2 x 50001.
      primary(static_cast<Point_slot*>(std::calloc(capacity + 1, sizeof(Point_slot)))),
      duplicates(static_cast<Point_slot*>(std::calloc(capacity + 1, sizeof(Point_slot)))) {}

Point_list::~Point_list() {
  std::free(primary);
  std::free(duplicates);
}

int Point_list::add(int v, int t, int n) {
  if (!ok()) return 0;
  if (v < 1 || v > capacity) {
    std::cout << "Reached end of subroutine\n";
    return 0;
  }
  Point_slot& slot = primary[v];
  if (!slot.used) {
    if (n_primary >= capacity) {
      std::cout << "You've got too many points!: " << n_primary << "\n";
      return 0;
    }
    slot.used = 1;
    slot.v = v;
    slot.t = t;
    slot.n = n;
    slot.next = 0;
    n_primary++;
    return v;
  }
  if (slot.t == t && slot.n == n) return v;
  // Walk the duplicates of v; indices only grow along a chain.
  int last = 0;
  for (int d = slot.next; d != 0; d = duplicates[d].next) {
    if (duplicates[d].t == t && duplicates[d].n == n) return -d;
    last = d;
  }
  if (n_duplicates >= capacity) {
    std::cout << "Too many duplicate vertices!\n";
    std::cout << "You've got too many duplicate points!: " << n_duplicates << "\n";
    std::cout << "Maximum points in temporary OBJ vertice list reached.\n";
    return 0;
  }
  const int d = ++n_duplicates;
  duplicates[d].used = 1;
  duplicates[d].v = v;
  duplicates[d].t = t;
  duplicates[d].n = n;
  duplicates[d].next = 0;
  if (last == 0)
    slot.next = d;
  else
    duplicates[last].next = d;
  return -d;
}

const Point_slot* Point_list::slot_of(int id) const {
  if (!ok()) return nullptr;
  if (id > 0 && id <= capacity && primary[id].used) return &primary[id];
  if (id < 0 && id >= -n_duplicates) return &duplicates[-id];
  return nullptr;
}
