#ifndef TC_DISTURBANCE_INPUTS_H
#define TC_DISTURBANCE_INPUTS_H

#include "TCGrid_details_input.h"

// A new input record of the class for a disturbance code (-1 .. -9 the kinds,
// 1 a further ocean grid, 0 and anything else a base record keeping that
// code), or null when memory runs out. The caller owns it.
TCGrid_details_input* new_grid_details_input(int code);

#endif
