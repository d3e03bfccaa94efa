#!/usr/bin/env python3
"""Export benchmark: `flatform-cli export IMAGE text OUT` against `sqlite3 -csv` on the same data.

    bench/export_bench.py [--records N] [--repeat K] [--dir DIR] [--build BUILD_DIR] [--regenerate]
                          [--no-settle] [--keep]

The data are those of bench/run.py (its generator is imported: N records of 400 bytes, 1,000,000 by
default, as a Flatform record file and as the same rows in an SQLite table). Both sides write every
column of every record as delimited text to a file, as whole processes: the export its head row and
one row a record (record number, five texts, the float, the money, the whole number, the date, the
code, the country, the check box), sqlite3 the same thirteen columns with -csv. Each command runs
once to warm the caches, then K times; the table shows the median wall time, the ratio, the size of
what each wrote and the peak memory (max RSS, from /usr/bin/time -v) of one run. The export is timed
on both threads (the default) and with --threads 1.
"""
import argparse
import os
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
sys.path.insert(0, HERE)
import run  # noqa: E402  the search benchmark's data generation
from benchlib import median_time, peak_kb  # noqa: E402


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--records", type=int, default=1_000_000)
    ap.add_argument("--repeat", type=int, default=5)
    ap.add_argument("--dir", default=os.path.join(ROOT, "build-export", "bench-data"))
    ap.add_argument("--build", default=os.path.join(ROOT, "build-export"))
    ap.add_argument("--regenerate", action="store_true")
    ap.add_argument("--no-settle", action="store_true")
    ap.add_argument("--keep", action="store_true", help="keep the written files")
    args = ap.parse_args()

    cli = os.path.join(args.build, "bin", "flatform-cli")
    builder = os.path.join(args.build, "bin", "flatform-build")
    os.makedirs(args.dir, exist_ok=True)
    image = os.path.join(args.dir, "bench.exe")
    data = os.path.join(args.dir, "bench%d.dat" % args.records)
    csv = os.path.join(args.dir, "bench%d.csv" % args.records)
    db = os.path.join(args.dir, "bench%d.db" % args.records)
    subprocess.run([builder, os.path.join(HERE, "bench_design.json"), "--runtime", cli, "-o", image], check=True,
                   stdout=subprocess.DEVNULL)
    if args.regenerate or not (os.path.exists(data) and os.path.exists(db)):
        t = time.perf_counter()
        run.generate(args.records, data, csv)
        run.sqlite_load(db, csv)
        print("generated %d records in %.1f s" % (args.records, time.perf_counter() - t))
    if not args.no_settle:
        run.settle(data)
        run.settle(db)

    out_dir = os.path.join(args.dir, "export-out")
    os.makedirs(out_dir, exist_ok=True)
    text_out = os.path.join(out_dir, "bench.txt")
    log = os.path.join(out_dir, "export.log")
    sqlite_out = os.path.join(out_dir, "sqlite.csv")
    export = [cli, "export", image, "text", text_out, "--data", data]
    sqlite = ["sqlite3", "-csv", db, "SELECT id, name, city, street, email, remark, amount, price, qty, day, code, "
              "country, paid FROM t ORDER BY id;"]
    cases = [("export (2 threads)", export, log, text_out), ("export --threads 1", export + ["--threads", "1"], log, text_out),
             ("sqlite3 -csv", sqlite, sqlite_out, sqlite_out)]
    print("records %d, repeat %d (median), load average %.2f, %d cores, %s" % (
        args.records, args.repeat, os.getloadavg()[0], os.cpu_count(), time.strftime("%Y-%m-%d %H:%M")))
    print("%-20s %10s %12s %14s" % ("case", "seconds", "MB written", "peak RSS KB"))
    times = {}
    for name, cmd, stdout_path, written in cases:
        times[name] = median_time(cmd, args.repeat, stdout_path)
        size = os.path.getsize(written) / 1e6
        lines = sum(1 for _ in open(written, "rb"))
        print("%-20s %10.3f %12.1f %14d   %d lines" % (name, times[name], size, peak_kb(cmd, stdout_path), lines))
    print("ratio sqlite3 / export: %.2fx (2 threads), %.2fx (1 thread)" % (
        times["sqlite3 -csv"] / times["export (2 threads)"], times["sqlite3 -csv"] / times["export --threads 1"]))
    if not args.keep:
        for path in (text_out, sqlite_out):
            os.remove(path)


if __name__ == "__main__":
    main()
