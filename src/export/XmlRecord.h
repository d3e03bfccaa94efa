#pragma once
// One record as a small XML text: what Copy puts on the clipboard and Paste and the import of
// ".xml" files read back. The text carries the fields by their tags and, when the design allows
// page work, the record's flow labels and pictures in a section of their own, FLOWPage:
//
//   <?xml version="1.0" ?>
//   <Contacts_Record_12>
//     <firstname>Ada</firstname>
//     ...
//   <FLOWPage>
//     Label,caption,alignment,font size,bold,italic,underline,left,top,width,page
//     Image,image number,link,page,left,top,width,height
//   </FLOWPage>
//   </Contacts_Record_12>
//
// every line ended by CR LF. Fields come in the order text fields, combos, check boxes, notes,
// record pictures. The reader is no XML parser: it finds each fixed tag by substring search, so
// it reads what other programs wrote in this form and never fails on text that is not.

#include "design/Page.h"

#include <QString>
#include <QVector>

namespace ff {

// An element of the page chosen for CopyData.
struct XmlElementChoice {
    ElementKind kind = ElementKind::None; // Field, Combo, Check, Note or Picture
    int index = 0;
};

// What XMLimport changed on the page.
struct XmlImportResult {
    int valuesSet = 0;    // fields, combos, checks, notes and pictures given a value
    int labelsAdded = 0;  // flow labels added to those already there
    int imagesAdded = 0;  // flow pictures likewise
    bool markChanged = false; // the record now counts as changed: the caller marks it dirty
};

class XmlRecord {
public:
    // The double quote first, then "&", "<" and ">". A double quote thus comes out as "&amp;quot;"
    // and reads back as "&quot;": kept that way, files of other copies rely on it. CR LF stays.
    static QString XmlEscape(const QString &text);
    // "&quot;", "&amp;", "&lt;", "&gt;" in that order.
    static QString XmlUnescape(const QString &text);

    // The whole record on the page, as record number `record`.
    static QString CopyAll(const Page &page, int record);
    // The field lines of the chosen elements only, in the order of CopyAll; the whole record
    // (CopyAll) when every element of the page is chosen.
    static QString CopyData(const Page &page, int record, const QVector<XmlElementChoice> &chosen);

    // Reads record text into the page: each field whose tag is found takes the value between its
    // first "<Tag>" and its first "</Tag>", unescaped, unless the field is locked (by the design
    // or as a write-once field of a stored record). Check boxes read the value as a number,
    // record pictures take it as the picture's file name. With the design's page work on, the
    // FLOWPage labels and pictures are added to those already on the page. `keep` true leaves
    // the record's changed state alone (markChanged false).
    static XmlImportResult XMLimport(Page &page, const QString &text, bool keep);

private:
    static QString recordTag(const Page &page, int record);
    static QString fieldLines(const Page &page, const QVector<XmlElementChoice> *chosen);
    static QString flowSection(const Page &page);
    static void readFlowSection(Page &page, const QString &text, XmlImportResult &result);
};

} // namespace ff
