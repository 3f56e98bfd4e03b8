"""What the package costs: CPU time, best of several. Prints a line for each figure.

    PYTHONPATH=build/release/Python python3 Python/benchmarks/speed.py [build/release/Python/karmp_python_load]
"""

import os
import pickle
import resource
import subprocess
import sys
import tempfile
import time

import karmp

CALLS = 200_000
CACHE = tempfile.TemporaryDirectory()


def best(work, repeats=9):
    """The least CPU time of a call in seconds."""
    times = []
    for _ in range(repeats):
        start = time.process_time()
        work()
        times.append(time.process_time() - start)
    return min(times)


def of_child(*command, repeats=15):
    """The least CPU time of a process in seconds, with the bytecode that installed packages have."""
    times = []
    environment = {**os.environ, "PYTHONPYCACHEPREFIX": CACHE.name}
    environment.pop("PYTHONDONTWRITEBYTECODE", None)
    for _ in range(repeats):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        subprocess.run(command, check=True, stdout=subprocess.DEVNULL, env=environment)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        times.append(after.ru_utime + after.ru_stime - before.ru_utime - before.ru_stime)
    return min(times)


def per_call(statement, **names):
    """What a statement costs in a loop, without the loop, in nanoseconds."""
    code = "def loop():\n for _ in range({}):\n  {}"
    loops = []
    for repeated in (statement, "pass"):
        scope = dict(names)
        exec(code.format(CALLS, repeated), scope)
        loops.append(best(scope["loop"]))
    return (loops[0] - loops[1]) / CALLS * 1e9


def big_model(count):
    m = karmp.Model("Big")
    for index in range(count):
        m.add_body(f"B{index}", mass=1.0 + index)
    return m


def main(count=5000):
    bare = of_child(sys.executable, "-c", "pass")
    print(f"import above a bare interpreter: "
          f"{1e3 * (of_child(sys.executable, '-c', 'import karmp') - bare):.1f} ms")
    m = big_model(count)
    body = m.bodies[1]
    print(f"read a number: {per_call('body.mass', body=body):.0f} ns")
    print(f"write a number: {per_call('body.mass = 1.5', body=body):.0f} ns")
    print(f"read a word: {per_call('value.type', value=m.time):.0f} ns")
    print(f"read a vector: {per_call('body.cog', body=body):.0f} ns")
    each = 1e9 / len(m.bodies)
    print(f"column of a number, an entity: {best(lambda: m.column(karmp.Body, 'mass')) * each:.0f} ns")
    print(f"column of a vector, an entity: {best(lambda: m.column(karmp.Body, 'cog')) * each:.0f} ns")
    values = m.column(karmp.Body, "mass")
    print(f"write a column, an entity: {best(lambda: m.set(karmp.Body, 'mass', values)) * each:.0f} ns")
    print(f"list of all bodies, an entity: {best(lambda: list(m.bodies)) * each:.0f} ns")
    print(f"pickle, an entity: {best(lambda: pickle.dumps(m), 3) * each:.0f} ns")
    with tempfile.TemporaryDirectory() as folder:
        path = os.path.join(folder, "big.xml")
        m.save(path)
        print(f"load {count} bodies: {1e3 * best(lambda: karmp.load(path)):.1f} ms")
        if sys.argv[1:]:
            print(f"load them in C++: {1e3 * in_cpp(sys.argv[1], path):.1f} ms")


def in_cpp(program, path):
    """The time that a program of the model library tells, in seconds."""
    return min(float(subprocess.run([program, path], check=True, capture_output=True).stdout)
               for _ in range(3))


if __name__ == "__main__":
    main()
