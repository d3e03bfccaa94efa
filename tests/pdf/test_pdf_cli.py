#!/usr/bin/env python3
"""PDF documents and mail messages of the command line, judged by programs that know nothing of
the writer: qpdf checks each file and shows its objects as JSON (fields, links, pages), pdftotext
reads the text back, Python's email parser reads the mail message.

The contacts example is used with links added: a picture whose link holds a tag, a picture whose
link is only a "www." address (no link), a label whose tag is a mail address. A copy of it in the
Cyrillic code page (FontCharset 204) must give its own letters back.

    test_pdf_cli.py FLATFORM_BUILD FLATFORM_CLI SOURCE_DIR
"""
import email
import email.policy
import json
import os
import re
import shutil
import sys
import tempfile

sys.path.insert(0, os.path.join(os.path.dirname(os.path.abspath(__file__)), "..", "support"))
from pdf_checks import check, qpdf_ok, run, text_pages  # noqa: E402


def objects(pdf):
    done = run("qpdf", "--json", pdf)
    check(done.returncode == 0, "qpdf --json reads " + pdf)
    j = json.loads(done.stdout)
    objs = j["qpdf"][1] if "qpdf" in j else j["objects"]
    out = {}
    for key, value in objs.items():
        if isinstance(value, dict) and "value" in value:
            value = value["value"]
        out[key.replace("obj:", "")] = value
    return out


def text(value):
    """A string of qpdf's JSON: "u:" for text, "b:" for bytes."""
    if isinstance(value, str) and value[:2] in ("u:", "b:"):
        return value[2:]
    return value


def pages_with_annotations(objs):
    """For each page in order, its annotations' dictionaries."""
    catalog = next(v for v in objs.values() if isinstance(v, dict) and v.get("/Type") == "/Catalog")
    kids = objs[catalog["/Pages"].replace("obj:", "")]["/Kids"]
    pages = []
    for ref in kids:
        page = objs[ref.replace("obj:", "")]
        annots = page.get("/Annots", [])
        if isinstance(annots, str):
            annots = objs[annots.replace("obj:", "")]
        pages.append([objs[a.replace("obj:", "")] for a in annots])
    return pages


def uris(annotations, objs):
    found = []
    for a in annotations:
        if a.get("/Subtype") != "/Link":
            continue
        check(a.get("/Border") == [0, 0, 0], "a link has no border: %r" % a)
        action = a["/A"]
        if isinstance(action, str):
            action = objs[action.replace("obj:", "")]
        found.append(text(action["/URI"]))
    return sorted(found)


def read_records(folder):
    lines = open(os.path.join(folder, "records.tsv"), encoding="utf-8").read().splitlines()
    head = lines[0].split("\t")
    return [dict(zip(head, l.split("\t"))) for l in lines[1:]]


def make_image(build, cli, source, work, name, edit, records=None):
    """The contacts example as `name`, its design changed by `edit`, its records loaded."""
    example = os.path.join(source, "examples", "contacts")
    folder = os.path.join(work, name)
    shutil.copytree(example, folder)
    os.remove(os.path.join(folder, "contacts.json"))
    design = json.load(open(os.path.join(example, "contacts.json"), encoding="utf-8"))
    edit(design)
    json.dump(design, open(os.path.join(folder, name + ".json"), "w", encoding="utf-8"), ensure_ascii=False)
    if records is not None:
        open(os.path.join(folder, "records.tsv"), "w", encoding="utf-8").write(records)
    image = os.path.join(folder, name + ".exe")
    done = run(build, os.path.join(folder, name + ".json"), "-o", image, "--runtime", cli)
    check(done.returncode == 0, "the image is built: " + done.stderr)
    done = run(sys.executable, os.path.join(source, "tools", "load_samples.py"), cli, image, folder)
    check(done.returncode == 0, "samples load: " + done.stderr)
    return image, folder, design


def add_links(design):
    pictures = design["Pictures"]
    pictures[0]["PictureLink"] = "https://shop.example/?c=F3:"       # the logo: a tag filled from the record
    extra = dict(pictures[0])
    extra.update({"PictureName": "plain", "Left": 9000, "PictureLink": "www.only-www.example"})
    pictures.append(extra)                                             # no "http": no link
    label = next(t for t in design["Titles"][2:] if t.get("TitlePage", 0) == 0 and t.get("Caption"))
    label["Tag"] = "MAILTO:office@contacts.example"


TEXT_FIELDS = ("firstname", "lastname", "company", "phone", "email", "web")


def check_record_documents(cli, image, folder, work):
    records = read_records(folder)[:3]

    # One document: 3 records of 2 pages are 6 pages.
    pdf = os.path.join(work, "three.pdf")
    done = run(cli, "export", image, "pdf", pdf, "--from", "1", "--to", "3")
    check(done.returncode == 0, "export pdf: " + done.stderr)
    check(done.stdout.strip() == "exported 3 records on 6 pages to " + pdf, "the verb tells: " + done.stdout)
    qpdf_ok(pdf)
    pages = text_pages(pdf)
    check(len(pages) == 6, "6 pages, not %d" % len(pages))
    objs = objects(pdf)
    annotated = pages_with_annotations(objs)
    check(len(annotated) == 6, "6 page objects")
    fields = {}
    for n, record in enumerate(records):
        first, second = pages[2 * n], pages[2 * n + 1]
        for tag in TEXT_FIELDS:
            check(record[tag] in first, "record %d: %r is text on its first page" % (n + 1, record[tag]))
        check("%s %s" % (record["firstname"], record["lastname"]) in second,
              "record %d: the full name, a formula's value, is on its second page" % (n + 1))
        check(record["category"] in first and record["source"] in second, "record %d: the combos' texts" % (n + 1))
        # Addresses are links only when they look like one: "www." and "@".
        expected = ["https://shop.example/?c=" + record["company"], "MAILTO:office@contacts.example"]
        expected += ["http://" + record["web"]] if "www." in record["web"] else []
        expected += ["mailto:" + record["email"]] if "@" in record["email"] else []
        expected.sort()
        check(uris(annotated[2 * n], objs) == expected,
              "record %d: links %r, not %r" % (n + 1, uris(annotated[2 * n], objs), expected))
        check(uris(annotated[2 * n + 1], objs) == [], "record %d: no links on the second page" % (n + 1))
        for a in annotated[2 * n + 1]:
            if a.get("/FT") == "/Tx":
                fields[text(a["/T"])] = text(a.get("/V", ""))
                check(re.match(r"/\S+ [\d.]+ Tf ", text(a["/DA"])), "a field has its appearance: %r" % a)
    # Backgrounds: the second page, with no picture of the record's own, is one stored picture on
    # every record's page; the first page carries each record's photo, so each record has its own.
    listed = run("pdfimages", "-list", pdf).stdout.splitlines()[2:]
    backgrounds = {}
    for line in listed:
        f = line.split()
        if f[3] == "720":
            backgrounds.setdefault(int(f[0]), f[10])
    check(sorted(backgrounds) == [1, 2, 3, 4, 5, 6], "a background on each page: %r" % backgrounds)
    check(len({backgrounds[p] for p in (2, 4, 6)}) == 1, "the second pages share one background: %r" % backgrounds)
    photos = [backgrounds[p] for p, r in zip((1, 3, 5), records) if r["photo"]]
    check(len(set(photos)) == len(photos) and backgrounds[2] not in photos,
          "a page with a record's photo has its own background: %r" % backgrounds)
    # Notes are fillable fields holding their values, one name a record.
    expected = {"Notes1_%d" % (n + 1): r["notes"].replace("\\n", "\r\n") for n, r in enumerate(records)}
    check(fields == expected, "note fields %r, not %r" % (fields, expected))
    acro = next(v for v in objs.values() if isinstance(v, dict) and "/Fields" in v)
    check(acro.get("/NeedAppearances") is True, "readers are asked to draw the fields")
    resources = acro["/DR"]["/Font"]
    for a in [a for p in annotated for a in p if a.get("/FT") == "/Tx"]:
        font = text(a["/DA"]).split()[0][1:]
        check("/" + font in resources, "the font of /DA, %s, is in the form's resources" % font)

    # One document a record: three files of two pages, named by the place in ten digits.
    base = os.path.join(work, "each")
    done = run(cli, "export", image, "pdfs", base + ".pdf", "--from", "1", "--to", "3")
    check(done.returncode == 0, "export pdfs: " + done.stderr)
    made = sorted(f for f in os.listdir(work) if f.startswith("each"))
    check(made == ["each%010d.pdf" % n for n in (1, 2, 3)], "three files: %r" % made)
    for n, name in enumerate(made):
        qpdf_ok(os.path.join(work, name))
        pages = text_pages(os.path.join(work, name))
        check(len(pages) == 2 and records[n]["company"] in pages[0], "%s holds its record on 2 pages" % name)
        notes = [text(a["/T"]) for p in pages_with_annotations(objects(os.path.join(work, name))) for a in p
                 if a.get("/FT") == "/Tx"]
        check(notes == ["Notes1_%d" % (n + 1)], "%s: its note named by its place: %r" % (name, notes))

    # A search lists the records; its order is the document's.
    pdf = os.path.join(work, "search.pdf")
    done = run(cli, "export", image, "pdf", pdf, "--search", "select firstname where company=B*")
    check(done.returncode == 0, "export pdf over a search: " + done.stderr)
    qpdf_ok(pdf)
    listed = run(cli, "search", image, "select firstname where company=B*").stdout.split()
    everything = read_records(folder)
    hits = [everything[int(line.split("~")[0]) - 1] for line in listed]
    check(len(hits) == 2, "two companies start with B: %r" % listed)
    pages = text_pages(pdf)
    check(len(pages) == 2 * len(hits) and all(h["company"] in pages[2 * i] for i, h in enumerate(hits)),
          "the search's records, 2 pages each")


def check_mail(cli, image, folder, work):
    tmp = os.path.join(work, "tmp")
    os.makedirs(tmp)
    env = dict(os.environ, TMPDIR=tmp)
    done = run(cli, "mail", image, "2", env=env)
    check(done.returncode == 0, "mail: " + done.stderr)
    path = done.stdout.strip()
    check(path == os.path.join(tmp, "Newmail.eml"), "the first message is Newmail.eml: " + path)
    # A name in use (there and not writable) moves the next message on to Newmail1.eml.
    os.chmod(path, 0o444)
    if not os.access(path, os.W_OK):
        done = run(cli, "mail", image, "2", env=env)
        check(done.stdout.strip() == os.path.join(tmp, "Newmail1.eml"), "the next name: " + done.stdout + done.stderr)
    raw = open(path, "rb").read()
    head = raw.split(b"\r\n\r\n\r\n", 1)[0].split(b"\r\n")
    record = read_records(folder)[1]
    check([l.split(b":")[0] for l in head] == [b"Reply-To", b"To", b"From", b"Subject", b"Date", b"X-Mailer",
                                                b"MIME-Version", b"Content-Type", b"X-Unsent", b"X-MimeOLE"],
          "the header lines in their order: %r" % head)
    check(head[1] == ('To: "%s"<%s>' % (record["lastname"], record["email"])).encode(), "the recipient: %r" % head[1])
    check(head[0] == b"Reply-To: " and head[2] == b"From: " and head[3] == b"Subject: Attached, ", "empty lines")
    check(re.fullmatch(rb"Date: \d\d-\d\d-\d{4}", head[4]), "month-day-year: %r" % head[4])
    check(b"\n" not in raw.replace(b"\r\n", b""), "every line ends with CR LF")
    message = email.message_from_bytes(raw, policy=email.policy.default)
    check(message["X-Unsent"] == "1", "a draft")
    check(message.get_content_type() == "multipart/related" and message.get_param("boundary") == "NextMimePart",
          "multipart with its boundary")
    parts = list(message.iter_parts())
    check(len(parts) == 1 and parts[0].get_filename() == "Record2.pdf", "one attachment, Record2.pdf")
    pdf = parts[0].get_payload(decode=True)
    check(pdf.startswith(b"%PDF-"), "the attachment is a PDF")
    lines = raw.split(b"\r\n\r\n")[-1].split(b"\r\n")[:-1]
    check(all(len(l) == 76 for l in lines[:-1]) and 0 < len(lines[-1]) <= 80, "base64 lines of 76 characters")
    attached = os.path.join(work, "attached.pdf")
    open(attached, "wb").write(pdf)
    qpdf_ok(attached)
    check(record["company"] in text_pages(attached)[0], "the attachment holds record 2")
    check(not [f for f in os.listdir(tmp) if f.endswith(".pdf")], "the PDF is removed from the temporary folder")


CYRILLIC_RECORDS = "\t".join(("firstname", "lastname", "company", "phone", "email", "web", "category", "source", "notes")) + "\n" + \
    "\t".join(("Анна", "Петрова", "Оптика Москва", "+7 495 000", "anna@optika.example", "www.optika.example",
               "Customer", "Fair", "Звонить утром.")) + "\n" + \
    "\t".join(("Ёжик", "Щукин", "Лес и Ко", "+7 812 111", "shchukin@les.example", "www.les.example",
               "Supplier", "Fair", "Всё хорошо")) + "\n"


def check_cyrillic(build, cli, source, work):
    def edit(design):
        design["FontCharset"] = 204
        design["Titles"][2]["Caption"] = "Запись № "
    image, folder, _ = make_image(build, cli, source, work, "kontakty", edit, CYRILLIC_RECORDS)
    pdf = os.path.join(work, "kontakty.pdf")
    done = run(cli, "export", image, "pdf", pdf)
    check(done.returncode == 0, "the Cyrillic design exports: " + done.stderr)
    qpdf_ok(pdf)
    pages = text_pages(pdf)
    for n, record in enumerate(read_records(folder)):
        for tag in ("firstname", "lastname", "company"):
            check(record[tag] in pages[2 * n], "%r comes back from the PDF" % record[tag])
        check("Запись №" in pages[2 * n], "the label's own letters")
    fields = [text(a.get("/V")) for p in pages_with_annotations(objects(pdf)) for a in p if a.get("/FT") == "/Tx"]
    check(fields == ["Звонить утром.", "Всё хорошо"], "the notes keep their letters: %r" % fields)


def check_report(build, cli, source, work):
    """The invoice example's report cut to three rows a page: 7 records on 3 PDF pages."""
    example = os.path.join(source, "examples", "invoice")
    folder = os.path.join(work, "invoice")
    shutil.copytree(example, folder)
    design = json.load(open(os.path.join(folder, "invoice.json"), encoding="utf-8"))
    report = design["Reports"][0]
    report["Labels"] = [l for l in report["Labels"] if l["LabelRow"] <= 3]
    json.dump(design, open(os.path.join(folder, "invoice.json"), "w", encoding="utf-8"))
    image = os.path.join(folder, "invoice.exe")
    check(run(build, os.path.join(folder, "invoice.json"), "-o", image, "--runtime", cli).returncode == 0, "invoice built")
    check(run(sys.executable, os.path.join(source, "tools", "load_samples.py"), cli, image, folder).returncode == 0,
          "invoices load")
    records = read_records(folder)
    pdf = os.path.join(work, "report.pdf")
    done = run(cli, "export", image, "pdf", pdf, "--report", "1")
    check(done.returncode == 0 and "on 3 pages" in done.stdout, "the report exports on 3 pages: " + done.stdout + done.stderr)
    qpdf_ok(pdf)
    pages = text_pages(pdf)
    check(len(pages) == 3, "3 pages of the report")
    for p, page in enumerate(pages):
        rows = [l for l in page.splitlines() if re.match(r"\s*2024-\d\d\d", l)]
        expected = records[p * 3:p * 3 + 3]
        check([r.split()[0] for r in rows] == [e["number"] for e in expected], "page %d lists its rows: %r" % (p + 1, rows))
        check(all(e["customer"] in page for e in expected), "page %d names its customers" % (p + 1))

    tmp = os.path.join(work, "reporttmp")
    os.makedirs(tmp)
    done = run(cli, "mail", image, "3", "--report", "1", env=dict(os.environ, TMPDIR=tmp))
    check(done.returncode == 0, "the report is mailed: " + done.stderr)
    message = email.message_from_bytes(open(done.stdout.strip(), "rb").read(), policy=email.policy.default)
    part = list(message.iter_parts())[0]
    check(part.get_filename() == "Record3.pdf", "the attachment keeps the record box's name: %r" % part.get_filename())
    attached = os.path.join(work, "report-attached.pdf")
    open(attached, "wb").write(part.get_payload(decode=True))
    check(len(text_pages(attached)) == 3, "the attachment is the report")
    check(sorted(os.listdir(tmp)) in (["Newmail.eml"], ["Newmail.eml", "runtime-%d" % os.getuid()]),
          "only the message stays: %r" % os.listdir(tmp))


def main():
    build, cli, source = sys.argv[1:4]
    if not shutil.which("pdftotext") or not shutil.which("qpdf"):
        print("SKIP: poppler-utils and qpdf are needed")
        return 0
    work = tempfile.mkdtemp()
    try:
        image, folder, _ = make_image(build, cli, source, work, "contacts", add_links)
        check_record_documents(cli, image, folder, work)
        check_mail(cli, image, folder, work)
        check_cyrillic(build, cli, source, work)
        check_report(build, cli, source, work)
    finally:
        shutil.rmtree(work, ignore_errors=True)
    print("ok")
    return 0


if __name__ == "__main__":
    sys.exit(main())
