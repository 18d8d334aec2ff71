#ifndef TC_GAUSSIAN_TABLE_H
#define TC_GAUSSIAN_TABLE_H

// The integral of exp(-t^2) from 0 to x, tabulated at steps of 0.025 from 0
// to 4 (161 values), each step integrated by the trapezoid rule over 10
// sub-intervals. It stands in for the error function where the air's optical
// depths are worked out.
class TCGaussian_table {
 public:
  static constexpr int count = 161;
  static constexpr double step = 0.025;

  // Fills the table; "unable to allocate memory for Gaussian table " and
  // exit 1 when memory runs out.
  TCGaussian_table();
  ~TCGaussian_table();

  // Linear between entries on |x|, the last entry beyond the table (and for
  // a value that is not a number), negated for negative x.
  double value(double x) const;

  double* values;

 private:
  TCGaussian_table(const TCGaussian_table&);
  TCGaussian_table& operator=(const TCGaussian_table&);
};

#endif
