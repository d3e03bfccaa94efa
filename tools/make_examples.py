#!/usr/bin/env python3
"""Writes the two example designs (examples/*/*.json) from the tables below.

The JSON files are what the builder reads and what is committed; this script only saves typing
coordinates by hand. Geometry is in twips (1/1440 inch, 15 twips per pixel at 96 dpi).
"""
import json
import pathlib

ROOT = pathlib.Path(__file__).resolve().parent.parent / "examples"


def rgb(h):
    return "#" + h


def message_texts():
    m = [""] * 60
    m[0] = "The operation could not be completed."
    m[1] = "The file * could not be found."
    m[2] = "Delete this record?"
    m[3] = "The data file is read-only: changes are not saved."
    m[4] = "Permission denied: the file is in use or read-only."
    m[5] = "The disk or folder could not be reached."
    m[6] = "Records found: "
    m[7] = "Sum: "
    m[8] = "Average: "
    m[9] = "Count: "
    m[10] = "Records replaced: "
    m[11] = "The file * already exists."
    m[12] = "Nothing found."
    return m


def ui_texts():
    u = [""] * 81
    words = {0: "OK", 1: "Cancel", 2: "Yes", 3: "No", 4: "Close", 5: "Print", 6: "Search", 7: "Export",
             8: "User name:", 9: "Password:", 10: "Log in", 11: "Users", 12: "Add", 13: "Delete",
             14: "Rights", 15: "Read only", 16: "Full", 17: "Find", 18: "Replace", 19: "Replace all",
             20: "Match case", 21: "Forward", 22: "Please wait...", 23: "Stop", 24: "Today",
             25: "Calculator", 26: "Calendar", 27: "Page", 28: "of", 29: "Records"}
    for k, v in words.items():
        u[k] = v
    return u


CAPTION_RUN = ["&Open...", "&Create...", "Print", "", "", "", "New record", "Search", "Sort up",
               "Calculator", "", "Flatform example", "", "", "Find in field", "", "E&xport", "Copy record",
               "Paste record", "", "Sort down", "", "", "&Import text..."]


def base(title, caption, ext):
    return {
        "format": "flatform-design", "version": 1,
        "AppTitle": title, "MainCap": caption, "HasHints": True,
        "TextExtension": "txt", "DataExtension": ext, "FieldSeparator": ";",
        "FlowPageEnabled": 0, "ScrambleRecords": 0, "ShowZeros": 0,
        "AppFontName": "DejaVu Sans", "FontCharset": 0, "ClockFormat": 2, "StampFormat": 4,
        "ScrollColor": rgb("C8D2DC"), "Pattern": 0, "TileMode": 0,
        "MessageText": message_texts(), "UiText": ui_texts(), "CaptionRun": CAPTION_RUN,
        "ChartTexts": ["Chart", "Count", "Sum", "Average", "Minimum", "Maximum", "Other"],
        # F1 to F11 fill from SelectiveText 1 to 11; entry 0 belongs to no key.
        "SelectiveText": ["", "Yes", "No", "n/a", "Mr", "Ms", "Dr", "", "", "", "", ""],
        "SearchSetting": [0] * 11,
        "Aboutme": "About " + title, "AboutLabel1": title + ", a Flatform example",
        "Frame1Visible": True, "ExportingVisible": True, "MailIconVisible": True,
    }


def label(i, page, left, top, caption, size=9, bold=False, color="1E1E1E", tag="", hint=""):
    return {"TitlePage": page, "TitlePrint": 1, "FontName": "DejaVu Sans", "FontSize": size,
            "FontBold": bold, "ForeColor": rgb(color), "Left": left, "Top": top,
            "Caption": caption, "Tag": tag, "ToolTip": hint, "TitleHint": hint}


def field(page, left, top, width, ftype, maxlen, tag="", formula="", tab=0, hint="", case=0,
          default=0, display=0, align=0, box=False, height=300):
    f = {"FieldPage": page, "FieldPrint": 1, "FieldType": ftype, "MaxLength": maxlen,
         "Left": left, "Top": top, "Width": width, "Height": height, "FontName": "DejaVu Sans",
         "FontSize": 9, "ForeColor": rgb("000000"), "BackColor": rgb("FFFFFF"), "Tag": tag,
         "FieldFormula": formula, "FieldTabOrder": tab, "Border": 1, "ToolTip": hint,
         "FieldHint": hint, "FieldCase": case, "FieldDefault": default, "FieldDisplay": display,
         "Alignment": align, "FieldMenu": True}
    if box:
        f["FieldBox"] = True
        f["Frame"] = {"color": rgb("7A8CA0"), "fill": 0}
    return f


def shape(page, left, top, width, height, fill, border, kind=0, fillstyle=0, bw=1):
    return {"ShapePage": page, "ShapePrint": 1, "Left": left, "Top": top, "Width": width,
            "Height": height, "FillColor": rgb(fill), "BackColor": rgb(fill),
            "BorderColor": rgb(border), "Shape": kind, "FillStyle": fillstyle, "BorderStyle": 1,
            "BorderWidth": bw}


def line(page, x1, y1, x2, y2, color="7A8CA0"):
    return {"LinePage": page, "X1": x1, "Y1": y1, "X2": x2, "Y2": y2, "BorderColor": rgb(color),
            "LinePrint": 1}


def button(page, left, top, width, caption, tag="", script="", tip=""):
    return {"ButtonPage": page, "Caption": caption, "Tag": tag, "FontName": "DejaVu Sans",
            "ToolTip": tip, "FontSize": 9, "Left": left, "Top": top, "Width": width, "Height": 360,
            "BackColor": rgb("E8EEF4"), "RenderColor": rgb("D0DCE8"), "ButtonScript": script}


def contacts():
    d = base("Contacts", "Contacts book", "dat")
    d.update({"PageWidth": 10800, "PageHeight": 7800, "PageCaptions": ["Contact", "Notes", "", "", ""],
              "PageBackColor": [rgb("F7F5EF"), rgb("F2F4F7"), 0, 0, 0], "BackgroundPicture": "paper.gif",
              "TileMode": 0, "MailAddressField": 5, "MailNameField": 2})
    col1, col2, w = 360, 2160, 3000
    # A field's tag is its name in search lines and import headers.
    rows = [("First name", 0, 30, "firstname", 2), ("Last name", 0, 30, "lastname", 2),
            ("Company", 0, 40, "company", 0), ("Phone", 0, 20, "phone", 0), ("E-mail", 0, 50, "email", 3),
            ("Web", 0, 60, "web", 3)]
    fields, titles = [], []
    titles.append(label(0, 0, 360, 150, "Contacts", 16, True, "1D3F66"))
    titles.append(label(1, 0, 360, 7440, "Ready", 8, False, "505050"))       # status line
    titles.append(label(2, 0, 7800, 240, "No. ", 9, True, "1D3F66"))        # record number
    titles.append(label(3, 5, 0, 0, ""))
    titles.append(label(4, 0, 7800, 540, "Created ", 8, False, "505050"))   # stamp
    titles.append(label(5, 5, 0, 0, ""))
    top = 960
    for n, (cap, ft, ml, tag, case) in enumerate(rows, start=1):
        titles.append(label(len(titles), 0, col1, top + 40, cap))
        fields.append(field(0, col2, top, w, ft, ml, tag=tag, tab=n, hint=cap, case=case))
        top += 420
    # typed fields in a second column
    col3, col4, w2 = 5520, 7320, 3000
    typed = [("Birthday", 9, 8, 1), ("Credit limit", 2, 8, 0), ("Visits", 5, 4, 0),
             ("Balance", 2, 8, 0), ("Available", 2, 8, 0), ("Last call", 12, 8, 0),
             ("First contact", 7, 8, 0)]
    top = 960
    for n, (cap, ft, ml, default) in enumerate(typed, start=7):
        titles.append(label(len(titles), 0, col3, top + 40, cap))
        formula = "F8~F10" if cap == "Available" else ""  # "~" subtracts: "-" belongs to numbers
        fields.append(field(0, col4, top, w2, ft, ml, tag=cap.lower().replace(" ", ""), tab=n, hint=cap, default=default,
                            formula=formula, align=1 if ft in (1, 2, 5) else 0))
        top += 420
    # full name on the notes page, built by a text formula
    titles.append(label(len(titles), 1, 360, 1000, "Full name"))
    fields.append(field(1, 2160, 960, 4200, 0, 64, tag="fullname", formula="F1 F2", tab=20, hint="Full name"))
    d["Fields"] = fields
    # combos, checks, notes
    d["Combos"] = [
        {"List": ["Family", "Friends", "Work", "Customer", "Supplier"], "ComboPage": 0, "MaxLength": 12,
         "Top": 3520, "Left": col2, "Width": w, "FontName": "DejaVu Sans", "FontSize": 9,
         "BackColor": rgb("FFFFFF"), "Tag": "category", "ComboTabOrder": 14, "ToolTip": "Category", "ComboHint": "Category",
         "Frame": {"color": rgb("7A8CA0"), "fill": 0}, "ComboMenu": True},
        {"List": ["Web", "Fair", "Referral", "Mailing"], "ComboPage": 1, "MaxLength": 10, "Top": 1440,
         "Left": 2160, "Width": 2400, "FontName": "DejaVu Sans", "FontSize": 9, "BackColor": rgb("FFFFFF"),
         "Tag": "source", "ComboTabOrder": 21, "ToolTip": "Source", "ComboHint": "How we met",
         "Frame": {"color": rgb("7A8CA0"), "fill": 0}},
    ]
    titles.append(label(len(titles), 0, col1, 3560, "Category"))
    titles.append(label(len(titles), 1, 360, 1480, "Source"))
    d["Checks"] = [
        {"CheckPage": 0, "Left": col2, "Top": 4000, "Tag": "newsletter", "CheckTabOrder": 15,
         "ToolTip": "Newsletter", "CheckHint": "Sends the newsletter", "CheckDefault": 1},
        {"CheckPage": 0, "Left": col2 + 1700, "Top": 4000, "Tag": "vip", "CheckTabOrder": 16,
         "ToolTip": "VIP", "CheckHint": "A very important person"},
        {"CheckPage": 1, "Left": 5000, "Top": 1480, "Tag": "nocall", "CheckTabOrder": 22,
         "OptionBx": 0},
    ]
    titles.append(label(len(titles), 0, col2 + 300, 4010, "Newsletter"))
    titles.append(label(len(titles), 0, col2 + 2000, 4010, "VIP"))
    titles.append(label(len(titles), 1, 5300, 1490, "Do not call"))
    d["Notes"] = [{"NotePage": 1, "MaxLength": 2000, "Top": 2100, "Left": 360, "Width": 9900,
                   "Height": 4600, "FontName": "DejaVu Sans", "FontSize": 10, "BackColor": rgb("FFFFFF"),
                   "Tag": "notes", "NoteTabOrder": 23, "ToolTip": "Notes", "NoteHint": "Anything worth remembering",
                   "Border": 1, "NoteBox": True, "Frame": {"color": rgb("7A8CA0"), "fill": 0}}]
    titles.append(label(len(titles), 1, 360, 1860, "Notes", 9, True))
    # navigation labels
    for k, (cap, tag) in enumerate([("|<", "<<<"), ("<", "<"), (">", ">"), (">|", ">>>"), ("new", "<>")]):
        titles.append(label(len(titles), 0, 5520 + k * 560, 4800, cap, 10, True, "1D3F66", tag,
                            "Go " + tag))
    d["Titles"] = titles
    d["Pictures"] = [
        {"PictureName": "logo", "PicturePage": 0, "PicturePrint": 1, "FileName": "logo.gif",
         "Top": 100, "Left": 9840, "Width": 720, "Height": 720, "ToolTip": "Contacts", "PictureHint":
         "Contacts book", "Border": 0, "Stretch": False, "PictureLink": ""},
        {"PictureName": "photo", "PicturePage": 0, "PicturePrint": 1, "FileName": "", "Top": 4560,
         "Left": 360, "Width": 1800, "Height": 2200, "ToolTip": "Photo", "PictureHint":
         "The contact's photo", "Border": 1, "Stretch": True},
    ]
    d["Shapes"] = [shape(0, 240, 840, 5040, 3660, "FFFFFF", "9AAABB", kind=4, fillstyle=0),
                   shape(0, 5400, 840, 5160, 3660, "FFFFFF", "9AAABB", kind=4, fillstyle=0),
                   shape(1, 240, 840, 10320, 6000, "FFFFFF", "9AAABB", kind=0, fillstyle=0)]
    d["Lines"] = [line(0, 240, 7320, 10560, 7320), line(1, 240, 7320, 10560, 7320)]
    d["Buttons"] = [
        button(0, 2400, 6840, 1300, "New contact", tag="<>", tip="Adds a contact"),
        button(0, 3800, 6840, 1300, "Customers", script="select firstname lastname company where category=customer",
               tip="Lists the customers"),
        button(1, 8880, 6900, 1500, "Previous", tag="<", tip="One contact back"),
        button(1, 6600, 6900, 2100, "Quit, don't save", tag="END", tip="Ends at once without saving"),
    ]
    return d


def invoice():
    d = base("Invoices", "Invoices", "inv")
    d.update({"PageWidth": 10800, "PageHeight": 8400, "PageCaptions": ["Invoice", "", "", "", ""],
              "PageBackColor": [rgb("FFFFFF"), 0, 0, 0, 0], "ShowZeros": 0})
    titles = [label(0, 0, 360, 200, "INVOICE", 18, True, "1F5F3F"), label(1, 0, 360, 8040, "Ready", 8),
              label(2, 0, 6600, 400, "Invoice ", 9, True), label(3, 5, 0, 0, ""), label(4, 5, 0, 0, ""),
              label(5, 5, 0, 0, "")]
    fields = []
    head = [("Number", 0, 12, 1800), ("Date", 7, 8, 1800), ("Customer", 0, 40, 4200),
            ("Address", 0, 60, 4200)]  # tags: the captions in lower case
    top = 1000
    for n, (cap, ft, ml, w) in enumerate(head, start=1):
        titles.append(label(len(titles), 0, 360, top + 40, cap))
        fields.append(field(0, 1800, top, w, ft, ml, tag=cap.lower(), tab=n, hint=cap))
        top += 400
    titles += [label(len(titles) + k, 0, x, 2760, cap, 9, True, "1F5F3F") for k, (x, cap) in
               enumerate([(360, "Description"), (5400, "Qty"), (6600, "Unit price"), (8400, "Line total")])]
    top = 3060
    for item in range(4):
        base_no = 5 + item * 4
        n = item + 1
        fields.append(field(0, 360, top, 4900, 0, 40, tag=f"item{n}", tab=10 + item * 3, hint="Description"))
        fields.append(field(0, 5400, top, 1100, 1, 8, tag=f"qty{n}", tab=11 + item * 3, hint="Quantity", align=1))
        fields.append(field(0, 6600, top, 1700, 2, 8, tag=f"price{n}", tab=12 + item * 3, hint="Unit price",
                            align=1))
        fields.append(field(0, 8400, top, 2000, 2, 8, tag=f"line{n}", formula=f"F{base_no + 1}*F{base_no + 2}",
                            tab=40 + item, hint="Quantity times price", align=1))
        top += 360
    sums = [("Subtotal", "F8+F12+F16+F20"), ("Tax rate %", ""), ("Tax", "F21*F22/100"),
            ("Total", "F21+F23")]
    top += 240
    for cap, formula in sums:
        titles.append(label(len(titles), 0, 6600, top + 40, cap, 9, cap == "Total"))
        ftype = 1 if cap.startswith("Tax rate") else 2
        fields.append(field(0, 8400, top, 2000, ftype, 8, tag=cap.lower().replace(" rate %", "rate"),
                            formula=formula, tab=60 + len(fields),
                            hint=cap, align=1, box=cap == "Total"))
        top += 380
    titles.append(label(len(titles), 0, 360, top + 80, "In words"))
    fields.append(field(0, 1800, top + 40, 8600, 0, 120, tag="words", formula="f25=CUR(F24)", tab=70,
                        hint="The total in words"))
    d["Fields"] = fields
    d["Checks"] = [{"CheckPage": 0, "Left": 6600, "Top": 1060, "Tag": "paid", "CheckTabOrder": 5}]
    titles.append(label(len(titles), 0, 6900, 1060, "Paid"))
    d["Titles"] = titles
    d["Pictures"] = [{"PictureName": "acme", "PicturePage": 0, "PicturePrint": 1, "FileName": "acme.gif",
                      "Top": 200, "Left": 8600, "Width": 1800, "Height": 600, "Stretch": False}]
    d["Shapes"] = [shape(0, 240, 2700, 10320, 1860, "EEF5F0", "1F5F3F", fillstyle=0)]
    d["Lines"] = [line(0, 6600, 4660, 10400, 4660, "1F5F3F")]
    d["Buttons"] = [button(0, 360, 7500, 1500, "New invoice", tag="<>")]
    # A list of invoices, ten rows to a page.
    labels = [
        {"Visible": -1, "FontName": "DejaVu Sans", "FontBold": True, "FontSize": 14, "Top": 300,
         "Left": 600, "Width": 6000, "Height": 400, "LabelFixed": -1, "Text": "Invoice list", "LabelRow": 0},
        {"Visible": -1, "FontName": "DejaVu Sans", "FontSize": 9, "Top": 300, "Left": 9000, "Width": 1200,
         "Height": 300, "LabelFixed": -1, "Text": "P$", "LabelRow": 0},
    ]
    for x, cap in [(600, "Number"), (2400, "Customer"), (7200, "Date"), (9000, "Total")]:
        labels.append({"Visible": -1, "FontName": "DejaVu Sans", "FontBold": True, "FontSize": 9,
                       "Top": 900, "Left": x, "Width": 1700, "Height": 300, "LabelFixed": -1,
                       "Text": cap, "LabelRow": 0})
    for row in range(1, 11):
        y = 1200 + row * 320
        for x, w, fno, align in [(600, 1700, 1, 0), (2400, 4700, 3, 0), (7200, 1700, 2, 0), (9000, 1500, 24, 1)]:
            labels.append({"Visible": -1, "FontName": "DejaVu Sans", "FontSize": 9, "Top": y, "Left": x,
                           "Width": w, "Height": 300, "Alignment": align, "LabelFixed": fno, "Text": "F",
                           "LabelRow": row})
    d["Reports"] = [{"Caption": "Invoice list", "WindowWidth": 12000, "WindowHeight": 9000,
                     "PageWidth": 11906, "PageHeight": 16838,
                     "Shapes": [{"Visible": -1, "BorderWidth": 1, "FillStyle": 1, "BorderStyle": 1,
                                 "Shape": 0, "BorderColor": rgb("1F5F3F"), "Top": 200, "Left": 500,
                                 "Width": 10600, "Height": 5000}],
                     "Lines": [{"Visible": -1, "BorderColor": rgb("1F5F3F"), "X1": 600, "Y1": 1220,
                                "X2": 10600, "Y2": 1220}],
                     "Pictures": [], "Labels": labels}]
    return d


for name, design in [("contacts", contacts()), ("invoice", invoice())]:
    path = ROOT / name / f"{name}.json"
    path.write_text(json.dumps(design, indent=1, ensure_ascii=False) + "\n")
    print(path)
