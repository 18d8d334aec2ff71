#ifndef TC_SGI_IMAGE_H
#define TC_SGI_IMAGE_H

// 8-bit SGI RGB image files: a 512-byte big-endian header, then either
// verbatim planes (rows of bytes, row 0 first) or the run-length form.
// dims are (rows, columns) throughout, as the image dispatch passes them;
// on file the x size is the column count and the y size the row count.
// Every call prints its line and returns 0 on failure.

// Creates (truncating) a verbatim file of n_planes planes with its header.
int rgb_open(const char* name, const int dims[2], int n_planes);

// Codes floats into bytes over (lo, hi) and writes plane `plane` in place.
int rgb_write_plane(const char* name, int plane, const float* data, const int dims[2], double lo,
                    double hi);
// Writes bytes unchanged (a mask file).
int rgb_write_mask(const char* name, int plane, const unsigned char* bytes, const int dims[2]);

// The file's y and x sizes into dims[0] and dims[1].
int rgb_read_dims(const char* name, int dims[2]);
// The file's z size: its number of planes.
int rgb_read_channels(const char* name, int& n_channels);

// Reads plane `plane` of a verbatim or run-length file whose sizes must be
// dims. Floats decode each byte to lo + (hi - lo) * (byte + 0.5) / 255.
int rgb_read_plane(const char* name, int plane, float* data, const int dims[2], double lo,
                   double hi);
// Raw bytes, row-major like the file.
int rgb_read_plane_bytes(const char* name, int plane, unsigned char* bytes, const int dims[2]);
// Raw bytes laid out for a texture plane: x is the slow axis, so the byte
// of column x and row y lands at x * n_y + y. The file must be n_y by n_x.
int rgb_read_texture_plane(const char* name, int plane, unsigned char* bytes, int n_x, int n_y);

// The byte of a value over (lo, hi): (x - lo) / (hi - lo) scaled to 255 and
// truncated, 0 at and below 0, 255 from 255 up. hi == lo is not guarded.
unsigned char rgb_code_byte(double x, double lo, double hi);

// Float of a byte over (lo, hi): lo + (hi - lo) * (byte + 0.5) / 255, the
// middle of the byte's interval.
float rgb_decode_byte(unsigned char byte, double lo, double hi);

// One run-length row: packets from `packed` (n_packed bytes available) into
// `row`. Returns 1 when the row ends, by a count with its low seven bits zero,
// at exactly `columns` pixels; 0 when it would run past the row, ends short or
// runs out of input. Never touches memory outside the two buffers.
int rgb_decode_row(const unsigned char* packed, long n_packed, unsigned char* row, int columns);

// What the byte readers do, without ending the process: plane `plane` as raw
// bytes, row-major. A run-length row that does not decode sets bad_row to 1
// and returns 0 silently; every other failure prints its line and returns 0.
int rgb_load_plane(const char* name, int plane, unsigned char* bytes, const int dims[2],
                   int& bad_row);

#endif
