#!/usr/bin/python3
"""Times scipy.signal.sosfilt for the filters of the spectrum benchmark.

Arguments: sample count, then response:order:f1:f2:rate per filter. Prints one line per filter:
response order seconds (CPU time, best of several calls on the same data).
"""
import sys
import time
import timeit

import numpy as np
import scipy.signal as ss

count = int(sys.argv[1])
x = np.random.default_rng(1).standard_normal(count)
for arg in sys.argv[2:]:
    response, order, f1, f2, rate = arg.split(":")
    order, f1, f2, rate = int(order), float(f1), float(f2), float(rate)
    sos = ss.butter(order, [f1, f2] if response == "bandpass" else f1, response, fs=rate, output="sos")
    seconds = min(timeit.repeat(lambda: ss.sosfilt(sos, x), number=1, repeat=7, timer=time.process_time))
    print(response, order, "%.9f" % seconds)
