#!/usr/bin/env python3
"""Search benchmark: flatform-cli against the sqlite3 command line on the same data.

    bench/run.py [--records N] [--repeat K] [--dir DIR] [--build BUILD_DIR] [--regenerate]
                 [--no-settle | --small-pages]

Generates N records (1,000,000 by default, 400 bytes each: texts, a float, money, a whole number,
a date, a combo and a check box; design bench/bench_design.json) once as a Flatform record file,
written directly in the record format, and as the same rows in a CSV file and an SQLite table.
Then runs count, sum, a numeric select, a pattern select, a plain find and a sort as whole
processes on both sides: each command once to warm the caches, then K times, and prints the
median times, the ratios and the peak memory (from /usr/bin/time -v) of one run of each.

Before timing, both the record file and the SQLite file are dropped from the page cache and read
back in once, whole, in large reads (--no-settle skips this), so that both sides start from the
same, known cache state: that of a file's first read since boot. The kernel may keep a cached
file in 4 KB pages or in large folios depending on how it came into the cache, and the state of
a file left alone drifts; mapping records cached in 4 KB pages costs a walk about twice as much.
--small-pages reads the files back in 4 KB reads instead, which leaves them in 4 KB pages: the
slow case, for comparison.
This is a benchmark, not a test: it checks only that both sides found the same number of rows.
"""
import argparse
import json
import os
import random
import struct
import subprocess
import sys
import time

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from benchlib import median_time, peak_kb, timed  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
RECORD_LENGTH = 400

FIRST = ["Anna", "Ben", "Clara", "David", "Emma", "Felix", "Greta", "Hans", "Ida", "Jonas", "Karla", "Lukas",
         "Marie", "Noah", "Olga", "Paul", "Rosa", "Simon", "Tina", "Uwe", "Vera", "Walter", "Xenia", "Yann", "Zoe",
         "Annette", "Johann", "Susanne", "Hannah", "Joanna"]
LAST = ["Smith", "Miller", "Schmidt", "Meyer", "Weber", "Wagner", "Becker", "Hoffmann", "Koch", "Richter",
        "Klein", "Wolf", "Neumann", "Schwarz", "Braun", "Zimmermann", "Hartmann", "Lange", "Werner", "Krause"]
CITIES = ["Berlin", "Hamburg", "Munich", "Cologne", "Frankfurt", "Stuttgart", "Dresden", "Leipzig", "Bremen",
          "Hanover", "Paris", "Lyon", "Marseille", "Rome", "Milan", "Naples", "Turin", "Vienna", "Graz", "Zurich",
          "Basel", "Geneva", "Prague", "Brno", "Warsaw", "Krakow", "Madrid", "Seville", "Lisbon", "Porto"]
STREETS = ["Main Street", "High Street", "Station Road", "Church Lane", "Market Square", "Park Avenue",
           "Mill Road", "Bridge Street", "Castle Hill", "Garden Way"]
WORDS = ("alpha bravo charlie delta echo foxtrot golf hotel india juliet kilo lima mike november oscar papa "
         "quebec romeo sierra tango uniform victor whiskey yankee zulu amber basalt cobalt dune ember fjord "
         "granite harbor iris jasper lagoon meadow nectar onyx pebble river summit timber valley willow").split()
COUNTRIES = ["Germany", "France", "Italy", "Austria", "Switzerland", "Czechia", "Poland", "Spain", "Portugal"]
RARE = "quartz"  # the word the plain find looks for: in about one remark of a hundred


def day_number(y, m, d):
    import datetime
    return (datetime.date(y, m, d) - datetime.date(1899, 12, 30)).days


def generate(n, data_path, csv_path, seed=7):
    rnd = random.Random(seed)
    base_day = day_number(2000, 1, 1)
    header = bytearray(b" " * (RECORD_LENGTH - 1))
    header[0:8] = struct.pack("<q", (base_day + 9000) * 10000)
    header[8:8 + 5] = b"Bench"
    header[9:13] = struct.pack("<i", 0)
    header[15:19] = struct.pack("<i", RECORD_LENGTH)
    pack = struct.Struct("<40s30s60s50s150sdqiq20s20s1s1s").pack
    assert struct.calcsize("<40s30s60s50s150sdqiq20s20s1s1s") == RECORD_LENGTH

    def pad(text, size):
        b = text.encode("cp1252")[:size]
        return b + b" " * (size - len(b))

    with open(data_path, "wb") as data, open(csv_path, "w", encoding="cp1252", newline="") as csv:
        data.write(header)
        chunk, rows = [], []
        for r in range(1, n + 1):
            name = rnd.choice(FIRST) + " " + rnd.choice(LAST)
            city = rnd.choice(CITIES)
            street = "%d %s" % (rnd.randint(1, 250), rnd.choice(STREETS))
            email = "%s.%d@example.com" % (name.split()[0].lower(), rnd.randint(1, 99999))
            words = [rnd.choice(WORDS) for _ in range(rnd.randint(8, 18))]
            if rnd.random() < 0.01:
                words.insert(rnd.randint(0, len(words)), RARE)
            remark = " ".join(words)[:150]
            amount = round(rnd.uniform(0, 10000), 2)
            cents = rnd.randint(0, 100000)  # price 0.00 to 1000.00
            qty = rnd.randint(1, 100)
            day = base_day + rnd.randint(0, 9000)
            code = "K%08d" % rnd.randint(0, 99999999)
            country = rnd.choice(COUNTRIES)
            paid = rnd.choice("01")
            chunk.append(pack(pad(name, 40), pad(city, 30), pad(street, 60), pad(email, 50), pad(remark, 150),
                              amount, cents * 100, qty, day * 10000, pad(code, 20), pad(country, 20),
                              paid.encode(), b" "))
            rows.append('%d,"%s","%s","%s","%s","%s",%r,%d.%02d,%d,%d,"%s","%s",%s\n' % (
                r, name, city, street, email, remark, amount, cents // 100, cents % 100, qty, day, code, country,
                paid))
            if len(chunk) == 20000:
                data.write(b"".join(chunk))
                csv.write("".join(rows))
                chunk, rows = [], []
        data.write(b"".join(chunk))
        csv.write("".join(rows))


def sqlite_load(db_path, csv_path):
    if os.path.exists(db_path):
        os.remove(db_path)
    script = ("CREATE TABLE t(id INTEGER PRIMARY KEY, name TEXT, city TEXT, street TEXT, email TEXT, remark TEXT, "
              "amount REAL, price REAL, qty INTEGER, day INTEGER, code TEXT, country TEXT, paid INTEGER);\n"
              ".import --csv %s t\n" % csv_path)
    subprocess.run(["sqlite3", db_path], input=script.encode(), check=True)


def settle(path, small_pages=False):
    """Drops `path` from the page cache and reads it back in once: in large sequential reads, or
    in 4 KB reads without read-ahead, which leaves every page a folio of its own."""
    fd = os.open(path, os.O_RDONLY)
    try:
        os.fsync(fd)  # written pages must be clean before the cache lets them go
        os.posix_fadvise(fd, 0, 0, os.POSIX_FADV_DONTNEED)
        if small_pages:
            os.posix_fadvise(fd, 0, 0, os.POSIX_FADV_RANDOM)
            offset = 0
            while os.pread(fd, 4096, offset):
                offset += 4096
        else:
            while os.read(fd, 8 << 20):
                pass
    finally:
        os.close(fd)


def lines(output):
    return output.count(b"\n")


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--records", type=int, default=1_000_000)
    ap.add_argument("--repeat", type=int, default=5)
    ap.add_argument("--dir", default=os.path.join(ROOT, "build-search", "bench-data"))
    ap.add_argument("--build", default=os.path.join(ROOT, "build-search"))
    ap.add_argument("--regenerate", action="store_true")
    ap.add_argument("--no-settle", action="store_true", help="time the files in whatever cache state they are")
    ap.add_argument("--small-pages", action="store_true", help="read the files back into 4 KB pages before timing")
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
        generate(args.records, data, csv)
        sqlite_load(db, csv)
        print("generated %d records in %.1f s: %s (%d MB), %s (%d MB)" % (
            args.records, time.perf_counter() - t, data, os.path.getsize(data) >> 20, db, os.path.getsize(db) >> 20))

    if not args.no_settle:
        t = time.perf_counter()
        settle(data, args.small_pages)
        settle(db, args.small_pages)
        print("settled the page cache: read %s and %s back in%s (%.1f s)" % (
            os.path.basename(data), os.path.basename(db), " 4 KB pages" if args.small_pages else " large reads",
            time.perf_counter() - t))

    # The same records stored scrambled, with an image whose design says so: every walk must be as
    # fast on it as on the plain store.
    scrambled_image = os.path.join(args.dir, "bench-scrambled.exe")
    scrambled_data = os.path.join(args.dir, "bench%d-scrambled.dat" % args.records)
    with open(os.path.join(HERE, "bench_design.json"), encoding="utf-8") as f:
        design = json.load(f)
    design["ScrambleRecords"] = 1
    scrambled_json = os.path.join(args.dir, "bench_design_scrambled.json")
    with open(scrambled_json, "w", encoding="utf-8") as f:
        json.dump(design, f)
    subprocess.run([builder, scrambled_json, "--runtime", cli, "-o", scrambled_image], check=True,
                   stdout=subprocess.DEVNULL)
    if args.regenerate or not os.path.exists(scrambled_data) or \
            os.path.getmtime(scrambled_data) < os.path.getmtime(data):
        scramble_copy(data, scrambled_data)
    if not args.no_settle:
        settle(scrambled_data, args.small_pages)

    sq = ["sqlite3", db]
    seven = "name city street amount price qty day"

    def cases(image_path, data_path):
        ff = [cli, "search", image_path, "--data", data_path]
        return [
            ("count", ff + ["count price>500"], sq + ["SELECT count(*) FROM t WHERE price>500;"], "value"),
            ("sum", ff + ["sum price"], sq + ["SELECT sum(price) FROM t;"], "value"),
            ("numeric select", ff + ["select name price where price>=990"],
             sq + ["SELECT id, name, price FROM t WHERE price>=990 ORDER BY id DESC;"], "rows"),
            ("prefix select", ff + ["select name code where code=k12*"],
             sq + ["SELECT id, name, code FROM t WHERE code LIKE 'k12%' ORDER BY id DESC;"], "rows"),
            ("contains select", ff + ["select name where remark=*" + RARE + "*"],
             sq + ["SELECT id, name FROM t WHERE remark LIKE '%" + RARE + "%' ORDER BY id DESC;"], "rows"),
            ("plain find", ff + [RARE, "--field", "remark"],
             sq + ["SELECT id, name, city, amount, price, day FROM t WHERE remark LIKE '%" + RARE + "%' "
                   "ORDER BY id DESC;"], "rows"),
            ("list 1 column", ff + ["select name where price<100"],
             sq + ["SELECT id, name FROM t WHERE price<100 ORDER BY id DESC LIMIT 32000;"], "rows"),
            ("list 7 columns", ff + ["select %s where price<100" % seven],
             sq + ["SELECT id, %s FROM t WHERE price<100 ORDER BY id DESC LIMIT 32000;" % seven.replace(" ", ", ")],
             "rows"),
            ("sort (text)", [cli, "sort", image_path, "name", "--data", data_path],
             sq + ["SELECT id FROM t ORDER BY name COLLATE NOCASE;"], "rows"),
        ]

    def median(cmd):
        return median_time(cmd, args.repeat)

    load = os.getloadavg()[0]
    print("records %d, repeat %d (median), load average %.2f, %d cores, %s" % (
        args.records, args.repeat, load, os.cpu_count(), time.strftime("%Y-%m-%d %H:%M")))
    print("%-16s %9s %10s %9s %10s %12s   %s" % ("case", "plain s", "scrambled", "sqlite s", "scr/plain",
                                               "sqlite/scr", "result (plain / scrambled / sqlite)"))
    plain_cases, scrambled_cases = cases(image, data), cases(scrambled_image, scrambled_data)
    times = {}
    for (name, fcmd, scmd, kind), (_, xcmd, _, _) in zip(plain_cases, scrambled_cases):
        fout, xout, sout = timed(fcmd)[1], timed(xcmd)[1], timed(scmd)[1]
        if kind == "rows":
            result = "%d / %d / %d rows" % (lines(fout), lines(xout), lines(sout))
        else:
            result = "%s / %s / %s" % (fout.decode().strip(), xout.decode().strip(), sout.decode().strip())
        if fout != xout:
            result += "  OUTPUT DIFFERS"
        ft, xt, st = median(fcmd), median(xcmd), median(scmd)
        times[name] = (ft, xt)
        print("%-16s %9.3f %10.3f %9.3f %9.2fx %11.1fx   %s" % (name, ft, xt, st, xt / ft, st / xt, result))
    one, seven_t = times["list 1 column"], times["list 7 columns"]
    print("listing 32,000 rows: 7 columns cost %.2fx one column (plain), %.2fx (scrambled)" % (
        seven_t[0] / one[0], seven_t[1] / one[1]))
    print("peak memory (max RSS, KB): flatform count %d, flatform sort %d, sqlite count %d, sqlite sort %d" % (
        peak_kb(plain_cases[0][1]), peak_kb(plain_cases[-1][1]), peak_kb(plain_cases[0][2]),
        peak_kb(plain_cases[-1][2])))


def scramble_copy(source, target):
    """Writes `source` with every record byte through the scramble table; the header slot ahead of
    record 1 (RECORD_LENGTH - 1 bytes) is never scrambled."""
    table = bytes((i * 167 + 13) % 256 for i in range(256))
    with open(source, "rb") as src, open(target, "wb") as dst:
        dst.write(src.read(RECORD_LENGTH - 1))
        while True:
            block = src.read(8 << 20)
            if not block:
                break
            dst.write(block.translate(table))


if __name__ == "__main__":
    main()
