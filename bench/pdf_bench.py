#!/usr/bin/env python3
"""PDF export benchmark: `flatform-cli export IMAGE pdf OUT` (one document) and `pdfs` (a document a
record) for 1,000 records.

    bench/pdf_bench.py [--records N] [--repeat K] [--build BUILD_DIR]

The contacts example (two pages a record: background with its tiled picture, a record picture, text
fields, combos, check fields and a note as a form field) is filled with N records (its 25 samples
over and over, imported as delimited text). Each export runs as a whole process, start-up, record
loading with the formulas and the PDF writing included: once to warm the caches, then K times; the
median wall time is shown with the pages qpdf counts and the size of the files.
"""
import argparse
import glob
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
    ap.add_argument("--records", type=int, default=1000)
    ap.add_argument("--repeat", type=int, default=3)
    ap.add_argument("--build", default=os.path.join(ROOT, "build"))
    a = ap.parse_args()
    cli = os.path.join(a.build, "bin", "flatform-cli")
    builder = os.path.join(a.build, "bin", "flatform-build")
    example = os.path.join(ROOT, "examples", "contacts")
    work = tempfile.mkdtemp(prefix="pdf-bench-")
    try:
        folder = os.path.join(work, "contacts")
        shutil.copytree(example, folder)
        image = os.path.join(folder, "contacts.exe")
        subprocess.run([builder, os.path.join(folder, "contacts.json"), "-o", image, "--runtime", cli], check=True,
                       capture_output=True)
        subprocess.run([sys.executable, os.path.join(ROOT, "tools", "load_samples.py"), cli, image, folder], check=True,
                       capture_output=True)
        design = json.load(open(os.path.join(folder, "contacts.json"), encoding="utf-8"))
        separator = design.get("FieldSeparator") or ";"
        lines = open(os.path.join(example, "records.tsv"), encoding="utf-8").read().splitlines()
        head, body = lines[0].split("\t"), [l.split("\t") for l in lines[1:]]
        text = os.path.join(work, "records.txt")
        with open(text, "w", encoding="cp1252", newline="\r\n") as f:
            f.write(separator.join(head) + "\n")
            for i in range(a.records - len(body)):
                f.write(separator.join(c.replace(separator, ",").replace("\\n", " ") for c in body[i % len(body)]) + "\n")
        subprocess.run([cli, "import", image, text], check=True, capture_output=True)

        print("| case | records | pages | files | MB | median s | records/s | peak MB |")
        print("|---|---|---|---|---|---|---|---|")
        one = os.path.join(work, "all.pdf")
        cmd = [cli, "export", image, "pdf", one, "--to", str(a.records)]
        seconds = median_time(cmd, a.repeat)
        kb = peak_kb(cmd)
        pages = subprocess.run(["qpdf", "--show-npages", one], capture_output=True, text=True).stdout.strip()
        print("| pdf: one document | %d | %s | 1 | %.1f | %.3f | %.0f | %.1f |"
              % (a.records, pages, os.path.getsize(one) / 1e6, seconds, a.records / seconds, kb / 1024))
        each = os.path.join(work, "each", "record")
        os.makedirs(os.path.dirname(each))
        cmd = [cli, "export", image, "pdfs", each, "--to", str(a.records)]
        seconds = median_time(cmd, a.repeat)
        files = glob.glob(each + "*.pdf")
        size = sum(os.path.getsize(f) for f in files)
        print("| pdfs: a document a record | %d | %d | %d | %.1f | %.3f | %.0f | - |"
              % (a.records, 2 * a.records, len(files), size / 1e6, seconds, a.records / seconds))
    finally:
        shutil.rmtree(work, ignore_errors=True)


if __name__ == "__main__":
    main()
