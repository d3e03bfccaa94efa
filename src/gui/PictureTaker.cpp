#include "gui/PictureTaker.h"

#include "design/Page.h"
#include "pagetools/PictureNaming.h"
#include "pdfmail/JpegEncoder.h"
#include "pdfmail/JpegPictureSink.h"
#include "pdfmail/PictureFit.h"
#include "store/RecordStore.h"

#include <QFile>
#include <QFileInfo>
#include <QImageReader>

namespace ff::gui {

PictureTaker::PictureTaker(RecordStore &store, Page &page) : store_(store), page_(page) {}

bool PictureTaker::isRecordPicture(int field) const
{
    const auto &pictures = page_.design().Pictures;
    return field >= 0 && size_t(field) < pictures.size() && pictures[size_t(field)].Stretch
        && field < page_.PictureRecordName.size();
}

QSize PictureTaker::fieldPixels(int field) const
{
    if (!isRecordPicture(field))
        return {};
    const PictureElement &p = page_.design().Pictures[size_t(field)];
    return JpegPictureSink::fieldPixels(int(p.Width), int(p.Height));
}

QString PictureTaker::currentFile(int field) const
{
    if (!isRecordPicture(field))
        return {};
    const QString path = PictureNaming::filePath(store_.RecordPictureFolder(), page_.PictureRecordName[field]);
    return QFileInfo(path).isFile() ? path : QString();
}

Status PictureTaker::mayChange(int field)
{
    if (!isRecordPicture(field))
        return makeError(ErrorCode::Invalid, QStringLiteral("This picture is part of the design and cannot be changed."));
    if (!store_.writingAllowed())
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("The records are read-only: the picture cannot be changed."));
    if (store_.RecordPictureFolder().isEmpty())
        return makeError(ErrorCode::PathError, QStringLiteral("The database has no picture folder."));
    const Status locked = store_.LockRecord();
    if (!locked && locked.error().code == ErrorCode::PermissionDenied)
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("Another user is changing this record: the picture was not stored."));
    return {};
}

Result<QString> PictureTaker::takeFile(int field, const QString &source, Options options)
{
    QImageReader reader(source);
    const QImage picture = reader.read();
    if (picture.isNull())
        return makeError(reader.error() == QImageReader::FileNotFoundError ? ErrorCode::FileNotFound : ErrorCode::Invalid,
                         QStringLiteral("%1 is not a picture that can be read (%2). Nothing was stored.")
                             .arg(QFileInfo(source).fileName(), reader.errorString()));
    return store(field, picture, source, options);
}

Result<QString> PictureTaker::takeImage(int field, const QImage &picture, Options options)
{
    if (picture.isNull())
        return makeError(ErrorCode::Invalid, QStringLiteral("The clipboard holds no picture. Nothing was stored."));
    return store(field, picture, QString(), options);
}

Result<QString> PictureTaker::store(int field, const QImage &picture, const QString &source, Options options)
{
    if (Status may = mayChange(field); !may)
        return may.error();
    const QString firstFile = store_.file().partName(0);
    // The number as the file holds it now: another user may have stored pictures meanwhile.
    Result<int32_t> last = PictureNaming::readNextNumber(firstFile);
    if (!last)
        return last.error();
    const int32_t number = *last + 1;
    const QString name = PictureNaming::storedName(number, options.resize, source);
    Result<QString> path = JpegPictureSink::pathInFolder(store_.RecordPictureFolder(), name);
    if (!path)
        return path.error();
    QFile::remove(*path); // a file left behind under a number not yet counted

    if (options.resize || source.isEmpty() || !QFileInfo(source).isFile()) {
        QImage saved = picture;
        if (options.resize) {
            saved = PictureFit::fit(picture, fieldPixels(field), options.keepRatio ? FitMode::KeepRatio : FitMode::Stretch);
            if (saved.isNull())
                return makeError(ErrorCode::Invalid, QStringLiteral("The picture field is too small to hold a picture."));
        }
        JpegEncoder encoder;
        encoder.SampleImage(saved);
        if (Status s = encoder.SaveFile(*path); !s)
            return s.error();
    } else if (!QFile::copy(source, *path)) {
        return makeError(ErrorCode::PathError, QStringLiteral("Cannot copy %1 to %2.").arg(source, *path));
    }

    if (Status counted = PictureNaming::writeNextNumber(firstFile, store_.layout().RecordLength, number); !counted) {
        QFile::remove(*path); // the number could not be taken: no file under it either
        return counted.error();
    }
    // The field's former file goes once the new one stands.
    const QString old = currentFile(field);
    if (!old.isEmpty() && old != *path)
        QFile::remove(old);
    page_.PictureRecordName[field] = PictureNaming::recordName(name);
    Q_EMIT page_.elementChanged(ElementKind::Picture, field);
    return page_.PictureRecordName[field];
}

Status PictureTaker::removePicture(int field)
{
    if (Status may = mayChange(field); !may)
        return may;
    const QString old = currentFile(field);
    if (!old.isEmpty() && !QFile::remove(old))
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("Cannot delete %1.").arg(old));
    page_.PictureRecordName[field].clear();
    Q_EMIT page_.elementChanged(ElementKind::Picture, field);
    return {};
}

} // namespace ff::gui
