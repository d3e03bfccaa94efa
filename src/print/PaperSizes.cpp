#include "print/PaperSizes.h"

#include <QSizeF>
#include <array>

namespace ff::print {

namespace {

struct Paper {
    const char16_t *name;
    double width, height; // in millimetres or inches
    QPageSize::Unit unit;
};

// In number order; envelope B6 is given landscape, as the list names it.
const std::array<Paper, PaperSizes::Count> kPapers{{
    {u"Letter, 8½ x 11 in.", 8.5, 11, QPageSize::Inch},
    {u"Letter Small, 8½ x 11 in.", 8.5, 11, QPageSize::Inch},
    {u"Tabloid, 11 x 17 in.", 11, 17, QPageSize::Inch},
    {u"Ledger, 17 x 11 in.", 17, 11, QPageSize::Inch},
    {u"Legal, 8½ x 14 in.", 8.5, 14, QPageSize::Inch},
    {u"Statement, 5½ x 8½ in.", 5.5, 8.5, QPageSize::Inch},
    {u"Executive, 7½ x 10½ in.", 7.25, 10.5, QPageSize::Inch},
    {u"A3, 297 x 420 mm", 297, 420, QPageSize::Millimeter},
    {u"A4, 210 x 297 mm", 210, 297, QPageSize::Millimeter},
    {u"A4 Small, 210x297 mm", 210, 297, QPageSize::Millimeter},
    {u"A5, 148 x 210 mm", 148, 210, QPageSize::Millimeter},
    {u"B4, 250 x 354 mm", 250, 354, QPageSize::Millimeter},
    {u"B5, 182 x 257 mm", 182, 257, QPageSize::Millimeter},
    {u"Folio, 8½ x 13 in.", 8.5, 13, QPageSize::Inch},
    {u"Quarto, 215 x 275 mm", 215, 275, QPageSize::Millimeter},
    {u"10 x 14 in.", 10, 14, QPageSize::Inch},
    {u"11 x 17 in.", 11, 17, QPageSize::Inch},
    {u"Note, 8½ x 11 in.", 8.5, 11, QPageSize::Inch},
    {u"Envelope #9, 3 7/8 x 8 7/8 in.", 3.875, 8.875, QPageSize::Inch},
    {u"Envelope #10, 4 1/8 x 9½ in.", 4.125, 9.5, QPageSize::Inch},
    {u"Envelope #11, 4½ x 10 3/8 in.", 4.5, 10.375, QPageSize::Inch},
    {u"Envelope #12, 4½ x 11 in.", 4.5, 11, QPageSize::Inch},
    {u"Envelope #14, 5 x 11½ in.", 5, 11.5, QPageSize::Inch},
    {u"C size sheet", 17, 22, QPageSize::Inch},
    {u"D size sheet", 22, 34, QPageSize::Inch},
    {u"E size sheet", 34, 44, QPageSize::Inch},
    {u"Envelope DL, 110 x 220 mm", 110, 220, QPageSize::Millimeter},
    {u"Envelope C3, 324 x 458 mm", 324, 458, QPageSize::Millimeter},
    {u"Envelope C4, 229 x 324 mm", 229, 324, QPageSize::Millimeter},
    {u"Envelope C5, 162 x 229 mm", 162, 229, QPageSize::Millimeter},
    {u"Envelope C6, 114 x 162 mm", 114, 162, QPageSize::Millimeter},
    {u"Envelope C65, 114 x 229 mm", 114, 229, QPageSize::Millimeter},
    {u"Envelope B4, 250 x 353 mm", 250, 353, QPageSize::Millimeter},
    {u"Envelope B5, 176 x 250 mm", 176, 250, QPageSize::Millimeter},
    {u"Envelope B6, 176 x 125 mm", 176, 125, QPageSize::Millimeter},
    {u"Envelope, 110 x 230 mm", 110, 230, QPageSize::Millimeter},
    {u"Envelope Monarch, 3 7/8 x 7½ in.", 3.875, 7.5, QPageSize::Inch},
    {u"Envelope, 3 5/8 x 6½ in.", 3.625, 6.5, QPageSize::Inch},
    {u"U.S. Standard Fanfold, 14 7/8 x 11 in.", 14.875, 11, QPageSize::Inch},
    {u"German Standard Fanfold, 8½ x 12 in.", 8.5, 12, QPageSize::Inch},
    {u"German Legal Fanfold, 8½ x 13 in.", 8.5, 13, QPageSize::Inch},
}};

} // namespace

QString PaperSizes::name(int number)
{
    if (number < 1 || number > Count)
        return {};
    return QString::fromUtf16(kPapers[size_t(number - 1)].name);
}

QPageSize PaperSizes::pageSize(int number)
{
    if (number < 1 || number > Count)
        return {};
    const Paper &p = kPapers[size_t(number - 1)];
    return QPageSize(QSizeF(p.width, p.height), p.unit, name(number), QPageSize::FuzzyMatch);
}

int PaperSizes::numberOf(const QPageSize &size)
{
    if (!size.isValid())
        return 0;
    const QSizeF points = size.size(QPageSize::Point);
    for (int n = 1; n <= Count; ++n) {
        const QSizeF p = pageSize(n).size(QPageSize::Point);
        if (qAbs(p.width() - points.width()) < 2 && qAbs(p.height() - points.height()) < 2)
            return n;
    }
    return 0;
}

} // namespace ff::print
