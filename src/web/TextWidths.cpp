#include "web/TextWidths.h"

namespace ff::web {

namespace {

QFont unkerned(QFont font)
{
    font.setKerning(false);
    return font;
}

} // namespace

TextWidths::TextWidths(QFont font, const QPaintDevice *device)
    : metrics_(unkerned(std::move(font)), device)
{
    latin_.fill(-1.0);
}

double TextWidths::advance(QStringView character) const
{
    if (character.size() == 1 && character[0].unicode() < latin_.size()) {
        double &known = latin_[character[0].unicode()];
        if (known < 0)
            known = metrics_.horizontalAdvance(character[0]);
        return known;
    }
    const QString key = character.toString();
    auto it = other_.constFind(key);
    if (it == other_.constEnd())
        it = other_.insert(key, metrics_.horizontalAdvance(key));
    return *it;
}

double TextWidths::width(QStringView text) const
{
    double sum = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const qsizetype length = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate() ? 2 : 1;
        sum += advance(text.mid(i, length));
        i += length - 1;
    }
    return sum;
}

QString TextWidths::fit(const QString &text, double width) const
{
    double sum = 0;
    for (qsizetype i = 0; i < text.size(); ++i) {
        const qsizetype length = text[i].isHighSurrogate() && i + 1 < text.size() && text[i + 1].isLowSurrogate() ? 2 : 1;
        sum += advance(QStringView(text).mid(i, length));
        if (sum > width)
            return text.left(i);
        i += length - 1;
    }
    return text;
}

} // namespace ff::web
