# The work of command_calls.dvs in CPython: 100,000 calls of a small method that sets a flag, timed
# inside the interpreter (CPU time); prints seconds.
import time


class Environment:
    def __init__(self):
        self.labor_visible = False

    def show_labor(self):
        self.labor_visible = True


def run():
    env = Environment()
    for _ in range(1, 100001):
        env.show_labor()


start = time.process_time()
run()
print(time.process_time() - start)
