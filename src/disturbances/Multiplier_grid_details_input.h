#ifndef TC_MULTIPLIER_GRID_DETAILS_INPUT_H
#define TC_MULTIPLIER_GRID_DETAILS_INPUT_H

#include "Height_grid_details_input.h"

// An imported map of factors that multiplies the sea, raised to the power of
// a key table's scale over time. The block and the detail file are the
// height grid's, with "multiplier_detail_file:" in the block, the header type
// "multiplier_grid" and "multiplier_file_name:" for the data set; the block
// closes with "multiplier_grid input file is invalid, read " on a wrong word.
class Multiplier_grid_details_input : public Height_grid_details_input {
 public:
  // Code -8, detail file "multiplier_grid_file.dat", grid file
  // "nouse_grid.dat ", not periodic; one key, scale 1 at time 0.
  Multiplier_grid_details_input();
  ~Multiplier_grid_details_input() override;

 private:
  Multiplier_grid_details_input(const Multiplier_grid_details_input&);
  Multiplier_grid_details_input& operator=(const Multiplier_grid_details_input&);
};

#endif
