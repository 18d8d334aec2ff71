#include "fourt.h"

#include <cmath>
#include <cstring>
#include <iostream>

// Mixed-radix decimation over the factor list: the input is digit-reversed in
// place, then butterfly passes of ascending span apply the twiddles and the
// short transforms. Twiddles come from the single-precision recurrence
// w' = w + w * (-2 sin^2(t/2) + i sin t) started at (1, 0) in every pass.
// The loops are ordered for the cache: rows of the first dimension go in
// blocks that share one twiddle walk, higher dimensions in blocks of
// neighbouring columns so that every butterfly runs along contiguous memory.

namespace {

const int max_factors = 32;
// Complex values one butterfly call handles side by side.
const int lanes = 8;
// First-dimension rows transformed together (8 rows of 512 complex values
// are 32 KiB, inside the first-level cache).
const int row_block = 8;
// Columns of a higher dimension transformed together, in complex values.
const int column_block = 64;
// Largest product of the lengths taken (2 GiB of complex floats); beyond it
// the int offsets inside a row would overflow.
const long long max_values = 1LL << 28;

struct Plan {
  int length;
  int nfactor;
  int factor[max_factors];
  int nfront;   // paired factors in front, mirrored behind
  int nmiddle;  // unpaired factors between
  int icent;    // product of the unpaired factors
  int npass;
  int radix[max_factors];
  int isign;
};

// Ascending prime factors by trial division.
int factorise(int length, int* ascending) {
  int count = 0;
  int rest = length;
  while (rest % 2 == 0 && rest > 1) {
    ascending[count++] = 2;
    rest /= 2;
  }
  int divisor = 3;
  while (rest > 1) {
    const int quotient = rest / divisor;
    if (rest % divisor == 0) {
      ascending[count++] = divisor;
      rest = quotient;
    } else if (quotient <= divisor) {
      break;
    } else {
      divisor += 2;
    }
  }
  if (rest > 1) ascending[count++] = rest;
  return count;
}

void arrange(Plan& plan) {
  int ascending[max_factors];
  const int count = factorise(plan.length, ascending);
  int front[max_factors];
  int middle[max_factors];
  int nfront = 0;
  int nmiddle = 0;
  for (int i = 0; i < count;) {
    if (i + 1 < count && ascending[i] == ascending[i + 1]) {
      front[nfront++] = ascending[i];
      i += 2;
    } else {
      middle[nmiddle++] = ascending[i];
      i += 1;
    }
  }
  plan.nfactor = 0;
  for (int i = 0; i < nfront; ++i) plan.factor[plan.nfactor++] = front[i];
  plan.icent = 1;
  for (int i = 0; i < nmiddle; ++i) {
    plan.factor[plan.nfactor++] = middle[i];
    plan.icent *= middle[i];
  }
  for (int i = nfront - 1; i >= 0; --i) plan.factor[plan.nfactor++] = front[i];
  plan.nfront = nfront;
  plan.nmiddle = nmiddle;
}

// Neighbouring 2s become one radix-4 pass; an even isign has no +-i to
// exploit, so its 2s go through the general pass.
void choose_passes(Plan& plan) {
  const int odd_sign = plan.isign % 2 != 0;
  plan.npass = 0;
  for (int i = 0; i < plan.nfactor;) {
    if (odd_sign && plan.factor[i] == 2 && i + 1 < plan.nfactor && plan.factor[i + 1] == 2) {
      plan.radix[plan.npass++] = 4;
      i += 2;
    } else {
      plan.radix[plan.npass++] = plan.factor[i];
      i += 1;
    }
  }
}

// Returns 0 when a factor or the middle part is above nwork.
int make_plan(Plan& plan, int length, int isign, int nwork) {
  plan.length = length;
  plan.isign = isign;
  arrange(plan);
  choose_passes(plan);
  int longest = plan.icent;
  for (int i = 0; i < plan.nfactor; ++i)
    if (plan.factor[i] > longest) longest = plan.factor[i];
  return longest <= nwork;
}

void print_refusal(const Plan& plan) {
  std::cout << "\n Debugging stuff \n"
            << "nwork : \n"
            << "idim  : \n"
            << "ncurr : \n"
            << "icent : \n";
  for (int i = 0; i < plan.nfactor; ++i) std::cout << "ifact [" << i << "] : \n";
}

// Turn step for a span: w' = w + w * (c + i s).
void rotation(int isign, int span, float& c, float& s) {
  const float t = static_cast<float>(isign) * 6.2831855f / static_cast<float>(span);
  const float h = std::sin(0.5f * t);
  c = -2.0f * h * h;
  s = std::sin(t);
}

inline void advance(float& wr, float& wi, float c, float s) {
  const float r = wr + (wr * c - wi * s);
  wi = wi + (wr * s + wi * c);
  wr = r;
}

void swap_floats(float* a, float* b, int count) {
  for (int k = 0; k < count; ++k) {
    const float t = a[k];
    a[k] = b[k];
    b[k] = t;
  }
}

// Symmetric digit reversal over the paired factors, the middle part counted
// as one digit: an involution, so it goes by swapping pairs. Index p starts
// at x + p * es and is width floats wide; the same is done on `rows` sets of
// indices row_stride floats apart.
void permute_outer(float* x, long es, int width, int rows, long row_stride, const Plan& plan) {
  if (plan.nfront == 0) return;
  int digit_radix[max_factors];
  int ndigit = 0;
  for (int i = 0; i < plan.nfront; ++i) digit_radix[ndigit++] = plan.factor[i];
  if (plan.icent > 1) digit_radix[ndigit++] = plan.icent;
  for (int i = plan.nfront - 1; i >= 0; --i) digit_radix[ndigit++] = plan.factor[i];
  // The weight a digit of p has in its reverse.
  int reversed_weight[max_factors];
  int weight = 1;
  for (int i = ndigit - 1; i >= 0; --i) {
    reversed_weight[i] = weight;
    weight *= digit_radix[i];
  }
  int digit[max_factors];
  for (int i = 0; i < ndigit; ++i) digit[i] = 0;
  int q = 0;
  const int n = plan.length;
  for (int p = 0; p < n; ++p) {
    if (q > p) {
      float* a = x + p * es;
      float* b = x + q * es;
      if (width == 2) {
        for (int r = 0; r < rows; ++r) {
          float* ra = a + r * row_stride;
          float* rb = b + r * row_stride;
          const float t0 = ra[0], t1 = ra[1];
          ra[0] = rb[0];
          ra[1] = rb[1];
          rb[0] = t0;
          rb[1] = t1;
        }
      } else {
        for (int r = 0; r < rows; ++r) swap_floats(a + r * row_stride, b + r * row_stride, width);
      }
    }
    for (int i = 0; i < ndigit; ++i) {
      ++digit[i];
      q += reversed_weight[i];
      if (digit[i] < digit_radix[i]) break;
      q -= digit_radix[i] * reversed_weight[i];
      digit[i] = 0;
    }
  }
}

// Where the value for middle position m comes from: its digits over the
// middle factors, read in reverse order.
int middle_source(int m, const Plan& plan) {
  const int* middle = plan.factor + plan.nfront;
  int source = 0;
  for (int i = 0; i < plan.nmiddle; ++i) {
    source = source * middle[i] + m % middle[i];
    m /= middle[i];
  }
  return source;
}

// Digit reversal inside the unpaired middle part, one column at a time
// through work (2 * icent floats).
void permute_middle(float* x, int es, int width, const Plan& plan, float* work) {
  if (plan.nmiddle < 2) return;
  int outer = 1;
  for (int i = 0; i < plan.nfront; ++i) outer *= plan.factor[i];
  const int icent = plan.icent;
  for (int top = 0; top < outer; ++top) {
    for (int low = 0; low < outer; ++low) {
      float* block = x + static_cast<long>(low + outer * icent * top) * es;
      const long step = static_cast<long>(outer) * es;
      for (int e = 0; e < width; ++e) {
        for (int m = 0; m < icent; ++m) {
          work[2 * m] = block[m * step + 2 * e];
          work[2 * m + 1] = block[m * step + 2 * e + 1];
        }
        for (int m = 0; m < icent; ++m) {
          const int source = middle_source(m, plan);
          block[m * step + 2 * e] = work[2 * source];
          block[m * step + 2 * e + 1] = work[2 * source + 1];
        }
      }
    }
  }
}

// Butterfly kernels. p is the first input, q the distance in floats between
// the inputs of one butterfly, count the complex values side by side. The
// "same" kernels share one twiddle, the "lane" kernels take one per value.
// u is +1 or -1: the sign of i in the radix's own root.

#if defined(__GNUC__)
typedef float float4 __attribute__((vector_size(16)));

inline float4 load4(const float* p) {
  float4 v;
  std::memcpy(&v, p, sizeof v);
  return v;
}

inline void store4(float* p, float4 v) {
  std::memcpy(p, &v, sizeof v);
}

inline float4 pair_swap(float4 a) {
  return __builtin_shufflevector(a, a, 1, 0, 3, 2);
}

// (ar wr - ai wi, ai wr + ar wi) for two values; wi_signed is (-wi, wi, ...).
inline float4 times(float4 a, float4 wr, float4 wi_signed) {
  return a * wr + pair_swap(a) * wi_signed;
}
#endif

// Radix 4 made of two radix-2 steps: the inputs arrive in the order of
// residues 0, 2, 1, 3.
void radix4_same(float* p, long q, int count, float w1r, float w1i, float w2r, float w2i, float w3r,
                 float w3i, float u) {
  float* __restrict p0 = p;
  float* __restrict p1 = p + q;
  float* __restrict p2 = p + 2 * q;
  float* __restrict p3 = p + 3 * q;
  int e = 0;
#if defined(__GNUC__)
  // Two complex values a vector, real and imaginary parts left interleaved:
  // the same operations, in the same order, as the loop below.
  const float4 v1r = {w1r, w1r, w1r, w1r}, v1i = {-w1i, w1i, -w1i, w1i};
  const float4 v2r = {w2r, w2r, w2r, w2r}, v2i = {-w2i, w2i, -w2i, w2i};
  const float4 v3r = {w3r, w3r, w3r, w3r}, v3i = {-w3i, w3i, -w3i, w3i};
  const float4 turn = {-u, u, -u, u};
  for (; e + 4 <= 2 * count; e += 4) {
    const float4 a0 = load4(p0 + e);
    const float4 b1 = times(load4(p2 + e), v1r, v1i);
    const float4 b2 = times(load4(p1 + e), v2r, v2i);
    const float4 b3 = times(load4(p3 + e), v3r, v3i);
    const float4 s0 = a0 + b2, d0 = a0 - b2;
    const float4 s1 = b1 + b3, d1 = b1 - b3;
    const float4 rotated = pair_swap(d1) * turn;
    store4(p0 + e, s0 + s1);
    store4(p1 + e, d0 + rotated);
    store4(p2 + e, s0 - s1);
    store4(p3 + e, d0 - rotated);
  }
#endif
  for (; e < 2 * count; e += 2) {
    const float a0r = p0[e], a0i = p0[e + 1];
    const float a1r = p2[e], a1i = p2[e + 1];
    const float a2r = p1[e], a2i = p1[e + 1];
    const float a3r = p3[e], a3i = p3[e + 1];
    const float b1r = a1r * w1r - a1i * w1i, b1i = a1r * w1i + a1i * w1r;
    const float b2r = a2r * w2r - a2i * w2i, b2i = a2r * w2i + a2i * w2r;
    const float b3r = a3r * w3r - a3i * w3i, b3i = a3r * w3i + a3i * w3r;
    const float s0r = a0r + b2r, s0i = a0i + b2i;
    const float d0r = a0r - b2r, d0i = a0i - b2i;
    const float s1r = b1r + b3r, s1i = b1i + b3i;
    const float d1r = (b1r - b3r) * u, d1i = (b1i - b3i) * u;
    p0[e] = s0r + s1r;
    p0[e + 1] = s0i + s1i;
    p1[e] = d0r - d1i;
    p1[e + 1] = d0i + d1r;
    p2[e] = s0r - s1r;
    p2[e + 1] = s0i - s1i;
    p3[e] = d0r + d1i;
    p3[e + 1] = d0i - d1r;
  }
}

// Twiddles of neighbouring values: for each value k the real part twice at
// 2k and 2k + 1 (wr), the imaginary part negated at 2k and as is at 2k + 1 (wi).
void radix4_lane(float* p, long q, int count, const float* w1r, const float* w1i, const float* w2r,
                 const float* w2i, const float* w3r, const float* w3i, float u) {
  float* __restrict p0 = p;
  float* __restrict p1 = p + q;
  float* __restrict p2 = p + 2 * q;
  float* __restrict p3 = p + 3 * q;
  int e = 0;
#if defined(__GNUC__)
  const float4 turn = {-u, u, -u, u};
  for (; e + 4 <= 2 * count; e += 4) {
    const float4 a0 = load4(p0 + e);
    const float4 b1 = times(load4(p2 + e), load4(w1r + e), load4(w1i + e));
    const float4 b2 = times(load4(p1 + e), load4(w2r + e), load4(w2i + e));
    const float4 b3 = times(load4(p3 + e), load4(w3r + e), load4(w3i + e));
    const float4 s0 = a0 + b2, d0 = a0 - b2;
    const float4 s1 = b1 + b3, d1 = b1 - b3;
    const float4 rotated = pair_swap(d1) * turn;
    store4(p0 + e, s0 + s1);
    store4(p1 + e, d0 + rotated);
    store4(p2 + e, s0 - s1);
    store4(p3 + e, d0 - rotated);
  }
#endif
  for (; e < 2 * count; e += 2) {
    const float a0r = p0[e], a0i = p0[e + 1];
    const float a1r = p2[e], a1i = p2[e + 1];
    const float a2r = p1[e], a2i = p1[e + 1];
    const float a3r = p3[e], a3i = p3[e + 1];
    const float b1r = a1r * w1r[e] - a1i * w1i[e + 1], b1i = a1r * w1i[e + 1] + a1i * w1r[e];
    const float b2r = a2r * w2r[e] - a2i * w2i[e + 1], b2i = a2r * w2i[e + 1] + a2i * w2r[e];
    const float b3r = a3r * w3r[e] - a3i * w3i[e + 1], b3i = a3r * w3i[e + 1] + a3i * w3r[e];
    const float s0r = a0r + b2r, s0i = a0i + b2i;
    const float d0r = a0r - b2r, d0i = a0i - b2i;
    const float s1r = b1r + b3r, s1i = b1i + b3i;
    const float d1r = (b1r - b3r) * u, d1i = (b1i - b3i) * u;
    p0[e] = s0r + s1r;
    p0[e + 1] = s0i + s1i;
    p1[e] = d0r - d1i;
    p1[e + 1] = d0i + d1r;
    p2[e] = s0r - s1r;
    p2[e + 1] = s0i - s1i;
    p3[e] = d0r + d1i;
    p3[e + 1] = d0i - d1r;
  }
}

// The first radix-4 pass, all twiddles 1: groups of four neighbours.
void radix4_first(float* x, int groups, float u) {
  for (int g = 0; g < groups; ++g) {
    float* p = x + 8 * g;
    const float a0r = p[0], a0i = p[1];
    const float a2r = p[2], a2i = p[3];
    const float a1r = p[4], a1i = p[5];
    const float a3r = p[6], a3i = p[7];
    const float s0r = a0r + a2r, s0i = a0i + a2i;
    const float d0r = a0r - a2r, d0i = a0i - a2i;
    const float s1r = a1r + a3r, s1i = a1i + a3i;
    const float d1r = (a1r - a3r) * u, d1i = (a1i - a3i) * u;
    p[0] = s0r + s1r;
    p[1] = s0i + s1i;
    p[2] = d0r - d1i;
    p[3] = d0i + d1r;
    p[4] = s0r - s1r;
    p[5] = s0i - s1i;
    p[6] = d0r + d1i;
    p[7] = d0i - d1r;
  }
}

// Twiddles laid out as for radix4_lane.
void radix2_lane(float* p, long q, int count, const float* wr, const float* wi) {
  float* __restrict p0 = p;
  float* __restrict p1 = p + q;
  int e = 0;
#if defined(__GNUC__)
  for (; e + 4 <= 2 * count; e += 4) {
    const float4 a = load4(p0 + e);
    const float4 b = times(load4(p1 + e), load4(wr + e), load4(wi + e));
    store4(p0 + e, a + b);
    store4(p1 + e, a - b);
  }
#endif
  for (; e < 2 * count; e += 2) {
    const float br = p1[e] * wr[e] - p1[e + 1] * wi[e + 1];
    const float bi = p1[e] * wi[e + 1] + p1[e + 1] * wr[e];
    const float ar = p0[e], ai = p0[e + 1];
    p0[e] = ar + br;
    p0[e + 1] = ai + bi;
    p1[e] = ar - br;
    p1[e + 1] = ai - bi;
  }
}

// c3 and s3: the cosine and sine of the radix-3 root.
void radix3_lane(float* p, long q, int count, const float* w1r, const float* w1i, const float* w2r,
                 const float* w2i, float c3, float s3) {
  float* __restrict p0 = p;
  float* __restrict p1 = p + q;
  float* __restrict p2 = p + 2 * q;
  for (int k = 0; k < count; ++k) {
    const int e = 2 * k;
    const float b1r = p1[e] * w1r[k] - p1[e + 1] * w1i[k];
    const float b1i = p1[e] * w1i[k] + p1[e + 1] * w1r[k];
    const float b2r = p2[e] * w2r[k] - p2[e + 1] * w2i[k];
    const float b2i = p2[e] * w2i[k] + p2[e + 1] * w2r[k];
    const float sr = b1r + b2r, si = b1i + b2i;
    const float dr = (b1r - b2r) * s3, di = (b1i - b2i) * s3;
    const float mr = p0[e] + c3 * sr, mi = p0[e + 1] + c3 * si;
    p0[e] = p0[e] + sr;
    p0[e + 1] = p0[e + 1] + si;
    p1[e] = mr - di;
    p1[e + 1] = mi + dr;
    p2[e] = mr + di;
    p2[e + 1] = mi - dr;
  }
}

// Any radix: inputs gathered with their twiddles into work, roots of the
// radix in work from 2 * radix on; 4 * radix floats in all.
void general_butterfly(float* p, long q, int count, int radix, float wr, float wi, float* work) {
  const float* root = work + 2 * radix;
  for (int k = 0; k < count; ++k) {
    const int e = 2 * k;
    float tr = 1.0f, ti = 0.0f;  // w^(input index)
    for (int i = 0; i < radix; ++i) {
      const float ar = p[i * q + e], ai = p[i * q + e + 1];
      work[2 * i] = ar * tr - ai * ti;
      work[2 * i + 1] = ar * ti + ai * tr;
      const float r = tr * wr - ti * wi;
      ti = tr * wi + ti * wr;
      tr = r;
    }
    for (int out = 0; out < radix; ++out) {
      float sr = 0.0f, si = 0.0f;
      int power = 0;
      for (int i = 0; i < radix; ++i) {
        const float ur = root[2 * power], ui = root[2 * power + 1];
        sr += work[2 * i] * ur - work[2 * i + 1] * ui;
        si += work[2 * i] * ui + work[2 * i + 1] * ur;
        power += out;
        if (power >= radix) power -= radix;
      }
      p[out * q + e] = sr;
      p[out * q + e + 1] = si;
    }
  }
}

void general_roots(int radix, int isign, float* work) {
  float c, s;
  rotation(isign, radix, c, s);
  float* root = work + 2 * radix;
  float wr = 1.0f, wi = 0.0f;
  for (int i = 0; i < radix; ++i) {
    root[2 * i] = wr;
    root[2 * i + 1] = wi;
    advance(wr, wi, c, s);
  }
}

float quarter_sign(int isign) {
  return (isign % 4 == 1 || isign % 4 == -3) ? 1.0f : -1.0f;
}

void radix3_root(int isign, float& c3, float& s3) {
  rotation(isign, 3, c3, s3);
  c3 += 1.0f;
}

// Radix 2 and 4 kernels rely on the roots -1 and +-i, true for odd isign only.
int built_in(int radix, int isign) {
  return radix == 3 || ((radix == 2 || radix == 4) && isign % 2 != 0);
}

// All passes on one set of transforms whose index i lies at x + i * es and
// whose width complex values side by side share the twiddles.
void passes_columns(float* x, long es, int width, const Plan& plan, float* work) {
  const int n = plan.length;
  const float u = quarter_sign(plan.isign);
  float c3, s3;
  radix3_root(plan.isign, c3, s3);
  float lane_r[2][column_block], lane_i[2][column_block];
  float dup_r[2 * column_block], dup_i[2 * column_block];  // laid out for radix2_lane
  int m = 1;
  for (int pass = 0; pass < plan.npass; ++pass) {
    const int radix = plan.radix[pass];
    const int span = radix * m;
    const long q = m * es;
    float c, s;
    rotation(plan.isign, span, c, s);
    const int general = !built_in(radix, plan.isign);
    if (general) general_roots(radix, plan.isign, work);
    float wr = 1.0f, wi = 0.0f;
    for (int j = 0; j < m; ++j) {
      const float w2r = wr * wr - wi * wi, w2i = 2.0f * wr * wi;
      if (general) {
        for (int g = j; g < n; g += span)
          general_butterfly(x + g * es, q, width, radix, wr, wi, work);
      } else if (radix == 4) {
        const float w3r = w2r * wr - w2i * wi, w3i = w2r * wi + w2i * wr;
        for (int g = j; g < n; g += span)
          radix4_same(x + g * es, q, width, wr, wi, w2r, w2i, w3r, w3i, u);
      } else {
        for (int k = 0; k < width; ++k) {
          lane_r[0][k] = wr;
          lane_i[0][k] = wi;
          lane_r[1][k] = w2r;
          lane_i[1][k] = w2i;
          dup_r[2 * k] = dup_r[2 * k + 1] = wr;
          dup_i[2 * k] = -wi;
          dup_i[2 * k + 1] = wi;
        }
        for (int g = j; g < n; g += span) {
          if (radix == 2)
            radix2_lane(x + g * es, q, width, dup_r, dup_i);
          else
            radix3_lane(x + g * es, q, width, lane_r[0], lane_i[0], lane_r[1], lane_i[1], c3, s3);
        }
      }
      advance(wr, wi, c, s);
    }
    m = span;
  }
}

// All passes on rows of contiguous complex values, rows stride floats apart;
// neighbouring twiddle indices go side by side.
void passes_rows(float* x, int rows, long stride, const Plan& plan, float* work) {
  const int n = plan.length;
  const float u = quarter_sign(plan.isign);
  float c3, s3;
  radix3_root(plan.isign, c3, s3);
  float tr[3][lanes], ti[3][lanes];
  float dr[3][2 * lanes], di[3][2 * lanes];  // the same, laid out for radix4_lane
  int m = 1;
  for (int pass = 0; pass < plan.npass; ++pass) {
    const int radix = plan.radix[pass];
    const int span = radix * m;
    float c, s;
    rotation(plan.isign, span, c, s);
    if (!built_in(radix, plan.isign)) {
      general_roots(radix, plan.isign, work);
      float wr = 1.0f, wi = 0.0f;
      for (int j = 0; j < m; ++j) {
        for (int r = 0; r < rows; ++r)
          for (int g = j; g < n; g += span)
            general_butterfly(x + r * stride + 2 * g, 2 * m, 1, radix, wr, wi, work);
        advance(wr, wi, c, s);
      }
      m = span;
      continue;
    }
    if (radix == 4 && m == 1) {
      for (int r = 0; r < rows; ++r) radix4_first(x + r * stride, n / 4, u);
      m = span;
      continue;
    }
    float wr = 1.0f, wi = 0.0f;
    for (int j0 = 0; j0 < m; j0 += lanes) {
      const int count = m - j0 < lanes ? m - j0 : lanes;
      for (int k = 0; k < count; ++k) {
        tr[0][k] = wr;
        ti[0][k] = wi;
        tr[1][k] = wr * wr - wi * wi;
        ti[1][k] = 2.0f * wr * wi;
        tr[2][k] = tr[1][k] * wr - ti[1][k] * wi;
        ti[2][k] = tr[1][k] * wi + ti[1][k] * wr;
        for (int t = 0; t < 3; ++t) {
          dr[t][2 * k] = dr[t][2 * k + 1] = tr[t][k];
          di[t][2 * k] = -ti[t][k];
          di[t][2 * k + 1] = ti[t][k];
        }
        advance(wr, wi, c, s);
      }
      for (int r = 0; r < rows; ++r) {
        float* row = x + r * stride;
        for (int g = j0; g < n; g += span) {
          if (radix == 4)
            radix4_lane(row + 2 * g, 2 * m, count, dr[0], di[0], dr[1], di[1], dr[2], di[2], u);
          else if (radix == 2)
            radix2_lane(row + 2 * g, 2 * m, count, dr[0], di[0]);
          else
            radix3_lane(row + 2 * g, 2 * m, count, tr[0], ti[0], tr[1], ti[1], c3, s3);
        }
      }
    }
    m = span;
  }
}

void transform_rows(float* x, int rows, long stride, const Plan& plan, float* work) {
  permute_outer(x, 2, 2, rows, stride, plan);
  for (int r = 0; r < rows; ++r) permute_middle(x + r * stride, 2, 1, plan, work);
  passes_rows(x, rows, stride, plan, work);
}

// Half-length complex transforms of real rows (m complex values each, rows
// stride floats apart) into half-complex spectra of the full length (m + 1
// values). The twiddle walk is shared by the rows.
void unfold_rows(float* x, int rows, long stride, int m, float c, float s) {
  for (int r = 0; r < rows; ++r) {
    float* y = x + r * stride;
    const float z0r = y[0], z0i = y[1];
    y[0] = z0r + z0i;
    y[1] = 0.0f;
    y[2 * m] = z0r - z0i;
    y[2 * m + 1] = 0.0f;
  }
  float wr = 1.0f, wi = 0.0f;
  for (int k = 1; 2 * k <= m; ++k) {
    advance(wr, wi, c, s);
    const int j = m - k;
    for (int r = 0; r < rows; ++r) {
      float* y = x + r * stride;
      const float ar = y[2 * k] + y[2 * j], ai = y[2 * k + 1] - y[2 * j + 1];
      const float br = y[2 * k] - y[2 * j], bi = y[2 * k + 1] + y[2 * j + 1];
      const float vr = wr * br - wi * bi, vi = wr * bi + wi * br;
      y[2 * k] = 0.5f * (ar + vi);
      y[2 * k + 1] = 0.5f * (ai - vr);
      if (j != k) {
        y[2 * j] = 0.5f * (ar - vi);
        y[2 * j + 1] = -0.5f * (ai + vr);
      }
    }
  }
}

// The reverse: half-complex spectra of m + 1 values folded into the m
// complex values whose transforms give the real rows, even and odd samples
// interleaved.
void fold_rows(float* x, int rows, long stride, int m, float c, float s) {
  for (int r = 0; r < rows; ++r) {
    float* y = x + r * stride;
    const float x0 = y[0], xm = y[2 * m];
    y[0] = x0 + xm;
    y[1] = x0 - xm;
  }
  float wr = 1.0f, wi = 0.0f;
  for (int k = 1; 2 * k <= m; ++k) {
    advance(wr, wi, c, s);
    const int j = m - k;
    for (int r = 0; r < rows; ++r) {
      float* y = x + r * stride;
      const float ar = y[2 * k] + y[2 * j], ai = y[2 * k + 1] - y[2 * j + 1];
      const float br = y[2 * k] - y[2 * j], bi = y[2 * k + 1] + y[2 * j + 1];
      const float vr = wr * br - wi * bi, vi = wr * bi + wi * br;
      y[2 * k] = ar - vi;
      y[2 * k + 1] = ai + vr;
      if (j != k) {
        y[2 * j] = ar + vi;
        y[2 * j + 1] = vr - ai;
      }
    }
  }
}

void print_odd_refusal(const int* n, int ndim, int iform) {
  std::cout << "\n Debug stuff \n"
            << "iform = " << iform << "\n";
  for (int i = 0; i < ndim; ++i) std::cout << "n [" << i << "] = " << n[i] << "\n";
}

// Returns 0 after a refusal.
int first_dimension(float* data, int n0, int rows, int isign, int iform, float* work, int nwork) {
  Plan plan;
  if (iform > 0) {
    if (n0 < 2) return 1;
    if (!make_plan(plan, n0, isign, nwork)) {
      print_refusal(plan);
      return 0;
    }
    const long stride = 2L * n0;
    for (int r0 = 0; r0 < rows; r0 += row_block) {
      const int count = rows - r0 < row_block ? rows - r0 : row_block;
      transform_rows(data + r0 * stride, count, stride, plan, work);
    }
    return 1;
  }
  const int m = n0 / 2;
  if (m > 1 && !make_plan(plan, m, isign, nwork)) {
    print_refusal(plan);
    return 0;
  }
  float c, s;
  rotation(isign, n0, c, s);
  const long wide = n0 + 2;
  if (iform == 0) {
    // Rows spread from the last, so that none is overwritten before it moved.
    for (int r1 = rows; r1 > 0; r1 -= row_block) {
      const int r0 = r1 - row_block > 0 ? r1 - row_block : 0;
      for (int r = r1 - 1; r >= r0; --r)
        std::memmove(data + r * wide, data + static_cast<long>(r) * n0, n0 * sizeof(float));
      if (m > 1) transform_rows(data + r0 * wide, r1 - r0, wide, plan, work);
      unfold_rows(data + r0 * wide, r1 - r0, wide, m, c, s);
    }
  } else {
    for (int r0 = 0; r0 < rows; r0 += row_block) {
      const int r1 = rows - r0 < row_block ? rows : r0 + row_block;
      fold_rows(data + r0 * wide, r1 - r0, wide, m, c, s);
      for (int r = r0; r < r1; ++r)
        std::memmove(data + static_cast<long>(r) * n0, data + r * wide, n0 * sizeof(float));
      if (m > 1) transform_rows(data + static_cast<long>(r0) * n0, r1 - r0, n0, plan, work);
    }
  }
  return 1;
}

// Returns 0 after a refusal.
int higher_dimension(float* data, int length, long inner, long outer, int isign, float* work,
                     int nwork) {
  if (length < 2) return 1;
  Plan plan;
  if (!make_plan(plan, length, isign, nwork)) {
    print_refusal(plan);
    return 0;
  }
  const long es = 2 * inner;
  for (long o = 0; o < outer; ++o) {
    float* base = data + o * es * length;
    for (long e0 = 0; e0 < inner; e0 += column_block) {
      const int width = inner - e0 < column_block ? static_cast<int>(inner - e0) : column_block;
      float* x = base + 2 * e0;
      permute_outer(x, es, 2 * width, 1, 0, plan);
      permute_middle(x, es, width, plan, work);
      passes_columns(x, es, width, plan, work);
    }
  }
  return 1;
}

}  // namespace

int fourt(float* data, const int* n, int ndim, int isign, int iform, float* work, int nwork) {
  if (data == nullptr || n == nullptr || ndim < 1) return 0;
  long long ntot = 1;
  for (int i = 0; i < ndim; ++i) {
    if (n[i] < 1) return 0;
    ntot *= n[i];
    if (ntot > max_values) return 0;
  }
  if (iform < 1 && n[0] % 2 != 0) {
    print_odd_refusal(n, ndim, iform);
    return 0;
  }
  if (work == nullptr) nwork = 0;
  // Complex values a row of the first dimension holds once it is transformed.
  const long first_count = iform > 0 ? n[0] : n[0] / 2 + 1;
  for (int step = 0; step < ndim; ++step) {
    const int idim = iform >= 0 ? step : ndim - 1 - step;
    if (idim == 0) {
      if (!first_dimension(data, n[0], static_cast<int>(ntot / n[0]), isign, iform, work, nwork))
        return 0;
      continue;
    }
    long inner = first_count;
    for (int i = 1; i < idim; ++i) inner *= n[i];
    long outer = 1;
    for (int i = idim + 1; i < ndim; ++i) outer *= n[i];
    if (!higher_dimension(data, n[idim], inner, outer, isign, work, nwork)) return 0;
  }
  return 0;
}

int fourt1(float* data, int n, int sign) {
  float work[400];
  return fourt(data, &n, 1, -sign, 1, work, 100);
}

int fourt2(float* data, int n1, int n2, int sign) {
  float work[400];
  const int n[2] = {n1, n2};
  return fourt(data, n, 2, -sign, sign == 1 ? 0 : -1, work, 100);
}

int fourt3(float* data, int n1, int n2, int n3, int sign) {
  float work[400];
  const int n[3] = {n1, n2, n3};
  return fourt(data, n, 3, -sign, sign == 1 ? 0 : -1, work, 100);
}

int fourt_passes(int length, int isign, int nwork, int* radix, int max_passes) {
  if (length < 2) return 0;
  Plan plan;
  if (!make_plan(plan, length, isign, nwork)) return -1;
  for (int i = 0; i < plan.npass && i < max_passes; ++i) radix[i] = plan.radix[i];
  return plan.npass;
}

int fourt_factors(int length, int* factor, int& icent) {
  icent = 1;
  if (length < 2) return 0;
  Plan plan;
  plan.length = length;
  arrange(plan);
  for (int i = 0; i < plan.nfactor; ++i) factor[i] = plan.factor[i];
  icent = plan.icent;
  return plan.nfactor;
}
