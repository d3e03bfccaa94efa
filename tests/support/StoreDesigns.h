#pragma once
// Designs built in code for the record store's tests and the lock probe: one with every kind of
// stored element, and a small one for multi-part files.

#include "design/Design.h"

namespace ff::testsupport {

inline FieldElement makeField(uint8_t type, int32_t maxLength = 0, int16_t page = 0)
{
    FieldElement f;
    f.FieldType = type;
    f.MaxLength = maxLength;
    f.FieldPage = page;
    return f;
}

inline void addLabels(Design &d, int count)
{
    d.Titles.resize(std::max(count, kMinLabels));
    for (int i = 0; i < int(d.Titles.size()); ++i) {
        d.Titles[i].present = true;
        d.Titles[i].Caption = QStringLiteral("Label %1").arg(i);
    }
    d.TitleCount = static_cast<int16_t>(d.Titles.size() - 1);
}

// Every stored kind. Record layout (1-based offsets):
//   F1 text 10 @1, F2 float @11, F3 money2 @19, F4 money4 @27, F5 whole @35, F6 datetime @39,
//   F7 short date @47, F8 time text 8 @55, F9 type 23 @63 (10 bytes), F10 global, F11 page 5,
//   F12 write-once text 6 @73, F13 long date, starts empty @79, F14 text of length 0 (no bytes),
//   C1 8 @87, C2 write-once 4 @95, K0 @99, K1 (default on) @100, K2 on page 7,
//   P0 fixed picture, P1 record picture @101, P2 record picture on page 9 @109, M1 30 @117,
//   stamp @147, flow area @155 when enabled. RecordLength 155, or 10155 with the flow area.
inline Design fullDesign(bool flow = false, bool scramble = false)
{
    Design d;
    d.MainCap = QStringLiteral("Store Test");
    d.DataExtension = QStringLiteral("dat");
    d.FlowPageEnabled = flow ? 1 : 0;
    d.ScrambleRecords = scramble ? 1 : 0;
    d.Fields.resize(15);
    d.Fields[1] = makeField(0, 10);
    d.Fields[2] = makeField(1);
    d.Fields[3] = makeField(2);
    d.Fields[4] = makeField(4);
    d.Fields[5] = makeField(5);
    d.Fields[6] = makeField(6);
    d.Fields[7] = makeField(7);
    d.Fields[8] = makeField(12, 8);
    d.Fields[9] = makeField(23, 10);
    d.Fields[10] = makeField(0, 5);
    d.Fields[10].FieldGlobal = true;
    d.Fields[11] = makeField(0, 5, 5);
    d.Fields[12] = makeField(0, 6);
    d.Fields[12].FieldWriteOnce = 1;
    d.Fields[13] = makeField(9);
    d.Fields[13].FieldDefault = 1;
    d.Fields[14] = makeField(0, 0);
    d.FieldCount = 14;
    d.Combos.resize(3);
    d.Combos[1].MaxLength = 8;
    d.Combos[2].MaxLength = 4;
    d.Combos[2].ComboWriteOnce = 1;
    d.ComboCount = 2;
    d.Checks.resize(3);
    d.Checks[1].CheckDefault = 1;
    d.Checks[2].CheckPage = 7;
    d.CheckCount = 2;
    d.Pictures.resize(3);
    d.Pictures[1].Stretch = true;
    d.Pictures[2].Stretch = true;
    d.Pictures[2].PicturePage = 9;
    d.PictureCount = 2;
    d.HasRecordPictures = true;
    d.Notes.resize(2);
    d.Notes[1].MaxLength = 30;
    d.NoteCount = 1;
    addLabels(d, 8);
    d.Titles[2].Caption = QStringLiteral("No. ");
    d.Titles[4].Caption = QStringLiteral("Stamp: ");
    d.MessageText[1] = QStringLiteral("File * not found");
    return d;
}

// Two text fields of 6 bytes and a whole number: RecordLength 17.
inline Design smallDesign(bool scramble = false)
{
    Design d;
    d.MainCap = QStringLiteral("Small");
    d.DataExtension = QStringLiteral("dat");
    d.ScrambleRecords = scramble ? 1 : 0;
    d.Fields.resize(4);
    d.Fields[1] = makeField(0, 6);
    d.Fields[2] = makeField(0, 6);
    d.Fields[3] = makeField(5);
    d.FieldCount = 3;
    d.Combos.resize(1);
    d.Notes.resize(1);
    addLabels(d, 6);
    d.Titles[4].TitlePage = 5; // no stamp
    return d;
}

} // namespace ff::testsupport
