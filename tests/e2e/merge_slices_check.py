#!/usr/bin/env python3
"""Checks that slice files merged by TCMerge_slices equal one whole render.

    merge_slices_check.py ENGINE MERGER FIXTURE_DIR SLICES

The fixture folder holds scene.dat and the files it names. Three renders of the
same frames, each in a fresh folder:
  whole    TCEngine scene.dat
  sliced   TCEngine -S n scene.dat (the engine merges its own slices)
  parts    TCEngine -S n -s k scene.dat for each k, then TCMerge_slices -S n scene.dat
All three must leave the same files with the same bytes, and no slice files.
"""
import os
import shutil
import subprocess
import sys
import tempfile


def render(work, fixture, commands):
    shutil.copytree(fixture, work, dirs_exist_ok=True)
    for command in commands:
        run = subprocess.run(command, cwd=work, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
        if run.returncode != 0:
            sys.stdout.write(run.stdout.decode("latin-1") + run.stderr.decode("latin-1"))
            raise SystemExit(f"{' '.join(command)} exited with {run.returncode}")
    before = set(os.listdir(fixture))
    files = {}
    for root, _, names in os.walk(work):
        for name in names:
            rel = os.path.relpath(os.path.join(root, name), work)
            if rel in before:
                continue
            with open(os.path.join(root, name), "rb") as f:
                files[rel] = f.read()
    return files


def main():
    engine, merger, fixture, slices = (os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]),
                                       sys.argv[3], int(sys.argv[4]))
    with tempfile.TemporaryDirectory() as top:
        whole = render(os.path.join(top, "whole"), fixture, [[engine, "scene.dat"]])
        sliced = render(os.path.join(top, "sliced"), fixture,
                        [[engine, f"-S{slices}", "scene.dat"]])
        parts = render(os.path.join(top, "parts"), fixture,
                       [[engine, f"-S{slices}", f"-s{k}", "scene.dat"] for k in range(slices)] +
                       [[merger, f"-S{slices}", "scene.dat"]])
    if not whole:
        raise SystemExit("the whole render wrote no files")
    failures = 0
    for label, files in (("sliced", sliced), ("parts", parts)):
        if sorted(files) != sorted(whole):
            print(f"{label}: files {sorted(files)} differ from {sorted(whole)}")
            failures += 1
            continue
        for name in sorted(whole):
            if files[name] != whole[name]:
                print(f"{label}: {name} differs from the whole render")
                failures += 1
    print(f"{len(whole)} files compared: {sorted(whole)}")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
