#pragma once
// The import of XML record files: each file becomes a new record, made by the store's new-record
// routine and filled by XMLimport, its formulas run and saved. The first fills the store's blank
// record when the store was empty. A file that cannot be read, is too large for one record or
// names no element of the design adds nothing and is reported; the others go on.

#include "core/Result.h"
#include "export/ImportSetup.h"

#include <QString>
#include <QStringList>

namespace ff {

class ImportXmlFiles {
public:
    static Result<ImportReport> run(const QStringList &fileNames, const ImportSetup &setup);

    // The text of an XML file: UTF-8 when the bytes are valid UTF-8, else the design's code page.
    static QString decodeText(const QByteArray &bytes, int fontCharset);
};

} // namespace ff
