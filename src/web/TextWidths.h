#pragma once
// How wide a text is in one font, as the form measures it: the sum of the advances of its
// characters, without kerning or ligatures, each character measured once and kept. A hundred
// thousand record pages measure the same few hundred characters again and again; shaping every
// value through the font engine would cost more than writing the pages.

#include <QFont>
#include <QFontMetricsF>
#include <QHash>
#include <QString>

#include <array>

class QPaintDevice;

namespace ff::web {

class TextWidths {
public:
    TextWidths(QFont font, const QPaintDevice *device);

    double width(QStringView text) const;
    double height() const { return metrics_.height(); }
    // The longest start of `text` whose width stays at or below `width`.
    QString fit(const QString &text, double width) const;

private:
    double advance(QStringView character) const;

    QFontMetricsF metrics_;
    mutable std::array<double, 256> latin_; // below 0: not measured yet
    mutable QHash<QString, double> other_;
};

} // namespace ff::web
