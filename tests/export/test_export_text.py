#!/usr/bin/env python3
"""The delimited text export read back by Python's csv module.

    test_export_text.py FLATFORM_BUILD FLATFORM_CLI SOURCE_DIR

For the examples (which have formulas, so every record goes through the page): the sample records
are loaded as scripts/demo.sh loads them, exported with `flatform-cli export IMAGE text OUT`, and
every cell of records.tsv is found in the column of its name, as a person sees it in en_US (the
rules of tests/cli/test_samples.py). For the benchmark design (no formulas: values straight from the
stored records, on two threads): records made by bench/run.py's generator are exported and each
value is compared with the generator's own CSV, formatted here with Python's rules.
"""
import csv
import datetime
import importlib.util
import io
import os
import pathlib
import subprocess
import sys
import tempfile
from decimal import Decimal, ROUND_HALF_UP

FAILURES = []


def check(condition, message):
    if not condition:
        FAILURES.append(message)


def load(path, name):
    spec = importlib.util.spec_from_file_location(name, path)
    module = importlib.util.module_from_spec(spec)
    spec.loader.exec_module(module)
    return module


def read_export(path):
    """Rows of the export: ';' between values, CR LF after each row, Windows-1252 bytes."""
    data = pathlib.Path(path).read_bytes()
    check(data.endswith(b"\r\n"), f"{path}: the last row ends with CR LF")
    check(b"\n" not in data.replace(b"\r\n", b""), f"{path}: a line feed without its CR")
    return list(csv.reader(io.StringIO(data.decode("cp1252"), newline=""), delimiter=";"))


def examples(build, cli, source, env):
    samples = load(pathlib.Path(source) / "tests" / "cli" / "test_samples.py", "samples")
    for name, columns in samples.COLUMNS.items():
        example = pathlib.Path(source) / "examples" / name
        with tempfile.TemporaryDirectory() as folder:
            image = str(pathlib.Path(folder) / f"{name}.exe")
            subprocess.run([build, str(example / f"{name}.json"), "-o", image, "--runtime", cli], check=True,
                           capture_output=True)
            subprocess.run([sys.executable, str(pathlib.Path(source) / "tools" / "load_samples.py"), cli, image,
                            str(example)], check=True, capture_output=True)
            out = pathlib.Path(folder) / "export" / "list.csv"
            out.parent.mkdir()
            done = subprocess.run([cli, "export", image, "text", str(out)], env=env, capture_output=True, text=True)
            check(done.returncode == 0, f"{name}: export failed: {done.stderr}")
            lines = (example / "records.tsv").read_text(encoding="utf-8").splitlines()
            header, rows = lines[0].split("\t"), [line.split("\t") for line in lines[1:] if line.strip()]
            check(f"exported {len(rows)} records" in done.stdout, f"{name}: said {done.stdout!r}")
            table = read_export(out.with_suffix(".txt"))
            head, body = table[0], table[1:]
            check(head[0] == "No.", f"{name}: head starts {head[:1]}")
            check(len(body) == len(rows), f"{name}: {len(body)} rows for {len(rows)} records")
            for number, (row, got) in enumerate(zip(rows, body), start=1):
                check(got[0] == str(number), f"{name} row {number}: number {got[0]!r}")
                check(len(got) == len(head), f"{name} row {number}: {len(got)} values for {len(head)} columns")
                for column, cell in zip(header, row):
                    kind = columns[column][1]
                    want = samples.expected_text(kind, cell).replace("\\n", "\r\n")
                    check(column in head, f"{name}: no column {column}")
                    if column in head:
                        value = got[head.index(column)]
                        check(value == want, f"{name} record {number} {column}: {value!r}, typed {cell!r}")
                if name == "contacts":  # a formula's result: the full name
                    full = got[head.index("fullname")]
                    first, last = got[head.index("firstname")], got[head.index("lastname")]
                    check(full == f"{first} {last}".strip(), f"contacts record {number}: fullname {full!r}")
            pictures = [cell for cell in (r[header.index("photo")] for r in rows) if cell] if "photo" in header else []
            for picture in pictures:
                copied = out.parent / "Pictures" / picture
                check(copied.exists() and copied.read_bytes() == (example / "photos" / picture).read_bytes(),
                      f"{name}: picture {picture} beside the export")


def money(text):
    value = Decimal(text).quantize(Decimal("0.01"), rounding=ROUND_HALF_UP)
    return "" if value == 0 else f"{value:,.2f}"  # ShowZeros 0


def generated(build, cli, source, env):
    bench = load(pathlib.Path(source) / "bench" / "run.py", "benchrun")
    with tempfile.TemporaryDirectory() as folder:
        image = str(pathlib.Path(folder) / "bench.exe")
        data, rows_csv = str(pathlib.Path(folder) / "b.dat"), str(pathlib.Path(folder) / "b.csv")
        subprocess.run([build, str(pathlib.Path(source) / "bench" / "bench_design.json"), "-o", image, "--runtime", cli],
                       check=True, capture_output=True)
        count = 30000
        bench.generate(count, data, rows_csv)
        with open(rows_csv, encoding="cp1252", newline="") as f:
            source_rows = list(csv.reader(f))
        out = str(pathlib.Path(folder) / "bench.txt")
        done = subprocess.run([cli, "export", image, "text", out, "--data", data, "--threads", "2"], env=env,
                              capture_output=True, text=True)
        check(done.returncode == 0, f"bench: export failed: {done.stderr}")
        table = read_export(out)
        head, body = table[0], table[1:]
        check(len(body) == count, f"bench: {len(body)} rows")
        names = ["id", "name", "city", "street", "email", "remark", "amount", "price", "qty", "day", "code", "country",
                 "paid"]
        for k, (want, got) in enumerate(zip(source_rows, body)):
            row = dict(zip(names, want))
            day = datetime.date(1899, 12, 30) + datetime.timedelta(days=int(row["day"]))
            expected = {
                "No.": row["id"], "name": row["name"], "city": row["city"], "street": row["street"],
                "email": row["email"], "remark": row["remark"], "code": row["code"], "country": row["country"],
                "paid": row["paid"],
                "amount": ("%.15G" % float(row["amount"])) if float(row["amount"]) else "",
                "price": money(row["price"]),
                "qty": f"{int(row['qty']):,}",
                "day": f"{day.month}/{day.day}/{day.year}",
            }
            for column, value in expected.items():
                if got[head.index(column)] != value:
                    check(False, f"bench record {k + 1} {column}: {got[head.index(column)]!r}, expected {value!r}")
            if len(FAILURES) > 20:
                break


def main(build, cli, source):
    env = dict(os.environ, LC_ALL="C", LANG="C")
    examples(build, cli, source, env)
    generated(build, cli, source, env)
    for failure in FAILURES[:40]:
        print("FAIL:", failure)
    print("%d passed, %d failed" % (0 if FAILURES else 1, 1 if FAILURES else 0))
    return 1 if FAILURES else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
