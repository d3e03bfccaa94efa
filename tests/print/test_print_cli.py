#!/usr/bin/env python3
"""The print verb end to end: the invoice example with its sample records, its report cut to three
rows a page, printed to PDF, and a record of the contacts example; the pages counted by qpdf and the text read back by pdftotext -layout,
so the file is judged by programs that know nothing of the writer.

    test_print_cli.py FLATFORM_BUILD FLATFORM_CLI SOURCE_DIR
"""
import json
import os
import re
import shutil
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from pdf_checks import check, pages_of, run, text_pages  # noqa: E402


def build_with_samples(build, cli, source, design, image, example):
    """The image of `design`, filled with the sample records of the example folder `example`."""
    done = run(build, design, "-o", image, "--runtime", cli)
    check(done.returncode == 0, "%s is built: %s" % (image, done.stderr))
    done = run(sys.executable, os.path.join(source, "tools", "load_samples.py"), cli, image, example)
    check(done.returncode == 0, "samples load into %s: %s" % (image, done.stderr))


def main():
    build, cli, source = sys.argv[1:4]
    if not shutil.which("pdftotext") or not shutil.which("qpdf"):
        print("SKIP: poppler-utils and qpdf are needed")
        return 0
    work = tempfile.mkdtemp()
    try:
        example = os.path.join(source, "examples", "invoice")
        design = json.load(open(os.path.join(example, "invoice.json"), encoding="utf-8"))
        # Rows 1 to 3 of the report stay: three invoices a page.
        report = design["Reports"][0]
        report["Labels"] = [l for l in report["Labels"] if l["LabelRow"] <= 3]
        # A second report: one invoice a page, with a template that takes values of its row.
        design["Reports"].append({
            "Caption": "Letter", "PageWidth": 11906, "PageHeight": 16838,
            "Labels": [{"Visible": -1, "FontName": "DejaVu Sans", "FontSize": 10, "Top": 1000, "Left": 1000,
                        "Width": 9000, "Height": 400, "LabelFixed": -1, "Text": "Dear F3=1$, invoice F1=1$ is due.",
                        "LabelRow": 0}]})
        for name in os.listdir(example):
            if name != "invoice.json":
                shutil.copy(os.path.join(example, name), work)
        json.dump(design, open(os.path.join(work, "invoice.json"), "w", encoding="utf-8"))
        image = os.path.join(work, "invoice.exe")
        build_with_samples(build, cli, source, os.path.join(work, "invoice.json"), image, example)
        records = [l.split("\t") for l in open(os.path.join(example, "records.tsv"), encoding="utf-8").read().splitlines()[1:]]
        check(len(records) == 7, "the example holds 7 records")

        # Report 1: 7 records at 3 rows are 3 pages, the last with one row.
        pdf = os.path.join(work, "report.pdf")
        done = run(cli, "print", image, pdf, "--report", "1")
        check(done.returncode == 0, "report 1 prints: " + done.stderr)
        check(done.stdout.splitlines() == ["pages: 3", "records: 1 2 3 4 5 6 7"], "the verb tells pages and records: " + done.stdout)
        check(pages_of(pdf) == 3, "three pages")
        pages = text_pages(pdf)
        check(len(pages) == 3, "pdftotext finds three pages")
        columns = None
        for p, page in enumerate(pages):
            check(re.search(r"Invoice list\s+%d\b" % (p + 1), page), "page %d carries its title and number" % (p + 1))
            rows = [l for l in page.splitlines() if re.match(r"\s*2024-\d\d\d", l)]
            expected = records[p * 3:p * 3 + 3]
            check(len(rows) == len(expected), "page %d has %d rows, not %d" % (p + 1, len(expected), len(rows)))
            for line, record in zip(rows, expected):
                number, customer = record[0], record[2]
                check(line.strip().startswith(number), "row of %s starts with its number: %r" % (number, line))
                at = (line.index(number), line.index(customer))
                # Every row puts the number and the customer in the same columns, the customer right of the number.
                columns = columns or at
                check(at == columns and at[1] > at[0], "row of %s keeps the columns %r: %r" % (number, columns, line))
        check(pages[2].count("2024-") == 1, "the last page shows one invoice")

        # Report 2 over a search: one page each, the template filled from its record.
        pdf = os.path.join(work, "letters.pdf")
        done = run(cli, "print", image, pdf, "--report", "2", "--search", "select number where customer=Moreau*")
        check(done.returncode == 0, "report 2 prints over a search: " + done.stderr + done.stdout)
        check(done.stdout.splitlines()[1] == "records: 1", "the search lists record 1: " + done.stdout)
        check("Dear Moreau Optics, invoice 2024-001 is due." in text_pages(pdf)[0], "the template takes its row's values")

        # Records: each record's page, its values on it.
        pdf = os.path.join(work, "records.pdf")
        done = run(cli, "print", image, pdf, "--from", "2", "--to", "4")
        check(done.returncode == 0 and pages_of(pdf) == 3, "records 2 to 4 are three pages: " + done.stderr + done.stdout)
        for page, record in zip(text_pages(pdf), records[1:4]):
            for value in (record[0], record[2], record[3]):
                check(value in page, "%r is printed on its record's page" % value)

        # The shipped contacts example prints every kind of control that holds a value: fields, the
        # combos of both pages, the note; a check box prints as a box, so its caption stands beside it.
        contacts = os.path.join(source, "examples", "contacts")
        image = os.path.join(work, "contacts.exe")
        build_with_samples(build, cli, source, os.path.join(contacts, "contacts.json"), image, contacts)
        rows = [l.split("\t") for l in open(os.path.join(contacts, "records.tsv"), encoding="utf-8").read().splitlines()]
        first = dict(zip(rows[0], rows[1]))
        pdf = os.path.join(work, "contact.pdf")
        done = run(cli, "print", image, pdf, "--record", "1")
        check(done.returncode == 0, "a contact prints: " + done.stderr)
        printed = "\n".join(text_pages(pdf))
        for column in ("firstname", "company", "category", "source"):
            check(first[column] in printed, "the %s %r is printed" % (column, first[column]))
        for line in first["notes"].split("\\n"):
            check(line in printed, "the note's line %r is printed" % line)

        # Refusals: a report that is not there, a record that is not there; no file is left.
        for args, words in ((["--report", "9"], "no report 9"), (["--record", "99"], "no record 99")):
            pdf = os.path.join(work, "refused.pdf")
            done = run(cli, "print", image, pdf, *args)
            check(done.returncode != 0 and words in done.stderr, "refused with a message: %r" % done.stderr)
            check(not os.path.exists(pdf), "a refused print writes no file")
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print("ok")
    return 0


if __name__ == "__main__":
    sys.exit(main())
