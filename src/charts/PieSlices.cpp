#include "charts/PieSlices.h"

#include <QString>
#include <array>
#include <cmath>

namespace ff::charts {

namespace {

// Val of a text: the leading number, blanks skipped; 0 when there is none.
double valOf(const QString &text)
{
    const QString t = text.trimmed();
    qsizetype n = 0;
    while (n < t.size() && (t.at(n).isDigit() || t.at(n) == QLatin1Char('.') || (n == 0 && (t.at(n) == QLatin1Char('-') || t.at(n) == QLatin1Char('+')))))
        ++n;
    bool ok = false;
    const double v = t.left(n).toDouble(&ok);
    return ok ? v : 0;
}

// Round half to even, as the percentages are rounded.
double roundEven(double v) { return std::nearbyint(v); }

} // namespace

std::vector<int> CreatePieSlices(const std::vector<double> &values)
{
    std::vector<double> kept;
    double total = 0;
    for (const double v : values)
        if (v > 0) {
            kept.push_back(v);
            total += v;
        }
    std::vector<int> slices;
    if (kept.empty())
        return slices;
    double carry = 0;
    int sum = 0;
    for (const double v : kept) {
        const double raw = v / total * 100 + carry;
        const double rounded = roundEven(raw);
        slices.push_back(int(rounded));
        carry = raw - rounded;
        sum += int(rounded);
    }
    // What is left over after the carry goes to or comes from the largest slice.
    if (sum != 100) {
        size_t largest = 0;
        for (size_t k = 1; k < slices.size(); ++k)
            if (slices[k] > slices[largest])
                largest = k;
        slices[largest] += 100 - sum;
    }
    return slices;
}

std::vector<int> CreatePieSlices(const std::vector<QVariant> &values)
{
    std::vector<double> numbers;
    numbers.reserve(values.size());
    for (const QVariant &v : values) {
        bool ok = false;
        const double d = v.toDouble(&ok);
        numbers.push_back(ok ? d : valOf(v.toString()));
    }
    return CreatePieSlices(numbers);
}

std::vector<double> PieValues(const std::vector<int64_t> &counts)
{
    if (counts.size() == 1)
        return {99.9, 0.001};
    return std::vector<double>(counts.begin(), counts.end());
}

namespace {

// 31 colours far apart in hue and lightness.
constexpr std::array<unsigned, kSliceColours> kColours = {
    0xE6194B, 0x3CB44B, 0xFFE119, 0x4363D8, 0xF58231, 0x911EB4, 0x42D4F4, 0xF032E6, 0xBFEF45, 0xFABED4, 0x469990,
    0xDCBEFF, 0x9A6324, 0xFFFAC8, 0x800000, 0xAAFFC3, 0x808000, 0xFFD8B1, 0x000075, 0xA9A9A9, 0x1F77B4, 0xFF7F0E,
    0x2CA02C, 0xD62728, 0x9467BD, 0x8C564B, 0xE377C2, 0x7F7F7F, 0xBCBD22, 0x17BECF, 0x393B79};

} // namespace

QColor SliceColour(int k)
{
    return QColor::fromRgb(QRgb(kColours[size_t(((k % kSliceColours) + kSliceColours) % kSliceColours)]));
}

QColor WallColour(int k) { return SliceColour(k).darker(160); }

} // namespace ff::charts
