#!/usr/bin/env python3
"""Expected numbers of the ocean input tests, worked out independently.

Degrees on file become radians by the factor 0.017453292519444445 and go
back to degrees as radians * 180.0 / 3.1415926535; the writers print 15
significant digits. Python floats are IEEE doubles, so the products here are
the ones the engine forms.
"""

TO_RADIANS = 0.017453292519444445
PI = 3.1415926535


def radians(degrees):
    return degrees * TO_RADIANS


def written_degrees(value_radians):
    return "%.15g" % (value_radians * 180.0 / PI)


def main():
    for degrees in (30.0, 45.0, 90.0, 60.0, 0.0, -12.5):
        r = radians(degrees)
        print("%-6g deg -> %.17g rad -> written %s" % (degrees, r, written_degrees(r)))
    # A read value written and read again: the second reading.
    for degrees in (30.0, 45.0, 90.0, 60.0):
        again = radians(float(written_degrees(radians(degrees))))
        print("%-6g deg twice -> %.17g rad (first %.17g)" % (degrees, again, radians(degrees)))


if __name__ == "__main__":
    main()
