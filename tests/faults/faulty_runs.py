"""What the sweeps share: the commands that write, and how the files that they leave are judged.

A case runs in a directory of its own, which holds the files of an earlier run. After a run with a fault each file is
the earlier one or the new one, byte by byte, and what is published as a set is one run's, or says that it is none.
"""

import os
import shutil
import subprocess
import tempfile

EXAMPLES = os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "..", "examples")
PHILOSOPHERS = os.path.join(EXAMPLES, "philosophers.sym")
RUN_FILES = ["types", "model_comp_graph", "mcg.viz", "detection.log", "permutations"]

TWO_REWARDS = """type Machine {
  private mode : {up, down} = up;
  [fail]   mode == up   -> 0.5 : mode = down;
  [repair] mode == down -> 4   : mode = up;
}
system Plant { m[i : 0..1] : Machine; }
reward "uptime" = sum m : Machine . (m.mode == up ? 1 : 0);
reward "cost"   = sum m : Machine . (m.mode == up ? 3 : 2);
"""


class Case:
    """A command, the one that has run before it in the same directory, and the sets that it publishes."""

    def __init__(self, name, command, earlier=None, lists=(), run_directories=(), reads=""):
        self.name = name
        self.command = command
        self.earlier = earlier
        self.lists = lists                      # "NAME.set"
        self.run_directories = run_directories
        self.reads = reads                      # on standard input


def philosophers(command, number, *arguments):
    return [command, PHILOSOPHERS, "--const", "N=%d" % number] + list(arguments)


def exports(*names):
    return ["--quiet"] + [word for name in names for word in ("--export", name)]


ALL_FORMATS = exports("x.all", "x.drn", "x.mtx", "x.aut", "x.dot", "y.tra", "y.lab")

CASES = [
    Case("detect into a new directory", philosophers("detect", 4), run_directories=["philosophers.symfold"]),
    Case("detect", philosophers("detect", 4, "-o", "run"), philosophers("detect", 3, "-o", "run"),
         run_directories=["run"]),
    Case("detect without a log", philosophers("detect", 4, "-o", "run", "--no-log"),
         philosophers("detect", 3, "-o", "run"), run_directories=["run"]),
    Case("detect and tell as JSON", philosophers("detect", 4, "-o", "a/b", "--json"), run_directories=["a/b"]),
    Case("explore with a run directory", philosophers("explore", 4, "-o", "run", "--quiet"),
         philosophers("explore", 3, "-o", "run", "--quiet"), run_directories=["run"]),
    Case("export every format", philosophers("explore", 4, *ALL_FORMATS), philosophers("explore", 3, *ALL_FORMATS),
         lists=["x.set", "y.set"]),
    Case("export in place of more rewards", philosophers("explore", 3, *exports("x.all")),
         ["explore", "rewards.sym"] + exports("x.all"), lists=["x.set"]),
    Case("export more than a buffer holds", philosophers("explore", 8, "--symmetry", "off", *exports("x.tra", "x.lab")),
         philosophers("explore", 3, *exports("x.tra", "x.lab")), lists=["x.set"]),
    Case("export one file", philosophers("explore", 4, *exports("x.mtx")),
         philosophers("explore", 3, *exports("x.mtx"))),
    Case("plot", ["explore", PHILOSOPHERS, "--const", "N=2..4", "--compare", "--quiet", "--plot", "p.svg"],
         ["explore", PHILOSOPHERS, "--const", "N=2..3", "--compare", "--quiet", "--plot", "p.svg"]),
    Case("certify", philosophers("explore", 4, "--quiet", "--check", "--export", "x.mtx"),
         philosophers("explore", 3, "--quiet", "--check", "--export", "x.mtx")),
    Case("draw", philosophers("draw", 4, "-o", "g.svg"), philosophers("draw", 3, "-o", "g.svg")),
    Case("label", ["label", "run/permutations", "--perm"], philosophers("detect", 3, "-o", "run"),
         reads="000000000000000000000000\n" * 4000),
    Case("check", ["check", PHILOSOPHERS, "run", "--const", "N=3"], philosophers("detect", 3, "-o", "run")),
    Case("show", ["show", "run/permutations"], philosophers("detect", 8, "-o", "run")),
]


def xxh64(data):
    """The checksum of the lists, written down apart from the program's."""
    mask = (1 << 64) - 1
    primes = (11400714785074694791, 14029467366897019727, 1609587929392839161, 9650029242287828579, 2870177450012600261)
    p1, p2, p3, p4, p5 = primes

    def rotate(number, bits):
        return ((number << bits) | (number >> (64 - bits))) & mask

    def mixed(lane, number):
        return rotate((lane + number * p2) & mask, 31) * p1 & mask

    def word(at, size):
        return int.from_bytes(data[at:at + size], "little")

    at = 0
    if len(data) >= 32:
        lanes = [(p1 + p2) & mask, p2, 0, -p1 & mask]
        for at in range(0, len(data) // 32 * 32, 32):
            lanes = [mixed(lane, word(at + 8 * i, 8)) for i, lane in enumerate(lanes)]
        at += 32
        result = sum(rotate(lane, bits) for lane, bits in zip(lanes, (1, 7, 12, 18))) & mask
        for lane in lanes:
            result = ((result ^ mixed(0, lane)) * p1 + p4) & mask
    else:
        result = p5
    result = (result + len(data)) & mask
    while at + 8 <= len(data):
        result = (rotate(result ^ mixed(0, word(at, 8)), 27) * p1 + p4) & mask
        at += 8
    if at + 4 <= len(data):
        result = (rotate(result ^ (word(at, 4) * p1 & mask), 23) * p2 + p3) & mask
        at += 4
    for byte in data[at:]:
        result = rotate(result ^ (byte * p5 & mask), 11) * p1 & mask
    result = (result ^ (result >> 33)) * p2 & mask
    result = (result ^ (result >> 29)) * p3 & mask
    return "%016x" % (result ^ (result >> 32))


def snapshot(directory):
    """The contents of all files below the directory, by path."""
    files = {}
    for place, _, names in os.walk(directory):
        for name in names:
            path = os.path.join(place, name)
            with open(path, "rb") as file:
                files[os.path.relpath(path, directory)] = file.read()
    return files


class Bench:
    """A case with its directories: the earlier files, the new ones, and a place for runs with faults."""

    def __init__(self, case, program, library, root):
        self.case, self.program, self.library = case, program, library
        self.place = os.path.join(root, "place")
        self.start = os.path.join(root, "start")
        os.makedirs(self.start)
        with open(os.path.join(self.start, "rewards.sym"), "w") as file:
            file.write(TWO_REWARDS)
        if case.earlier:
            self.require(self.run(case.earlier, self.start))
        self.old = snapshot(self.start)
        self.reset()
        finished = self.require(self.run(case.command, self.place))
        self.new = snapshot(self.place)
        self.output = self.lasting(finished.stdout)
        if any(version != "new" for version in self.verdict_on_sets(self.new)):
            raise SystemExit("%s: the run leaves no whole set" % case.name)

    @staticmethod
    def require(finished):
        if finished.returncode != 0:
            raise SystemExit("%s: exit code %d: %s" % (finished.args, finished.returncode, finished.stderr.decode()))
        return finished

    def lasting(self, output):
        """What does not change with times and memory: all output of label and show, else its shape."""
        if self.case.command[0] in ("label", "show"):
            return output
        lines = output.splitlines()
        return len(lines), [line for line in lines if line.startswith(b"file")]

    def reset(self):
        shutil.rmtree(self.place, ignore_errors=True)
        shutil.copytree(self.start, self.place)

    def environment(self, fault="", at=0, log=""):
        return dict(os.environ, LD_PRELOAD=self.library, SYMFOLD_FAULT=fault, SYMFOLD_FAULT_AT=str(at),
                    SYMFOLD_FAULT_LOG=log)

    def run(self, command, place, **environment):
        return subprocess.run([self.program] + command, cwd=place, input=self.case.reads.encode(),
                              env=self.environment(**environment) if environment else None,
                              stdout=subprocess.PIPE, stderr=subprocess.PIPE, timeout=60)

    def calls(self):
        """The calls of a run without faults, as lists of number, name and path."""
        self.reset()
        log = self.place + ".log"
        self.require(self.run(self.case.command, self.place, log=log))
        with open(log) as file:
            return [line.rstrip("\n").split(" ", 2) for line in file]

    def is_own(self, path):
        return path in self.old or path in self.new

    def leftovers(self, files):
        return sorted(path for path in files if not self.is_own(path))

    def torn(self, files):
        """Files that are neither the earlier nor the new ones, and those that have gone."""
        def is_whole(path):
            versions = [files_of_run.get(path) for files_of_run in (self.old, self.new)]
            return files.get(path) in versions or (path not in files and path in self.markers())
        return sorted(path for path in set(self.old) | set(self.new) if not is_whole(path))

    def markers(self):
        """The file of each set without which it is none."""
        return list(self.case.lists) + [directory + "/permutations" for directory in self.case.run_directories]

    def paths(self):
        """All files that the case may make, replace or remove."""
        return set(self.old) | set(self.new) | {os.path.join(directory, name)
                                                for directory in self.case.run_directories for name in RUN_FILES}

    def verdict_on_sets(self, files):
        """For each set the version that it is, "old" or "new", or None if it says that it is none. Raises ValueError
        for a set that looks whole and is not."""
        verdicts = []
        for path in self.case.lists:
            verdicts.append(self.verdict_on_list(path, files))
        for directory in self.case.run_directories:
            paths = [os.path.join(directory, name) for name in RUN_FILES]
            if paths[-1] not in files:
                verdicts.append(None)
                continue
            versions = [name for name, run in (("old", self.old), ("new", self.new))
                        if all(files.get(path) == run.get(path) for path in paths)]
            if not versions:
                raise ValueError("the run directory %s mixes two runs" % directory)
            verdicts.append(versions[-1])
        return verdicts

    def verdict_on_list(self, path, files):
        if path not in files:
            return None
        lines = files[path].decode().splitlines()
        if lines[0] != "symfold chain files" or not lines[1].startswith("set "):
            raise ValueError("%s is no list" % path)
        names = []
        for line in lines[2:]:
            checksum, size, name = line.split(" ", 2)
            data = files.get(name)
            if data is None or len(data) != int(size) or xxh64(data) != checksum:
                return None
            names.append(name)
        for version, run in (("new", self.new), ("old", self.old)):
            if files[path] == run.get(path) and all(files[name] == run.get(name) for name in names):
                return version
        raise ValueError("%s mixes two runs" % path)


def benches(program, library, is_chosen):
    """The chosen cases, each in a directory that lasts until the next one is asked for."""
    memory = "/dev/shm" if os.access("/dev/shm", os.W_OK) else None
    for case in CASES:
        if is_chosen(case):
            with tempfile.TemporaryDirectory(prefix="symfold-faults-", dir=memory) as root:
                yield Bench(case, program, library, root)


def has_drawing_program():
    return shutil.which("dot") is not None
