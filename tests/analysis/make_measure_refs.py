#!/usr/bin/python3
"""Writes the reference data of the curve measurement tests (data/*.txt).

Run from anywhere: /usr/bin/python3 tests/analysis/make_measure_refs.py
Needs numpy only. The C++ tests read the signals and the expected numbers from the files; the
expected numbers come from numpy or from the signals' closed forms, never from the C++ code.

File format (the one make_spectrum_refs.py writes too): "case NAME key=value ...", with the
measurement's arguments and expected results as key=value, then "vector x" and the sample times,
"vector y" and the sample values, four numbers a line, and "end".
"""
import os

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
DATA = os.path.join(HERE, "data")


def fmt(v):
    return repr(float(v))


def write_case(out, name, x, y, params, expects):
    pairs = {**params, **expects}
    out.write(f"case {name} " + " ".join(f"{k}={fmt(v)}" for k, v in pairs.items()) + "\n")
    for label, values in (("x", x), ("y", y)):
        out.write(f"vector {label}\n")
        for i in range(0, len(values), 4):
            out.write(" ".join(fmt(v) for v in values[i:i + 4]) + "\n")
    out.write("end\n")


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


def local_extrema(x, y, sign, eps_x, eps_y):
    """Indices of the local maxima of sign * y by the written rule, window by window."""
    takes_part = np.isfinite(x) & np.isfinite(y)
    v = sign * y
    found = []
    for i in np.flatnonzero(takes_part):
        with np.errstate(invalid="ignore"):
            window = takes_part & (np.abs(x - x[i]) <= eps_x)
        window[i] = True
        members = np.flatnonzero(window)
        highest = members[np.argmax(v[members])]  # the first of equal ones
        if highest == i and v[i] - v[members].min() >= eps_y:
            found.append(i)
    return found


def first_extremum_time(x, y, sign, eps_x, eps_y):
    """Time of the first local extremum of the points From .. To - 1, the second one when the first
    lies on the range's first sample; -2 when there is none."""
    xs, ys = x[:-1], y[:-1]
    found = local_extrema(xs, ys, sign, eps_x, eps_y)
    if not found:
        return -2.0
    chosen = found[1] if len(found) > 1 and abs(xs[found[0]] - xs[0]) < 1e-9 else found[0]
    return xs[chosen]


def extrema(out):
    rng = np.random.default_rng(20261123)
    t = np.arange(200) / 1000.0
    sine = 0.5 * np.sin(2 * np.pi * 20 * t)
    noisy = sine + 0.02 * rng.standard_normal(len(t))
    holes = noisy.copy()
    holes[[11, 12, 13, 60, 61]] = np.nan
    holes[100] = np.inf
    falling = np.cos(2 * np.pi * 7 * t)  # starts on its maximum
    for name, x, y, eps_x, eps_y in [
        ("sine_large_epsilon", t, sine, 0.02, 0.05),
        ("sine_small_epsilon", t, sine, 0.02, 1e-5),
        ("noisy_sine", t, noisy, 0.01, 0.2),
        ("noisy_sine_with_nan", t, holes, 0.01, 0.2),
        ("starts_on_extremum", t, falling, 0.03, 0.1),
        ("epsilon_too_large", t, sine, 0.02, 2.0),
    ]:
        write_case(out, name, x, y, {"eps_x": eps_x, "eps_y": eps_y}, {
            "max_time": first_extremum_time(x, y, 1, eps_x, eps_y),
            "min_time": first_extremum_time(x, y, -1, eps_x, eps_y),
        })


def main():
    os.makedirs(DATA, exist_ok=True)
    with open(os.path.join(DATA, "measure_levels.txt"), "w") as out:
        out.write("# generated by make_measure_refs.py\n")
        levels(out)
    with open(os.path.join(DATA, "measure_pulses.txt"), "w") as out:
        out.write("# generated by make_measure_refs.py\n")
        pulses(out)
    with open(os.path.join(DATA, "measure_extrema.txt"), "w") as out:
        out.write("# generated by make_measure_refs.py\n")
        extrema(out)


if __name__ == "__main__":
    main()
