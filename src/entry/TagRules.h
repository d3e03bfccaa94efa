#pragma once
// How labels and page buttons read their Tag and their script: the six navigation tags, the
// program names that are started with parameters, the lines of a button script and the test that
// sends a line to the search instead of the formula language.

#include <QString>
#include <QStringList>

#include <optional>

namespace ff {

class TagRules {
public:
    // The record button a tag stands for, compared exactly: "<<<" 0 first, "<<" 1 ten back,
    // "<" 2 one back, ">" 3 one on, ">>" 4 ten on, ">>>" 5 last.
    static std::optional<int> navigationButton(const QString &tag);
    static bool isNewRecordTag(const QString &tag) { return tag == QLatin1String("<>"); }
    // "END" in any case: the program ends without saving.
    static bool isEndTag(const QString &tag);
    // A tag that holds "-paste" in any case puts the record on the clipboard first.
    static bool wantsPaste(const QString &tag);

    // A text that holds ".exe " is a program with parameters: the file is the text up to and with
    // ".exe", the parameters what follows the blank. Any other text is the file alone.
    struct OpenTarget {
        QString file;
        QString parameters;
    };
    static OpenTarget splitProgram(const QString &text);

    // A script cut at its line breaks (CR LF, LF or CR); empty lines are left out.
    static QStringList scriptLines(const QString &script);
    // The command test of the search language, on the trimmed line in lower case: "replace " or
    // "select " with " where " at the ninth character or later, or "sum " or "count " at the start.
    static bool isSearchCommand(const QString &line);
    // A line for RunIf: it starts with "IF" in any case.
    static bool isIfLine(const QString &line);
};

} // namespace ff
