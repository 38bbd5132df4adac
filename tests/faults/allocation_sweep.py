"""Refuses allocations of the command, one after the other, and judges what becomes of each run.

    allocation_sweep.py LIBRARY COMMAND EXAMPLES [--most K] [--sample N] [--only NAME]

LIBRARY is that of allocation_faults.cpp. Every case runs with its K-th allocation refused, and with it and all that
follow refused, for every K up to --most, or for N of them. A run must end with its usual exit code and its usual
output and files, if the allocation did not matter, or with exit code 5 and a line about memory. Then each file that
it has left must be as usual, and no other files may be there; but what a run calls .partial- may stay if everything
was refused to it, as after a kill: the next run removes it.
"""

import argparse
import os
import re
import shutil
import subprocess
import sys
import tempfile

ROTATION = "3\n1 1 1 \n0 1 2 \n1\n0\n2\n1\n1\n2 0 1 \n2\n1\n1 2 0 \n"
WIDE = "3\n2 2 2 \n0 2 4 \n1\n0\n2\n1\n1\n2 0 1 \n2\n1\n1 2 0 \n"
STATES = "010203\n030201\n0001ff\n"
THREE = "type T { private x : [0..2]; [step] x < 2 -> 1.0 : x = x + 1; }\nsystem S { t[i : 0..2] : T; }\n"
BAD_MODEL = "type T { private x : bool; }\nsystem S { t : U; }\n"
LIMIT_REACHED = 5

# What differs between two runs: times, speeds, peaks.
VARYING = re.compile(
    r"^(time .*|  of detection .*|states per second .*|peak memory .*"
    r"|.*\"(detection|exploration|states_per_second|peak_memory_bytes|read|graph|group|tables|fold|[a-z ]+)\": [0-9.e+-]+,?"
    r"|.* +[0-9.]+ m?s$|.*[0-9.]+ (ms|s|seconds)\b.*)$", re.M)


def cases(examples):
    """Names with arguments and standard input."""
    star = [os.path.join(examples, "star.sym"), "--const", "N=3"]
    ring = [os.path.join(examples, "philosophers.sym"), "--const", "N=3"]
    quiet = ["--quiet"]
    result = {
        "help": (["--help"], ""),
        "version": (["--version"], ""),
        "help of explore": (["explore", "--help"], ""),
        "detect": (["detect"] + ring + ["-o", "run"], ""),
        "detect as JSON": (["detect"] + star + ["--json", "--no-log", "-o", "run"], ""),
        "export": (["explore"] + ring + quiet + ["--export", "x.all", "--export", "x.drn"], ""),
        "explore as JSON": (["explore"] + ring + quiet + ["--compare", "--json"], ""),
        "explore within a limit": (["explore"] + ring + quiet + ["--max-memory", "1G", "--max-states", "9"], ""),
        "plot": (["explore"] + star[:1] + quiet + ["--const", "N=1..3", "--compare", "--plot", "p.svg"], ""),
        "draw": (["draw"] + ring + ["-o", "d.dot"], ""),
        "draw orbits": (["draw"] + star + ["--collapse", "-o", "d.svg"], ""),
        "label": (["label", "table"], STATES),
        "label exactly": (["label", "table", "--exact", "--perm"], STATES),
        "label raw": (["label", "table", "--raw"], "abcxyzbca"),
        "label wrong lines": (["label", "table", "states", "--perm"], ""),
        "label by names": (["label", "wide", "--model", "three.sym", "--names"], "t_1.x=2 t_0.x=1\n"),
        "check": (["check", "three.sym", "wide"], ""),
        "certify": (["explore"] + ring + quiet + ["--check"], ""),
        "show": (["show", "table"], ""),
        "show as JSON": (["show", "table", "--json"], ""),
        "bad model": (["detect", "-"], BAD_MODEL),
        "bad option": (["explore", "m.sym", "--max-states", "many"], ""),
        "bad command": (["fold"], ""),
        "missing file": (["show", "no-such-file"], ""),
        "missing model": (["explore", "no-such-file"], ""),
    }
    for symmetry in ("off", "fast", "exact"):
        result["explore " + symmetry] = (["explore"] + ring + quiet + ["--symmetry", symmetry], "")
    return result


class Result:
    def __init__(self, code, out, err, files):
        self.code, self.out, self.err, self.files = code, out, err, files


def masked(text):
    """What does not vary. The columns of a table are as wide as its longest figure."""
    return re.sub(" +", " ", VARYING.sub("#", text.decode("utf-8", "replace")))


def files_in(directory):
    files = {}
    for folder, _, names in os.walk(directory):
        for name in names:
            path = os.path.join(folder, name)
            with open(path, "rb") as file:
                files[os.path.relpath(path, directory)] = masked(file.read())
    return files


class Sweep:
    def __init__(self, library, command, directory):
        self.library = os.path.abspath(library)
        self.command = os.path.abspath(command)
        self.place = os.path.join(directory, "work")
        self.count_file = os.path.join(directory, "count")
        programs = os.path.join(directory, "programs")
        os.mkdir(programs)
        dot = os.path.join(programs, "dot")
        with open(dot, "w") as file:
            file.write("#!/bin/sh\ntest -z \"$LD_PRELOAD\" && exec cat\n")
        os.chmod(dot, 0o755)
        self.environment = {"PATH": programs + ":/bin:/usr/bin", "LC_ALL": "C"}

    def run(self, arguments, given, **faults):
        shutil.rmtree(self.place, ignore_errors=True)
        os.mkdir(self.place)
        for name, text in (("table", ROTATION), ("states", "010203\n01\nxx0203\n"),
                           ("three.sym", THREE), ("wide", WIDE)):
            with open(os.path.join(self.place, name), "w") as file:
                file.write(text)
        environment = dict(self.environment, LD_PRELOAD=self.library, **faults)
        done = subprocess.run([self.command] + arguments, input=given.encode(), cwd=self.place, env=environment,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)
        return Result(done.returncode, masked(done.stdout), masked(done.stderr), files_in(self.place))

    def count(self, arguments, given):
        """The usual result, and the number of allocations that it takes."""
        usual = self.run(arguments, given, SYMFOLD_COUNT_FILE=self.count_file)
        with open(self.count_file) as file:
            return usual, int(file.read())


def fault_in(result, usual, way):
    """What is wrong with a run; nothing if all is well."""
    if result.code == usual.code and result.out == usual.out and result.err == usual.err:
        return "" if result.files == usual.files else "other files"
    if result.code != LIMIT_REACHED:
        return "exit code %d, and the output is not the usual one" % result.code
    if "memory" not in result.err:
        return "no line about memory"
    for name, text in result.files.items():
        is_leftover = ".partial" in name and way == "SYMFOLD_FAIL_FROM"
        is_plot = name == "p.svg" and text.endswith("</svg>\n")
        # A plot and a certificate show what was explored before the limit.
        is_certificate = name.endswith(".certificate") and re.search(r"\nend \d+\n$", text)
        if usual.files.get(name) != text and not is_leftover and not is_plot and not is_certificate:
            return "the file %s is left, and not as usual" % name
    return ""


def chosen(count, most, sample):
    numbers = range(1, min(count, most) + 1)
    return numbers[::max(1, len(numbers) // sample)] if sample else numbers


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("library")
    parser.add_argument("command")
    parser.add_argument("examples")
    parser.add_argument("--most", type=int, default=3000)
    parser.add_argument("--sample", type=int, default=0)
    parser.add_argument("--only", default="")
    options = parser.parse_args()
    runs = refused = faults = 0
    with tempfile.TemporaryDirectory() as directory:
        sweep = Sweep(options.library, options.command, directory)
        for name, (arguments, given) in cases(os.path.abspath(options.examples)).items():
            if options.only not in name:
                continue
            usual, count = sweep.count(arguments, given)
            before = faults
            for number in chosen(count, options.most, options.sample):
                for way in ("SYMFOLD_FAIL_AT", "SYMFOLD_FAIL_FROM"):
                    result = sweep.run(arguments, given, **{way: str(number)})
                    runs += 1
                    refused += result.code == LIMIT_REACHED
                    fault = fault_in(result, usual, way)
                    if fault:
                        faults += 1
                        print("%s, %s=%d: %s\n  %s" % (name, way, number, fault, result.err.strip()[:300]))
            print("%-24s exit code %d, %5d allocations, %d faults" % (name, usual.code, count, faults - before))
            sys.stdout.flush()
    print("%d runs, %d ended for memory, %d faults" % (runs, refused, faults))
    return 1 if faults or runs == 0 else 0


if __name__ == "__main__":
    sys.exit(main())
