#ifndef TC_SPECTRUM_H
#define TC_SPECTRUM_H

// Radiance in spectral bands. Band ids number from 1 on construction.
// Allocation failure prints on standard error and exits 1.
class TCSpectrum {
 public:
  TCSpectrum();  // one band
  explicit TCSpectrum(int count);
  TCSpectrum(const TCSpectrum& other);
  TCSpectrum& operator=(const TCSpectrum& other);
  ~TCSpectrum();

  // Copies count, ids and radiances.
  void assign(const TCSpectrum& other);
  // Takes only other's count; ids number from 0 here, radiances 0.
  void reset(const TCSpectrum& other);
  // Position of a band id, or -1.
  int index_of(int band) const;

  int n;
  int* band_id;
  double* radiance_in_band;

 private:
  void allocate(int count);
};

#endif
