"""Threads, and memory that comes back."""

import contextlib
import gc
import os
import resource
import subprocess
import sys
import threading
import time
import unittest

import karmp
from mechanisms import four_bar


def run_all(work, count):
    errors = []

    def call(index):
        try:
            work(index)
        except BaseException as error:
            errors.append(error)

    threads = [threading.Thread(target=call, args=(index,)) for index in range(count)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return errors


def big_model(count=2000):
    m = karmp.Model("Big")
    for index in range(count):
        m.add_body(f"B{index}", mass=1.0)
    return m


class Threads(unittest.TestCase):
    def test_eight_threads_with_models_of_their_own(self):
        text = four_bar().text()

        def work(index):
            for _ in range(10):
                m = karmp.loads(text)
                m.bodies["Crank"].mass = index
                with m.editing():
                    m.add_body("X")
                other = karmp.loads(m.clone().text())
                assert m.diff(other) == []
                assert other.bodies["Crank"].mass == index
                assert m.column(karmp.Body, "mass")[1] == index

        self.assertEqual(run_all(work, 8), [])

    def test_first_arrays_of_threads_import_numpy_once(self):
        program = ("import threading, karmp\n"
                   "m = [karmp.Model(str(i)) for i in range(8)]\n"
                   "b = [model.add_body('B') for model in m]\n"
                   "t = [threading.Thread(target=lambda body=body: body.cog) for body in b]\n"
                   "[x.start() for x in t]\n"
                   "[x.join() for x in t]\n")
        subprocess.run([sys.executable, "-B", "-c", program], check=True, timeout=60)

    def test_second_thread_on_a_model_at_work_gets_an_error(self):
        m = big_model()
        body = m.bodies[1]
        done = threading.Event()
        refused = []

        def save():
            while not done.is_set():
                try:
                    m.text()
                except karmp.Error:
                    pass  # the other thread was at it

        thread = threading.Thread(target=save)
        thread.start()
        end = time.monotonic() + 60
        while not refused and time.monotonic() < end:
            for use in (lambda: body.mass, lambda: setattr(body, "mass", 2.0),
                        lambda: m.bodies[0], lambda: m.clone(), lambda: m.column(karmp.Body, "mass")):
                try:
                    use()
                except karmp.Error as error:
                    refused.append(str(error))
        done.set()
        thread.join()
        self.assertEqual(set(refused), {"another thread works on the model"})
        body.mass = 3.0
        self.assertEqual(body.mass, 3.0)

    def test_differences_and_extracts_let_other_threads_run(self):
        first, second = big_model(), big_model()
        for work in (lambda: first.diff(second), lambda: first.extract(first.bodies)):
            refused = []
            thread = threading.Thread(target=lambda: [work() for _ in range(20)])
            thread.start()
            while thread.is_alive() and not refused:
                try:
                    first.name
                except karmp.Error as error:
                    refused.append(str(error))
            thread.join()
            self.assertEqual(refused, ["another thread works on the model"])
        self.assertEqual(first.diff(first), [])

    def test_two_threads_on_one_model_raise_at_most(self):
        m = four_bar()

        def work(index):
            for step in range(100):
                try:
                    m.add_body(f"{index} {step}", mass=1.0)
                    m.bodies["Crank"].mass = step
                    m.clone()
                    m.delete(m.bodies[f"{index} {step}"])
                except karmp.Error as error:
                    assert "another thread" in str(error), error

        self.assertEqual(run_all(work, 2), [])


    def test_block_is_undone_once_another_thread_is_done(self):
        m = big_model()
        begun = threading.Event()

        def save():
            begun.set()
            m.text()

        body = m.bodies[1]
        mass = body.mass
        for _ in range(10):
            thread = threading.Thread(target=save)
            with contextlib.suppress(ZeroDivisionError), m.editing():
                body.mass = 9.0
                begun.clear()
                thread.start()
                begun.wait()
                time.sleep(0.002)
                1 / 0
            thread.join()
            self.assertEqual(body.mass, mass)
        m.delete(m.bodies[2])  # which an open block would refuse

    def test_process_ends_while_a_thread_loads(self):
        program = ("import threading, time, karmp\n"
                   "m = karmp.Model('M')\n"
                   "for i in range(2000): m.add_body(str(i))\n"
                   "text = m.text()\n"
                   "def load():\n"
                   "    while True: karmp.loads(text)\n"
                   "threading.Thread(target=load, daemon=True).start()\n"
                   "keep = [(i,) for i in range(300000)]\n"
                   "time.sleep(0.05)\n")
        for _ in range(5):
            ended = subprocess.run([sys.executable, "-B", "-c", program], capture_output=True, timeout=60)
            self.assertEqual((ended.returncode, ended.stderr), (0, b""))
        forks = program + ("import os, sys\n"
                           "child = os.fork()\n"
                           "if child == 0: sys.exit(0)\n"
                           "sys.exit(os.waitpid(child, 0)[1])\n")
        for _ in range(5):
            subprocess.run([sys.executable, "-B", "-c", forks], check=True, timeout=60)


class Memory(unittest.TestCase):
    def walk(self, text):
        m = karmp.loads(text)
        total = 0.0
        for body in m.bodies:
            total += body.mass + body.cog[0] + len(body.geometries)
            for joint in body.joints:
                total += len(joint.bodies)
        other = m.clone()
        other.delete(other.joints["D"])
        m.table(karmp.Body)
        return total

    def look_at_growth(self, count):
        text = four_bar().text()
        for _ in range(count // 4):
            self.walk(text)
        gc.collect()
        before = resident()
        for _ in range(count):
            self.walk(text)
        gc.collect()
        growth = resident() - before
        print(f"{count} models: {growth / 1024:.0f} kB more than {before / 1024:.0f} kB")
        self.assertLess(growth, 1024 * 1024)

    def test_load_walk_and_drop_leave_nothing(self):
        if "libasan" not in os.environ.get("LD_PRELOAD", ""):
            self.look_at_growth(400)
            return
        # The address sanitizer keeps freed memory from use for a while, unless it is told not to.
        settings = "detect_leaks=0:quarantine_size_mb=0:thread_local_quarantine_size_kb=0"
        subprocess.run([sys.executable, "-B", __file__, "--growth", "80"], check=True,
                       env=os.environ | {"ASAN_OPTIONS": settings})


def resident():
    """The memory of the process in bytes."""
    with open("/proc/self/statm", encoding="ascii") as file:
        return int(file.read().split()[1]) * resource.getpagesize()


if __name__ == "__main__":
    if sys.argv[1:2] == ["--growth"]:
        Memory().look_at_growth(int(sys.argv[2]))
    else:
        unittest.main()
