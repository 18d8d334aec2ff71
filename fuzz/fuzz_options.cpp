// The option scanner over arbitrary words (one word per line of input).
#include <string>
#include <vector>

#include "TCOption_parser.h"
#include "quiet_streams.h"

extern "C" int LLVMFuzzerInitialize(int*, char***) {
  silence_standard_streams();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  std::vector<std::string> words(1, "TCEngine");
  std::string word;
  for (size_t i = 0; i < size; i++) {
    if (data[i] == '\n') {
      words.push_back(word);
      word.clear();
    } else if (data[i] != '\0') {
      word.push_back(static_cast<char>(data[i]));
    }
  }
  words.push_back(word);
  std::vector<char*> argv;
  for (auto& w : words) argv.push_back(&w[0]);
  argv.push_back(nullptr);
  TCOption_parser parser(static_cast<int>(words.size()), argv.data(), "f:l:i:v:S:s:R");
  parser.opterr = 0;
  int guard = 0;
  while (parser.next() != -1 && guard++ < 100000) {
  }
  return 0;
}
