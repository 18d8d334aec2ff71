#ifndef TC_TESTS_STREAM_CAPTURE_H
#define TC_TESTS_STREAM_CAPTURE_H

#include <iostream>
#include <sstream>
#include <string>

// Collects what is written to a standard stream for as long as it lives.
class Stream_capture {
 public:
  explicit Stream_capture(std::ostream& stream) : stream_(stream), old_(stream.rdbuf()) {
    stream_.rdbuf(buffer_.rdbuf());
  }
  ~Stream_capture() { stream_.rdbuf(old_); }
  std::string text() const { return buffer_.str(); }

 private:
  std::ostream& stream_;
  std::streambuf* old_;
  std::ostringstream buffer_;
};

#endif
