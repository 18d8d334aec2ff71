#include "TCCommand_line.h"

#include <cstdlib>
#include <cstring>
#include <iostream>
#include <new>

#include "TCOption_parser.h"
#include "TCSettings.h"

TCCommand_line::TCCommand_line()
    : frames_given(0),
      first_frame(1),
      last_frame(1),
      increment(1),
      n_slices(1),
      slices_given(0),
      slice_list_given(0),
      slice_flags(nullptr),
      any_option_seen(0),
      first_given_(0),
      last_given_(0),
      increment_given_(0) {}

TCCommand_line::~TCCommand_line() {
  std::free(slice_flags);
}

// Marks every slice named in a comma-separated list; an empty item is slice 0.
static void mark_slices(const char* list, int n_slices, int* flags) {
  const char* item = list;
  while (true) {
    const char* comma = std::strchr(item, ',');
    const std::size_t length = comma ? static_cast<std::size_t>(comma - item) : std::strlen(item);
    char text[64];
    const std::size_t kept = length < sizeof(text) - 1 ? length : sizeof(text) - 1;
    std::memcpy(text, item, kept);
    text[kept] = '\0';
    const int slice = std::atoi(text);
    if (slice < 0 || slice >= n_slices) {
      std::cout << " invalid slice " << slice << "\n";
      std::exit(1);
    }
    flags[slice] = 1;
    if (comma == nullptr) break;
    item = comma + 1;
  }
}

int TCCommand_line::parse(int argc, char** argv) {
  TCOption_parser parser(argc, argv, "f:l:i:v:S:s:R");
  int option;
  while ((option = parser.next()) != -1) {
    any_option_seen = 1;
    switch (option) {
      case 'f':
        first_frame = std::atoi(parser.optarg);
        first_given_ = 1;
        frames_given = 1;
        break;
      case 'l':
        last_frame = std::atoi(parser.optarg);
        last_given_ = 1;
        frames_given = 1;
        break;
      case 'i':
        increment = std::atoi(parser.optarg);
        increment_given_ = 1;
        frames_given = 1;
        break;
      case 'v': {
        const int level = std::atoi(parser.optarg);
        if (level == 0) {
          verbose = 0;
          debug_level = 0;
        } else if (level == 1) {
          verbose = 1;
          debug_level = 0;
        } else if (level == 2) {
          verbose = 1;
          debug_level = 1;
        }
        break;
      }
      case 'S': {
        if (slices_given) {
          std::cout << "can only specify -S once "
                    << "\n";
          std::exit(1);
        }
        const int count = std::atoi(parser.optarg);
        if (count < 1) {
          std::cout << "must be atleast one slice "
                    << "\n";
          std::exit(1);
        }
        // calloc leaves a large zeroed table to the kernel's blank pages.
        slice_flags = static_cast<int*>(std::calloc(static_cast<std::size_t>(count), sizeof(int)));
        if (slice_flags == nullptr) {
          std::cout << "Memory allocation failure: too many slices "
                    << "\n";
          std::exit(1);
        }
        n_slices = count;
        slices_given = 1;
        break;
      }
      case 's':
        if (!slices_given) {
          std::cout << "must specify number of slices before particular slices"
                    << "\n";
          std::exit(1);
        }
        mark_slices(parser.optarg, n_slices, slice_flags);
        slice_list_given = 1;
        break;
      case 'R':
        random_generator_kind = (random_generator_kind == 902) ? 901 : 902;
        break;
      default:
        break;
    }
  }
  return parser.optind;
}

void TCCommand_line::apply_frame_override() {
  if (!frames_given) return;
  if (!first_given_) first_frame = 1;
  if (!last_given_) last_frame = first_frame;
  if (!increment_given_) increment = 1;
}
