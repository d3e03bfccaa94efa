#pragma once
// Writes a sum of money out in English words, for cheques and invoices: "One Thousand Two Hundred
// Thirty-Four Dollars and Fifty Cents". The currency words follow the locale's currency sign
// (pound, euro, anything else dollar). A new instance serves each call.

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>

namespace ff {

class CMoney {
public:
    explicit CMoney(const QLocale &locale = QLocale());

    // `amount` is a number in the notation CleanNumber gives. More than two decimals are cut, not
    // rounded. A negative amount gives "Invalid Dollar Amount."; an amount that is no number, or
    // has more than ten groups of three digits, gives the empty text.
    QString MonetaryToWords(const QString &amount) const;

    static QString invalidAmount() { return QStringLiteral("Invalid Dollar Amount."); }

private:
    // One whole number in words; with `currency` the plural main word follows (even for 1: the
    // singular word is kept in the table but never used). No value when it cannot be written.
    std::optional<QString> numberWords(const QString &digits, bool currency) const;

    QStringList ones_;
    QStringList tens_;
    QString hundred_;
    QStringList groups_;
    QString singularMain_, pluralMain_, nothing_, singularMinor_, pluralMinor_;
};

} // namespace ff
