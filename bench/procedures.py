# The work of procedures.dvs in CPython: 100,000 calls of a function with three parameters that sets
# a global, timed inside the interpreter (CPU time); prints seconds.
import time

summe = 0


def addiere(a, b, c):
    global summe
    summe = a + b + c


def run():
    for i in range(1, 100001):
        addiere(i, 2, 3)


start = time.process_time()
run()
print(time.process_time() - start)
