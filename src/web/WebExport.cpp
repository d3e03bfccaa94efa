#include "web/WebExport.h"

#include "export/ExportRecordReader.h"
#include "export/ExportWalk.h"
#include "web/PageBackground.h"
#include "web/PagePictures.h"
#include "web/PhpSiteWriter.h"
#include "web/RecordPageWriter.h"

#include <QDir>
#include <QFile>

namespace ff::web {

namespace {

Status writeBytes(const QString &path, const QByteArray &bytes)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate) || file.write(bytes) != bytes.size())
        return makeError(ErrorCode::PathError, QStringLiteral("cannot write %1: %2").arg(path, file.errorString()));
    return {};
}

Status saveBackgrounds(const PageBackground &background, int pageCount, const QString &folder)
{
    for (int k = 0; k <= qBound(0, pageCount, 4); ++k)
        if (Status s = background.SaveBackground(k, folder + QStringLiteral("Background%1.jpg").arg(k)); !s)
            return s;
    return {};
}

} // namespace

Result<ExportOutcome> WebExport::run(ExportKind kind, const ExportRange &range, const QString &folder, const QString &name,
                                     Progress *progress)
{
    const QString base = CutExportExtension(name);
    if (base.isEmpty())
        return makeError(ErrorCode::BadFileName, QStringLiteral("no name to export to"));
    if (!IsPlainFileName(base))
        return makeError(ErrorCode::BadFileName, QStringLiteral("\"%1\" is not a file name").arg(name));
    const QDir dir(folder.isEmpty() ? QStringLiteral(".") : folder);
    if (!dir.exists())
        return makeError(ErrorCode::PathError, QStringLiteral("there is no folder %1").arg(folder));
    if (kind == ExportKind::PhpSite)
        return writeSite(dir.absolutePath() + QLatin1Char('/'), base);
    if (kind != ExportKind::HtmlPages && kind != ExportKind::HtmlCurrent)
        return makeError(ErrorCode::Invalid, QStringLiteral("not a web export"));
    if (Status s = range.check(); !s)
        return s.error();
    return writePages(kind, range, dir.absolutePath() + QLatin1Char('/'), base, progress);
}

Result<ExportOutcome> WebExport::writeSite(const QString &folder, const QString &name)
{
    const Design &design = store_.design();
    const PageBackground background(design, pictureFolder_);
    if (Status s = saveBackgrounds(background, design.PageCount, folder); !s)
        return s.error();
    RecordPageWriter writer(design, pictureFolder_, store_.RecordPictureFolder());
    writer.setTarget(folder, name + QStringLiteral(".htm"), true);
    writer.setRecordCount(store_.RecordCount());
    int argument = -1;
    if (Status s = writer.WriteRecordPages(argument, store_.page(), context_); !s)
        return s.error();
    const CodePage codePage(design.FontCharset);
    if (Status s = writeBytes(folder + name + QStringLiteral(".php"), codePage.encode(PhpSiteWriter::postingScript(design, name))); !s)
        return s.error();
    const QString dataFile = folder + name + QLatin1Char('.') + design.TextExtension;
    if (Status s = writeBytes(dataFile, codePage.encode(PhpSiteWriter::headRow(design) + QStringLiteral("\r\n"))); !s)
        return s.error();
    ExportOutcome outcome;
    outcome.path = folder + name + QStringLiteral(".php");
    return outcome;
}

Result<ExportOutcome> WebExport::writePages(ExportKind kind, const ExportRange &range, const QString &folder,
                                            const QString &name, Progress *progress)
{
    const Design &design = store_.design();
    const QString exportFolder = folder + name + QLatin1Char('/');
    if (!QDir().mkpath(exportFolder))
        return makeError(ErrorCode::PathError, QStringLiteral("cannot make the folder %1").arg(exportFolder));
    const PageBackground background(design, pictureFolder_);
    if (Status s = saveBackgrounds(background, design.PageCount, exportFolder); !s)
        return s.error();
    bool pictures = false;
    for (const PictureElement &p : design.Pictures)
        pictures = pictures || Design::onPage(p.PicturePage) || p.PicturePage == -1;
    if (pictures && !QDir().mkpath(exportFolder + QStringLiteral("Pictures")))
        return makeError(ErrorCode::PathError, QStringLiteral("cannot make the folder %1Pictures").arg(exportFolder));
    if (design.PageCount > 0) {
        // WriteButtonImages: the two tab pictures.
        for (const bool shown : {false, true})
            if (Status s = writeBytes(exportFolder + (shown ? QStringLiteral("button2.gif") : QStringLiteral("button.gif")),
                                      PagePictures::tabPicture(shown));
                !s)
                return s.error();
    }

    const ExportSource source(store_, context_);
    RecordPageWriter writer(design, pictureFolder_, source.recordPictureFolder);
    writer.setTarget(exportFolder, name + QStringLiteral(".htm"), kind == ExportKind::HtmlCurrent);
    writer.setRecordCount(store_.RecordCount());
    FileWriter pageFiles;
    writer.setFileWriter(&pageFiles);
    ExportRecordReader reader(source, ExportRecordReader::Mode::Page,
                              range.order() == BrowseOrder::FileOrder ? ExportRecordReader::Access::InOrder
                                                                      : ExportRecordReader::Access::Jumping);
    ExportOutcome outcome;
    outcome.path = exportFolder;
    const ExportRange walked = kind == ExportKind::HtmlCurrent ? range.head(1) : range;
    Result<WalkEnd> end = WalkExportRange(walked, progress, 10, [&](int, int record) -> Status {
        if (Status s = reader.load(record); !s)
            return s;
        int argument = record;
        if (Status s = writer.WriteRecordPages(argument, reader.page(), reader.context()); !s)
            return s;
        ++outcome.records;
        return {};
    });
    // Every page handed over is written (or the first that failed is known) before the outcome.
    const Status written = pageFiles.finish();
    if (!end)
        return end.error();
    if (!written)
        return written.error();
    outcome.stopped = end->stopped;
    outcome.pictures = writer.picturesWritten();

    // The flow layer's images: every file of the app's Images folder.
    const QDir images(QDir(pictureFolder_).filePath(QStringLiteral("Images")));
    const QStringList files = images.exists() ? images.entryList(QDir::Files) : QStringList();
    if (!files.isEmpty()) {
        if (!QDir().mkpath(exportFolder + QStringLiteral("Images")))
            return makeError(ErrorCode::PathError, QStringLiteral("cannot make the folder %1Images").arg(exportFolder));
        for (const QString &file : files) {
            const QString target = exportFolder + QStringLiteral("Images/") + file;
            QFile::remove(target);
            std::ignore = QFile::copy(images.filePath(file), target); // a file that cannot be copied is skipped
        }
    }
    if (kind == ExportKind::HtmlPages) {
        const CodePage codePage(design.FontCharset);
        if (Status s = writeBytes(exportFolder + QStringLiteral("index.php"), codePage.encode(PhpSiteWriter::pagingScript(design))); !s)
            return s.error();
    }
    return outcome;
}

} // namespace ff::web
