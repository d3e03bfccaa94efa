#!/usr/bin/env python3
"""Report printing benchmark: `flatform-cli print IMAGE OUT.pdf --report 1` for 100 report pages.

    bench/print_bench.py [--pages N] [--repeat K] [--build BUILD_DIR]

The invoice example is built with its report of ten rows a page and filled with N x 10 records
(the seven sample invoices over and over, imported as delimited text), so the report prints N
pages (100 by default). The print runs as a whole process, start-up, record loading with the
formulas of every record and the PDF writing included: once to warm the caches, then K times; the
median wall time is shown with the pages qpdf counts in the file.
"""
import argparse
import json
import os
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
ROOT = os.path.dirname(HERE)
sys.path.insert(0, HERE)
from benchlib import median_time, peak_kb  # noqa: E402


def main():
    ap = argparse.ArgumentParser()
    ap.add_argument("--pages", type=int, default=100)
    ap.add_argument("--repeat", type=int, default=5)
    ap.add_argument("--build", default=os.path.join(ROOT, "build"))
    a = ap.parse_args()
    cli = os.path.join(a.build, "bin", "flatform-cli")
    builder = os.path.join(a.build, "bin", "flatform-build")
    example = os.path.join(ROOT, "examples", "invoice")
    work = tempfile.mkdtemp(prefix="print-bench-")
    try:
        for name in os.listdir(example):
            shutil.copy(os.path.join(example, name), work)
        design = json.load(open(os.path.join(work, "invoice.json"), encoding="utf-8"))
        rows = max(l["LabelRow"] for l in design["Reports"][0]["Labels"])
        image = os.path.join(work, "invoice.exe")
        subprocess.run([builder, os.path.join(work, "invoice.json"), "-o", image, "--runtime", cli], check=True,
                       capture_output=True)
        # The sample records repeated: the head row names the fields by their tags, separated by ";".
        lines = open(os.path.join(example, "records.tsv"), encoding="utf-8").read().splitlines()
        head, body = lines[0].split("\t"), [l.split("\t") for l in lines[1:]]
        wanted = a.pages * rows
        text = os.path.join(work, "records.txt")
        with open(text, "w", encoding="cp1252", newline="\r\n") as f:
            f.write(";".join(head) + "\n")
            for i in range(wanted):
                f.write(";".join(c.replace(";", ",") for c in body[i % len(body)]) + "\n")
        subprocess.run([cli, "import", image, text], check=True, capture_output=True)
        pdf = os.path.join(work, "report.pdf")
        cmd = [cli, "print", image, pdf, "--report", "1"]
        seconds = median_time(cmd, a.repeat)
        kb = peak_kb(cmd)
        pages = subprocess.run(["qpdf", "--show-npages", pdf], capture_output=True, text=True).stdout.strip()
        print("| case | records | pages | median s | pages/s | peak MB |")
        print("|---|---|---|---|---|---|")
        print("| report 1 of the invoice example, %d rows a page | %d | %s | %.3f | %.0f | %.1f |"
              % (rows, wanted, pages, seconds, int(pages) / seconds, kb / 1024))
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
