#!/usr/bin/env python3
"""Chart benchmark: `flatform-cli chart IMAGE TAG` against sqlite3 on the same records.

    bench/chart_bench.py [--records N] [--repeat K] [--dir DIR] [--build BUILD_DIR] [--regenerate]
                         [--no-settle] [--memory-records M]

The data are those of bench/run.py (its generator is imported: N records of 400 bytes, 1,000,000 by
default, as a Flatform record file, as the same rows in an SQLite table, and a scrambled copy of the
record file). The chart verb reads one element of every record and prints the statistics (count,
sum, average, lowest, highest, the ten ranges) of a number field and the groups (at most 31, the
rest under "Others") of any element. SQLite does the same work with one aggregate query and one
GROUP BY:

  price (money, 100,001 values)   count/sum/avg/min/max + GROUP BY price
  qty (whole number, 100 values)  count/sum/avg/min/max + GROUP BY qty
  city (text, case folded)        GROUP BY upper(city)
  name (text, ~900 values)        GROUP BY upper(name)

Each command runs once to warm the caches, then K times; the table shows the median wall time of
the whole process, the ratio, and the median processor time (user + system) of K more runs, which
a busy machine changes less than the wall time. The counts and sums of both sides are compared. Peak memory (max
RSS) of the chart of price is measured at M records (100,000 by default) and at N.
"""
import argparse
import os
import re
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
sys.path.insert(0, HERE)
import run  # noqa: E402  the search benchmark's data generation
from benchlib import median_time, peak_kb, timed  # noqa: E402


def make_data(args, builder, cli, records):
    """The image, the record file, its scrambled copy and the SQLite table of `records` records."""
    image = os.path.join(args.dir, "bench.exe")
    data = os.path.join(args.dir, "bench%d.dat" % records)
    csv = os.path.join(args.dir, "bench%d.csv" % records)
    db = os.path.join(args.dir, "bench%d.db" % records)
    subprocess.run([builder, os.path.join(HERE, "bench_design.json"), "--runtime", cli, "-o", image], check=True,
                   stdout=subprocess.DEVNULL)
    if args.regenerate or not (os.path.exists(data) and os.path.exists(db)):
        t = time.perf_counter()
        run.generate(records, data, csv)
        run.sqlite_load(db, csv)
        print("generated %d records in %.1f s" % (records, time.perf_counter() - t))
    return image, data, db


def cpu_seconds(cmd, repeat):
    """The median processor time (user + system) of `repeat` runs: what the machine's load does not
    change as it changes the wall time."""
    import resource
    times = []
    for _ in range(repeat):
        before = resource.getrusage(resource.RUSAGE_CHILDREN)
        timed(cmd)
        after = resource.getrusage(resource.RUSAGE_CHILDREN)
        times.append(after.ru_utime - before.ru_utime + after.ru_stime - before.ru_stime)
    return sorted(times)[len(times) // 2]


def figure(pattern, text):
    m = re.search(pattern, text, re.M)
    return float(m.group(1)) if m else None


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--records", type=int, default=1_000_000)
    ap.add_argument("--memory-records", type=int, default=100_000)
    ap.add_argument("--repeat", type=int, default=5)
    ap.add_argument("--dir", default=os.path.join(ROOT, "build-charts-rel", "bench-data"))
    ap.add_argument("--build", default=os.path.join(ROOT, "build-charts-rel"))
    ap.add_argument("--regenerate", action="store_true")
    ap.add_argument("--no-settle", action="store_true")
    args = ap.parse_args()

    cli = os.path.join(args.build, "bin", "flatform-cli")
    builder = os.path.join(args.build, "bin", "flatform-build")
    os.makedirs(args.dir, exist_ok=True)
    image, data, db = make_data(args, builder, cli, args.records)

    # The scrambled store: the same records through the scramble table, with an image that says so.
    import json
    with open(os.path.join(HERE, "bench_design.json"), encoding="utf-8") as f:
        design = json.load(f)
    design["ScrambleRecords"] = 1
    scrambled_json = os.path.join(args.dir, "bench_design_scrambled.json")
    with open(scrambled_json, "w", encoding="utf-8") as f:
        json.dump(design, f)
    scrambled_image = os.path.join(args.dir, "bench-scrambled.exe")
    scrambled_data = os.path.join(args.dir, "bench%d-scrambled.dat" % args.records)
    subprocess.run([builder, scrambled_json, "--runtime", cli, "-o", scrambled_image], check=True,
                   stdout=subprocess.DEVNULL)
    if args.regenerate or not os.path.exists(scrambled_data) or os.path.getmtime(scrambled_data) < os.path.getmtime(data):
        run.scramble_copy(data, scrambled_data)
    if not args.no_settle:
        for path in (data, scrambled_data, db):
            run.settle(path)

    sq = ["sqlite3", db]
    stats = "SELECT count(*), sum({0}), avg({0}), min({0}), max({0}) FROM t; "
    groups = "SELECT {0}, count(*) FROM t GROUP BY {0} ORDER BY 2 DESC LIMIT 31;"
    cases = [
        ("price", [cli, "chart", image, "price", "--data", data], sq + [stats.format("price") + groups.format("price")]),
        ("price scrambled", [cli, "chart", scrambled_image, "price", "--data", scrambled_data], None),
        ("qty", [cli, "chart", image, "qty", "--data", data], sq + [stats.format("qty") + groups.format("qty")]),
        ("city", [cli, "chart", image, "city", "--data", data], sq + [groups.format("upper(city)")]),
        ("name", [cli, "chart", image, "name", "--data", data], sq + [groups.format("upper(name)")]),
    ]
    print("records %d, repeat %d (median), load average %.2f, %d cores, %s" % (
        args.records, args.repeat, os.getloadavg()[0], os.cpu_count(), time.strftime("%Y-%m-%d %H:%M")))
    print("%-16s %10s %10s %9s %11s %11s   %s" % ("case", "chart s", "sqlite s", "ratio", "chart cpu s", "sqlite cpu",
                                                "check (flatform / sqlite)"))
    outputs = {}
    for name, ff, sqlite in cases:
        ff_time = median_time(ff, args.repeat)
        ff_cpu = cpu_seconds(ff, args.repeat)
        out = timed(ff)[1].decode("utf-8", "replace")
        outputs[name] = out
        if sqlite is None:
            same = out == outputs["price"]
            print("%-16s %10.3f %10s %9s %11.3f %11s   output %s the plain store's" % (
                name, ff_time, "-", "-", ff_cpu, "-", "equals" if same else "DIFFERS FROM"))
            continue
        sq_time = median_time(sqlite, args.repeat)
        sq_cpu = cpu_seconds(sqlite, args.repeat)
        sq_out = timed(sqlite)[1].decode()
        first = sq_out.splitlines()[0].split("|")
        check = ""
        if figure(r"^count: (\S+)", out) is not None:
            check = "count %d/%s sum %.2f/%.2f" % (figure(r"^count: (\S+)", out), first[0],
                                                  figure(r"^sum: (\S+)", out), float(first[1]))
        groups_line = re.search(r"^groups: (\d+) of (\d+)", out, re.M)
        check += " groups %s of %s, top %s/%s" % (groups_line.group(1), groups_line.group(2),
                                                  out.split("groups:")[1].splitlines()[1].split("\t")[1],
                                                  sq_out.splitlines()[1 if len(first) > 2 else 0].split("|")[1])
        print("%-16s %10.3f %10.3f %8.1fx %11.3f %11.3f   %s" % (name, ff_time, sq_time, sq_time / ff_time, ff_cpu, sq_cpu,
                                                            check))

    small_image, small_data, _ = make_data(args, builder, cli, args.memory_records)
    print("peak memory (max RSS, KB), chart of price: %d records %d, %d records %d; chart of name: %d records %d, %d records %d" % (
        args.memory_records, peak_kb([cli, "chart", small_image, "price", "--data", small_data]),
        args.records, peak_kb(cases[0][1]),
        args.memory_records, peak_kb([cli, "chart", small_image, "name", "--data", small_data]),
        args.records, peak_kb(cases[4][1])))


if __name__ == "__main__":
    main()
