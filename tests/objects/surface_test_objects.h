#ifndef TC_TESTS_SURFACE_TEST_OBJECTS_H
#define TC_TESTS_SURFACE_TEST_OBJECTS_H

#include <cstring>
#include <memory>

#include "TCGrid.h"
#include "TCSurface_object.h"
#include "TCVector.h"
#include "surface_object_input.h"

// A surface object over a lattice the test owns, its box placed as the
// ocean places it: depth metres below the object's z = 0 and top metres
// above, centred on (0, 0, (top - depth) / 2), with the lattice's z_offset
// the minus of that centre, so that a raw height of 0 lies at object z = 0.
inline std::unique_ptr<TCSurface_object> new_surface(TCGrid* lattice, double length_x,
                                                     double length_y, double depth, double top,
                                                     double ray_step, const char* name = "sea") {
  surface_object_input input;
  std::strncpy(input.object_name, name, sizeof(input.object_name) - 1);
  input.object_name[sizeof(input.object_name) - 1] = '\0';
  std::unique_ptr<TCSurface_object> surface(new TCSurface_object(input));
  surface->lattice = lattice;
  surface->ray_step = ray_step;
  surface->set_box(TCVector(length_x, length_y, depth + top),
                   TCVector(0.0, 0.0, (top - depth) * 0.5));
  if (lattice != nullptr) lattice->z_offset = -(top - depth) * 0.5;
  return surface;
}

// Every node of the lattice at one raw height.
inline void fill_flat(TCGrid& lattice, float height) {
  for (int k = 0; k < lattice.n_x * lattice.n_y; k++) lattice.height[k] = height;
}

#endif
