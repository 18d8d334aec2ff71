// fourt against FFTW (single precision, in place, the same padded buffer).
//
// The machine is shared and noisy, so each benchmark times the two
// alternately in one process, A-B-B-A: fourt, FFTW, FFTW, fourt, each on a
// fresh copy of the input made outside the timed region, with the FFTW plan
// made beforehand. Times are the thread's CPU time. Every group gives one ratio (fourt's two times
// over FFTW's two); the counter "ratio" is the median of those ratios, and "fourt_ms", "fftw_ms"
// are the medians of the single times.

#include <benchmark/benchmark.h>
#include <fftw3.h>

#include <algorithm>
#include <cstring>
#include <ctime>
#include <random>
#include <string>
#include <vector>

#include "fourt.h"

namespace {

enum Shape { complex_1d = 1, real_2d = 2, real_3d = 3 };

struct Case {
  Shape shape;
  int n;     // every dimension's length
  int sign;  // fourt's: +1 real in (or exponent -1), -1 the reverse
};

// Floats of the in-place buffer; the reals a transform starts from when
// sign is +1.
long buffer_floats(const Case& c) {
  if (c.shape == complex_1d) return 2L * c.n;
  const long rows = c.shape == real_2d ? c.n : static_cast<long>(c.n) * c.n;
  return (c.n + 2L) * rows;
}

long real_count(const Case& c) {
  return c.shape == real_2d ? 1L * c.n * c.n : 1L * c.n * c.n * c.n;
}

// Input for fourt and for FFTW: the same values, each in its own layout.
// FFTW's in-place real input has rows padded to n + 2 floats; fourt's is packed.
void make_inputs(const Case& c, std::vector<float>& ours, std::vector<float>& theirs) {
  const long floats = buffer_floats(c);
  std::mt19937 engine(12345);
  std::uniform_real_distribution<float> uniform(-1.0f, 1.0f);
  ours.assign(floats, 0.0f);
  theirs.assign(floats, 0.0f);
  if (c.shape == complex_1d || c.sign == -1) {
    // Complex data, or a half-complex spectrum: the layouts agree.
    for (long i = 0; i < floats; ++i) ours[i] = theirs[i] = uniform(engine);
    if (c.shape != complex_1d) {
      // Zero imaginary parts where a real result needs them.
      const long rows = floats / (c.n + 2);
      for (long r = 0; r < rows; ++r) {
        ours[r * (c.n + 2) + 1] = theirs[r * (c.n + 2) + 1] = 0.0f;
        ours[r * (c.n + 2) + c.n + 1] = theirs[r * (c.n + 2) + c.n + 1] = 0.0f;
      }
    }
    return;
  }
  const long rows = real_count(c) / c.n;
  for (long r = 0; r < rows; ++r) {
    for (int x = 0; x < c.n; ++x) {
      const float v = uniform(engine);
      ours[r * c.n + x] = v;
      theirs[r * (c.n + 2) + x] = v;
    }
  }
}

fftwf_plan make_plan(const Case& c, float* buffer, unsigned flags) {
  fftwf_complex* spectrum = reinterpret_cast<fftwf_complex*>(buffer);
  if (c.shape == complex_1d)
    return fftwf_plan_dft_1d(c.n, spectrum, spectrum, c.sign == 1 ? FFTW_FORWARD : FFTW_BACKWARD,
                             flags);
  if (c.shape == real_2d) {
    if (c.sign == 1) return fftwf_plan_dft_r2c_2d(c.n, c.n, buffer, spectrum, flags);
    return fftwf_plan_dft_c2r_2d(c.n, c.n, spectrum, buffer, flags);
  }
  if (c.sign == 1) return fftwf_plan_dft_r2c_3d(c.n, c.n, c.n, buffer, spectrum, flags);
  return fftwf_plan_dft_c2r_3d(c.n, c.n, c.n, spectrum, buffer, flags);
}

void run_fourt(const Case& c, float* buffer) {
  if (c.shape == complex_1d)
    fourt1(buffer, c.n, c.sign);
  else if (c.shape == real_2d)
    fourt2(buffer, c.n, c.n, c.sign);
  else
    fourt3(buffer, c.n, c.n, c.n, c.sign);
}

// CPU time of this thread: on a loaded machine wall time mostly measures the
// other processes.
double thread_seconds() {
  timespec now;
  clock_gettime(CLOCK_THREAD_CPUTIME_ID, &now);
  return now.tv_sec + 1e-9 * now.tv_nsec;
}

double median(std::vector<double> values) {
  std::sort(values.begin(), values.end());
  const size_t half = values.size() / 2;
  return values.size() % 2 ? values[half] : 0.5 * (values[half - 1] + values[half]);
}

void compare(benchmark::State& state, Case c, unsigned flags) {
  std::vector<float> ours_input, theirs_input;
  make_inputs(c, ours_input, theirs_input);
  const long floats = buffer_floats(c);
  float* ours = fftwf_alloc_real(floats);
  float* theirs = fftwf_alloc_real(floats);
  fftwf_plan plan = make_plan(c, theirs, flags);
  std::vector<double> ratios, our_times, their_times;
  for (auto _ : state) {
    double t[4];
    for (int k = 0; k < 4; ++k) {
      const int ours_turn = k == 0 || k == 3;
      if (ours_turn)
        std::memcpy(ours, ours_input.data(), floats * sizeof(float));
      else
        std::memcpy(theirs, theirs_input.data(), floats * sizeof(float));
      const double start = thread_seconds();
      if (ours_turn)
        run_fourt(c, ours);
      else
        fftwf_execute(plan);
      t[k] = thread_seconds() - start;
      benchmark::DoNotOptimize(ours_turn ? ours[0] : theirs[0]);
      benchmark::ClobberMemory();
    }
    state.SetIterationTime(t[0] + t[3]);
    ratios.push_back((t[0] + t[3]) / (t[1] + t[2]));
    our_times.push_back(t[0]);
    our_times.push_back(t[3]);
    their_times.push_back(t[1]);
    their_times.push_back(t[2]);
  }
  state.counters["ratio"] = median(ratios);
  state.counters["fourt_ms"] = 1e3 * median(our_times);
  state.counters["fftw_ms"] = 1e3 * median(their_times);
  fftwf_destroy_plan(plan);
  fftwf_free(ours);
  fftwf_free(theirs);
}

const char* shape_name(Shape shape) {
  return shape == complex_1d ? "complex1d" : shape == real_2d ? "real2d" : "real3d";
}

void register_all() {
  std::vector<Case> cases;
  for (int n : {256, 512, 1024, 2048})
    for (int sign : {1, -1}) cases.push_back(Case{real_2d, n, sign});
  for (int n : {64, 128})
    for (int sign : {1, -1}) cases.push_back(Case{real_3d, n, sign});
  for (int n : {1024, 768, 1000}) cases.push_back(Case{complex_1d, n, 1});
  const struct {
    const char* name;
    unsigned flags;
  } plans[] = {{"MEASURE", FFTW_MEASURE},
               {"MEASURE_NO_SIMD", FFTW_MEASURE | FFTW_NO_SIMD},
               {"ESTIMATE", FFTW_ESTIMATE}};
  for (const Case& c : cases) {
    // About half a second of fourt per benchmark, at least 15 groups.
    const double points = static_cast<double>(buffer_floats(c));
    const int groups = std::max(15, static_cast<int>(2e8 / (points * 20.0)));
    for (const auto& plan : plans) {
      std::string name = std::string(shape_name(c.shape)) + "/" + std::to_string(c.n) +
                         (c.sign == 1 ? "/forward/" : "/inverse/") + plan.name;
      benchmark::RegisterBenchmark(name.c_str(), compare, c, plan.flags)
          ->UseManualTime()
          ->Iterations(std::min(groups, 2001))
          ->Unit(benchmark::kMillisecond);
    }
  }
}

}  // namespace

int main(int argc, char** argv) {
  register_all();
  benchmark::Initialize(&argc, argv);
  benchmark::RunSpecifiedBenchmarks();
  benchmark::Shutdown();
  return 0;
}
