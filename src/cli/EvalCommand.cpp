#include "cli/EvalCommand.h"

#include "formula/Evaluator.h"

#include <QLocale>

namespace ff::cli {

EvalCommand::EvalCommand()
    : Command(QStringLiteral("eval"), QStringLiteral("[EXPR...]"),
              QStringLiteral("Evaluates a formula expression and prints its value.\n"
                             "Without EXPR, evaluates one expression per line of standard input.\n"
                             "An expression may start with a minus: "
                             "\"eval -5+2\"; \"eval -- EXPR\" takes EXPR as it is, whatever it starts with."))
{
    takeOptionsFirst();
}

int EvalCommand::execute(const QCommandLineParser &, const QStringList &words, CommandIo &io)
{
    const QString separator = QLocale().decimalPoint();
    if (!words.isEmpty()) {
        QString expression = words.join(QLatin1Char(' '));
        io.out << EvaluateToText(expression, separator) << '\n';
        return 0;
    }
    if (!io.in)
        return 0;
    // One result line per input line, in order; the bytes are taken one character each. The input
    // is read in blocks (a read returns what has come so far, so a line typed alone is answered).
    QByteArray pending;
    auto evaluate = [&](QByteArray line) {
        if (line.endsWith('\r'))
            line.chop(1);
        QString expression = QString::fromLatin1(line);
        io.out << EvaluateToText(expression, separator) << '\n';
    };
    for (;;) {
        const QByteArray block = io.in->read(64 * 1024);
        if (block.isEmpty())
            break; // the end of the input
        pending += block;
        qsizetype start = 0;
        for (qsizetype end; (end = pending.indexOf('\n', start)) >= 0; start = end + 1)
            evaluate(pending.mid(start, end - start));
        pending.remove(0, start);
        io.out.flush();
    }
    if (!pending.isEmpty())
        evaluate(pending); // the last line needs no line break
    return 0;
}

} // namespace ff::cli
