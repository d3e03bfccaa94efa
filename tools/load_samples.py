#!/usr/bin/env python3
"""Fills a new data file of an example app image with the example's sample records.

    tools/load_samples.py FLATFORM_CLI IMAGE EXAMPLE_FOLDER

EXAMPLE_FOLDER holds the design (<name>.json), records.tsv and the record pictures (photos/).
records.tsv is tab-separated: a first line of element names as the design's tags give them
("firstname", "category", "vip", "notes"; a record picture by its PictureName), then one record
a line. "\\n" in a cell is a line break of a note. Empty cells empty the element.

The records are written through flatform-cli (records set), so each value is converted as leaving
the field after typing it converts it, and the file is what a person typing them would leave.
The CLI runs under the C locale, which reads as en_US does: dates in the file are ISO
(2003-01-02), numbers use "." as the decimal point, whatever the user's own locale.

Nothing happens when the data file exists already: records the user added stay, and a second
start does not add the samples again. When a write fails the half-made file is removed, so the
next start tries again.
"""
import json
import os
import pathlib
import shutil
import subprocess
import sys


def proper_case(text):
    """Capital at each word, as the program names the data file after the image."""
    out, start = [], True
    for c in text:
        out.append(c.upper() if start else c.lower())
        start = not c.isalnum()
    return "".join(out)


def element_tags(design):
    """Maps each element's name (lower case) to the tag the CLI takes: F1, C1, K0, M1, P1."""
    tags = {}

    def add(name, tag):
        name = (name or "").strip().lower()
        if name and name not in tags:
            tags[name] = tag

    for i, f in enumerate(design.get("Fields", []), start=1):
        add(f.get("Tag"), f"F{i}")
    for i, c in enumerate(design.get("Combos", []), start=1):
        add(c.get("Tag"), f"C{i}")
    for i, k in enumerate(design.get("Checks", [])):
        add(k.get("Tag"), f"K{i}")
    for i, n in enumerate(design.get("Notes", []), start=1):
        add(n.get("Tag"), f"M{i}")
    for i, p in enumerate(design.get("Pictures", [])):
        if p.get("Stretch"):  # a picture that changes with the record
            add(p.get("PictureName"), f"P{i}")
    return tags


def find_case_insensitive(folder, name):
    for entry in folder.iterdir():
        if entry.name.lower() == name.lower():
            return entry
    return None


def main(argv):
    if len(argv) != 4:
        sys.stderr.write(__doc__)
        return 2
    cli, image, example = argv[1], pathlib.Path(argv[2]).resolve(), pathlib.Path(argv[3])
    samples = example / "records.tsv"
    if not samples.exists():
        return 0
    design = json.loads((example / f"{example.name}.json").read_text(encoding="utf-8"))
    base = proper_case(image.stem)
    data = image.parent / f"{base}.{design['DataExtension']}"
    if find_case_insensitive(image.parent, data.name):
        print(f"samples: {data.name} exists; left as it is")
        return 0

    lines = samples.read_text(encoding="utf-8").splitlines()
    header = lines[0].split("\t")
    tags = element_tags(design)
    unknown = [name for name in header if name.lower() not in tags]
    if unknown:
        sys.stderr.write(f"samples: {samples}: no element named {', '.join(unknown)}\n")
        return 2
    pictures = {tags[name.lower()] for name in header if tags[name.lower()].startswith("P")}
    picture_folder = image.parent / f"{base}Pics"

    env = dict(os.environ, LC_ALL="C.UTF-8", LANG="C.UTF-8")

    def run(*args):
        done = subprocess.run([cli, "records", str(image), *args], env=env, capture_output=True, text=True)
        if done.returncode != 0:
            raise RuntimeError(done.stderr.strip() or f"records {args[0]} failed")
        return done.stdout

    try:
        count = 0
        for line in lines[1:]:
            if not line.strip():
                continue
            cells = line.split("\t")
            cells += [""] * (len(header) - len(cells))
            assignments = []
            for name, value in zip(header, cells):
                tag = tags[name.lower()]
                if tag in pictures and value:
                    picture_folder.mkdir(exist_ok=True)
                    shutil.copyfile(example / "photos" / value, picture_folder / value)
                assignments.append(f"{tag}={value}")
            # The first write makes the file with its first record; later ones add a record each.
            number = "1" if count == 0 else run("new").strip()
            run("set", number, *assignments)
            count += 1
        print(f"samples: {count} records written to {data.name}")
        return 0
    except (RuntimeError, OSError) as e:
        made = find_case_insensitive(image.parent, data.name)
        if made:
            made.unlink()
        sys.stderr.write(f"samples: {e}; {data.name} removed\n")
        return 1


if __name__ == "__main__":
    sys.exit(main(sys.argv))
