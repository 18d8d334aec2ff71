#include "TCOption_parser.h"

#include <cstdio>
#include <cstring>

TCOption_parser::TCOption_parser(int argc, char** argv, const char* options)
    : optind(1),
      optarg(nullptr),
      opterr(1),
      last_index(0),
      dash_index(0),
      argc_(argc),
      argv_(argv),
      options_(options),
      letter_(0) {}

int TCOption_parser::next() {
  optarg = nullptr;
  if (letter_ == 0) {
    // Between words: an operand, a lone "-" or the end of argv ends the scan.
    if (dash_index != 0 || optind >= argc_) return -1;
    const char* word = argv_[optind];
    if (word[0] != '-' || word[1] == '\0') return -1;
    letter_ = 1;
  }

  const char* word = argv_[optind];
  const int index = optind;
  const char letter = word[letter_];
  last_index = index;

  if (letter == ' ') {
    letter_ = 0;
    return -1;
  }
  if (letter == '-') {
    // "--": everything after this word is an operand, even if it begins "-".
    dash_index = index;
    letter_ = 0;
    optind = index + 1;
    return -1;
  }

  letter_++;
  const bool word_done = word[letter_] == '\0';
  const char* entry = (letter != ':') ? std::strchr(options_, letter) : nullptr;

  if (entry == nullptr) {
    if (opterr) std::fprintf(stderr, "%s: illegal option -- %c\n", argv_[0], letter);
    if (word_done) {
      letter_ = 0;
      optind++;
    }
    return '?';
  }

  if (entry[1] != ':') {
    if (word_done) {
      letter_ = 0;
      optind++;
    }
    return letter;
  }

  // A letter that takes a value: the rest of this word, or else the next word
  // when it does not look like an option.
  const char* rest = word + letter_;
  letter_ = 0;
  if (!word_done) {
    optarg = rest;
    optind++;
    return letter;
  }
  optind++;
  if (optind < argc_ && argv_[optind][0] != '-') {
    optarg = argv_[optind];
    optind++;
    return letter;
  }
  if (opterr) std::fprintf(stderr, "%s: option requires an argument -- %c\n", argv_[0], letter);
  return '?';
}
