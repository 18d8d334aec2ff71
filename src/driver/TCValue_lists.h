#ifndef TC_VALUE_LISTS_H
#define TC_VALUE_LISTS_H

#include <iostream>

// Lists of values on file, read so that a count the stream cannot back costs
// no memory, and the per-band arrays the input records keep.

// Entries a growing read makes room for before any has arrived: count, at
// most 16.
int first_capacity(int count);
// Next capacity of a growing read of count entries: doubling, up to count.
int next_capacity(int capacity, int count);
// A copy of the first used entries in a new array of capacity entries, the
// rest 0; null when memory runs out (the caller still holds the old array).
int* grown(const int* values, int used, int capacity);
double* grown(const double* values, int used, int capacity);

// count ints into a new array, grown as they arrive. Null for a negative
// count, or unless all count were read (and memory held out); the caller
// owns the array.
int* read_int_list(std::istream& in, int count);
// A count after its keyword, then as many ints after theirs into a new array
// the caller owns. 0 for a count below 0 or above most, with nothing more
// read; else 1, ids left null when the count or an id is missing.
int read_counted_ints(std::istream& in, int most, int& count, int*& ids);
// Copies count entries of ids into target (null: none) and deletes ids.
void take_ints(int* target, int*& ids, int count);
// Up to count doubles, stopping at the first that fails; a null target reads
// and drops them.
void read_doubles(std::istream& in, double* target, int count);

// count doubles (room for one at least), each set to value; null when memory
// runs out.
double* new_band_values(int count, double value);
// n_lists new arrays of count zeros each (room for one at least); all or
// none: 0, every entry null, when memory runs out.
int new_band_lists(int count, double** lists, int n_lists);
// What read_double_rows found.
const int rows_read = 1;
const int rows_cut_short = 0;
const int rows_out_of_memory = -1;
// count rows of n_columns doubles into new arrays (columns[j], room for count
// entries, one at least) that grow as rows arrive, so that a wild count in a
// short file costs nothing. On anything but rows_read every column is null;
// out of memory, failed_column names the column whose array could not be had.
int read_double_rows(std::istream& in, int count, int n_columns, double** columns,
                     int& failed_column);
// Deletes the n_lists arrays and nulls them.
void delete_band_lists(double** lists, int n_lists);

#endif
