#!/usr/bin/env python3
"""The web exports as a browser and a PHP server see them.

    test_web_site.py FLATFORM_BUILD FLATFORM_CLI SOURCE_DIR

The contacts example is built and filled with its sample records, plus one record whose values
hold markup, quotes, "&" and a picture name that points out of the folder. Then:

  - the form site (php) is served by `php -S`; a real HTTP POST appends one line to the data file,
    byte for byte as the posting rules say, and `flatform-cli import` brings it back as a record;
  - the record pages (html) are served the same way and index.php pages through them;
  - Chromium's DOM of a record page shows the hostile values as text, not as elements;
  - nothing is written outside the export folders.
Parts that need php or chromium are skipped with a message when the program is missing.
"""
import json
import os
import pathlib
import re
import shutil
import socket
import subprocess
import sys
import tempfile
import time
import urllib.parse
import urllib.request

FAILURES = []


def check(ok, what):
    if not ok:
        FAILURES.append(what)
        print("FAIL:", what)


def run(*cmd, **kw):
    return subprocess.run(list(cmd), capture_output=True, **kw)


def free_port():
    with socket.socket() as s:
        s.bind(("127.0.0.1", 0))
        return s.getsockname()[1]


class PhpServer:
    def __init__(self, root, short_tags=False):
        self.port = free_port()
        cmd = ["php"] + (["-d", "short_open_tag=On"] if short_tags else []) + \
              ["-S", "127.0.0.1:%d" % self.port, "-t", str(root)]
        self.proc = subprocess.Popen(cmd, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
        for _ in range(100):
            try:
                socket.create_connection(("127.0.0.1", self.port), timeout=0.2).close()
                return
            except OSError:
                time.sleep(0.05)
        raise RuntimeError("php -S did not start")

    def url(self, path):
        return "http://127.0.0.1:%d/%s" % (self.port, path)

    def close(self):
        self.proc.terminate()
        self.proc.wait(10)


def files_under(root):
    return {str(p.relative_to(root)) for p in pathlib.Path(root).rglob("*")}


def record_xml(cli, image, record):
    done = run(cli, "export", image, "xml", "-", "--record", str(record))
    return done.stdout.decode("utf-8")


def main():
    build, cli, source = sys.argv[1:4]
    have_php = shutil.which("php") is not None
    have_chromium = shutil.which("chromium") is not None
    with tempfile.TemporaryDirectory() as tmp:
        tmp = pathlib.Path(tmp)
        app = tmp / "app"
        app.mkdir()
        image = str(app / "contacts.exe")
        example = pathlib.Path(source) / "examples" / "contacts"
        run(build, str(example / "contacts.json"), "-o", image, "--runtime", cli, check=True)
        run(sys.executable, str(pathlib.Path(source) / "tools" / "load_samples.py"), cli, image, str(example), check=True)
        count = int(run(cli, "records", image, "count").stdout.split()[0])
        hostile = count + 1
        run(cli, "records", image, "new", check=True)
        done = run(cli, "records", image, "set", str(hostile), "firstname=<script>alert(1)</script>",
                   'company="Q" & Co', "lastname=a>b", "P1=../outside.gif")
        check(done.returncode == 0, "the hostile record is stored: %s" % done.stderr)
        # A picture kept by its number alone, as the picture library and the import keep them:
        # the record holds "0000009", the file is 0000009.gif.
        pics = next(app.glob("*Pics"))
        shutil.copyfile(example / "photos" / "am.gif", pics / "0000009.gif")
        done = run(cli, "records", image, "set", "2", "P1=0000009")
        check(done.returncode == 0, "record 2 keeps picture 0000009: %s" % done.stderr)
        before_app = files_under(app)

        # Kind 1: a folder of record pages.
        out = tmp / "out"
        out.mkdir()
        done = run(cli, "export", image, "html", str(out / "pages.htm"))
        check(done.returncode == 0, "html export: %s" % done.stderr)
        pages = out / "pages"
        for name in ["1.htm", "1b.htm", "%d.htm" % hostile, "index.php", "button.gif", "button2.gif",
                     "Background0.jpg", "Background1.jpg", "Checkbox100.gif", "Checkbox101.gif"]:
            check((pages / name).is_file(), "kind 1 writes %s" % name)
        check(set(os.listdir(out)) == {"pages"}, "kind 1 writes only its folder: %s" % os.listdir(out))
        check(files_under(app) == before_app, "nothing is written beside the app")
        check(not (tmp / "outside.gif").exists() and not (out / "outside.gif").exists(),
              "a picture name from a record does not leave the folder")
        page = (pages / ("%d.htm" % hostile)).read_bytes().decode("cp1252")
        check("&lt;script&gt;alert(1)&lt;/script&gt;" in page, "markup in a value is escaped")
        check("&quot;Q&quot; &amp; Co" in page, "quotes and & in a value are escaped")
        check("<script>" not in page.lower(), "no script element comes from a value")
        check("../outside" not in page, "the bad picture name writes no img")
        second_page = (pages / "2.htm").read_bytes().decode("cp1252")
        shown = re.findall(r'<img src="(Pictures/[^"]+\.gif)"', second_page)
        check(any((pages / name).read_bytes() == (example / "photos" / "am.gif").read_bytes() for name in shown),
              "the picture kept as 0000009 is found as 0000009.gif and shown: %s" % shown)
        first = (pages / "1.htm").read_bytes().decode("cp1252")
        check('href="1.htm"><b>&lt;</b>' in first, "record 1's back link goes to 1.htm")
        last = (pages / ("%d.htm" % hostile)).read_bytes().decode("cp1252")
        check('href="%d.htm"><b>&gt;</b>' % hostile in last, "the last record's forward link is itself")

        # Kind 4: the record on screen alone, named by the export; a range of kind 1; bad input.
        done = run(cli, "export", image, "htm", str(out / "card.htm"), "--record", "2")
        check(done.returncode == 0, "htm export: %s" % done.stderr)
        card = set(os.listdir(out / "card"))
        check({"card.htm", "bcard.htm"} <= card and not any(n[0].isdigit() for n in card),
              "kind 4 writes the pages of its record alone: %s" % sorted(card))
        second = re.search(r"<firstname>(.*?)</firstname>", record_xml(cli, image, 2)).group(1)
        check(second and second.encode("cp1252") in (out / "card" / "card.htm").read_bytes(),
              "kind 4 shows record 2 (%s)" % second)
        done = run(cli, "export", image, "html", str(out / "part.htm"), "--from", "3", "--to", "4")
        check(done.returncode == 0, "html export of a range: %s" % done.stderr)
        check(sorted(n for n in os.listdir(out / "part") if n.endswith(".htm")) == ["3.htm", "3b.htm", "4.htm", "4b.htm"],
              "a range writes the pages of its records: %s" % sorted(os.listdir(out / "part")))
        for args, message in ((["htm", str(out / "x.htm"), "--record", str(hostile + 1)], "no record"),
                              (["html", str(tmp / "nowhere" / "x.htm")], "no folder")):
            done = run(cli, "export", image, *args)
            check(done.returncode != 0 and message in done.stderr.decode(), "%s: %r" % (message, done.stderr))
        check(not (out / "x").exists() and not (tmp / "nowhere").exists(), "refused exports write nothing")

        if have_chromium:
            dom = run("chromium", "--headless", "--no-sandbox", "--disable-gpu", "--dump-dom",
                      (pages / ("%d.htm" % hostile)).as_uri(), timeout=120).stdout.decode("utf-8", "replace")
            check("&lt;script&gt;alert(1)&lt;/script&gt;" in dom, "Chromium shows the markup as text")
            check("<script>alert" not in dom, "Chromium made no script element of a value")
        else:
            print("SKIP: chromium is not installed; the DOM checks did not run")

        if have_php:
            server = PhpServer(pages, short_tags=True)
            try:
                body = urllib.request.urlopen(server.url("index.php?pN=2")).read()
                check((pages / "2.htm").read_bytes() in body, "index.php?pN=2 sends 2.htm")
                body = urllib.request.urlopen(server.url("index.php")).read()
                check((pages / "1.htm").read_bytes() in body, "index.php without pN sends 1.htm")
                body = urllib.request.urlopen(server.url("index.php?pN=0")).read()
                check((pages / "1.htm").read_bytes() in body and b"NextPage.php?pN=0" in body,
                      "pN=0 shows record 1 and the back button asks for 0")
                body = urllib.request.urlopen(server.url("index.php?pN=%d" % (hostile + 5))).read()
                check(b"<html>" not in body and b"</form>" in body, "past the last record only the buttons show")
            finally:
                server.close()

        # Kind 2: the form site.
        site = tmp / "site"
        site.mkdir()
        done = run(cli, "export", image, "php", str(site / "form"))
        check(done.returncode == 0, "php export: %s" % done.stderr)
        check(sorted(os.listdir(site)) == sorted(["Background0.jpg", "Background1.jpg", "Checkbox100.gif",
                                                 "Checkbox101.gif", "form.htm", "form.php", "form.txt"]),
              "kind 2 files: %s" % sorted(os.listdir(site)))
        design = json.loads((example / "contacts.json").read_text())
        posted = [f["Tag"] for f in design["Fields"] if 0 <= f.get("FieldPage", 0) < 5] + \
                 [c["Tag"] for c in design["Combos"] if 0 <= c.get("ComboPage", 0) < 5] + \
                 [n["Tag"] for n in design["Notes"] if 0 <= n.get("NotePage", 0) < 5]
        checks = [c["Tag"] for c in design["Checks"] if 0 <= c.get("CheckPage", 0) < 5]
        head = (site / "form.txt").read_bytes()
        check(head == (";".join(posted + checks) + "\r\n").encode("cp1252"), "the data file's head row: %r" % head)
        form = (site / "form.htm").read_bytes().decode("cp1252")
        check('<form action="../form.php" method="POST">' in form, "the form posts to the script one folder up")
        for tag in posted[:3]:
            check('name="%s"' % tag, "the form has an input for %s" % tag)

        if have_php:
            values = {"firstname": 'Zoë "Z"', "lastname": "Łaski", "company": "A&B <b>", "category": "Work",
                      "notes": 'one; two "three"\r\nfour'}
            values = {k: v.replace("Ł", "L") for k, v in values.items()}  # the page's code page is Windows-1252
            server = PhpServer(site)
            try:
                data = urllib.parse.urlencode(values, encoding="cp1252").encode("ascii")
                reply = urllib.request.urlopen(urllib.request.Request(server.url("form.php"), data=data)).read()
                check(b"Information has been posted" in reply, "the script answers: %r" % reply[:200])
            finally:
                server.close()
            # The line as the rules make it: quotes doubled, only the note enclosed, no delimiter at its end.
            cells = []
            for tag in posted:
                v = values.get(tag, "").replace('"', '""')
                cells.append('"%s"' % v if tag in [n["Tag"] for n in design["Notes"]] else v)
            cells += ["" for _ in checks]
            line = (";".join(cells) + "\r\n").encode("cp1252")
            got = (site / "form.txt").read_bytes()
            check(got == head + line, "the posted line:\n%r\n%r" % (got[len(head):], line))

            count_before = int(run(cli, "records", image, "count").stdout.split()[0])
            done = run(cli, "import", image, str(site / "form.txt"))
            check(done.returncode == 0, "import of the posted line: %s" % done.stderr.decode())
            count_after = int(run(cli, "records", image, "count").stdout.split()[0])
            check(count_after == count_before + 1, "the import adds one record")
            xml = record_xml(cli, image, count_after)
            check("Zoë" in xml, "the non-ASCII value comes back: %s" % xml[:300])
            check("A&amp;B &lt;b&gt;" in xml or "A&B <b>" in xml, "the company comes back")
            check("one; two" in xml and "four" in xml, "the note with its delimiter and line break comes back")
        else:
            print("SKIP: php is not installed; the server checks did not run")

    if FAILURES:
        print("%d checks failed" % len(FAILURES))
        return 1
    print("all checks passed")
    return 0


if __name__ == "__main__":
    sys.exit(main())
