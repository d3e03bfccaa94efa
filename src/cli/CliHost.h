#pragma once
// What the record store and the formulas ask of their host, answered on the command line: a
// message goes to stderr after the verb's name.

#include "store/StoreHost.h"

#include <QTextStream>

namespace ff::cli {

class CliHost : public StoreHost {
public:
    CliHost(QTextStream &err, QString verb) : err_(err), verb_(std::move(verb)) {}
    void ShowMessage(const QString &, const QString &text, int) override { err_ << verb_ << ": " << text << "\n"; }

private:
    QTextStream &err_;
    QString verb_;
};

} // namespace ff::cli
