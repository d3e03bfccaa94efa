"""What the benchmarks share: timing a whole process and reading its peak memory."""
import statistics
import subprocess
import sys
import time


def _run(cmd, stdout_path):
    if stdout_path is None:
        return subprocess.run(cmd, stdout=subprocess.PIPE, stderr=subprocess.PIPE)
    with open(stdout_path, "wb") as out:
        return subprocess.run(cmd, stdout=out, stderr=subprocess.PIPE)


def timed(cmd, stdout_path=None, before=None):
    """Wall time of one run of `cmd` and its standard output (None when it went to `stdout_path`).
    `before` runs first, untimed. A failing command ends the benchmark with its error."""
    if before:
        before()
    start = time.perf_counter()
    p = _run(cmd, stdout_path)
    elapsed = time.perf_counter() - start
    if p.returncode != 0:
        sys.exit("failed: %s\n%s" % (" ".join(cmd), p.stderr.decode(errors="replace")))
    return elapsed, p.stdout


def median_time(cmd, repeat, stdout_path=None, before=None):
    """One unmeasured run (the files and the program in the page cache), then the median of `repeat`."""
    timed(cmd, stdout_path, before)
    return statistics.median(timed(cmd, stdout_path, before)[0] for _ in range(repeat))


def peak_kb(cmd, stdout_path=None, before=None):
    """The peak resident size of one run, in KB, as /usr/bin/time -v reports it; -1 when unknown."""
    if before:
        before()
    p = _run(["/usr/bin/time", "-v"] + cmd, stdout_path or "/dev/null")
    for line in p.stderr.decode(errors="replace").splitlines():
        if "Maximum resident set size" in line:
            return int(line.split(":")[1])
    return -1
