#!/usr/bin/env python3
"""Record pages benchmark: `flatform-cli export IMAGE html OUT` against the file system alone.

    bench/html_bench.py [--records N] [--repeat K] [--dir DIR] [--build BUILD_DIR] [--regenerate]

The data are those of bench/run.py (N records of 400 bytes, 100,000 by default, design
bench/bench_design.json: one page, so one page file a record). The export writes a folder of record
pages as a whole process, start-up included. The file system side then makes the same files in a
fresh folder: the same names, the same number, the same sizes, each opened, written in one write
and closed by Python's os.open/os.write/os.close, the cheapest way Python has. Each side runs once
to warm the caches, then K times, taking turns at going first, each run into a new folder after a
sync; the folders are deleted at the end. The table shows the median wall times and their ratio.
"""
import argparse
import os
import shutil
import statistics
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
sys.path.insert(0, HERE)
import run  # noqa: E402  the search benchmark's data generation
from benchlib import timed  # noqa: E402


def export_once(cmd, folder):
    os.sync()  # the last run's files go to disk now, not during this one
    return timed(cmd + [folder], os.devnull)[0]


def inventory(folder):
    files = []
    for base, dirs, names in os.walk(folder):
        for name in names:
            path = os.path.join(base, name)
            files.append((os.path.relpath(path, folder), os.path.getsize(path)))
    return files


def write_same(files, folder):
    os.sync()
    subfolders = sorted({os.path.dirname(rel) for rel, _ in files})
    payloads = {size: b"x" * size for size in {s for _, s in files}}
    start = time.perf_counter()
    os.makedirs(folder)
    for sub in subfolders:
        if sub:
            os.makedirs(os.path.join(folder, sub), exist_ok=True)
    flags = os.O_WRONLY | os.O_CREAT | os.O_TRUNC
    for rel, size in files:
        fd = os.open(os.path.join(folder, rel), flags, 0o644)
        os.write(fd, payloads[size])
        os.close(fd)
    return time.perf_counter() - start


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--records", type=int, default=100_000)
    ap.add_argument("--repeat", type=int, default=3)
    ap.add_argument("--dir", default=os.path.join(ROOT, "build-web", "bench-data"))
    ap.add_argument("--build", default=os.path.join(ROOT, "build-web"))
    ap.add_argument("--regenerate", action="store_true")
    args = ap.parse_args()

    cli = os.path.join(args.build, "bin", "flatform-cli")
    builder = os.path.join(args.build, "bin", "flatform-build")
    os.makedirs(args.dir, exist_ok=True)
    image = os.path.join(args.dir, "bench.exe")
    data = os.path.join(args.dir, "bench%d.dat" % args.records)
    csv = os.path.join(args.dir, "bench%d.csv" % args.records)
    subprocess.run([builder, os.path.join(HERE, "bench_design.json"), "--runtime", cli, "-o", image], check=True,
                   stdout=subprocess.DEVNULL)
    if args.regenerate or not os.path.exists(data):
        run.generate(args.records, data, csv)

    # Every run writes into a folder of its own, and the folders go only at the end: creating files
    # where as many were just deleted costs the file system more, and would burden whichever side
    # came second.
    runs = os.path.join(args.dir, "runs")
    shutil.rmtree(runs, ignore_errors=True)
    os.makedirs(runs)
    cmd = [cli, "export", image, "html", "--data", data]
    env_note = "QT_QPA_PLATFORM=%s" % os.environ.get("QT_QPA_PLATFORM", "(unset: offscreen)")
    export_once(cmd, os.path.join(runs, "pages-warm"))
    files = inventory(os.path.join(runs, "pages-warm"))
    total = sum(s for _, s in files)
    write_same(files, os.path.join(runs, "same-warm"))
    export_times, fs_times = [], []
    for i in range(args.repeat):
        # The two sides take turns at going first.
        if i % 2 == 0:
            export_times.append(export_once(cmd, os.path.join(runs, "pages-%d" % i)))
        fs_times.append(write_same(files, os.path.join(runs, "same-%d" % i)))
        if i % 2 == 1:
            export_times.append(export_once(cmd, os.path.join(runs, "pages-%d" % i)))
    print("records %d, repeat %d (median), load average %.2f, %d cores, %s, %s" % (
        args.records, args.repeat, os.getloadavg()[0], os.cpu_count(), env_note, time.strftime("%Y-%m-%d %H:%M")))
    print("files %d, %.1f MB" % (len(files), total / 1e6))
    e, f = statistics.median(export_times), statistics.median(fs_times)
    print("%-34s %8.3f s   (runs: %s)" % ("export html (whole process)", e, ", ".join("%.3f" % t for t in export_times)))
    print("%-34s %8.3f s   (runs: %s)" % ("same files, os.open/write/close", f, ", ".join("%.3f" % t for t in fs_times)))
    print("ratio export / file system: %.2f" % (e / f))
    shutil.rmtree(runs, ignore_errors=True)


if __name__ == "__main__":
    main()
