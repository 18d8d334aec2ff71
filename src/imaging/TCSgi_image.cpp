#include "TCSgi_image.h"

#include <cmath>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <new>

#include "TCByte_order.h"

namespace {

const int header_size = 512;
const short sgi_magic = 474;
// Sizes on file are unsigned 16-bit fields.
const int largest_size = 65535;

// The fields of the header the readers use.
struct Sgi_header {
  int storage;  // 0 verbatim, anything else run-length
  int x_size;   // columns
  int y_size;   // rows
  int z_size;   // planes
};

void put_short(unsigned char* at, int value) {
  short s = static_cast<short>(static_cast<unsigned short>(value));
  swap_short(s);
  std::memcpy(at, &s, 2);
}

void put_long(unsigned char* at, int value) {
  swap_long(value);
  std::memcpy(at, &value, 4);
}

int get_short(const unsigned char* at) {
  short s;
  std::memcpy(&s, at, 2);
  swap_short(s);
  return static_cast<unsigned short>(s);
}

void allocation_failure(const char* text) {
  std::cout << text << "\n" << std::flush;
  std::exit(1);
}

// Reads the first 12 bytes, through the z size, and checks the magic number.
int read_header(std::istream& in, const char* name, Sgi_header& header) {
  unsigned char field[12];
  in.read(reinterpret_cast<char*>(field), sizeof(field));
  if (in.gcount() != static_cast<std::streamsize>(sizeof(field))) {
    std::cout << "SGI RGB file " << name << " is too short for its header"
              << "\n";
    return 0;
  }
  if (get_short(field) != sgi_magic) {
    std::cout << "file " << name << " not of SGI RGB format "
              << "\n";
    return 0;
  }
  header.storage = field[2];
  header.x_size = get_short(field + 6);
  header.y_size = get_short(field + 8);
  header.z_size = get_short(field + 10);
  return 1;
}

int open_for_reading(std::ifstream& in, const char* name) {
  in.open(name, std::ios::in | std::ios::binary);
  if (!in) {
    std::cout << "unable to open " << name << "\n";
    return 0;
  }
  return 1;
}

int dims_usable(const int dims[2], const char* name) {
  if (dims[0] < 1 || dims[1] < 1 || dims[0] > largest_size || dims[1] > largest_size) {
    std::cout << "image of " << dims[0] << " by " << dims[1] << " does not fit SGI RGB file "
              << name << "\n";
    return 0;
  }
  return 1;
}

long long file_length(std::istream& in) {
  in.clear();
  in.seekg(0, std::ios::end);
  const long long length = static_cast<long long>(in.tellg());
  in.clear();
  return length < 0 ? 0 : length;
}

// Opens for update and places the put position at the start of the plane.
int seek_plane_for_writing(std::fstream& out, const char* name, int plane, const int dims[2]) {
  if (plane < 0 || !dims_usable(dims, name)) return 0;
  out.open(name, std::ios::in | std::ios::out | std::ios::binary);
  if (!out) {
    std::cout << "unable to open " << name << "\n";
    return 0;
  }
  const long long plane_size = static_cast<long long>(dims[0]) * dims[1];
  out.seekp(static_cast<std::streamoff>(header_size + plane * plane_size));
  return static_cast<bool>(out);
}

int write_failed(const char* name, int plane) {
  std::cout << "unable to write plane " << plane << " to " << name << "\n";
  return 0;
}

int read_verbatim(std::istream& in, const char* name, int plane, unsigned char* bytes,
                  long long plane_size) {
  in.seekg(static_cast<std::streamoff>(header_size + plane * plane_size));
  in.read(reinterpret_cast<char*>(bytes), static_cast<std::streamsize>(plane_size));
  if (!in || in.gcount() != static_cast<std::streamsize>(plane_size)) {
    std::cout << "unable to read plane " << plane << " of SGI RGB file " << name << "\n";
    return 0;
  }
  return 1;
}

// Run-length planes: a table of row starts and one of row lengths, rows * z
// longs each, then packets. Only the starts are needed to decode.
int read_run_length(std::istream& in, const char* name, int plane, unsigned char* bytes,
                    const Sgi_header& header, int& bad_row) {
  const long long rows = header.y_size;
  const long long columns = header.x_size;
  const long long entries = rows * header.z_size;
  // The tables must be on file before they are worth memory.
  if (file_length(in) < header_size + 8 * entries) {
    std::cout << "SGI RGB file " << name << " is too short for its run-length tables"
              << "\n";
    return 0;
  }
  int* starts = new (std::nothrow) int[entries];
  if (starts == nullptr) allocation_failure("unable to allocate memory for decoding SGI RLE file");
  int* lengths = new (std::nothrow) int[entries];
  if (lengths == nullptr)
    allocation_failure("unable to allocate memory for decoding SGI RLE file ");
  in.seekg(header_size);
  in.read(reinterpret_cast<char*>(starts), static_cast<std::streamsize>(4 * entries));
  in.read(reinterpret_cast<char*>(lengths), static_cast<std::streamsize>(4 * entries));
  if (!in) {
    delete[] starts;
    delete[] lengths;
    std::cout << "SGI RGB file " << name << " is too short for its run-length tables"
              << "\n";
    return 0;
  }
  for (long long i = 0; i < entries; i++) {
    swap_long(starts[i]);
    swap_long(lengths[i]);
  }
  // The longest row that can still decode: a repeat packet per pixel, then the end mark.
  const long long packed_size = 2 * columns + 1;
  unsigned char* packed = new (std::nothrow) unsigned char[packed_size];
  if (packed == nullptr) allocation_failure("unable to allocate memory for decoding SGI RLE file");
  int ok = 1;
  for (long long row = 0; row < rows && ok; row++) {
    const unsigned int start = static_cast<unsigned int>(starts[row + plane * rows]);
    in.clear();
    in.seekg(static_cast<std::streamoff>(start));
    long n_packed = 0;
    if (in) {
      in.read(reinterpret_cast<char*>(packed), static_cast<std::streamsize>(packed_size));
      n_packed = static_cast<long>(in.gcount());
    }
    if (!rgb_decode_row(packed, n_packed, bytes + row * columns, header.x_size)) {
      bad_row = 1;
      ok = 0;
    }
  }
  delete[] packed;
  delete[] starts;
  delete[] lengths;
  return ok;
}

// The byte readers' common road; bytes is the caller's, rows * columns long.
int load_checked(const char* name, int plane, unsigned char* bytes, const int dims[2],
                 int& bad_row) {
  bad_row = 0;
  std::ifstream in;
  if (!open_for_reading(in, name)) return 0;
  Sgi_header header;
  if (!read_header(in, name, header)) return 0;
  if (plane < 0 || plane >= header.z_size) {
    if (plane == 3) {
      std::cout << "ERROR: alpha channel not present in RGB file "
                << "\n";
    } else {
      std::cout << "band " << plane << "not present in RGB file "
                << " only has " << header.z_size << " bands "
                << "\n";
    }
    return 0;
  }
  if (header.y_size != dims[0] || header.x_size != dims[1]) {
    std::cout << "SGI RGB file " << name << " is " << header.y_size << " by " << header.x_size
              << ", not " << dims[0] << " by " << dims[1] << "\n";
    return 0;
  }
  if (header.storage == 0) {
    const long long plane_size = static_cast<long long>(dims[0]) * dims[1];
    return read_verbatim(in, name, plane, bytes, plane_size);
  }
  return read_run_length(in, name, plane, bytes, header, bad_row);
}

// A run-length row that does not decode ends the run.
int load_or_exit(const char* name, int plane, unsigned char* bytes, const int dims[2]) {
  int bad_row = 0;
  const int ok = load_checked(name, plane, bytes, dims, bad_row);
  if (bad_row) {
    std::cout << "problem with decoding rgb file " << name << "\n" << std::flush;
    std::exit(1);
  }
  return ok;
}

unsigned char* plane_buffer(const int dims[2]) {
  unsigned char* bytes =
      new (std::nothrow) unsigned char[static_cast<long long>(dims[0]) * dims[1]];
  if (bytes == nullptr) allocation_failure("unable to allocate memory for reading SGI RGB file");
  return bytes;
}

}  // namespace

int rgb_open(const char* name, const int dims[2], int n_planes) {
  if (!dims_usable(dims, name)) return 0;
  if (n_planes < 1 || n_planes > largest_size) {
    std::cout << n_planes << " planes do not fit SGI RGB file " << name << "\n";
    return 0;
  }
  unsigned char header[header_size];
  std::memset(header, 0, sizeof(header));
  put_short(header, sgi_magic);
  header[2] = 0;  // verbatim
  header[3] = 1;  // one byte per channel
  put_short(header + 4, 3);
  put_short(header + 6, dims[1]);
  put_short(header + 8, dims[0]);
  put_short(header + 10, n_planes);
  put_long(header + 12, 0);
  put_long(header + 16, 255);
  put_long(header + 104, 0);  // normal colour map
  std::ofstream out(name, std::ios::out | std::ios::binary | std::ios::trunc);
  if (!out) {
    std::cout << "unable to open " << name << "\n";
    return 0;
  }
  out.write(reinterpret_cast<const char*>(header), sizeof(header));
  if (!out) {
    std::cout << "unable to write the header of " << name << "\n";
    return 0;
  }
  return 1;
}

unsigned char rgb_code_byte(double x, double lo, double hi) {
  const double v = (x - lo) / (hi - lo) * 255.0;
  // Written so that a NaN, from hi == lo, falls through to 0 without a cast.
  if (v > 0.0 && v < 255.0) return static_cast<unsigned char>(v);
  if (v >= 255.0) return 255;
  return 0;
}

float rgb_decode_byte(unsigned char byte, double lo, double hi) {
  return static_cast<float>(lo + (hi - lo) * (byte + 0.5) / 255.0);
}

int rgb_write_plane(const char* name, int plane, const float* data, const int dims[2], double lo,
                    double hi) {
  std::fstream out;
  if (!seek_plane_for_writing(out, name, plane, dims)) return write_failed(name, plane);
  const int columns = dims[1];
  unsigned char* row = new (std::nothrow) unsigned char[columns];
  if (row == nullptr) allocation_failure("unable to allocate memory for writing SGI RGB file");
  for (long long r = 0; r < dims[0] && out; r++) {
    const float* source = data + r * columns;
    for (int c = 0; c < columns; c++) row[c] = rgb_code_byte(source[c], lo, hi);
    out.write(reinterpret_cast<const char*>(row), columns);
  }
  delete[] row;
  if (!out) return write_failed(name, plane);
  return 1;
}

int rgb_write_mask(const char* name, int plane, const unsigned char* bytes, const int dims[2]) {
  std::fstream out;
  if (!seek_plane_for_writing(out, name, plane, dims)) return write_failed(name, plane);
  out.write(reinterpret_cast<const char*>(bytes),
            static_cast<std::streamsize>(static_cast<long long>(dims[0]) * dims[1]));
  if (!out) return write_failed(name, plane);
  return 1;
}

int rgb_read_dims(const char* name, int dims[2]) {
  std::ifstream in;
  if (!open_for_reading(in, name)) return 0;
  Sgi_header header;
  if (!read_header(in, name, header)) return 0;
  dims[0] = header.y_size;
  dims[1] = header.x_size;
  return 1;
}

int rgb_read_channels(const char* name, int& n_channels) {
  std::ifstream in;
  if (!open_for_reading(in, name)) return 0;
  Sgi_header header;
  if (!read_header(in, name, header)) return 0;
  n_channels = header.z_size;
  return 1;
}

int rgb_decode_row(const unsigned char* packed, long n_packed, unsigned char* row, int columns) {
  int filled = 0;
  long at = 0;
  while (at < n_packed) {
    const int code = packed[at++];
    const int count = code & 0x7f;
    if (count == 0) return filled == columns ? 1 : 0;
    if (count > columns - filled) return 0;
    if (code & 0x80) {
      if (count > n_packed - at) return 0;
      std::memcpy(row + filled, packed + at, count);
      at += count;
    } else {
      if (at >= n_packed) return 0;
      std::memset(row + filled, packed[at++], count);
    }
    filled += count;
  }
  // Input ran out before the row's end mark.
  return 0;
}

int rgb_load_plane(const char* name, int plane, unsigned char* bytes, const int dims[2],
                   int& bad_row) {
  bad_row = 0;
  if (!dims_usable(dims, name)) return 0;
  return load_checked(name, plane, bytes, dims, bad_row);
}

int rgb_read_plane_bytes(const char* name, int plane, unsigned char* bytes, const int dims[2]) {
  if (!dims_usable(dims, name)) return 0;
  return load_or_exit(name, plane, bytes, dims);
}

int rgb_read_plane(const char* name, int plane, float* data, const int dims[2], double lo,
                   double hi) {
  if (!dims_usable(dims, name)) return 0;
  unsigned char* bytes = plane_buffer(dims);
  const int ok = load_or_exit(name, plane, bytes, dims);
  if (ok) {
    const long long n = static_cast<long long>(dims[0]) * dims[1];
    for (long long i = 0; i < n; i++) data[i] = rgb_decode_byte(bytes[i], lo, hi);
  }
  delete[] bytes;
  return ok;
}

int rgb_read_texture_plane(const char* name, int plane, unsigned char* bytes, int n_x, int n_y) {
  const int dims[2] = {n_y, n_x};
  if (!dims_usable(dims, name)) return 0;
  unsigned char* file_order = plane_buffer(dims);
  const int ok = load_or_exit(name, plane, file_order, dims);
  if (ok) {
    for (long long y = 0; y < n_y; y++)
      for (long long x = 0; x < n_x; x++) bytes[x * n_y + y] = file_order[y * n_x + x];
  }
  delete[] file_order;
  return ok;
}
