#!/usr/bin/env python3
"""Makes every file call of every command that writes fail, one run for each call and kind of failure.

  write_sweep.py SYMFOLD LIBRARY [--short] [--files-only]

LIBRARY is failing_writes.cpp, built. After each run: the exit code is 4 and one line names a file and the reason, or
everything was written in spite of the failure; every file is whole, the earlier one or the new one; sets are one run's
or marked as none; nothing is left over, unless the failure was in removing it, and then the next run removes it.
--short takes every 5th call and one kind of failure for each; --files-only leaves out standard output. Exit code 1 if
anything else is seen.
"""

import argparse
import errno
import os
import sys

import faulty_runs

FAULTS = {"enospc": errno.ENOSPC, "eio": errno.EIO, "short": errno.ENOSPC, "full": errno.ENOSPC}
REMOVALS = ("unlink", "unlinkat", "remove", "rmdir", "openat")


def is_standard_output(call):
    return not call[2].startswith("/dev/shm") and (call[2].startswith("pipe:") or call[2].startswith("/dev/"))


def first_failing(fault, call, calls):
    """The call itself, or on a full disk the first one from it on that needs space; None if there is none."""
    needs_space = ("write", "fsync", "mkdir", "mkdtemp")
    return next((each for each in calls if int(each[0]) >= int(call[0]) and
                 (fault != "full" or each[1] in needs_space)), None)


def is_published(fault, call, calls):
    """True if the first call that fails comes after one that removes a file of the earlier run."""
    failing = first_failing(fault, call, calls)
    removals = [each for each in calls if each[1].startswith("unlink")]
    return bool(failing and removals) and int(removals[0][0]) < int(failing[0])


def faults_of(bench, finished, fault, call, calls, checks_output):
    """What is wrong after a run in which the call has failed."""
    wrong = []
    failing = first_failing(fault, call, calls)
    files = faulty_runs.snapshot(bench.place)
    lines = finished.stderr.decode().splitlines()
    try:
        verdicts = bench.verdict_on_sets(files)
    except ValueError as error:
        return [str(error)]
    if finished.returncode == 0:
        if files != bench.new and call[1] not in REMOVALS:
            wrong.append("exit code 0 without the new files")
        if checks_output and bench.lasting(finished.stdout) != bench.output:
            wrong.append("exit code 0 without the whole output")
    elif finished.returncode != 4:
        wrong.append("exit code %d: %s" % (finished.returncode, lines))
    else:
        # A disk that stays full may make a file and then standard output fail.
        has_reason = all("error: " in line and os.strerror(FAULTS[fault]) in line for line in lines)
        if not has_reason or len(lines) not in ((1, 2) if fault in ("short", "full") else (1,)):
            wrong.append("not one line with the reason: %s" % lines)
        elif not (failing and is_standard_output(failing)) and not any(name_is_told(path, lines[0]) for path in bench.paths()):
            wrong.append("no file is named: %s" % lines)
    wrong += ["torn: " + path for path in bench.torn(files)]
    for version, marker in zip(verdicts, bench.markers()):
        if version is None and marker in bench.old and not is_published(fault, call, calls):
            wrong.append("%s: the earlier set is gone" % marker)
    left = bench.leftovers(files)
    if left and call[1] not in REMOVALS:
        wrong.append("left over: %s" % left)
    if left:
        bench.require(bench.run(bench.case.command, bench.place))
        if faulty_runs.snapshot(bench.place) != bench.new:
            wrong.append("left over after the next run: %s" % bench.leftovers(faulty_runs.snapshot(bench.place)))
    return wrong


def name_is_told(path, line):
    """The file, or the directory in which it is to be made."""
    parts = path.split("/")
    return any("/".join(parts[:i]) + ": error: " in line or "/".join(parts[:i]) + "/: error: " in line
               for i in range(1, len(parts) + 1)) or line.startswith("symfold: .: error: ")


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("program")
    parser.add_argument("library")
    parser.add_argument("--short", action="store_true")
    parser.add_argument("--files-only", action="store_true")
    options = parser.parse_args()
    program, library = os.path.abspath(options.program), os.path.abspath(options.library)

    def is_chosen(case):
        return not (options.files_only and case.command[0] in ("label", "show")) and (
            faulty_runs.has_drawing_program() or case.command[0] != "draw") and not (
            options.short and case.command[0] == "draw")

    tried = failed = 0
    for bench in faulty_runs.benches(program, library, is_chosen):
        calls = bench.calls()
        chosen = calls[len(bench.case.name) % 5::5] if options.short else calls
        before = failed
        for call in chosen:
            if options.files_only and is_standard_output(call):
                continue
            for fault in [list(FAULTS)[int(call[0]) % 4]] if options.short else FAULTS:
                if fault == "short" and call[1] != "write":
                    continue
                bench.reset()
                finished = bench.run(bench.case.command, bench.place, fault=fault, at=int(call[0]))
                wrong = faults_of(bench, finished, fault, call, calls, not options.files_only)
                tried += 1
                failed += bool(wrong)
                for line in wrong:
                    print("%s: %s at %s: %s" % (bench.case.name, fault, " ".join(call), line), flush=True)
        print("%-36s %4d calls, %d failures" % (bench.case.name, len(calls), failed - before), flush=True)
    print("tried %d, failed %d" % (tried, failed))
    return 1 if failed else 0


if __name__ == "__main__":
    sys.exit(main())
