#!/usr/bin/env python3
"""The sample records of the examples, loaded as scripts/demo.sh loads them.

    test_samples.py FLATFORM_BUILD FLATFORM_CLI SOURCE_DIR

For each example: every cell of records.tsv is read back through `records show` in the form a
person sees it (dates and money formatted here with Python's own rules, as en_US writes them),
the record pictures are beside the data file, a second load adds nothing, and a record the user
added stays.
"""
import datetime
import os
import pathlib
import subprocess
import sys
import tempfile

FAILURES = []


def check(condition, message):
    if not condition:
        FAILURES.append(message)


def show(cli, image, record, env):
    out = subprocess.run([cli, "records", image, "show", str(record)], env=env, check=True,
                         capture_output=True, text=True).stdout
    return dict(line.split("\t", 1) for line in out.splitlines() if "\t" in line)


def expected_text(kind, cell):
    """The text a field shows after `cell` was typed into it, in en_US."""
    if cell == "":
        return ""
    if kind == "long date":
        d = datetime.date.fromisoformat(cell)
        return f"{d:%A}, {d:%B} {d.day}, {d.year}"
    if kind == "short date":
        d = datetime.date.fromisoformat(cell)
        return f"{d.month}/{d.day}/{d.year}"
    if kind in ("money", "whole") and float(cell) == 0:
        return ""  # both designs have ShowZeros 0
    if kind == "money":
        return f"{float(cell):,.2f}"
    if kind == "whole":
        return f"{int(cell):,}"
    return cell


# Tag and kind of every column, written out here from the designs rather than read from them.
COLUMNS = {
    "contacts": {
        "firstname": ("F1", "text"), "lastname": ("F2", "text"), "company": ("F3", "text"),
        "phone": ("F4", "text"), "email": ("F5", "text"), "web": ("F6", "text"),
        "birthday": ("F7", "long date"), "creditlimit": ("F8", "money"), "visits": ("F9", "whole"),
        "balance": ("F10", "money"), "lastcall": ("F12", "text"), "firstcontact": ("F13", "short date"),
        "category": ("C1", "text"), "source": ("C2", "text"), "newsletter": ("K0", "text"),
        "vip": ("K1", "text"), "nocall": ("K2", "text"), "notes": ("M1", "text"), "photo": ("P1", "text"),
    },
    "invoice": {
        "number": ("F1", "text"), "date": ("F2", "short date"), "customer": ("F3", "text"),
        "address": ("F4", "text"), "taxrate": ("F22", "text"), "paid": ("K0", "text"),
        **{f"item{n}": (f"F{1 + 4 * n}", "text") for n in range(1, 5)},
        **{f"qty{n}": (f"F{2 + 4 * n}", "text") for n in range(1, 5)},
        **{f"price{n}": (f"F{3 + 4 * n}", "money") for n in range(1, 5)},
    },
}


def main(build, cli, source):
    env = dict(os.environ, LC_ALL="C", LANG="C")
    for name, columns in COLUMNS.items():
        example = pathlib.Path(source) / "examples" / name
        with tempfile.TemporaryDirectory() as folder:
            image = str(pathlib.Path(folder) / f"{name}.exe")
            subprocess.run([build, str(example / f"{name}.json"), "-o", image, "--runtime", cli], check=True,
                           capture_output=True)
            load = [sys.executable, str(pathlib.Path(source) / "tools" / "load_samples.py"), cli, image, str(example)]
            subprocess.run(load, check=True, capture_output=True)
            lines = (example / "records.tsv").read_text(encoding="utf-8").splitlines()
            header, rows = lines[0].split("\t"), [line.split("\t") for line in lines[1:] if line.strip()]
            check(set(header) == set(columns), f"{name}: columns {header}")
            count = lambda: int(subprocess.run([cli, "records", image, "count"], env=env, check=True,
                                               capture_output=True, text=True).stdout)
            check(count() == len(rows), f"{name}: {count()} records for {len(rows)} rows")
            for number, row in enumerate(rows, start=1):
                shown = show(cli, image, number, env)
                for column, cell in zip(header, row):
                    tag, kind = columns[column]
                    want = expected_text(kind, cell)  # a note's line break shows as "\\n" as in the file
                    check(shown.get(tag) == want, f"{name} record {number} {column}: {shown.get(tag)!r}, typed {cell!r}")
                    if column == "photo" and cell:
                        pics = pathlib.Path(folder) / (name.capitalize() + "Pics") / cell
                        check(pics.read_bytes() == (example / "photos" / cell).read_bytes(), f"{name}: picture {cell}")

            # The user adds a record; starting again loads nothing and keeps it.
            added = subprocess.run([cli, "records", image, "new"], env=env, check=True, capture_output=True,
                                   text=True).stdout.strip()
            subprocess.run([cli, "records", image, "set", added, "F1=Mine"], env=env, check=True, capture_output=True)
            again = subprocess.run(load, check=True, capture_output=True, text=True)
            check("left as it is" in again.stdout, f"{name}: second load said {again.stdout!r}")
            check(count() == len(rows) + 1, f"{name}: {count()} records after a second load")
            check(show(cli, image, len(rows) + 1, env).get("F1") == "Mine", f"{name}: the added record")
    for failure in FAILURES:
        print("FAIL:", failure)
    return 1 if FAILURES else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:4]))
