#include "pagetools/PictureNaming.h"

#include "design/RecordPictureFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace ff {

namespace {

// NextPictureNumber's place in the first data file, 1-based.
constexpr qint64 kNumberPosition = 10;

} // namespace

bool PictureNaming::isJpegName(const QString &name)
{
    const QString suffix = QFileInfo(name).suffix().toLower();
    return suffix == QLatin1String("jpg") || suffix == QLatin1String("jpeg") || suffix == QLatin1String("jpe");
}

QString PictureNaming::storedName(int32_t number, bool resized, const QString &sourceName)
{
    if (resized || sourceName.isEmpty() || isJpegName(sourceName))
        return (QStringLiteral("0000000") + QString::number(number)).right(7) + QStringLiteral(".jpg");
    // "000" and the number keep at least four digits; the source's last four characters are its
    // extension with the dot (".gif", ".bmp", ".png").
    const QString digits = QStringLiteral("000") + QString::number(number);
    return digits.right(std::max<qsizetype>(4, QString::number(number).size())) + sourceName.right(4);
}

QString PictureNaming::recordName(const QString &fileName)
{
    if (fileName.size() <= RecordNameLength)
        return fileName;
    const qsizetype dot = fileName.lastIndexOf(QLatin1Char('.'));
    return (dot > 0 ? fileName.left(dot) : fileName).left(RecordNameLength);
}

QString PictureNaming::filePath(const QString &folder, const QString &recordName)
{
    return RecordPictureFile(folder, recordName);
}

Result<int32_t> PictureNaming::readNextNumber(const QString &firstDataFile)
{
    QFile f(firstDataFile);
    if (!f.open(QIODevice::ReadOnly))
        return makeError(ErrorCode::FileNotFound, QStringLiteral("Cannot open %1: %2").arg(firstDataFile, f.errorString()));
    if (!f.seek(kNumberPosition - 1))
        return makeError(ErrorCode::PathError, QStringLiteral("Cannot read %1").arg(firstDataFile));
    const QByteArray b = f.read(4);
    if (b.size() != 4)
        return int32_t(0); // a file too short to hold the number has given none out yet
    return int32_t(uint32_t(uint8_t(b[0])) | uint32_t(uint8_t(b[1])) << 8 | uint32_t(uint8_t(b[2])) << 16
                   | uint32_t(uint8_t(b[3])) << 24);
}

Status PictureNaming::writeNextNumber(const QString &firstDataFile, int recordLength, int32_t number)
{
    if (recordLength < kNumberPosition + 3)
        return {}; // the number would overwrite record 1: such a file keeps none
    // A file of its own: the store's open part and the record lock it holds stay untouched.
    QFile f(firstDataFile);
    if (!f.open(QIODevice::ReadWrite))
        return makeError(ErrorCode::PermissionDenied, QStringLiteral("Cannot write %1: %2").arg(firstDataFile, f.errorString()));
    QByteArray b(4, '\0');
    for (int k = 0; k < 4; ++k)
        b[k] = char((uint32_t(number) >> (8 * k)) & 0xFF);
    if (!f.seek(kNumberPosition - 1) || f.write(b) != 4)
        return makeError(ErrorCode::PathError, QStringLiteral("Cannot write %1: %2").arg(firstDataFile, f.errorString()));
    return {};
}

} // namespace ff
