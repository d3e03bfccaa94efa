#!/usr/bin/env python3
"""Writes an app image (a fake head, a design block, the tail) from the block format alone, for a
design given as the table of values below, and an expectations file that says where each value
must appear in the design's readable form (docs/formats/design-json.md).

    independent_design_writer.py IMAGE EXPECTED.json [--no-hints] [--seed N]

The writer knows nothing of the C++ writer. Every item gets a value of its own (a running number
unless the table fixes it) so that an item read at the wrong place shows up as a wrong value, and
slots are written with a rotation of type tags so that the reader's conversions are exercised.
"""

import json
import random
import struct
import sys

CHARSET = 204  # Windows-1251
CODEC = "cp1251"

# Values the table fixes; everything else gets a running number.
TABLE = {
    "AppTitle": "Картотека",  # read before FontCharset: decoded once it is known
    "TextExtension": "csv",
    "FontCharset": CHARSET,
    "AdminPassword": "s3cret",
    "FieldSeparator": ";",
    "DataExtension": "dat",
    "BackgroundPicture": "tile.gif",
}
FILES = {"logo.gif": b"GIF89a\x00\x01\x02logo", "tile.gif": b"GIF89a tile \xff"}


def scramble(data):
    return bytes((b * 167 + 13) % 256 for b in data)


class Block:
    def __init__(self, head, hints):
        self.head = head
        self.hints = hints
        self.out = bytearray()
        self.salt_pos = 100  # 1-based position of the last salt
        self.n = 0
        self.expected = {}
        self.rotation = 0

    # -- slots ---------------------------------------------------------------------------------
    def slot(self, tag, fmt, value):
        raw = struct.pack("<H", tag) + struct.pack("<" + fmt, value)
        self.out += raw + bytes(16 - len(raw))

    def number(self, path, kind, value=None):
        """One slot for a value of the width `kind`: u8, i16, i32, f32, f64, bool."""
        self.n += 1
        if value is None:
            value = {
                "u8": 100 + self.n % 150,
                "i16": 1000 + self.n,
                "i32": 100000 + self.n,
                "f32": self.n + 0.5,
                "f64": self.n + 0.25,
                "bool": self.n % 2 == 0,
            }[kind]
        self.rotation += 1
        r = self.rotation % 4
        if kind == "bool":
            if r == 3:
                self.slot(2, "h", 1 if value else 0)  # any non-zero integer is true
            else:
                self.slot(11, "h", -1 if value else 0)
        elif kind in ("u8", "i16", "i32"):
            choices = [(17, "B"), (2, "h"), (3, "i"), (5, "d")] if kind == "u8" else \
                [(2, "h"), (3, "i"), (5, "d"), (6, "q")] if kind == "i16" else \
                [(3, "i"), (5, "d"), (6, "q"), (4, "f")]
            tag, fmt = choices[r]
            if tag == 6:
                self.slot(tag, fmt, value * 10000)  # currency: the value times 10,000
            elif tag == 4 and abs(value) >= 1 << 24:
                self.slot(3, "i", value)
            else:
                self.slot(tag, fmt, value)
        else:
            tag, fmt = [(4, "f"), (5, "d"), (7, "d"), (6, "q")][r]
            if tag == 6:
                self.slot(tag, fmt, int(round(value * 10000)))
            else:
                self.slot(tag, fmt, value)
        if path:
            self.expected[path] = value
        return value

    def skip_item(self):
        self.slot(5, "d", 1e300)  # read and not used, so no width applies

    # -- texts ---------------------------------------------------------------------------------
    def salted(self, data):
        self.salt_pos += 2
        salt = self.head[self.salt_pos - 1]
        self.out += struct.pack("<H", (len(data) + salt) & 0xFFFF) + data

    def text(self, path, value=None, scrambled=False):
        self.n += 1
        if value is None:
            value = "т%d" % self.n if self.n % 3 == 0 else "t%d" % self.n
        data = value.encode(CODEC)
        self.salted(scramble(data) if scrambled else data)
        if path:
            self.expected[path] = value
        return value

    def skip_text(self):
        self.salted(b"junk")

    def plain(self, path, value=None):
        self.n += 1
        if value is None:
            value = "p%d" % self.n
        data = value.encode(CODEC)
        self.out += struct.pack("<h", len(data)) + data
        self.expected[path] = value

    def embedded(self, path, name):
        self.text(path, name)
        if name:
            data = FILES[name]
            self.out += struct.pack("<i", len(data)) + data + b"\x00"

    def hint_pair(self, path, hint_name):
        if self.hints:
            self.text(path + ".ToolTip")
            self.text(path + "." + hint_name)
        else:
            self.expected[path + ".ToolTip"] = ""
            self.expected[path + "." + hint_name] = ""


def field(b, p, ftype, glob):
    b.number(p + ".FieldMenu", "bool", True)
    b.number(p + ".FieldGlobal", "bool", glob)
    b.number(p + ".FieldDefault", "u8")
    b.number(p + ".FieldWriteOnce", "u8")
    b.number(p + ".FieldPage", "i16", 1)
    b.number(p + ".FieldPrint", "u8")
    b.number(None if glob else p + ".FieldNoSearch", "u8", 0)
    if glob:
        b.expected[p + ".FieldNoSearch"] = 1  # a global field is never searched
    b.number(p + ".Locked", "i16")
    b.number(None if ftype == 23 else p + ".MaxLength", "i32")
    if ftype == 23:
        b.expected[p + ".MaxLength"] = 10
    b.number(p + ".Top", "f32")
    b.number(p + ".Left", "f32")
    b.text(p + ".FontName")
    b.number(p + ".ForeColor", "i32")
    b.number(p + ".FontBold", "bool")
    b.number(p + ".FontItalic", "bool")
    b.number(p + ".BackColor", "i32")
    b.number(p + ".FontSize", "f32")
    b.text(p + ".Tag")
    b.number(p + ".FieldTabOrder", "i16")
    b.number(p + ".Border", "i16")
    b.hint_pair(p, "FieldHint")
    b.number(p + ".FieldDisplay", "i16", -3)
    b.number(p + ".FieldCase", "u8", 2)
    b.number(p + ".FieldType", "u8", ftype)
    b.text(p + ".FieldFormula", "F1+2*F%d" % b.n, scrambled=True)
    b.number(p + ".Height", "f32")
    b.number(p + ".Width", "f32")
    b.number(p + ".Alignment", "i16")
    box = b.number(p + ".FieldBox", "bool", not glob)
    if box:
        b.number(p + ".Frame.color", "i32")
        b.number(p + ".Frame.fill", "i32")


def write(path_image, path_expected, hints, seed):
    rnd = random.Random(seed)
    head = bytes(rnd.randrange(256) for _ in range(6000))
    b = Block(head, hints)
    t = TABLE
    b.text("AppTitle", t["AppTitle"], scrambled=True)                          # 1
    b.number("Pattern", "i16")                                                 # 2
    b.number("ScrollColor", "i32")                                             # 3
    b.number("HasHints", "bool", hints)                                        # 4
    b.text("TextExtension", t["TextExtension"])                                # 5
    b.number("FlowPageEnabled", "i32", 1)                                      # 6
    b.number("PageWidth", "f64")                                               # 7
    b.number("PageHeight", "f64")                                              # 8
    b.skip_item()                                                              # 9
    b.number("DesignMark", "f64")                                              # 10
    b.number("MainWindowNumber", "i16")                                        # 11
    b.skip_text()                                                              # 12
    b.text("StatsTip")                                                         # 13
    for i in range(7):                                                         # 14
        b.text("ChartTexts[%d]" % i)
    b.number("ScrambleRecords", "i32", 1)                                      # 15
    b.text("MainCap", "Кухня")                                                 # 16
    b.number("ReportLineMode", "u8")                                           # 17
    b.text("AppFontName")                                                      # 18
    b.number("FontCharset", "i32", t["FontCharset"])                           # 19
    b.number("WindowState", "i16")                                             # 20
    for i in range(60):                                                        # 21
        b.text("MessageText[%d]" % i)

    b.number("ShapeCount", "i16", 1)                                           # 22
    for i in range(2):
        p = "Shapes[%d]" % i
        b.number(p + ".ShapePage", "i16", 2)
        b.number(p + ".ShapePrint", "u8")
        b.number(p + ".BackColor", "i32")
        b.number(p + ".BorderColor", "i32")
        b.number(p + ".FillColor", "i32")
        b.number(p + ".BorderStyle", "i16")
        if i == 0:
            b.number(None, "i32", 0)
            b.expected[p + ".BorderWidth"] = 1  # a stored 0 is taken as 1
        else:
            b.number(p + ".BorderWidth", "i32")
        b.number(p + ".FillStyle", "i16")
        b.number(p + ".Width", "f32")
        b.number(p + ".Height", "f32")
        b.number(p + ".Shape", "i16")
        b.number(p + ".Top", "f32")
        b.number(p + ".Left", "f32")
    b.number("LineCount", "i16", 0)                                            # 23
    p = "Lines[0]"
    b.number(p + ".LinePage", "i16", 3)
    for k in ("X1", "Y1", "X2", "Y2"):
        b.number(p + "." + k, "f32")
    b.number(p + ".BorderColor", "i32")
    b.number(p + ".LinePrint", "u8")
    b.number("PictureCount", "i16", 1)                                         # 24
    for i, name in enumerate(["logo.gif", ""]):
        p = "Pictures[%d]" % i
        b.text(p + ".PictureName")
        b.number(p + ".PicturePage", "i16", 0)
        b.number(p + ".PicturePrint", "u8")
        b.embedded(p + ".FileName", name)
        b.number(p + ".Top", "f32")
        b.number(p + ".Left", "f32")
        b.hint_pair(p, "PictureHint")
        b.number(p + ".Border", "i16")
        b.number(p + ".Stretch", "bool", i == 1)
        b.number(p + ".Height", "f32")
        b.number(p + ".Width", "f32")
        b.number(p + ".ZOrder", "i16")
        b.text(p + ".PictureLink")
    b.number("TitleCount", "i16", 2)                                           # 25
    for i in range(3):
        p = "Titles[%d]" % i
        b.number(p + ".TitlePage", "i16", 7)  # on no page
        b.number(p + ".TitlePrint", "u8")
        b.text(p + ".FontName")
        b.number(p + ".FontItalic", "bool")
        b.number(p + ".FontBold", "bool")
        b.number(p + ".FontUnderline", "bool")
        b.number(p + ".FontSize", "f32")
        b.number(p + ".ForeColor", "i32")
        b.number(p + ".Left", "f32")
        b.number(p + ".Top", "f32")
        b.text(p + ".Caption", "Метка %d" % i, scrambled=True)
        b.number(p + ".Alignment", "i16")
        b.text(p + ".Tag")
        b.hint_pair(p, "TitleHint")
    b.number("FieldCount", "i16", 2)                                           # 26
    field(b, "Fields[0]", 23, False)
    field(b, "Fields[1]", 5, True)
    b.number("ComboCount", "i16", 1)                                           # 27
    p = "Combos[0]"
    b.number(None, "i32", 3)
    for i in range(3):
        b.text(p + ".List[%d]" % i)
    b.number(p + ".ComboMenu", "bool")
    b.number(p + ".TextCase", "i16")
    b.number(p + ".MaxLength", "i16")
    b.number(p + ".ComboPage", "i32", 4)
    for k in ("ComboWriteOnce", "ComboPrint", "ComboNoSearch", "ComboFormat"):
        b.number(p + "." + k, "i32")
    b.number(p + ".Top", "f32")
    b.number(p + ".Left", "f32")
    b.text(p + ".FontName")
    b.number(p + ".ForeColor", "i32")
    b.number(p + ".FontBold", "bool")
    b.number(p + ".FontItalic", "bool")
    b.number(p + ".BackColor", "i32")
    b.number(p + ".FontSize", "f32")
    b.text(p + ".Tag")
    b.number(p + ".ComboTabOrder", "i16")
    b.hint_pair(p, "ComboHint")
    b.number(p + ".Width", "f32")
    b.number(p + ".Frame.color", "i32")
    b.number(p + ".Frame.fill", "i32")
    b.number("NoteCount", "i16", 1)                                            # 28
    p = "Notes[0]"
    b.number(p + ".NotePage", "i16", 1)
    b.number(p + ".NoteWriteOnce", "u8")
    b.number(p + ".NotePrint", "u8")
    b.number(p + ".NoteNoSearch", "u8")
    b.number(p + ".MaxLength", "i32")
    b.number(p + ".Top", "f32")
    b.number(p + ".Left", "f32")
    b.number(p + ".ForeColor", "i32")
    b.text(p + ".FontName")
    b.number(p + ".FontBold", "bool")
    b.number(p + ".FontItalic", "bool")
    b.number(p + ".BackColor", "i32")
    b.number(p + ".FontSize", "f32")
    b.text(p + ".Tag")
    b.number(p + ".NoteTabOrder", "i16")
    b.number(p + ".Border", "i16")
    b.hint_pair(p, "NoteHint")
    b.number(p + ".Height", "f32")
    b.number(p + ".Width", "f32")
    b.number(p + ".Alignment", "i16")
    if b.number(p + ".NoteBox", "bool", True):
        b.number(p + ".Frame.color", "i32")
        b.number(p + ".Frame.fill", "i32")
    checks = 0 if hints else -1
    b.number("CheckCount", "i16", checks)                                      # 29
    for i in range(checks + 1):
        p = "Checks[%d]" % i
        b.number(p + ".CheckMenu", "bool")
        b.number(p + ".CheckPage", "i32", 0)
        for k in ("CheckPrint", "CheckNoSearch", "CheckWriteOnce"):
            b.number(p + "." + k, "i32")
        b.number(p + ".Top", "f32")
        b.number(p + ".Left", "f32")
        b.hint_pair(p, "CheckHint")
        b.text(p + ".Tag")
        b.number(p + ".CheckTabOrder", "i32")
        b.number(p + ".OptionBx", "u8", 1)
        b.number(p + ".ForeStyle", "i16")
        b.number(p + ".CheckDefault", "i32")
    b.number("ButtonCount", "i16", 0)                                          # 30
    p = "Buttons[0]"
    b.number(p + ".ButtonPage", "i16", 0)
    b.text(p + ".Caption")
    b.text(p + ".Tag")
    b.text(p + ".FontName")
    b.text(p + ".ToolTip")  # present whatever HasHints says
    b.number(p + ".FontSize", "i32")
    b.skip_item()
    b.skip_item()
    b.number(p + ".Border", "i32")
    for k in ("Top", "Left", "Width", "Height"):
        b.number(p + "." + k, "f32")
    b.number(p + ".BackColor", "i32")
    b.number(p + ".RenderColor", "i32")
    b.number(p + ".ButtonMode", "i16")
    b.text(p + ".ButtonScript")

    b.number("ClockFormat", "u8")                                              # 31
    b.skip_item()                                                              # 32
    b.number("AboutInfoVisible", "bool")                                       # 33
    b.text("Aboutme", "О программе", scrambled=True)                           # 34
    b.number("Image4Visible", "bool")                                          # 35
    b.skip_text()                                                              # 36
    b.text("AdminPassword", t["AdminPassword"], scrambled=True)                # 37
    for i in range(24):                                                        # 38
        b.text("CaptionRun[%d]" % i)
    b.number("StampFormat", "u8")                                              # 39
    b.text("AboutLabel1", scrambled=True)                                      # 40
    b.text("Finden3Caption")                                                   # 41
    for i in range(5):                                                         # 42
        b.text("PageCaptions[%d]" % i)
    b.number("TileMode", "i16")                                                # 43
    b.number("ExportingVisible", "bool")                                       # 44
    for i in range(81):                                                        # 45
        b.text("UiText[%d]" % i)
    b.skip_item()                                                              # 47
    for i in range(12):                                                        # 48
        b.text("SelectiveText[%d]" % i)
    for i in range(11):                                                        # 49
        b.number("SearchSetting[%d]" % i, "i32")
    b.text("ResultListText")                                                   # 50
    b.number("ResultListFlag", "bool")                                         # 51
    b.number("ResultImage2Visible", "bool")                                    # 52
    b.number("ResultExportVisible", "bool")                                    # 53
    b.number("ResultSetting", "i32")                                           # 54
    b.number("ResultMode", "i16")                                              # 55
    b.number("Frame3Stretch", "bool")                                          # 56
    b.number("Frame3Height", "f64")                                            # 57
    b.number("Frame3Width", "f64")                                             # 58
    b.skip_item()                                                              # 59
    b.skip_item()
    b.text("FieldSeparator", t["FieldSeparator"])                              # 60
    b.text("DataExtension", t["DataExtension"])                                # 61
    b.number("Frame1Visible", "bool")                                          # 62
    b.skip_text()                                                              # 63
    b.number("AutoRunButton", "u8")                                            # 64
    b.number("MailIconVisible", "bool")                                        # 65
    b.number("MailAddressField", "i16")                                        # 66
    b.number("MailNameField", "i16")                                           # 67
    b.number("ShowZeros", "u8")                                                # 68
    b.number(None, "i16", 1)                                                   # 69
    for i in range(2):
        b.text("HtmlStyles[%d].HtmlStyleName" % i)
        b.number("HtmlStyles[%d].HtmlStyleFlag" % i, "u8")
    b.skip_text()                                                              # 70
    for k in range(10):                                                        # 71
        ext = "e%d" % k if k % 4 == 0 else ""
        b.text(None, ext)
        if k % 4 == 0:
            b.expected["Templates[%d].TemplateExtension" % k] = "*." + ext
            b.text("Templates[%d].TemplateText" % k)
        else:
            b.text(None, "")
        b.skip_text()
    for i in range(5):                                                         # 72
        b.number("PageBackColor[%d]" % i, "i32")
    b.number(None, "u8", 2)                                                    # 73
    p = "Reports[0]"
    b.text(p + ".Caption")
    for k in ("WindowWidth", "WindowHeight", "PageWidth", "PageHeight"):
        b.number(p + "." + k, "f32")
    b.number(None, "i16", 0)  # shapes: highest index
    q = p + ".Shapes[0]"
    for k in ("Visible", "BorderWidth", "FillStyle", "BorderStyle", "Shape"):
        b.number(q + "." + k, "i16")
    for k in ("FillColor", "BorderColor"):
        b.number(q + "." + k, "i32")
    for k in ("Height", "Width", "Top", "Left"):
        b.number(q + "." + k, "f32")
    b.number(None, "i16", 0)  # lines
    q = p + ".Lines[0]"
    b.number(q + ".Visible", "i16")
    b.number(q + ".BorderColor", "i32")
    for k in ("X1", "Y1", "X2", "Y2"):
        b.number(q + "." + k, "f32")
    b.number(None, "i16", -1)  # no pictures
    b.expected[p + ".Pictures"] = []
    b.number(None, "i16", 2)  # labels: a number from 1
    for i in range(2):
        q = p + ".Labels[%d]" % i
        b.number(q + ".Visible", "i16")
        b.plain(q + ".FontName")
        for k in ("FontBold", "FontItalic", "FontUnderline"):
            b.number(q + "." + k, "bool")
        b.number(q + ".FontSize", "f32")
        b.number(q + ".ForeColor", "i32")
        for k in ("Top", "Left", "Width", "Height"):
            b.number(q + "." + k, "f32")
        b.number(q + ".Alignment", "i16")
        b.number(q + ".AutoSize", "i16")
        b.number(q + ".LabelFixed", "i16", -1 if i == 0 else 2)
        b.plain(q + ".Text", "Итого" if i == 0 else None)
        b.number(q + ".LabelRow", "i16", i + 1)
    b.text("Reports[1].Caption", "")  # no definition follows an empty caption
    b.embedded("BackgroundPicture", t["BackgroundPicture"])                    # 74

    # Derived by the loader.
    b.expected["PageCount"] = 4
    b.expected["HasRecordPictures"] = True
    b.expected["#Titles"] = 3  # "#" checks the length of a list: the padding is not written
    b.expected["#Fields"] = 2

    tail = struct.pack("<i", len(b.out))
    with open(path_image, "wb") as f:
        f.write(head + bytes(b.out) + tail)
    files = {name: data.hex() for name, data in FILES.items()}
    with open(path_expected, "w", encoding="utf-8") as f:
        json.dump({"values": b.expected, "files": files, "blockStart": len(head)}, f, ensure_ascii=False, indent=1)


def main(argv):
    if len(argv) < 3:
        print(__doc__, file=sys.stderr)
        return 2
    hints = "--no-hints" not in argv
    seed = 7
    if "--seed" in argv:
        seed = int(argv[argv.index("--seed") + 1])
    write(argv[1], argv[2], hints, seed)
    return 0


if __name__ == "__main__":
    sys.exit(main(sys.argv))
