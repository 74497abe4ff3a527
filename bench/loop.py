# The work of loop.dvs in CPython, timed inside the interpreter; prints seconds.
import time


def run():
    x = 0
    s = ""
    for i in range(1, 1000001):
        x = x + i * 2
        s = "Schritt"
    return x, s


start = time.perf_counter()
run()
print(time.perf_counter() - start)
