#!/usr/bin/env python3
"""Kills every command that writes, by SIGKILL: before and after each of its file calls, and at random moments.

  kill_sweep.py SYMFOLD LIBRARY [--random N] [--seed S] [--short]

LIBRARY is failing_writes.cpp, built. After each kill every file is whole, the earlier one or the new one, and sets are
one run's or marked as none; then the next run succeeds and leaves exactly its files. The N random kills (1100) are
spread over the cases and over the time that each takes. --short takes every 6th call, one side of it, and no random
ones. Exit code 1 if anything else is seen.
"""

import argparse
import os
import random
import subprocess
import sys
import time

import faulty_runs

WRITING = ("detect", "explore", "draw")


def faults_of(bench):
    """What is wrong after a kill, and after the run that follows it."""
    files = faulty_runs.snapshot(bench.place)
    wrong = ["torn: " + path for path in bench.torn(files)]
    try:
        bench.verdict_on_sets(files)
    except ValueError as error:
        wrong.append(str(error))
    left = bench.leftovers(files)
    wrong += ["taken for a file: " + path for path in left if ".partial" not in path]
    finished = bench.run(bench.case.command, bench.place)
    if finished.returncode != 0:
        wrong.append("the next run fails: %s" % finished.stderr.decode())
    elif faulty_runs.snapshot(bench.place) != bench.new:
        wrong.append("the next run leaves %s" % bench.leftovers(faulty_runs.snapshot(bench.place)))
    return wrong


def kill_after(bench, seconds):
    process = subprocess.Popen([bench.program] + bench.case.command, cwd=bench.place, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
    time.sleep(seconds)
    process.kill()
    process.wait()


def duration(bench):
    bench.reset()
    start = time.monotonic()
    bench.require(bench.run(bench.case.command, bench.place))
    return time.monotonic() - start


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("library")
    parser.add_argument("--random", type=int, default=1100)
    parser.add_argument("--seed", type=int, default=1)
    parser.add_argument("--short", action="store_true")
    options = parser.parse_args()
    program, library = os.path.abspath(options.program), os.path.abspath(options.library)

    def is_chosen(case):
        return case.command[0] in WRITING and (case.command[0] != "draw" or (
            faulty_runs.has_drawing_program() and not options.short))

    cases = sum(is_chosen(case) for case in faulty_runs.CASES)
    chance = random.Random(options.seed)
    tried = failed = 0

    def judge(bench, what):
        nonlocal tried, failed
        wrong = faults_of(bench)
        tried += 1
        failed += bool(wrong)
        for line in wrong:
            print("%s: killed %s: %s" % (bench.case.name, what, line), flush=True)

    for bench in faulty_runs.benches(program, library, is_chosen):
        before, failed_before = tried, failed
        calls = bench.calls()
        for call in calls[len(bench.case.name) % 6::6] if options.short else calls:
            for fault in [("before", "after")[int(call[0]) % 2]] if options.short else ("before", "after"):
                bench.reset()
                bench.run(bench.case.command, bench.place, fault=fault, at=int(call[0]))
                judge(bench, "%s %s" % (fault, " ".join(call)))
        by_call = tried - before
        if not options.short:
            length = duration(bench)
            for _ in range(-(-options.random // cases)):
                bench.reset()
                seconds = chance.uniform(0, 1.1 * length)
                kill_after(bench, seconds)
                judge(bench, "after %.4f s" % seconds)
        print("%-36s %4d kills at calls, %4d at random moments, %d failures" %
              (bench.case.name, by_call, tried - before - by_call, failed - failed_before), flush=True)
    print("tried %d, failed %d" % (tried, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
