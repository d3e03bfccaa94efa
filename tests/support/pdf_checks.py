"""What the PDF tests ask of a document, through poppler-utils and qpdf rather than our own code."""
import subprocess
import sys


def run(*cmd, env=None):
    return subprocess.run(list(cmd), capture_output=True, text=True, env=env)


def check(ok, what):
    if not ok:
        print("FAIL:", what)
        sys.exit(1)


def qpdf_ok(pdf):
    done = run("qpdf", "--check", pdf)
    check(done.returncode == 0, "qpdf --check passes on %s: %s%s" % (pdf, done.stdout[-400:], done.stderr))


def pages_of(pdf):
    done = run("qpdf", "--show-npages", pdf)
    check(done.returncode == 0, "qpdf reads " + pdf + ": " + done.stderr)
    return int(done.stdout.strip())


def text_pages(pdf):
    """The text of each page as pdftotext -layout lays it out."""
    done = run("pdftotext", "-layout", pdf, "-")
    check(done.returncode == 0, "pdftotext reads " + pdf)
    return done.stdout.split("\f")[:-1]
