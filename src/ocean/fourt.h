#ifndef TC_FOURT_H
#define TC_FOURT_H

// The engine's one discrete Fourier transform: in place, single precision, any
// number of dimensions, any length, no scaling (a transform followed by its
// inverse multiplies the data by the product of the lengths).
//
// data: complex values as (real, imaginary) float pairs, first dimension
// fastest. n: ndim lengths. isign: the sign of the exponent,
// exp(isign * 2 pi i j k / N).
// iform above 0: complex in and out.
// iform 0: real data in (n[0] floats a row, rows packed), half-complex out
// (n[0] / 2 + 1 complex values a row, so n[0] + 2 floats a row).
// iform below 0: half-complex in, packed real out.
// Real forms need an even n[0]; the buffer holds (n[0] + 2) * n[1] * ...
// floats. work holds 4 * nwork floats; no length may have a factor (or an
// unpaired middle part) above nwork. Refusals print their debug lines on
// standard output and leave the data alone; so do a missing array, ndim below
// 1, a length below 1 or a product of lengths above 2^28. Always returns 0.
// Keeps no state between calls: reentrant.
int fourt(float* data, const int* n, int ndim, int isign, int iform, float* work, int nwork);

// One-dimensional complex transform; sign +1 has exponent sign -1.
int fourt1(float* data, int n, int sign);
// Two- and three-dimensional real transforms, n1 fastest. sign +1: real in,
// half-complex out, exponent sign -1; otherwise half-complex in, real out,
// exponent sign +1.
int fourt2(float* data, int n1, int n2, int sign);
int fourt3(float* data, int n1, int n2, int n3, int sign);

// The butterfly passes fourt runs for one complex length: their radices in
// order of ascending span, at most max_passes of them. Returns the number of
// passes (0 for a length below 2), or -1 when a factor or the unpaired middle
// part exceeds nwork.
int fourt_passes(int length, int isign, int nwork, int* radix, int max_passes);

// The factors of a length as fourt arranges them (paired factors in front
// and mirrored behind, unpaired ones between) and the product of the
// unpaired ones. Returns the number of factors (at most 31).
int fourt_factors(int length, int* factor, int& icent);

#endif
