#pragma once
// The template exports: a template of the design (TemplateText) filled with a record's values by
// the tag substitution and written with CR LF behind it, in the design's code page. The file's
// extension is the template's TemplateExtension with every "*" removed.
//
// One file: the first record of the range only, into the chosen folder as the chosen name, the
// record number and the extension; the template carries what it needs through its tags. One file
// a record: a folder of the chosen name is made, and each record of the range is written into it
// as the record number and the extension.

#include "core/Progress.h"
#include "core/Result.h"
#include "export/ExportOutcome.h"
#include "export/ExportRange.h"
#include "export/ExportRecordReader.h"

namespace ff {

class TemplateExport {
public:
    TemplateExport(const ExportSource &source, int templateIndex, bool oneFile);

    // An error when the template is not there, is empty, or has an extension that would leave the
    // folder; nothing is written then.
    Status check() const;
    // `base`: the chosen folder and name, the name's extension cut.
    Result<ExportOutcome> run(const ExportRange &range, const QString &base, Progress *progress);

private:
    const ExportSource &source_;
    int index_;
    bool oneFile_;
};

} // namespace ff
