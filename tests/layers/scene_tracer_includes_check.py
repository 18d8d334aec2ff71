#!/usr/bin/env python3
"""The objects that trace rays through the scene (and the sea, and what rides it) reach it only through the
tracer interface: none of their sources may include the object list's header,
directly or through the project headers they include.
Usage: scene_tracer_includes_check.py <src folder>"""
import os
import re
import sys

# Each object's .h and .cpp files, relative to the source folder.
TRACING_OBJECTS = [
    "objects/TCThermal_Box.h",
    "objects/TCThermal_Box.cpp",
    "atmosphere/TCAir.h",
    "atmosphere/TCAir.cpp",
    "atmosphere/TCAir_imaging.cpp",
    "atmosphere/TCAir_paths.cpp",
    "atmosphere/TCAir_input.h",
    "atmosphere/TCAir_input.cpp",
    "atmosphere/air_table.h",
    "atmosphere/air_table.cpp",
    "imaging/TCCamera.h",
    "imaging/TCCamera.cpp",
    "objects/TCSurface_object.h",
    "objects/TCSurface_object.cpp",
    "ocean/TCOcean.h",
    "ocean/TCOcean.cpp",
    "objects/TCBobbing_box.h",
    "objects/TCBobbing_box.cpp",
]

INCLUDE = re.compile(r'^\s*#\s*include\s*[<"]([^">]+)[">]')


LIST_HEADER = "TCObject_list.h"


def project_headers(src):
    """Every header under src by its file name."""
    headers = {}
    for folder, _, files in os.walk(src):
        for name in files:
            if name.endswith(".h"):
                headers[name] = os.path.join(folder, name)
    return headers


def includes_of(path):
    with open(path, encoding="utf-8") as source:
        for number, line in enumerate(source, 1):
            match = INCLUDE.match(line)
            if match:
                yield number, os.path.basename(match.group(1))


def route_to_list(path, headers):
    """The chain of includes from path to the list's header, or None."""
    seen = set()
    pending = [(path, [])]
    while pending:
        current, chain = pending.pop()
        for number, name in includes_of(current):
            step = chain + ["%s:%d %s" % (os.path.basename(current), number, name)]
            if name == LIST_HEADER:
                return step
            if name in headers and name not in seen:
                seen.add(name)
                pending.append((headers[name], step))
    return None


def main():
    if len(sys.argv) != 2:
        print(__doc__)
        return 2
    src = sys.argv[1]
    headers = project_headers(src)
    failures = 0
    for name in TRACING_OBJECTS:
        path = os.path.join(src, name)
        if not os.path.isfile(path):
            print("missing source %s" % path)
            failures += 1
            continue
        route = route_to_list(path, headers)
        if route is not None:
            print("%s includes the object list: %s" % (name, " -> ".join(route)))
            failures += 1
    if failures:
        return 1
    print("%d sources reach the scene only through the tracer" % len(TRACING_OBJECTS))
    return 0


if __name__ == "__main__":
    sys.exit(main())
