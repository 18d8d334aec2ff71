#ifndef TC_OPTION_PARSER_H
#define TC_OPTION_PARSER_H

// The engine's own getopt-like scanner. It differs from the C library on
// purpose: a detached value is taken only when it does not begin with "-",
// so "-i-1" sets a negative increment while "-i -1" is refused.
class TCOption_parser {
 public:
  // options: letters, each followed by ':' when it takes a value.
  // Complaints go to standard error, prefixed by argv[0].
  TCOption_parser(int argc, char** argv, const char* options);

  // The next option letter, '?' for a complaint, or -1 when the options end;
  // then optind indexes the first operand.
  int next();

  int optind;          // index of the word being scanned
  const char* optarg;  // value of the last option that takes one
  int opterr;          // 1: print complaints
  int last_index;      // index of the word the last result came from
  int dash_index;      // index of the word where a "-" letter was seen, or 0

 private:
  int argc_;
  char** argv_;
  const char* options_;
  int letter_;  // position inside the current cluster, 0 when between words
};

#endif
