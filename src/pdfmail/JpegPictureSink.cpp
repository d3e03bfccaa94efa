#include "pdfmail/JpegPictureSink.h"

#include "pdfmail/JpegEncoder.h"
#include "pdfmail/PictureFit.h"

#include <QDir>
#include <QImage>
#include <QImageReader>

namespace ff {

QString JpegPictureSink::pictureName(int32_t number)
{
    return (QStringLiteral("0000000") + QString::number(number)).right(7) + QStringLiteral(".jpg");
}

QSize JpegPictureSink::fieldPixels(int widthTwips, int heightTwips)
{
    const auto toPixels = [](int twips) { return (twips + TwipsPerPixel / 2) / TwipsPerPixel; };
    return QSize(toPixels(widthTwips), toPixels(heightTwips));
}

Result<QString> JpegPictureSink::pathInFolder(const QString &folder, const QString &name)
{
    if (folder.isEmpty())
        return makeError(ErrorCode::BadFileName, QStringLiteral("No picture folder is given for %1.").arg(name));
    if (name.isEmpty() || name == QLatin1String(".") || name == QLatin1String("..")
        || name.contains(QLatin1Char('/')) || name.contains(QLatin1Char('\\')))
        return makeError(ErrorCode::BadFileName,
                         QStringLiteral("The picture name \"%1\" does not stay inside the picture folder.").arg(name));
    return QDir(folder).filePath(name);
}

Result<QString> JpegPictureSink::storePicture(const ImportedPicture &picture)
{
    const QString name = pictureName(picture.number);
    Result<QString> path = pathInFolder(picture.folder, name);
    if (!path)
        return path.error();

    const QSize field = fieldPixels(picture.widthTwips, picture.heightTwips);
    if (field.isEmpty())
        return makeError(ErrorCode::Invalid, QStringLiteral("The picture field is too small to hold %1 (%2 x %3 twips).")
                                                 .arg(picture.source)
                                                 .arg(picture.widthTwips)
                                                 .arg(picture.heightTwips));

    QImageReader reader(picture.source);
    const QImage source = reader.read();
    if (source.isNull())
        return makeError(reader.error() == QImageReader::FileNotFoundError ? ErrorCode::FileNotFound : ErrorCode::Invalid,
                         QStringLiteral("Cannot read %1 as a picture: %2").arg(picture.source, reader.errorString()));

    JpegEncoder encoder;
    encoder.SampleImage(PictureFit::fit(source, field, FitMode::KeepRatio));
    if (Status saved = encoder.SaveFile(*path); !saved)
        return saved.error();
    return name;
}

} // namespace ff
