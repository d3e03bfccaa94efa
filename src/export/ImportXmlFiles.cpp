#include "export/ImportXmlFiles.h"

#include "core/CodePage.h"
#include "export/XmlRecord.h"

#include <QFile>
#include <QStringDecoder>

namespace ff {

namespace {

constexpr qint64 kMaxXmlFile = 64 << 20; // far more than one record can hold

} // namespace

QString ImportXmlFiles::decodeText(const QByteArray &bytes, int fontCharset)
{
    QStringDecoder utf8(QStringDecoder::Utf8);
    const QString text = utf8.decode(bytes);
    if (!utf8.hasError())
        return text;
    return CodePage(fontCharset).decode(bytes);
}

Result<ImportReport> ImportXmlFiles::run(const QStringList &fileNames, const ImportSetup &setup)
{
    if (!setup.store)
        return makeError(ErrorCode::Invalid, QStringLiteral("no record store"));
    RecordStore &store = *setup.store;
    if (!store.writingAllowed())
        return makeError(ErrorCode::PermissionDenied, store.file().DataFileName() + QStringLiteral(" is read-only"));
    if (Status saved = store.SaveIfDirty(); !saved)
        return saved.error();
    ImportReport report;
    bool intoRecordOne = setup.storeWasEmpty && store.RecordCount() <= 1;
    for (qsizetype k = 0; k < fileNames.size(); ++k) {
        const QString &name = fileNames[k];
        QFile file(name);
        if (!file.open(QIODevice::ReadOnly)) {
            report.warnings << QStringLiteral("%1: %2").arg(name, file.errorString());
            continue;
        }
        if (file.size() > kMaxXmlFile) {
            report.warnings << QStringLiteral("%1: too large for one record").arg(name);
            continue;
        }
        const QString text = decodeText(file.readAll(), store.design().FontCharset);
        // A file that names nothing of this design would only add a blank record.
        Page probe(store.design());
        const XmlImportResult probed = XmlRecord::XMLimport(probe, text, true);
        if (probed.valuesSet + probed.labelsAdded + probed.imagesAdded == 0) {
            report.warnings << QStringLiteral("%1: names no field of this design").arg(name);
            continue;
        }
        if (intoRecordOne) {
            intoRecordOne = false;
            if (Status shown = store.JumpToRecord(1); !shown)
                return shown.error();
        } else if (Status made = store.NewRecord(); !made) {
            if (made.error().code == ErrorCode::Overflow) {
                report.limitReached = true; // the store has shown the message
                break;
            }
            return made.error();
        }
        XmlRecord::XMLimport(store.page(), text, false);
        if (Status locked = store.LockRecord(); !locked)
            return locked.error();
        store.hooks().RunFormulas(store.page(), store.CurrentRecord());
        if (Status saved = store.PackRecord(); !saved)
            return saved.error();
        if (report.firstRecord == 0)
            report.firstRecord = store.CurrentRecord();
        ++report.added;
        if (setup.progress) {
            setup.progress->setPercent(int((k + 1) * 100 / fileNames.size()));
            if (setup.progress->cancelled()) {
                report.stopped = true;
                break;
            }
        }
    }
    return report;
}

} // namespace ff
