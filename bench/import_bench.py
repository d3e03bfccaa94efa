#!/usr/bin/env python3
"""Import benchmark: `flatform-cli import` of a CSV file against the sqlite3 command line's
`.import` of the same file, whole processes.

    bench/import_bench.py [--records N] [--repeat K] [--dir DIR] [--build BUILD_DIR] [--regenerate]

The rows are those of the search benchmark (bench/run.py's generator, fixed seed): name, city,
street, e-mail, a remark, a float, money, a whole number, a day number, a code, a country and a
check box, under a head row that names the columns. Flatform imports them into the benchmark
design (bench/bench_design.json) with "," as its separator and one more money field whose formula,
F7*F8, runs for every record; SQLite into a table of the same columns (`.import --csv --skip 1`).
Each run starts from no data file or database, after the written pages of the run before have
gone to disk (sync). Every command runs once unmeasured, then K times
measured; the table shows the median wall time of the whole process, the records per second,
and the peak resident size (/usr/bin/time -v) of one run of each.
This is a benchmark, not a test: it checks only that both sides hold N rows afterwards.
"""
import argparse
import json
import os
import shutil
import subprocess
import sys
import time

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
sys.path.insert(0, HERE)
import run as search_bench  # noqa: E402  (the generator of the search benchmark's rows)
from benchlib import median_time, peak_kb  # noqa: E402

HEAD = "No.,name,city,street,email,remark,amount,price,qty,day,code,country,paid\n"


def make_csv(n, path):
    """The search benchmark's CSV rows under a head row naming the columns."""
    rows = path + ".rows"
    search_bench.generate(n, os.devnull, rows)
    with open(path, "w", encoding="cp1252", newline="") as out, open(rows, encoding="cp1252", newline="") as src:
        out.write(HEAD)
        shutil.copyfileobj(src, out, 8 << 20)
    os.remove(rows)


def make_design(path, formula):
    with open(os.path.join(HERE, "bench_design.json")) as f:
        design = json.load(f)
    design["FieldSeparator"] = ","
    total = dict(design["Fields"][6])  # a money field like price
    total.update({"Tag": "total", "Top": 3900, "FieldTabOrder": 11, "FieldFormula": formula})
    design["Fields"].append(total)
    with open(path, "w") as f:
        json.dump(design, f, indent=1)


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--records", type=int, default=1_000_000)
    ap.add_argument("--repeat", type=int, default=3)
    ap.add_argument("--dir", default=os.path.join(ROOT, "build-import", "bench-data"))
    ap.add_argument("--build", default=os.path.join(ROOT, "build-import"))
    ap.add_argument("--regenerate", action="store_true")
    args = ap.parse_args()

    cli = os.path.join(args.build, "bin", "flatform-cli")
    builder = os.path.join(args.build, "bin", "flatform-build")
    os.makedirs(args.dir, exist_ok=True)
    images = {}
    for name, formula in (("formula", "F7*F8"), ("plain", "")):
        design = os.path.join(args.dir, "import_%s.json" % name)
        images[name] = os.path.join(args.dir, "import_%s.exe" % name)
        make_design(design, formula)
        subprocess.run([builder, design, "--runtime", cli, "-o", images[name]], check=True, stdout=subprocess.DEVNULL)
    csv = os.path.join(args.dir, "import%d.csv" % args.records)
    data = os.path.join(args.dir, "imported.dat")
    db = os.path.join(args.dir, "imported.db")
    if args.regenerate or not os.path.exists(csv):
        t = time.perf_counter()
        make_csv(args.records, csv)
        print("generated %d rows in %.1f s: %s (%d MB)" % (
            args.records, time.perf_counter() - t, csv, os.path.getsize(csv) >> 20))

    def no_data():
        for name in (data, db):
            if os.path.exists(name):
                os.remove(name)
        os.sync()  # the last run's written pages go to disk now, not during the next timing

    script = ("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT, city TEXT, street TEXT, email TEXT, remark TEXT, "
              "amount REAL, price REAL, qty INTEGER, day INTEGER, code TEXT, country TEXT, paid INTEGER);\n"
              ".import --csv --skip 1 %s t\n" % csv)
    script_file = os.path.join(args.dir, "import.sql")
    with open(script_file, "w") as f:
        f.write(script)
    sq = ["sqlite3", db, ".read " + script_file]

    load = os.getloadavg()[0]
    print("records %d, repeat %d (median), load average %.2f, %d cores, %s" % (
        args.records, args.repeat, load, os.cpu_count(), time.strftime("%Y-%m-%d %H:%M")))
    print("%-34s %9s %12s   %s" % ("case", "seconds", "records/s", "result"))
    st = median_time(sq, args.repeat, before=no_data)
    count = subprocess.run(["sqlite3", db, "SELECT count(*) FROM t;"], stdout=subprocess.PIPE).stdout.decode().strip()
    print("%-34s %9.3f %12.0f   %s rows" % ("sqlite3 .import", st, args.records / st, count))
    peaks = ["sqlite import %d" % peak_kb(sq, before=no_data)]
    for name, label in (("formula", "flatform-cli import, formula F7*F8"), ("plain", "flatform-cli import, no formula")):
        ff = [cli, "import", images[name], csv, "--data", data]
        ft = median_time(ff, args.repeat, before=no_data)
        shown = subprocess.run([cli, "records", images[name], "--data", data, "count"],
                               stdout=subprocess.PIPE).stdout.decode().strip()
        print("%-34s %9.3f %12.0f   %s records, %.2fx sqlite's speed" % (label, ft, args.records / ft, shown, st / ft))
        peaks.append("flatform %s %d" % (name, peak_kb(ff, before=no_data)))
    print("peak memory (max RSS, KB): " + ", ".join(peaks))


if __name__ == "__main__":
    main()
