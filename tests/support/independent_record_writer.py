#!/usr/bin/env python3
"""A second, independent implementation of the record file format, for tests.

    independent_record_writer.py write LAYOUT.json DATAFILE   writes the file set
    independent_record_writer.py read LAYOUT.json DATAFILE    prints the records as JSON

LAYOUT describes the design's stored elements and, for writing, the records:
  {"recordsPerPart": 4, "scramble": 0, "flow": 0, "stamp": true, "title": "My db",
   "fields":   [{"type": 0, "maxLength": 10, "page": 0, "global": false}, ...],   numbered from 1
   "combos":   [{"maxLength": 8, "page": 0}, ...],                                 numbered from 1
   "checks":   [{"page": 0}, ...],                                                 numbered from 0
   "pictures": [{"stretch": true}, ...],                                           numbered from 0
   "notes":    [{"maxLength": 30, "page": 0}, ...],                                numbered from 1
   "records":  [{"F1": "text", "F2": 1.5, "F6": 45000.25, "C1": "x", "K0": 1, "P1": "3.jpg",
                 "M1": "note", "stamp": 45000, "labels": [...], "images": [...]}, ...]}

Values are raw: texts as text, types 1 to 4 as numbers, 5 as a whole number, dates (6 to 9) as day
numbers. Labels: {"page", "style", "size", "align", "text", "color", "left", "top"}; images:
{"page", "left", "top", "width", "height", "id", "link"}.

The format: a record is RecordLength bytes, 1 + the sizes of fields (text types their length,
type 23 ten bytes, types 1-4 and 6-9 eight, type 5 four), combos, check boxes (one byte "0"/"1"),
record pictures (8 bytes, right-aligned), notes, the stamp (8) and the flow area (10,000); elements
on page 5 or above and global fields take no bytes, record pictures always do. Record r of a set
with P records per part is in part r // P (one part lower when r is an exact multiple) at the
1-based position (r - P * part) * RecordLength. Part 0 is the data file, part k the name without
its extension followed by k in four digits. Scrambling replaces every byte b by (b * 167 + 13) % 256.
"""
import json
import os
import struct
import sys

ENC = "cp1252"


def on_page(page):
    return 0 <= page < 5


def field_size(f):
    t = f["type"]
    if t in (1, 2, 3, 4, 6, 7, 8, 9):
        return 8
    if t == 5:
        return 4
    if t == 23:
        return 10
    return max(0, f.get("maxLength", 0))


def layout(setup):
    """Returns (record length, list of (key, kind, offset0, size, element))."""
    slots = []
    at = 0
    for i, f in enumerate(setup.get("fields", []), start=1):
        if on_page(f.get("page", 0)) and not f.get("global", False):
            slots.append(("F%d" % i, "field", at, field_size(f), f))
            at += field_size(f)
    for i, c in enumerate(setup.get("combos", []), start=1):
        if on_page(c.get("page", 0)):
            slots.append(("C%d" % i, "text", at, c["maxLength"], c))
            at += c["maxLength"]
    for i, c in enumerate(setup.get("checks", [])):
        if on_page(c.get("page", 0)):
            slots.append(("K%d" % i, "check", at, 1, c))
            at += 1
    for i, p in enumerate(setup.get("pictures", [])):
        if p.get("stretch", False):
            slots.append(("P%d" % i, "picture", at, 8, p))
            at += 8
    for i, n in enumerate(setup.get("notes", []), start=1):
        if on_page(n.get("page", 0)):
            slots.append(("M%d" % i, "text", at, n["maxLength"], n))
            at += n["maxLength"]
    if setup.get("stamp", False):
        slots.append(("stamp", "stamp", at, 8, None))
        at += 8
    if setup.get("flow", 0) == 1:
        slots.append(("flow", "flow", at, 10000, None))
        at += 10000
    return at + 1, slots


def scramble(data):
    return bytes((b * 167 + 13) % 256 for b in data)


def unscramble(data):
    inverse = [0] * 256
    for i in range(256):
        inverse[(i * 167 + 13) % 256] = i
    return bytes(inverse[b] for b in data)


def currency(value):
    return struct.pack("<q", int(round(value * 10000)))


def encode_record(setup, rec):
    length, slots = layout(setup)
    buf = bytearray(b" " * length)
    for key, kind, at, size, el in slots:
        if kind == "field":
            t = el["type"]
            v = rec.get(key)
            if t == 1:
                buf[at:at + 8] = struct.pack("<d", float(v or 0))
            elif t in (2, 3, 4, 6, 7, 8, 9):
                buf[at:at + 8] = currency(float(v or 0))
            elif t == 5:
                buf[at:at + 4] = struct.pack("<i", int(v or 0))
            else:
                raw = str(v or "").encode(ENC)[:size]
                buf[at:at + len(raw)] = raw
        elif kind == "text":
            raw = str(rec.get(key, "")).encode(ENC)[:size]
            buf[at:at + len(raw)] = raw
        elif kind == "check":
            buf[at] = ord("1") if rec.get(key, 0) else ord("0")
        elif kind == "picture":
            raw = str(rec.get(key, "")).encode(ENC)[:8]
            buf[at + 8 - len(raw):at + 8] = raw
        elif kind == "stamp":
            buf[at:at + 8] = currency(float(rec.get("stamp", 0)))
        elif kind == "flow":
            area = bytearray()
            labels = [l for l in rec.get("labels", []) if l["text"].strip()]
            area += struct.pack("<i", len(labels))
            for l in labels:
                text = l["text"].encode(ENC)
                area += bytes([l["page"], l["style"], l["size"], l["align"]])
                area += struct.pack("<i", len(text)) + text
                area += struct.pack("<iii", l["color"], l["left"], l["top"])
            images = rec.get("images", [])
            area += struct.pack("<i", len(images))
            for im in images:
                area += bytes([im["page"]])
                area += struct.pack("<iiiiii", im["left"], im["top"], im["width"], im["height"], im["id"], im["link"])
            buf[at:at + len(area)] = area
    data = bytes(buf)
    return scramble(data) if setup.get("scramble", 0) == 1 else data


def decode_record(setup, data):
    length, slots = layout(setup)
    data = data.ljust(length, b" ")[:length]
    if setup.get("scramble", 0) == 1:
        data = unscramble(data)
    out = {}
    for key, kind, at, size, el in slots:
        chunk = data[at:at + size]
        if kind == "field":
            t = el["type"]
            if t == 1:
                out[key] = struct.unpack("<d", chunk)[0]
            elif t in (2, 3, 4, 6, 7, 8, 9):
                out[key] = struct.unpack("<q", chunk)[0] / 10000.0
            elif t == 5:
                out[key] = struct.unpack("<i", chunk)[0]
            else:
                out[key] = chunk.decode(ENC, "replace").rstrip(" ")
        elif kind == "text":
            out[key] = chunk.decode(ENC, "replace").rstrip(" ")
        elif kind == "check":
            out[key] = 1 if chunk == b"1" else 0
        elif kind == "picture":
            out[key] = chunk.decode(ENC, "replace").lstrip(" ")
        elif kind == "stamp":
            out["stamp"] = struct.unpack("<q", chunk)[0] / 10000.0
        elif kind == "flow":
            p = at
            end = len(data)
            labels, images = [], []
            (n,) = struct.unpack_from("<i", data, p)
            p += 4
            for _ in range(max(0, n)):
                if p + 8 > end:
                    break
                page, style, fsize, align = data[p], data[p + 1], data[p + 2], data[p + 3]
                (tl,) = struct.unpack_from("<i", data, p + 4)
                if tl < 0 or p + 8 + tl + 12 > end:
                    break
                text = data[p + 8:p + 8 + tl].decode(ENC, "replace")
                p += 8 + tl
                color, left, top = struct.unpack_from("<iii", data, p)
                p += 12
                labels.append({"page": page, "style": style, "size": fsize, "align": align,
                               "text": text, "color": color, "left": left, "top": top})
            if p + 4 <= end:
                (m,) = struct.unpack_from("<i", data, p)
                p += 4
                for _ in range(max(0, m)):
                    if p + 25 > end:
                        break
                    left, top, width, height, iid, link = struct.unpack_from("<iiiiii", data, p + 1)
                    images.append({"page": data[p], "left": left, "top": top, "width": width,
                                   "height": height, "id": iid, "link": link})
                    p += 25
            out["labels"] = labels
            out["images"] = images
    return out


def part_name(datafile, part):
    if part < 1:
        return datafile
    base = datafile[:datafile.rfind(".")] if "." in os.path.basename(datafile) else datafile
    return "%s%04d" % (base, part)


def place(record, per_part, length):
    part = record // per_part
    if part > 0 and record == per_part * part:
        part -= 1
    return part, (record - per_part * part) * length  # 1-based position


def write(setup, datafile):
    length, _ = layout(setup)
    per_part = setup["recordsPerPart"]
    with open(datafile, "wb") as f:
        header = bytearray(length - 1)
        header[0:8] = struct.pack("<d", 45000.5)[:len(header)]
        title = setup.get("title", "").encode(ENC).ljust(length, b" ")
        header[8:] = title[:max(0, len(header) - 8)]
        header[9:13] = b"\0\0\0\0"[:max(0, len(header) - 9)]
        f.write(bytes(header[:length - 1]))
    for number, rec in enumerate(setup["records"], start=1):
        part, position = place(number, per_part, length)
        name = part_name(datafile, part)
        mode = "r+b" if os.path.exists(name) else "w+b"
        with open(name, mode) as f:
            f.seek(position - 1)
            f.write(encode_record(setup, rec))


def read(setup, datafile):
    length, _ = layout(setup)
    per_part = setup["recordsPerPart"]
    last = 0
    while os.path.exists(part_name(datafile, last + 1)):
        last += 1
    count = last * per_part + os.path.getsize(part_name(datafile, last)) // length
    records = []
    for number in range(1, count + 1):
        part, position = place(number, per_part, length)
        with open(part_name(datafile, part), "rb") as f:
            f.seek(position - 1)
            records.append(decode_record(setup, f.read(length)))
    return {"recordLength": length, "count": count, "records": records}


def main():
    if len(sys.argv) != 4 or sys.argv[1] not in ("write", "read"):
        print(__doc__, file=sys.stderr)
        return 2
    with open(sys.argv[2], encoding="utf-8") as f:
        setup = json.load(f)
    if sys.argv[1] == "write":
        write(setup, sys.argv[3])
    else:
        json.dump(read(setup, sys.argv[3]), sys.stdout, ensure_ascii=False)
    return 0


if __name__ == "__main__":
    sys.exit(main())
