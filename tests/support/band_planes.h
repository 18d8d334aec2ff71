#ifndef TC_TESTS_BAND_PLANES_H
#define TC_TESTS_BAND_PLANES_H

// The [band][pixel] float planes a caller hands the list to image into, all
// zero to start.
struct Planes {
  Planes(int bands, int pixels) : n(bands) {
    planes = new float*[bands];
    for (int b = 0; b < bands; b++) planes[b] = new float[pixels]();
  }
  ~Planes() {
    for (int b = 0; b < n; b++) delete[] planes[b];
    delete[] planes;
  }
  Planes(const Planes&) = delete;
  Planes& operator=(const Planes&) = delete;
  int n;
  float** planes;
};

#endif
