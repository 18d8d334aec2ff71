#ifndef TC_CONSTANTS_H
#define TC_CONSTANTS_H

// The engine's numeric constants, kept to the digits it has always used.
// Results depend on this rounding: never replace them by a library pi.
const double tc_pi = 3.1415926535;
const double tc_two_pi = 6.283185307;
const double tc_half_pi = 1.5707963267;
const double tc_three_half_pi = 4.7123889801;
const double tc_degrees_to_radians = 0.017453292519444445;
const double tc_radians_to_degrees = 57.29577951471995;

// Distances and heights meaning "nothing here".
const double tc_nothing = 99999999.0;
const double tc_nothing_below = -99999999.0;

#endif
