#ifndef TC_SETTINGS_H
#define TC_SETTINGS_H

// Process-wide settings, the only state that outlives a scene.
extern int verbose;                // progress output wanted (-v)
extern int debug_level;            // extra diagnostics (-v 2)
extern int random_generator_kind;  // 902, or 901 after -R
extern int swap_bytes;             // 1 on a little-endian host

// 1 when the host stores the low byte of an int first.
int host_is_little_endian();

#endif
