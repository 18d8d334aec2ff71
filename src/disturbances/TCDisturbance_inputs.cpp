#include "TCDisturbance_inputs.h"

#include <new>

#include "Boat_details_input.h"
#include "Deformation_details_input.h"
#include "Height_grid_details_input.h"
#include "Multiplier_grid_details_input.h"
#include "Reflection_details_input.h"
#include "Ripple_details_input.h"
#include "Swell_details_input.h"
#include "Wake_details_input.h"
#include "Wall_details_input.h"

TCGrid_details_input* new_grid_details_input(int code) {
  switch (code) {
    case -1:
      return new (std::nothrow) Reflection_details_input;
    case -2:
      return new (std::nothrow) Deformation_details_input;
    case -3:
      return new (std::nothrow) Wall_details_input;
    case -4:
      return new (std::nothrow) Ripple_details_input;
    case -5:
      return new (std::nothrow) Swell_details_input;
    case -6:
      return new (std::nothrow) Wake_details_input;
    case -7:
      return new (std::nothrow) Height_grid_details_input;
    case -8:
      return new (std::nothrow) Multiplier_grid_details_input;
    case -9:
      return new (std::nothrow) Boat_details_input;
    default:
      break;
  }
  // A further ocean grid, or a kind the program does not know: the ocean
  // skips code 0 when it is built.
  TCGrid_details_input* grid = new (std::nothrow) TCGrid_details_input;
  if (grid != nullptr) grid->field_code = code;
  return grid;
}
