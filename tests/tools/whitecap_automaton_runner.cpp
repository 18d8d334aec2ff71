// Runs the whitecap automaton for the comparison script, taking the sea's
// acceleration from whoever drives it:
//   whitecap_automaton_runner PARAMS OUTPUT --frames T [T ...] [--probe X Y]...
//       [--float-acceleration]
// PARAMS holds "key value..." lines (center, length, interval, max_distance,
// reference_time, time_increment, initialization_time,
// initialization_increment, formation_time, decay_time, thresholds,
// reflectivities, acceleration_time_offset; '#' starts a comment). For every
// node it needs, the program writes "sample t x y" to standard output and
// reads the acceleration in m/s^2 as one line of standard input (rounded to
// float first with --float-acceleration). OUTPUT gets, in generation mode 0:
//   step k t                            after every step
//   cell g i j acc_prev acc_latest refl_prev refl_latest trans_prev
//        trans_latest released          every live record after each step
//   frame T step_weight                 after each frame's steps
//   probe x y r t result                whitecap_at at each probe
// numbers in "%.9g". "done" on standard output ends the run.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string>
#include <vector>

#include "TCSettings.h"
#include "TCSpectrum.h"
#include "TCWhitecaps.h"
#include "ocean_input.h"

namespace {

class Asked_acceleration : public Whitecap_acceleration {
 public:
  Asked_acceleration(double t_in, int rounded_in) : t(t_in), rounded(rounded_in) {}
  double acceleration_at(double x, double y) override {
    std::printf("sample %.17g %.17g %.17g\n", t, x, y);
    std::fflush(stdout);
    char line[256];
    if (std::fgets(line, sizeof line, stdin) == nullptr) {
      std::fprintf(stderr, "no acceleration given\n");
      std::exit(2);
    }
    const double value = std::strtod(line, nullptr);
    return rounded ? static_cast<float>(value) : value;
  }

 private:
  double t;
  int rounded;
};

// Notes each step as it starts and prints it, with its records, once it is
// done.
class Reporting_whitecaps : public TCWhitecaps {
 public:
  Reporting_whitecaps(const ocean_input& input, FILE* out_in, int rounded_in)
      : TCWhitecaps(input), out(out_in), rounded(rounded_in), pending(0), pending_step(0) {}
  Whitecap_acceleration* acceleration_at_time(double T) override {
    report();
    pending = 1;
    pending_step = step;
    return new Asked_acceleration(T, rounded);
  }
  // The step that ran last, if not printed yet.
  void report() {
    if (!pending) return;
    pending = 0;
    // The step times of the automaton: spin-up steps up to 0, then dt.
    const double t = pending_step <= 0 ? pending_step * initialization_increment + reference_time
                                       : pending_step * time_increment + reference_time;
    std::fprintf(out, "step %d %.9g\n", pending_step, t);
    for (int g = 0; g < num_grids; g++) {
      for (int i = 0; i < n_x; i++) {
        for (int j = 0; j < n_y; j++) {
          const Whitecap_point* p = point(g, i, j);
          if (p == nullptr) continue;
          std::fprintf(out, "cell %d %d %d %.9g %.9g %.9g %.9g %.9g %.9g %d\n", g, i, j,
                       p->acc_previous, p->acc_latest, p->refl_previous, p->refl_latest,
                       p->trans_previous, p->trans_latest, p->released);
        }
      }
    }
  }

 private:
  FILE* out;
  int rounded;
  int pending;
  int pending_step;
};

int read_params(const char* path, ocean_input& w) {
  std::ifstream in(path);
  if (!in) return 0;
  w.acceleration_time_offset = 0.0;
  std::string line;
  int seen = 0;
  while (std::getline(in, line)) {
    const size_t hash = line.find('#');
    if (hash != std::string::npos) line.erase(hash);
    std::istringstream words(line);
    std::string key;
    if (!(words >> key)) continue;
    if (!key.empty() && key.back() == ':') key.pop_back();
    double a = 0.0, b = 0.0;
    words >> a;
    words >> b;
    seen++;
    if (key == "center") {
      w.whitecap_center_x = a;
      w.whitecap_center_y = b;
    } else if (key == "length") {
      w.whitecap_length_x = a;
      w.whitecap_length_y = b;
    } else if (key == "interval") {
      w.whitecap_interval_x = a;
      w.whitecap_interval_y = b;
    } else if (key == "max_distance") {
      w.whitecap_max_distance = a;
    } else if (key == "reference_time") {
      w.whitecap_reference_time = a;
    } else if (key == "time_increment") {
      w.whitecap_time_increment = a;
    } else if (key == "initialization_time") {
      w.whitecap_initialization_time = a;
    } else if (key == "initialization_increment") {
      w.whitecap_initialization_increment = a;
    } else if (key == "formation_time") {
      w.whitecap_formation_time = a;
    } else if (key == "decay_time") {
      w.whitecap_decay_time = a;
    } else if (key == "thresholds") {
      w.acceleration_threshold_low = a;
      w.acceleration_threshold_high = b;
    } else if (key == "reflectivities") {
      w.whitecap_reflectivity_low = a;
      w.whitecap_reflectivity_high = b;
    } else if (key == "acceleration_time_offset") {
      w.acceleration_time_offset = a;
    } else {
      std::fprintf(stderr, "unknown key %s\n", key.c_str());
      return 0;
    }
  }
  return seen >= 12;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5 || std::strcmp(argv[3], "--frames") != 0) {
    std::fprintf(stderr,
                 "usage: %s PARAMS OUTPUT --frames T [T ...] [--probe X Y]... "
                 "[--float-acceleration]\n",
                 argv[0]);
    return 2;
  }
  ocean_input w;
  w.whitecaps = 1;
  w.whitecap_generation = 0;
  w.fluctuation_mode = 0;
  if (!read_params(argv[1], w)) {
    std::fprintf(stderr, "cannot read %s\n", argv[1]);
    return 2;
  }
  std::vector<double> frames, probes;
  int rounded = 0;
  int k = 4;
  while (k < argc && std::strncmp(argv[k], "--", 2) != 0) frames.push_back(std::atof(argv[k++]));
  while (k < argc) {
    if (std::strcmp(argv[k], "--probe") == 0 && k + 2 < argc) {
      probes.push_back(std::atof(argv[k + 1]));
      probes.push_back(std::atof(argv[k + 2]));
      k += 3;
    } else if (std::strcmp(argv[k], "--float-acceleration") == 0) {
      rounded = 1;
      k++;
    } else {
      std::fprintf(stderr, "unexpected %s\n", argv[k]);
      return 2;
    }
  }
  FILE* out = std::fopen(argv[2], "w");
  if (out == nullptr) {
    std::fprintf(stderr, "cannot write %s\n", argv[2]);
    return 2;
  }
  // The engine's progress lines would mix with the samples.
  verbose = 0;
  std::ostringstream engine_lines;
  std::cout.rdbuf(engine_lines.rdbuf());

  Reporting_whitecaps caps(w, out, rounded);
  TCSpectrum bands(1);
  if (!caps.allocate(&bands)) return 1;
  for (size_t f = 0; f < frames.size(); f++) {
    caps.update(frames[f], static_cast<int>(f) + 1);
    caps.report();
    std::fprintf(out, "frame %.9g %.9g\n", frames[f], caps.step_weight);
    for (size_t p = 0; p + 1 < probes.size(); p += 2) {
      double r, t;
      const int result = caps.whitecap_at(probes[p], probes[p + 1], r, t);
      std::fprintf(out, "probe %.9g %.9g %.9g %.9g %d\n", probes[p], probes[p + 1], r, t, result);
    }
  }
  std::fclose(out);
  std::printf("done\n");
  return 0;
}
