#ifndef TC_QUIET_STREAMS_H
#define TC_QUIET_STREAMS_H

#include <cstddef>
#include <cstdint>
#include <string>

// The readers report on the standard streams; a fuzz run has no use for it.
void silence_standard_streams();

// The fuzzer's bytes as text.
std::string text_of(const uint8_t* data, size_t size);

#endif
