#include "Multiplier_grid_details_input.h"

// The time array's words stay the height grid's; only the scaling array
// names the multiplier.
Multiplier_grid_details_input::Multiplier_grid_details_input()
    : Height_grid_details_input(
          Kind_words{-8, "multiplier_grid_file.dat", "multiplier_grid",
                     "file not of multiplier_grid data type ", "multiplier_detail_file: ",
                     "multiplier_file_name:  ", "multiplier_grid input file is invalid, read ",
                     "unable to allocate scaling array in multiplier grid "}) {}

Multiplier_grid_details_input::~Multiplier_grid_details_input() {}
