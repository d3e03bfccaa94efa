#pragma once
// The PHP texts of the web exports: the posting script of the form site, which appends each
// posted form as one delimited line to the site's data file, the data file's head row, and the
// paging viewer index.php of a folder of record pages. The program runs no PHP; it writes these.
//
// Names and texts from the design land inside PHP strings; they are escaped for the string they
// stand in, so that a quote or a dollar sign in a field's name cannot change the script.

#include "design/Design.h"

#include <QString>

namespace ff::web {

class PhpSiteWriter {
public:
    // The posted fields in column order: text fields, combos, notes, checks on a page 0 to 4.
    // The data file's head row, without a line end: each Tag, FieldSeparator between them.
    static QString headRow(const Design &design);
    // ExportName.php; `exportName` without extension.
    static QString postingScript(const Design &design, const QString &exportName);
    // index.php of a kind 1 export.
    static QString pagingScript(const Design &design);

    // A text inside a PHP string in double quotes.
    static QString phpDoubleQuoted(const QString &text);
    // The key under which PHP files a posted name (it turns blanks, dots and "[" into "_").
    static QString postedKey(const QString &name);
};

} // namespace ff::web
