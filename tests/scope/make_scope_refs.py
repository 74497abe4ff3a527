#!/usr/bin/python3
"""Reference values of gui_scope_test.cpp that need scipy: a unit step from rest through the
2nd-order Butterworth low pass with cut-off 100 Hz at 1 kHz. Prints the C++ initialiser."""
import numpy as np
from scipy import signal

sos = signal.butter(2, 100, btype="low", fs=1000, output="sos")
y = signal.sosfilt(sos, np.ones(8))
print("{" + ", ".join(repr(float(v)) for v in y) + "}")
