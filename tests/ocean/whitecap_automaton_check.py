#!/usr/bin/env python3
"""Compares the engine's whitecap automaton with the independent Python model.

    whitecap_automaton_check.py RUNNER

RUNNER is the whitecap_automaton_runner program. For each case below the model
(whitecap_automaton_reference.py, beside this script) is run on a parameter
file, an acceleration expression, frame times and probe points, and the runner
is run on the same, its acceleration samples answered here by evaluating the
same expression. Both print every step, every live record after it, every
frame's weight and the look-up at every probe; the two must agree line by line,
integers exactly and values within 1e-6 relative (1e-7 absolute near 0).
Exits non-zero with the first differences.
"""
import math
import os
import struct
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
REFERENCE = os.path.join(HERE, "whitecap_automaton_reference.py")

LIFE = """center 3 1
length 8 4
interval 1 1
max_distance 6
reference_time 0
time_increment 0.25
initialization_time 0.5
initialization_increment 0.125
formation_time 1
decay_time 2
thresholds 0.5 1
reflectivities 0.25 0.75
"""
LIFE_EXPR = "9.81*exp(-((x-3)**2+(y-1)**2)/4)*(-1.6*(t<2.5)+1.2*(t>=2.5))"
LIFE_FRAMES = ["0.1", "0.6", "1.0", "2.4", "2.6", "3.3", "4.6", "5.3", "6.0"]
LIFE_PROBES = [("3", "1"), ("3.4", "0.7"), ("20", "1"), ("40", "1")]

# A rolling sea over a pyramid of four grids, sampled ahead of the step time,
# with frames on a step boundary and one back within a step.
ROLLING = """center 5 -3
length 8 6
interval 2 2
max_distance 20
reference_time 10
time_increment 0.5
initialization_time 2
initialization_increment 0.25
formation_time 0.75
decay_time 3
thresholds 0.4 0.9
reflectivities 0.3 0.7
acceleration_time_offset 0.1
"""
ROLLING_EXPR = "-14*sin(0.7*x+0.3*t)*cos(0.5*y-0.2*t) + 3*sin(0.05*x*y - t)"
ROLLING_FRAMES = ["10", "10.3", "11.5", "12.1", "12.05", "13.7", "16", "19.9"]
ROLLING_PROBES = [("5", "-3"), ("6.3", "-1.1"), ("-20", "12"), ("30", "-20"), ("8.99", "-0.01"),
                  ("60", "0")]

CASES = [
    ("life", LIFE, LIFE_EXPR, LIFE_FRAMES, LIFE_PROBES, False),
    ("life_float", LIFE, LIFE_EXPR, LIFE_FRAMES, LIFE_PROBES, True),
    ("threshold", LIFE.replace("thresholds 0.5 1", "thresholds 0.8154943934760448 1.5"),
     "-8.0 - 2.0*(x > 5)", ["0.3", "1.0"], [("3", "1"), ("5.5", "1")], False),
    ("rolling", ROLLING, ROLLING_EXPR, ROLLING_FRAMES, ROLLING_PROBES, False),
    ("rolling_at_once", ROLLING.replace("formation_time 0.75", "formation_time 0"), ROLLING_EXPR,
     ROLLING_FRAMES, ROLLING_PROBES, True),
]


def evaluate(expr, t, x, y, rounded):
    names = {k: getattr(math, k) for k in dir(math) if not k.startswith("_")}
    names.update({"x": x, "y": y, "t": t})
    value = float(eval(expr, {"__builtins__": {}}, names))  # noqa: S307 - our own expressions
    if rounded:
        value = struct.unpack("f", struct.pack("f", value))[0]
    return value


def run_runner(runner, params, output, expr, frames, probes, rounded):
    args = [runner, params, output, "--frames"] + frames
    for x, y in probes:
        args += ["--probe", x, y]
    if rounded:
        args.append("--float-acceleration")
    proc = subprocess.Popen(args, stdin=subprocess.PIPE, stdout=subprocess.PIPE, text=True,
                            bufsize=1)
    samples = 0
    while True:
        line = proc.stdout.readline()
        if not line:
            break
        words = line.split()
        if words[0] == "done":
            break
        if words[0] != "sample" or len(words) != 4:
            proc.kill()
            raise RuntimeError("runner said %r" % line)
        t, x, y = (float(w) for w in words[1:])
        # The runner rounds to float itself; it gets the exact double here.
        proc.stdin.write(repr(evaluate(expr, t, x, y, False)) + "\n")
        proc.stdin.flush()
        samples += 1
    proc.stdin.close()
    status = proc.wait()
    if status != 0:
        raise RuntimeError("runner ended with status %d" % status)
    with open(output) as f:
        return f.read().splitlines(), samples


def run_reference(params, expr, frames, probes, rounded):
    args = [sys.executable, REFERENCE, params, expr, "--frames"] + frames
    for x, y in probes:
        args += ["--probe", x, y]
    if rounded:
        args.append("--float-acceleration")
    done = subprocess.run(args, capture_output=True, text=True)
    if done.returncode != 0:
        raise RuntimeError("reference failed: %s" % done.stderr)
    return done.stdout.splitlines()


def close(a, b):
    return abs(a - b) <= 1e-7 or abs(a - b) <= 1e-6 * max(abs(a), abs(b))


def compare(name, ours, theirs):
    problems = []
    if len(ours) != len(theirs):
        problems.append("%s: %d lines from the engine, %d from the model" %
                        (name, len(ours), len(theirs)))
    # Integer fields by line kind: the rest are values.
    integer_fields = {"step": {1}, "cell": {1, 2, 3, 10}, "frame": set(), "probe": {5}}
    for n, (a, b) in enumerate(zip(ours, theirs)):
        wa, wb = a.split(), b.split()
        if len(wa) != len(wb) or wa[0] != wb[0] or wa[0] not in integer_fields:
            problems.append("%s line %d: engine %r, model %r" % (name, n + 1, a, b))
        else:
            for k in range(1, len(wa)):
                if k in integer_fields[wa[0]]:
                    same = int(wa[k]) == int(wb[k])
                else:
                    same = close(float(wa[k]), float(wb[k]))
                if not same:
                    problems.append("%s line %d: engine %r, model %r" % (name, n + 1, a, b))
                    break
        if len(problems) > 10:
            break
    return problems


def main(argv):
    if len(argv) != 2:
        print(__doc__)
        return 2
    runner = argv[1]
    problems = []
    with tempfile.TemporaryDirectory() as folder:
        for name, params_text, expr, frames, probes, rounded in CASES:
            params = os.path.join(folder, name + ".params")
            with open(params, "w") as f:
                f.write(params_text)
            ours, samples = run_runner(runner, params, os.path.join(folder, name + ".out"), expr,
                                       frames, probes, rounded)
            theirs = run_reference(params, expr, frames, probes, rounded)
            cells = sum(1 for line in theirs if line.startswith("cell"))
            if cells == 0:
                problems.append("%s: the model holds no records; the case shows nothing" % name)
            problems += compare(name, ours, theirs)
            print("%s: %d lines, %d records, %d samples" % (name, len(theirs), cells, samples))
    for p in problems:
        print(p)
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
