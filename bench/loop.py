# The work of loop.dvs in CPython, timed inside the interpreter (CPU time); prints seconds.
import time


def run():
    x = 0
    s = ""
    for i in range(1, 1000001):
        x = x + i * 2
        s = "Schritt"
    return x, s


start = time.process_time()
run()
print(time.process_time() - start)
