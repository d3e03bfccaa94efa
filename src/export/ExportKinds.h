#pragma once
// The kinds of file an export can write, the list of them offered in the file chooser, and the rule
// that turns a chosen name into the export's base name.
//
// The list is built afresh from the design on every export: the delimited text first, then each
// template of the design twice (all records in one file, and the "'s" form: one file a record in
// a folder), then the other kinds, each only when the design's text of forbidden extensions does
// not name it. The XML item is offered by the import, not here.

#include "design/Design.h"

#include <QString>
#include <QStringList>
#include <cstdint>
#include <vector>

namespace ff {

enum class ExportKind : uint8_t {
    Listing = 0,       // "*.rtf": plain lines of every record
    HtmlPages = 1,     // "*.htm's": a folder of pages, a group a record
    PhpSite = 2,       // "*.php"
    DelimitedText = 3, // "*." + TextExtension
    HtmlCurrent = 4,   // "*.htm": the record on screen only
    Spreadsheet = 5,   // "*.xls"
    RecordCopy = 7,    // "*." + DataExtension: new record files of the program's own format
    XmlImport = 8,     // "*.xml": offered by the import
    FirstTemplate = 10,
    LastTemplate = 19,
    Pdf = 20,          // "*.pdf"
    PdfPerRecord = 21, // "*.pdf's"
};

constexpr int kTemplateCount = 10;

// What the user picked: a kind, and for the templates which one and how.
struct ExportChoice {
    ExportKind kind = ExportKind::DelimitedText;
    int templateIndex = -1; // 0..9 for the template kinds
    // Templates: true writes one file (the plain pattern), false one file a record in a folder.
    bool ExportPerRecord = true;

    static ExportChoice Template(int index, bool oneFile)
    {
        return ExportChoice{ExportKind(int(ExportKind::FirstTemplate) + index), index, oneFile};
    }
    bool isTemplate() const { return templateIndex >= 0 && templateIndex < kTemplateCount; }
};

struct ExportKindItem {
    QString pattern; // as the chooser shows it: "*.txt", "*.html's"
    ExportChoice choice;
};

// The chooser's list for `design`. `forbiddenExtensions` is the design's comma-joined text of
// extensions (".htm,.php"): an added kind whose extension it contains is left out.
std::vector<ExportKindItem> BuildExportKindList(const Design &design, const QString &forbiddenExtensions);
QStringList ExportKindPatterns(const std::vector<ExportKindItem> &items);

// The chosen name with any extension cut: scanned from its end for the first ".", cut before it.
QString CutExportExtension(const QString &name);

// True for a name that stays inside the folder it is joined to: not empty, not "." or "..", and
// no slash, backslash, drive colon or NUL. Names read from a design or a record must pass this
// before a file is written or copied under them.
bool IsPlainFileName(const QString &name);

// A template's extension as the design keeps it ("*.html") made the file's extension (".html"):
// every "*" removed. Empty when what remains could leave the folder.
QString TemplateFileExtension(const QString &templateExtension);

} // namespace ff
