#ifndef TC_BYTE_ORDER_H
#define TC_BYTE_ORDER_H

// Binary fields on file are big-endian. These turn a value between the host's
// order and the file's, in place, and do nothing unless swap_bytes is 1: the
// same call serves on the way in and on the way out.

// A 16-bit short.
void swap_short(short& value);
// A 32-bit long, held in an int since int is 4 bytes wherever the engine runs.
void swap_long(int& value);

#endif
