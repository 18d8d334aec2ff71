#include "TCEngine.h"

#include <cstdlib>
#include <ctime>
#include <fstream>

#include "TCCamera_input.h"
#include "TCCommand_line.h"
#include "TCError.h"
#include "TCScene.h"
#include "TCScene_input.h"
#include "TCSettings.h"

static const char* const banner_dashes = "--------------------------------------------";

int check_type_sizes(std::size_t short_size, std::size_t int_size, std::size_t float_size,
                     std::size_t double_size, std::ostream& err) {
  // The binary files and packed arrays assume these sizes; the number printed
  // is the size required.
  const char* problem = nullptr;
  int required = 0;
  if (short_size != 2) {
    problem = "PORTING PROBLEM: short of size ";
    required = 2;
  } else if (int_size != 4) {
    problem = "PORTING PROBLEM: int of size ";
    required = 4;
  } else if (float_size != 4) {
    problem = "PORTING PROBLEM: float of size ";
    required = 4;
  } else if (double_size != 8) {
    problem = "PORTING PROBLEM: double of size ";
    required = 8;
  }
  if (problem == nullptr) return 1;
  err << problem << required << "\n"
      << "code terminated "
      << "\n";
  err.flush();
  return 0;
}

void print_banner(std::ostream& out) {
  out << banner_dashes << "\n"
      << "        Tidecast Rendering Engine        "
      << "\n"
      << "               version 1.2              "
      << "\n"
      << banner_dashes << "\n"
      << "\n";
  if (verbose)
    out << "Compiled with VERBOSE on."
        << "\n";
  out << "\n";
}

void print_usage(std::ostream& out) {
  out << "     TCEngine Usage:  "
      << "\n"
      << "     -f: first frame "
      << "     -l: last frame  "
      << "     -i: increment   "
      << "\n"
      << "     -S: number of camera slices "
      << "\n"
      << "     -s: slices to be imaged (seperated by commas) "
      << "\n"
      << "     followed by scene files to be run, e.g. "
      << "\n"
      << "     TCEngine -f1 -l9 -i2 -S5 -s0,2 scene.dat "
      << "\n";
}

void print_command_line_trace(std::ostream& out, const char* label, int frames_given, int first,
                              int last, int increment) {
  out << label << frames_given << ": (" << first << "," << last << "," << increment << ")\n";
}

static void print_calendar_time(const char* label) {
  const std::time_t now = std::time(nullptr);
  std::cout << label << std::ctime(&now);
}

void run_scene_file(const char* name, const TCCommand_line& command, int traced) {
  std::ifstream stream(name);
  if (!stream) {
    report_error("TCScene::TCScene", "Can't open scene file: ", name);
    std::exit(1);
  }

  TCScene_input input;
  if (!input.read_scene(stream) || !input.key_frame_times_distinct(name)) {
    std::cout << "unable to proces scene input file "
              << "\n";
    std::exit(1);
  }

  if (traced) {
    print_command_line_trace(std::cout, "COMMAND LINEA: ", command.frames_given,
                             command.first_frame, command.last_frame, command.increment);
  }
  // With frames on the command line the range lines behind "end" stay unread.
  if (!command.frames_given) {
    input.read_frame_range(stream);
  } else {
    input.set_frame_range(command.first_frame, command.last_frame, command.increment);
  }
  if (traced) {
    print_command_line_trace(std::cout, "COMMAND LINEB: ", command.frames_given, input.first_frame,
                             input.last_frame, input.increment);
  }

  // The command line's slices override every camera file alike.
  if (command.slices_given) {
    TCObject_list_input& list = input.object_list;
    for (int i = 0; i < list.n_cameras; i++) {
      if (command.slice_list_given) {
        list.cameras[i]->set_slices_to_image(command.n_slices, command.slice_flags);
      } else {
        list.cameras[i]->set_all_slices(command.n_slices);
      }
    }
  }

  TCScene* scene = new TCScene(input);
  scene->run();
  delete scene;
}

int engine_main(int argc, char** argv) {
  if (!check_type_sizes(sizeof(short), sizeof(int), sizeof(float), sizeof(double), std::cerr)) {
    std::exit(1);
  }
  print_banner(std::cout);

  TCCommand_line command;
  const int first_scene = command.parse(argc, argv);
  command.apply_frame_override();

  if (first_scene < argc) {
    for (int i = first_scene; i < argc; i++) {
      std::cout << " Executing Scene "
                << "\n"
                << argv[i] << "\n"
                << "\n";
      run_scene_file(argv[i], command, 0);
    }
  } else if (!command.any_option_seen) {
    print_usage(std::cout);
    return 0;
  } else {
    print_calendar_time("Start Time: ");
    std::cout << " Executing TCScene "
              << "\n"
              << "\n";
    run_scene_file("scene.dat", command, 1);
    print_calendar_time("Finish Time: ");
  }

  std::cout << "\n" << banner_dashes << "\n";
  return 0;
}
