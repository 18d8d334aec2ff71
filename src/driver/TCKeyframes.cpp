#include "TCKeyframes.h"

#include <algorithm>
#include <cstdlib>
#include <new>

#include "TCData_file.h"

namespace {

// Keys the reader makes room for before any has been read; the storage then
// doubles as keys actually arrive, so a wild count in a short file costs nothing.
const int first_read_capacity = 16;

void out_of_memory() {
  std::cout << "unable to allocate key frame arrays"
            << "\n";
  std::cout.flush();
  std::exit(1);
}

double* new_doubles(int n) {
  double* values = new (std::nothrow) double[n]();
  if (values == nullptr) out_of_memory();
  return values;
}

TCVector* new_vectors(int n) {
  TCVector* values = new (std::nothrow) TCVector[n];
  if (values == nullptr) out_of_memory();
  return values;
}

// Keys held in storage: at least one, whatever the count says.
int stored_keys(int number_of_times) {
  return number_of_times < 1 ? 1 : number_of_times;
}

}  // namespace

TCKeyframes::TCKeyframes()
    : number_of_times(1),
      times(nullptr),
      positions(nullptr),
      chi(nullptr),
      phi(nullptr),
      theta(nullptr) {
  allocate(1);
}

TCKeyframes::TCKeyframes(const TCKeyframes& other)
    : number_of_times(other.number_of_times),
      times(nullptr),
      positions(nullptr),
      chi(nullptr),
      phi(nullptr),
      theta(nullptr) {
  const int n = stored_keys(number_of_times);
  allocate(n);
  for (int i = 0; i < n; i++) {
    times[i] = other.times[i];
    positions[i] = other.positions[i];
    chi[i] = other.chi[i];
    phi[i] = other.phi[i];
    theta[i] = other.theta[i];
  }
}

TCKeyframes& TCKeyframes::operator=(const TCKeyframes& other) {
  if (this == &other) return *this;
  release();
  number_of_times = other.number_of_times;
  const int n = stored_keys(number_of_times);
  allocate(n);
  for (int i = 0; i < n; i++) {
    times[i] = other.times[i];
    positions[i] = other.positions[i];
    chi[i] = other.chi[i];
    phi[i] = other.phi[i];
    theta[i] = other.theta[i];
  }
  return *this;
}

TCKeyframes::~TCKeyframes() {
  release();
}

int TCKeyframes::repeated_time(double& time_out) const {
  if (number_of_times < 2) return 0;
  double* sorted = new_doubles(number_of_times);
  for (int i = 0; i < number_of_times; i++) sorted[i] = times[i];
  std::sort(sorted, sorted + number_of_times);
  int found = 0;
  for (int i = 0; i + 1 < number_of_times && !found; i++) {
    if (sorted[i] == sorted[i + 1]) {
      time_out = sorted[i];
      found = 1;
    }
  }
  delete[] sorted;
  return found;
}

void TCKeyframes::set_number_of_times(int n) {
  release();
  number_of_times = n;
  allocate(stored_keys(n));
}

int TCKeyframes::read(std::istream& in) {
  skip_token(in);  // "number_of_times"
  int count = number_of_times;
  read_int(in, count);

  // Storage grows with the keys read rather than with the count claimed.
  int capacity = stored_keys(count);
  if (capacity > first_read_capacity) capacity = first_read_capacity;
  release();
  number_of_times = count;
  allocate(capacity);

  for (int i = 0; i < 7; i++) skip_token(in);  // time x y z chi phi theta
  if (count < 1) return 1;

  int keys_read = 0;
  while (keys_read < count && in) {
    if (keys_read == capacity) {
      int new_capacity = capacity > count / 2 ? count : 2 * capacity;
      double* new_times = new_doubles(new_capacity);
      TCVector* new_positions = new_vectors(new_capacity);
      double* new_chi = new_doubles(new_capacity);
      double* new_phi = new_doubles(new_capacity);
      double* new_theta = new_doubles(new_capacity);
      for (int i = 0; i < capacity; i++) {
        new_times[i] = times[i];
        new_positions[i] = positions[i];
        new_chi[i] = chi[i];
        new_phi[i] = phi[i];
        new_theta[i] = theta[i];
      }
      release();
      times = new_times;
      positions = new_positions;
      chi = new_chi;
      phi = new_phi;
      theta = new_theta;
      capacity = new_capacity;
    }
    // Straight into the arrays: a key cut short keeps what was read of it.
    const int k = keys_read;
    double degrees = 0.0;
    read_double(in, times[k]);
    read_double(in, positions[k].x);
    read_double(in, positions[k].y);
    read_double(in, positions[k].z);
    if (read_double(in, degrees)) chi[k] = radians_from_file(degrees);
    if (read_double(in, degrees)) phi[k] = radians_from_file(degrees);
    if (read_double(in, degrees)) theta[k] = radians_from_file(degrees);
    if (in) keys_read++;
  }

  // A section cut short keeps the keys it has (at least one); the stream is
  // left failed so the caller's "end" check rejects the file.
  number_of_times = keys_read < count ? stored_keys(keys_read) : count;
  return 1;
}

int TCKeyframes::write(std::ostream& out) const {
  set_file_precision(out);
  out << "number_of_times  " << number_of_times << "\n";
  out << "time "
      << " x "
      << " y "
      << " z "
      << " chi "
      << " phi "
      << " theta "
      << "\n";
  for (int i = 0; i < number_of_times; i++) {
    out << times[i] << " " << positions[i].x << " " << positions[i].y << " " << positions[i].z
        << " " << degrees_for_file(chi[i]) << " " << degrees_for_file(phi[i]) << " "
        << degrees_for_file(theta[i]) << " "
        << "\n";
  }
  return out.good() ? 1 : 0;
}

void TCKeyframes::segment_for(double t, int& segment, double& fraction) const {
  const int n = number_of_times;
  if (n <= 1) {
    segment = -1;
    fraction = 0.0;
    return;
  }
  int i = n - 2;
  if (t <= times[0]) {
    i = 0;
  } else if (t >= times[n - 1]) {
    i = n - 2;
  } else {
    // Always found for ordinary t, since times[n - 1] > t; a NaN t finds
    // nothing and stays on the last segment.
    for (int j = 0; j < n - 1; j++) {
      if (times[j + 1] > t) {
        i = j;
        break;
      }
    }
  }
  segment = i;
  // Equal times divide by zero here on purpose: no guard, inf or nan results.
  fraction = (t - times[i]) / (times[i + 1] - times[i]);
}

void TCKeyframes::pose_at(double t, TCVector& position, double& chi_out, double& phi_out,
                          double& theta_out) const {
  int i = 0;
  double f = 0.0;
  segment_for(t, i, f);
  if (i < 0) {
    position = positions[0];
    chi_out = chi[0];
    phi_out = phi[0];
    theta_out = theta[0];
    return;
  }
  position.x = positions[i].x + f * (positions[i + 1].x - positions[i].x);
  position.y = positions[i].y + f * (positions[i + 1].y - positions[i].y);
  position.z = positions[i].z + f * (positions[i + 1].z - positions[i].z);
  chi_out = chi[i] + f * (chi[i + 1] - chi[i]);
  phi_out = phi[i] + f * (phi[i + 1] - phi[i]);
  theta_out = theta[i] + f * (theta[i + 1] - theta[i]);
}

void TCKeyframes::position_at(double t, TCVector& position) const {
  int i = 0;
  double f = 0.0;
  segment_for(t, i, f);
  if (i < 0) {
    position = positions[0];
    return;
  }
  position.x = positions[i].x + f * (positions[i + 1].x - positions[i].x);
  position.y = positions[i].y + f * (positions[i + 1].y - positions[i].y);
  position.z = positions[i].z + f * (positions[i + 1].z - positions[i].z);
}

void TCKeyframes::angles_at(double t, double& chi_out, double& phi_out) const {
  int i = 0;
  double f = 0.0;
  segment_for(t, i, f);
  if (i < 0) {
    chi_out = chi[0];
    phi_out = phi[0];
    return;
  }
  chi_out = chi[i] + f * (chi[i + 1] - chi[i]);
  phi_out = phi[i] + f * (phi[i + 1] - phi[i]);
}

void TCKeyframes::allocate(int storage) {
  if (storage < 1) storage = 1;
  times = new_doubles(storage);
  positions = new_vectors(storage);
  chi = new_doubles(storage);
  phi = new_doubles(storage);
  theta = new_doubles(storage);
}

void TCKeyframes::release() {
  delete[] times;
  delete[] positions;
  delete[] chi;
  delete[] phi;
  delete[] theta;
  times = nullptr;
  positions = nullptr;
  chi = nullptr;
  phi = nullptr;
  theta = nullptr;
}
