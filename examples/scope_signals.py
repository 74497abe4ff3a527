#!/usr/bin/python3
"""Writes the signals of scope.dvs (rows "time;value") and its envelope file. The files are
committed, so the example needs no Python; run this again after changing a signal:
    /usr/bin/python3 examples/scope_signals.py
"""
import os

import numpy as np

HERE = os.path.dirname(os.path.abspath(__file__))
RATE = 10240.0
N = 2048
t = np.arange(N) / RATE


def write(name, values):
    with open(os.path.join(HERE, name), "w") as f:
        f.write("Zeit;Wert\n")
        for x, y in zip(t, values):
            f.write(f"{x:.6f};{y:.12g}\n")


# 50 Hz, amplitude 2 V, with 5 % of the third harmonic: RMS 2/sqrt(2) * sqrt(1.0025).
write("scope_sine.txt", 2 * np.sin(2 * np.pi * 50 * t) + 0.1 * np.sin(2 * np.pi * 150 * t))
# 256 Hz pulses of 5 V, high for 10 of every 40 samples: 25 % duty cycle.
write("scope_pulse.txt", np.where((np.arange(N) % 40) < 10, 5.0, 0.0))
# 50 Hz, 1 V, with uniform noise of +-0.2 V from a fixed seed.
rng = np.random.default_rng(7)
write("scope_noise.txt", np.sin(2 * np.pi * 50 * t) + rng.uniform(-0.2, 0.2, N))

# The envelope of the noisy signal: 1.4 V above and below zero over the whole recording (0.2 s).
with open(os.path.join(HERE, "scope_envelope.HKV"), "w") as f:
    for name, level in (("UpperCurve", 1.4), ("LowerCurve", -1.4)):
        xs = [-0.001, 0.0, 0.1, 0.2, 0.3]
        f.write(f"[{name}]\nValues={len(xs)}\n")
        for i, x in enumerate(xs):
            f.write(f"XValue{i}={x}\nYValue{i}={level}\n")
