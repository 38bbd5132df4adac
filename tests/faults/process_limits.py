"""What only a process of its own can show: its standard descriptors, its exit, and its peak of memory.

    process_limits.py COMMAND EXAMPLES [--table]

--table prints the peak beside the cap for every example.
"""

import os
import subprocess
import sys
import tempfile
import threading

ROTATION = "3\n1 1 1 \n0 1 2 \n1\n0\n2\n1\n1\n2 0 1 \n2\n1\n1 2 0 \n"
FREE = "type T {{ private x : bool = false; [a] !x -> 1.0 : x = true; }}\nsystem S {{ t[i : 0..{}] : T; }}\n"
MEBIBYTE = 1 << 20
MAX_OVERSHOOT = 1.05

# Constants that make an exploration end at the cap.
LARGE = {
    "arms": ["N=24"], "clients_servers": ["K=8", "M=9"], "cluster": ["N=40"], "complete": ["K=6"],
    "hypercube": ["d=6"], "multiprocessor": ["M=7"], "peer2peer": ["N=9"], "philosophers": ["N=20"],
    "polling": ["N=24"], "routers": ["W=4", "H=6"], "star": ["N=24"], "tandem": ["N=8", "C=6"], "torus": ["W=4", "H=7"],
    "two_speeds": ["N=24"], "wreath": ["M=6", "K=6"],
}

failures = []


def expect(holds, what):
    if not holds:
        failures.append(what)
        print("FAILED: " + what)


def run_measured(arguments):
    """Exit code, peak in bytes, messages. A child starts with its parent's peak, which is this small program's."""
    process = subprocess.Popen(arguments, stdout=subprocess.DEVNULL, stderr=subprocess.PIPE, text=True)
    timer = threading.Timer(120, process.kill)
    timer.start()
    messages = process.stderr.read()
    _, status, usage = os.wait4(process.pid, 0)
    timer.cancel()
    process.returncode = os.waitstatus_to_exitcode(status)
    return process.returncode, usage.ru_maxrss * 1024, messages


def check_output(command, examples):
    star = os.path.join(examples, "star.sym")
    for arguments in ("--help", "--version", "show table", "label table", "label table --raw", "explore " + star,
                      "explore %s --json" % star, "explore %s --const N=2..3" % star, "detect %s --no-log" % star,
                      "draw %s -o d.dot" % star):
        for target, reason in ((">/dev/full", "No space left on device"), (">&-", "Bad file descriptor")):
            text = "%s %s %s" % (command, arguments, target)
            done = subprocess.run(["sh", "-c", text], input="010203\n", capture_output=True, text=True)
            expected = "symfold: error: cannot write the results: %s\n" % reason
            expect(done.returncode == 4 and done.stderr.endswith(expected), text + ": " + done.stderr)
    closed = subprocess.run(["sh", "-c", "%s explore %s --export x.drn <&- >&- 2>&-" % (command, star)])
    expect(closed.returncode == 4, "closed descriptors")
    open_run = subprocess.run([command, "explore", star, "--export", "y.drn"], stdout=subprocess.DEVNULL)
    with open("x.drn") as one, open("y.drn") as other:
        expect(open_run.returncode == 0 and one.read() == other.read(), "closed descriptors change a file")


def check_reader_that_leaves(command):
    """Where SIGPIPE is ignored, an endless input is not read to its end."""
    script = "trap '' PIPE; (while echo 010203; do :; done) 2>/dev/null | %s label table | head -n 1" % command
    done = subprocess.run(["sh", "-c", script], capture_output=True, text=True, timeout=60)
    expect(done.stdout == "030102\n" and "Broken pipe" in done.stderr, "a reader that leaves: " + done.stderr)


def check_answers_at_once(command):
    """A program that sends states one by one has each label before it sends the next."""
    for arguments, state, label in ((["table"], b"010203\n", b"030102\n"), (["table", "--raw"], b"abc", b"cab")):
        process = subprocess.Popen([command, "label"] + arguments, stdin=subprocess.PIPE, stdout=subprocess.PIPE)
        timer = threading.Timer(20, process.kill)
        timer.start()
        for _ in range(3):
            process.stdin.write(state)
            process.stdin.flush()
            expect(os.read(process.stdout.fileno(), 100) == label, "a label at once")
        process.stdin.close()
        process.stdout.close()
        process.wait()
        timer.cancel()


def check_peak(name, arguments, cap):
    code, peak, messages = run_measured(arguments + ["--quiet", "--max-memory", "%dM" % cap])
    last = messages.strip().split("\n")[-1] if messages.strip() else "complete"
    is_ended = code == 5 and ("memory limit" in last or "state limit" in last or "time limit" in last)
    expect(peak <= cap * MEBIBYTE * MAX_OVERSHOOT, "%s: peak of %d bytes with a cap of %d MiB" % (name, peak, cap))
    expect(code == 0 or is_ended, "%s: exit code %d, %s" % (name, code, messages))
    return "| %s | %d | %.1f | %s |" % (name, cap, peak / MEBIBYTE, last)


def check_memory(command, examples, is_table):
    cap = 32
    for example in sorted(LARGE) if is_table else ("cluster", "philosophers", "torus"):
        constants = [word for constant in LARGE[example] for word in ("--const", constant)]
        for symmetry in ("off", "fast", "exact") if is_table else ("off", "exact"):
            row = check_peak("%s %s %s" % (example, " ".join(LARGE[example]), symmetry),
                             [command, "explore", os.path.join(examples, example + ".sym"), "--symmetry", symmetry,
                              "--time-limit", "20" if is_table else "1"] + constants, cap)
            if is_table:
                print(row)
    for count, cap, limit in ((100000, 100, ["--max-states", "3"]), (100000, 100, ["--time-limit", "1"]),
                              (1000000, 100, []), (1000000, 400, ["--time-limit", "1"])):
        with open("free.sym", "w") as file:
            file.write(FREE.format(count - 1))
        row = check_peak("%d free submodels" % count,
                         [command, "explore", "free.sym", "--symmetry", "off"] + limit, cap)
        if is_table:
            print(row)
    _, _, messages = run_measured([command, "explore", "free.sym", "--max-memory", "100M"])
    expect(messages == "symfold: error: memory limit of 104857600 bytes reached while reading the model\n", messages)


def main():
    command, examples = os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2])
    with tempfile.TemporaryDirectory() as directory:
        os.chdir(directory)
        with open("table", "w") as file:
            file.write(ROTATION)
        check_output(command, examples)
        check_reader_that_leaves(command)
        check_answers_at_once(command)
        check_memory(command, examples, "--table" in sys.argv)
        os.chdir("/")
    return 1 if failures else 0


if __name__ == "__main__":
    sys.exit(main())
