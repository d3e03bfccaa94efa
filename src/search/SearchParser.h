#pragma once
// Reads a search line into a CompiledQuery: recognises the four commands (select, sum, count,
// replace) and the plain find, normalises a command's blanks and apostrophes, looks field names
// up by their tags and converts every value once, here, into the form the walk compares:
// fixed-point numbers, dates and times, folded record bytes, compiled patterns and the bytes a
// replacement writes.

#include "core/CodePage.h"
#include "search/CaseFold.h"
#include "search/SearchNames.h"
#include "search/SearchQuery.h"

#include <QLocale>
#include <QString>

namespace ff {

class SearchParser {
public:
    SearchParser(const SearchNames &names, QChar decimalSeparator, QLocale locale = QLocale());

    // On the trimmed line in lower case: "replace " or "select " with " where " at the ninth
    // character or later, or "sum " or "count " at the start.
    static bool IsCommand(const QString &line);
    // Blanks inside apostrophes become "~", runs of three and then two blanks become one, the
    // apostrophes go.
    static QString Normalise(const QString &line);
    // The digits and decimal separators of a text, through CleanNumber; an empty or blank text
    // comes back as it was.
    static QString DigitsOnly(const QString &text, const QString &decimalSeparator);

    // `focus` is the element a plain find looks in (it may be invalid: the find then matches
    // nothing unless it starts with "!").
    CompiledQuery parse(const QString &line, bool matchCase, const SearchField &focus) const;

private:
    void parseCommand(CompiledQuery &q, QString line) const;
    void parseFind(CompiledQuery &q, QString line, const SearchField &focus) const;
    void addCondition(CompiledQuery &q, QString token) const;
    void addReplacement(CompiledQuery &q, QString token) const;
    void addColumns(CompiledQuery &q, const QString &token) const;
    int64_t numberFixed(const QString &value) const;
    int64_t dateFixed(const QString &value) const;
    int64_t timeFixed(const QString &value, int format, bool pm) const;
    QByteArray storedBytes(const SearchField &f, const QString &value) const;
    static QString tokenText(QString token);

    const SearchNames &names_;
    CodePage codePage_;
    CaseFold fold_;
    QString separator_;
    QLocale locale_;
};

} // namespace ff
