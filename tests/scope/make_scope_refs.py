#!/usr/bin/python3
"""Reference values of gui_scope_test.cpp that need scipy: a unit step from rest through the
2nd-order Butterworth filters at 1 kHz (low and high pass at 100 Hz, band pass 100-200 Hz).
Prints the C++ initialisers."""
import numpy as np
from scipy import signal

for name, wn, btype in (("low", 100, "lowpass"), ("high", 100, "highpass"), ("band", [100, 200], "bandpass")):
    sos = signal.butter(2, wn, btype=btype, fs=1000, output="sos")
    y = signal.sosfilt(sos, np.ones(8))
    print(name, "{" + ", ".join(repr(float(v)) for v in y) + "}")
