#include "design/DesignReader.h"

#include "design/BlockReader.h"
#include "design/DesignLayout.h"

#include <QFile>

#include <algorithm>
#include <cstring>

namespace ff {

void DeriveDesignValues(Design &d)
{
    int pages = 0;
    auto page = [&](int p) {
        if (p < kPageLimit && p > pages)
            pages = p;
    };
    for (const auto &e : d.Shapes)
        page(e.ShapePage);
    for (const auto &e : d.Lines)
        page(e.LinePage);
    d.HasRecordPictures = false;
    for (const auto &e : d.Pictures) {
        page(e.PicturePage);
        if (e.Stretch)
            d.HasRecordPictures = true;
    }
    for (const auto &e : d.Titles)
        if (e.present)
            page(e.TitlePage);
    for (size_t i = 1; i < d.Fields.size(); ++i)
        page(d.Fields[i].FieldPage);
    for (size_t i = 1; i < d.Combos.size(); ++i)
        page(d.Combos[i].ComboPage);
    for (size_t i = 1; i < d.Notes.size(); ++i)
        page(d.Notes[i].NotePage);
    for (const auto &e : d.Checks)
        page(e.CheckPage);
    for (const auto &e : d.Buttons)
        page(e.ButtonPage);
    d.PageCount = pages;

    for (auto &f : d.Fields) {
        if (f.FieldType == 23)
            f.MaxLength = 10;
        if (f.FieldGlobal)
            f.FieldNoSearch = 1;
    }
    for (auto &s : d.Shapes)
        if (s.BorderWidth == 0)
            s.BorderWidth = 1;
    // The label tables always have room for indexes 0 to 5.
    while (d.Titles.size() < size_t(kMinLabels))
        d.Titles.emplace_back();
    if (d.Fields.empty())
        d.Fields.emplace_back();
    if (d.Combos.empty())
        d.Combos.emplace_back();
    if (d.Notes.empty())
        d.Notes.emplace_back();
}

DesignLoad ReadDesignFromBytes(const QByteArray &image, const DesignReadOptions &options)
{
    DesignLoad load;
    const qint64 size = image.size();
    if (size < 4) {
        load.error = makeError(ErrorCode::Truncated, QStringLiteral("no design block: the file is shorter than the 4-byte tail"));
        DeriveDesignValues(load.design);
        return load;
    }
    int32_t distance = 0;
    std::memcpy(&distance, image.constData() + size - 4, 4);
    // The block starts `distance` bytes before the tail.
    const qint64 start = (size - 4) - qint64(distance);
    if (start < 0 || start >= size) {
        load.error = makeError(ErrorCode::Overflow,
                               QStringLiteral("no design block: the tail distance %1 points outside the file of %2 bytes")
                                   .arg(distance)
                                   .arg(size));
        DeriveDesignValues(load.design);
        return load;
    }
    load.blockStart = start;
    BlockReader reader(image, start);
    reader.setExtraction(options.extractFolder, options.collectFiles);
    DesignLayout::transfer(reader, load.design);
    reader.finish();
    load.error = reader.error();
    load.blockEnd = std::min(reader.position(), size);
    load.extractedFiles = reader.extractedFiles();
    load.refusedFiles = reader.refusedFiles();
    load.embeddedFiles = reader.files();
    // A block that breaks off once the reports have begun leaves the last report begun
    // incomplete; the reports before it were read whole.
    if (!load.complete() && !load.design.Reports.empty())
        load.design.Reports.back().Damaged = true;
    DeriveDesignValues(load.design);
    return load;
}

DesignLoad ReadDesign(const QString &imagePath, const DesignReadOptions &options)
{
    // Start-up reads the whole image once and takes every item from memory.
    QFile file(imagePath);
    if (!file.open(QIODevice::ReadOnly)) {
        DesignLoad load;
        load.error = makeError(file.exists() ? ErrorCode::PermissionDenied : ErrorCode::FileNotFound,
                               QStringLiteral("cannot open %1: %2").arg(imagePath, file.errorString()));
        DeriveDesignValues(load.design);
        return load;
    }
    const QByteArray image = file.readAll();
    return ReadDesignFromBytes(image, options);
}

} // namespace ff
