#!/usr/bin/python3
"""Writes the reference data of the curve measurement tests (data/*.txt).

Run from anywhere: /usr/bin/python3 tests/analysis/make_measure_refs.py
Needs numpy only. The C++ tests read the signals and the expected numbers from the files; the
expected numbers come from numpy or from the signals' closed forms, never from the C++ code.

File format, one item per line:
  case NAME
  x N v1 ... vN        sample times
  y N v1 ... vN        sample values
  expect KEY VALUE     an expected result
  param KEY VALUE      an argument of the measurement
"""
import os

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, "data")


def fmt(v):
    return repr(float(v))


def write_case(out, name, x, y, params, expects):
    out.write(f"case {name}\n")
    out.write(f"x {len(x)} " + " ".join(fmt(v) for v in x) + "\n")
    out.write(f"y {len(y)} " + " ".join(fmt(v) for v in y) + "\n")
    for k, v in params.items():
        out.write(f"param {k} {fmt(v)}\n")
    for k, v in expects.items():
        out.write(f"expect {k} {fmt(v)}\n")


def rising_crossings(y, mid, start):
    """Indices i >= start with y[i-1] < mid <= y[i]."""
    i = np.arange(start, len(y))
    return i[(y[i - 1] < mid) & (mid <= y[i])]


def offset_whole_periods(y):
    """Mean from the first rising mid-level crossing up to the sample before the last one."""
    seg = y[1:]
    nz = seg[seg != 0.0]
    mid = (max(nz.max(), -1e6) + min(nz.min(), 1e6)) / 2
    c = rising_crossings(y, mid, 1)
    if len(c) < 2:
        return 0.0
    return np.mean(y[c[0]:c[-1]])


def falling_crossing(x, y, pairs, level):
    """First falling segment (a, b) that crosses level strictly inside; index of the nearer end."""
    for a, b in pairs:
        if y[a] == y[b]:
            continue
        m = (y[a] - y[b]) / (x[a] - x[b])
        if not m < 0:
            continue
        x0 = (level - (y[a] - x[a] * m)) / m
        if (x0 - x[a]) * (x0 - x[b]) < 0:
            return a if abs(x0 - x[a]) < abs(x0 - x[b]) else b
    return -1


def rms_whole_periods(x, y, offset):
    """RMS about offset between the first and last falling crossing of the whole-period offset."""
    off = offset_whole_periods(y)
    lo, hi = 1, len(y) - 1  # the offset measurement moves the range start on by one
    f = falling_crossing(x, y, [(i, i + 1) for i in range(lo, hi - 1)], off)
    if f >= 0:
        lo = f
    b = falling_crossing(x, y, [(i, i - 1) for i in range(hi, lo + 1, -1)], off)
    if b >= 0:
        hi = b
    seg = y[lo:hi + 1] - offset
    return np.sqrt(np.sum(seg * seg) / len(seg))


def levels(out):
    rng = np.random.default_rng(20240501)
    # Sines with a DC part over a non-whole number of periods: the plain mean misses the DC part,
    # the whole-period offset finds it.
    for name, n, per, amp, dc, noise in [
        ("sine_dc", 2000, 97.3, 2.0, 0.75, 0.0),
        ("sine_neg_dc", 3001, 250.0, 5.0, -1.25, 0.0),
        ("noisy_sine", 4000, 133.7, 1.0, 0.3, 0.01),
    ]:
        t = np.arange(n) * 1e-4
        y = dc + amp * np.sin(2 * np.pi * np.arange(n) / per + 0.4) + noise * rng.standard_normal(n)
        rms_offset = 0.1
        seg = y - rms_offset
        write_case(out, name, t, y, {"rms_offset": rms_offset}, {
            "mean": np.mean(y),
            "rms": np.sqrt(np.sum(seg * seg) / n),
            "offset": offset_whole_periods(y),
            "rms_whole_periods": rms_whole_periods(t, y, rms_offset),
            "dc": dc,
        })


def trapezoid(t, period, high, ramp, low_level, high_level, delay):
    """A pulse train: rising ramp at delay + k*period, high for `high`, falling ramp after it."""
    p = np.mod(t - delay, period)
    up = np.clip(p / ramp, 0, 1)
    down = np.clip((p - ramp - high) / ramp, 0, 1)
    return low_level + (high_level - low_level) * (up - down)


def pulses(out):
    for name, fs, period, high, ramp, delay, n in [
        ("pulse_25pct", 10000.0, 0.01, 0.002, 0.0005, 0.0013, 1000),
        ("pulse_60pct", 50000.0, 0.004, 0.0022, 0.0002, 0.00071, 2500),
    ]:
        t = np.arange(n) / fs
        lo_v, hi_v = 0.5, 4.5
        y = trapezoid(t, period, high, ramp, lo_v, hi_v, delay)
        level = (lo_v + hi_v) / 2
        # Closed-form crossing times of the mid level on the ramps.
        half = ramp / 2
        k = np.arange(-1, int(t[-1] / period) + 2)
        rises = delay + k * period + half
        falls = delay + k * period + ramp + high + half
        # Only edges whose ramp segment lies inside the curve's step range count.
        inside = lambda e: e[(e > t[0]) & (e < t[-2])]
        rises, falls = inside(rises), inside(falls)
        first_fall_after = lambda r: falls[falls > r][0]
        periods = len(rises)
        write_case(out, name, t, y, {"level": level}, {
            "time_count1": first_fall_after(rises[0]) - rises[0],
            "time_count2": first_fall_after(rises[1]) - rises[1],
            "count": periods,
            "frequency": (periods - 1) / (rises[-1] - rises[0]),
            "duty_cycle": (high + ramp) / period * 100,
            "first_rise": rises[0],
        })


def main():
    os.makedirs(DATA, exist_ok=True)
    with open(os.path.join(DATA, "measure_levels.txt"), "w") as out:
        levels(out)
    with open(os.path.join(DATA, "measure_pulses.txt"), "w") as out:
        pulses(out)


if __name__ == "__main__":
    main()
