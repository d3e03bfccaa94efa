// flatform-cli eval: the formula evaluator on its own, for scripts and for checking stored formulas.

#include "cli/Command.h"
#include "formula/Evaluator.h"

#include <QLocale>

#include <cstdio>
#include <string>

namespace ff::cli {

class EvalCommand : public Command {
public:
    QString name() const override { return QStringLiteral("eval"); }
    QString usage() const override
    {
        return QStringLiteral("eval [EXPR]  (no EXPR: one expression per line from standard input)");
    }

    int run(const QStringList &args, QTextStream &out, QTextStream &err) override
    {
        const QString separator = QLocale().decimalPoint();
        if (!args.isEmpty()) {
            QString expression = args.join(QLatin1Char(' '));
            out << EvaluateToText(expression, separator) << '\n';
            return 0;
        }
        // One result line per input line, in order. Plain stdio keeps thousands of lines fast.
        std::string line;
        std::string output;
        int ch;
        while (true) {
            line.clear();
            bool any = false;
            while ((ch = std::getchar()) != EOF) {
                any = true;
                if (ch == '\n')
                    break;
                line.push_back(static_cast<char>(ch));
            }
            if (!any)
                break;
            if (!line.empty() && line.back() == '\r')
                line.pop_back();
            QString expression = QString::fromLatin1(line.data(), static_cast<qsizetype>(line.size()));
            out << EvaluateToText(expression, separator) << '\n';
            if (ch == EOF)
                break;
        }
        (void)err;
        return 0;
    }
};

FF_REGISTER_COMMAND(EvalCommand);

} // namespace ff::cli
