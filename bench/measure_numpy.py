#!/usr/bin/python3
"""Times numpy doing the arithmetic of the curve measurements on the benchmark's own data.

Usage: measure_numpy.py DIR N LEVEL   (reads DIR/sine_N.f64, DIR/pulse_x_N.f64, DIR/pulse_N.f64)
Prints one line per measurement: NAME N SECONDS VALUE (best of several runs).
"""
import sys
import time

import numpy as np


def offset(y):
    seg = y[1:]
    nz = seg[seg != 0.0]
    mid = (max(nz.max(), -1e6) + min(nz.min(), 1e6)) / 2
    c = np.flatnonzero((y[:-1] < mid) & (mid <= y[1:])) + 1
    return np.mean(y[c[0]:c[-1]]) if len(c) > 1 else 0.0


def rms(y, off=0.1):
    d = y - off
    return np.sqrt(np.sum(d * d) / len(y))


def mean(y):
    return np.sum(y) / len(y)


def peak(x, y):
    seg = y[:-2]
    idx = np.flatnonzero(seg != 0.0)
    v = seg[idx]
    i, j = np.argmax(v), np.argmin(v)
    return v[i] - v[j], x[idx[i]], x[idx[j]]


def frequency(x, y, level):
    y1, y2 = y[:-2], y[1:-1]
    rise = np.flatnonzero((y1 <= level) & (level <= y2))
    fall = np.flatnonzero((y1 >= level) & (level >= y2))
    if len(rise) < 2:
        return 0.0
    t = lambda k: (x[k] - x[k + 1]) * ((level - y[k + 1]) / (y[k] - y[k + 1])) + x[k + 1]
    tr, tf = t(rise), t(fall)
    # Periods are start edges with a stop edge since the previous start edge.
    periods = 1 + np.count_nonzero(np.searchsorted(tf, tr[1:]) > np.searchsorted(tf, tr[:-1]))
    return (periods - 1) / (tr[-1] - tr[0])


def best(fn, repeat):
    times = []
    for _ in range(repeat):
        # CPU time, like the C++ side: other work on the machine does not count.
        t0 = time.process_time()
        value = fn()
        times.append(time.process_time() - t0)
    return min(times), value


def main():
    folder, n, level = sys.argv[1], int(sys.argv[2]), float(sys.argv[3])
    x = np.arange(n) * 1e-6
    sine = np.fromfile(f"{folder}/sine_{n}.f64")
    px = np.fromfile(f"{folder}/pulse_x_{n}.f64")
    pulse = np.fromfile(f"{folder}/pulse_{n}.f64")
    repeat = 7 if n <= 1_000_000 else 3
    runs = {
        "Offset": lambda: offset(sine),
        "Rms": lambda: rms(sine),
        "Mean": lambda: mean(sine),
        "Peak": lambda: peak(x, sine)[0],
        "TimeDifference": lambda: frequency(px, pulse, level),
    }
    for name, fn in runs.items():
        seconds, value = best(fn, repeat)
        print(f"{name} {n} {seconds:.9f} {float(value):.17g}", flush=True)


if __name__ == "__main__":
    main()
