#include "TCValue_lists.h"

#include <new>

#include "TCData_file.h"

int first_capacity(int count) {
  return count < 16 ? count : 16;
}

int next_capacity(int capacity, int count) {
  return capacity > count / 2 ? count : 2 * capacity;
}

int* grown(const int* values, int used, int capacity) {
  int* more = new (std::nothrow) int[capacity]();
  if (more == nullptr) return nullptr;
  for (int i = 0; i < used; i++) more[i] = values[i];
  return more;
}

double* grown(const double* values, int used, int capacity) {
  double* more = new (std::nothrow) double[capacity]();
  if (more == nullptr) return nullptr;
  for (int i = 0; i < used; i++) more[i] = values[i];
  return more;
}

int* read_int_list(std::istream& in, int count) {
  if (count < 0) return nullptr;
  int capacity = first_capacity(count);
  int* values = new (std::nothrow) int[capacity > 0 ? capacity : 1]();
  int n_read = 0;
  while (values != nullptr && n_read < count) {
    if (n_read == capacity) {
      const int new_capacity = next_capacity(capacity, count);
      int* more = grown(values, n_read, new_capacity);
      if (more == nullptr) break;
      delete[] values;
      values = more;
      capacity = new_capacity;
    }
    if (!read_int(in, values[n_read])) break;
    n_read++;
  }
  if (n_read < count) {
    delete[] values;
    return nullptr;
  }
  return values;
}

int read_counted_ints(std::istream& in, int most, int& count, int*& ids) {
  ids = nullptr;
  skip_token(in);
  if (!read_int(in, count)) return 1;
  if (count < 0 || count > most) return 0;
  skip_token(in);
  ids = read_int_list(in, count);
  return 1;
}

void take_ints(int* target, int*& ids, int count) {
  for (int i = 0; target != nullptr && ids != nullptr && i < count; i++) target[i] = ids[i];
  delete[] ids;
  ids = nullptr;
}

void read_doubles(std::istream& in, double* target, int count) {
  for (int i = 0; i < count; i++) {
    double value = 0.0;
    if (!read_double(in, value)) return;
    if (target != nullptr) target[i] = value;
  }
}

double* new_band_values(int count, double value) {
  double* values = new (std::nothrow) double[count > 0 ? count : 1]();
  if (values == nullptr) return nullptr;
  for (int i = 0; i < count; i++) values[i] = value;
  return values;
}

int new_band_lists(int count, double** lists, int n_lists) {
  int complete = 1;
  for (int i = 0; i < n_lists; i++) {
    lists[i] = new_band_values(count, 0.0);
    if (lists[i] == nullptr) complete = 0;
  }
  if (!complete) delete_band_lists(lists, n_lists);
  return complete;
}

void delete_band_lists(double** lists, int n_lists) {
  for (int i = 0; i < n_lists; i++) {
    delete[] lists[i];
    lists[i] = nullptr;
  }
}

int read_double_rows(std::istream& in, int count, int n_columns, double** columns,
                     int& failed_column) {
  failed_column = -1;
  int capacity = first_capacity(count);
  int outcome = rows_read;
  for (int j = 0; j < n_columns; j++) {
    columns[j] = new (std::nothrow) double[capacity > 0 ? capacity : 1]();
    if (columns[j] == nullptr && outcome == rows_read) {
      outcome = rows_out_of_memory;
      failed_column = j;
    }
  }
  for (int row = 0; outcome == rows_read && row < count; row++) {
    if (row == capacity) {
      const int new_capacity = next_capacity(capacity, count);
      for (int j = 0; j < n_columns; j++) {
        double* more = grown(columns[j], row, new_capacity);
        if (more == nullptr) {
          outcome = rows_out_of_memory;
          failed_column = j;
          break;
        }
        delete[] columns[j];
        columns[j] = more;
      }
      capacity = new_capacity;
    }
    for (int j = 0; j < n_columns && outcome == rows_read; j++) {
      if (!read_double(in, columns[j][row])) outcome = rows_cut_short;
    }
  }
  if (outcome != rows_read) delete_band_lists(columns, n_columns);
  return outcome;
}
