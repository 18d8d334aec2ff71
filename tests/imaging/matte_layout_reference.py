#!/usr/bin/python3
"""Expected matte plane layout for the matte layout tests, worked out here from
the layout rules alone, independently of the C++ code. Run it and paste what
it prints into matte_fields_test.cpp.

Rules, per object with B bands:
  codes 0..17   first plane B * code, B planes
  codes 18..31  first plane B * 18 - 18 + code, 1 plane
  code 32       first plane B * 18 + 14, 3 planes
  codes 33, 34  no planes (first -1)
  codes 35..39  not a matte (first -1, 0 planes, never wanted)
"""


def layout(code, bands):
    if code <= 17:
        return (bands * code, bands)
    if code <= 31:
        return (bands * 18 - 18 + code, 1)
    if code == 32:
        return (bands * 18 + 14, 3)
    return (-1, 0)


for bands in (1, 3, 10):
    print("// %d band%s: {first plane, planes} for codes 0 to 39; table %d" %
          (bands, "" if bands == 1 else "s", bands * 18 + 23))
    entries = ["{%d, %d}" % layout(code, bands) for code in range(40)]
    for start in range(0, 40, 8):
        print("    " + ", ".join(entries[start:start + 8]) + ",")
