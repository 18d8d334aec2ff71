#!/usr/bin/env python3
"""Runs TCEngine for one end-to-end case and compares what it did.

A case is a folder holding:
  args            the command-line words after the program name (shell quoting)
  stdout, stderr  the exact expected streams
  status          the expected exit status
  files/          optional: copied into the empty working folder before the run
  expected_files/ optional: each must exist afterwards with exactly these bytes
  check.py        optional: run with python3 in the working folder after the run;
                  it checks the written files (names, sizes, planes, values) and
                  exits non-zero with a message when something is wrong
  memory_limit    optional: address-space limit in MiB for the run
                  (such cases are skipped in sanitizer builds, whose shadow
                  memory needs the whole address space)

The program runs with argv[0] set to "TCEngine". The calendar time after
"Start Time: " and "Finish Time: " is checked for the ctime form and then
replaced by "<time>" before comparing.
"""
import os
import re
import resource
import shlex
import shutil
import subprocess
import sys
import tempfile

CTIME = re.compile(r"^(Start Time: |Finish Time: )"
                   r"(Mon|Tue|Wed|Thu|Fri|Sat|Sun) "
                   r"(Jan|Feb|Mar|Apr|May|Jun|Jul|Aug|Sep|Oct|Nov|Dec) "
                   r"[ 0-9]\d \d\d:\d\d:\d\d \d{4}$", re.M)


def read(path, default=None):
    if not os.path.exists(path):
        return default
    with open(path, "rb") as f:
        return f.read()


def show_difference(name, expected, actual):
    print(f"--- {name} differs")
    print("expected:")
    print(repr(expected.decode("latin-1")))
    print("actual:")
    print(repr(actual.decode("latin-1")))


def main():
    engine, case = sys.argv[1], sys.argv[2]
    args = shlex.split(read(os.path.join(case, "args"), b"").decode())
    expected_status = int(read(os.path.join(case, "status"), b"0").decode().strip())
    limit = read(os.path.join(case, "memory_limit"))
    if limit is not None and os.environ.get("TC_SANITIZED") in ("1", "ON", "TRUE"):
        print("skipped: address-space limit under sanitizers")
        return 0

    def limit_memory():
        if limit is not None:
            size = int(limit.decode().strip()) * 1024 * 1024
            resource.setrlimit(resource.RLIMIT_AS, (size, size))

    with tempfile.TemporaryDirectory() as work:
        files = os.path.join(case, "files")
        if os.path.isdir(files):
            shutil.copytree(files, work, dirs_exist_ok=True)
        run = subprocess.run(["TCEngine"] + args, executable=os.path.abspath(engine), cwd=work,
                             stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=300,
                             preexec_fn=limit_memory)
        failures = 0
        stdout = CTIME.sub(lambda m: m.group(1) + "<time>", run.stdout.decode("latin-1"))
        actual = {"stdout": stdout.encode("latin-1"), "stderr": run.stderr}
        for name in ("stdout", "stderr"):
            expected = read(os.path.join(case, name), b"")
            if expected != actual[name]:
                show_difference(name, expected, actual[name])
                failures += 1
        if run.returncode != expected_status:
            print(f"--- status: expected {expected_status}, got {run.returncode}")
            failures += 1
        wanted = os.path.join(case, "expected_files")
        if os.path.isdir(wanted):
            for root, _, names in os.walk(wanted):
                for n in names:
                    rel = os.path.relpath(os.path.join(root, n), wanted)
                    got = read(os.path.join(work, rel))
                    if got is None:
                        print(f"--- file {rel} was not written")
                        failures += 1
                    elif got != read(os.path.join(root, n)):
                        show_difference(f"file {rel}", read(os.path.join(root, n)), got)
                        failures += 1
        checker = os.path.join(case, "check.py")
        if os.path.exists(checker):
            checked = subprocess.run([sys.executable, os.path.abspath(checker)], cwd=work)
            if checked.returncode != 0:
                print(f"--- check.py failed ({checked.returncode})")
                failures += 1
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
