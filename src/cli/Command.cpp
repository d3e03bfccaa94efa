#include "cli/Command.h"

#include <algorithm>

namespace ff::cli {

Command::Command(QString name, QString arguments, QString description)
    : name_(std::move(name)), arguments_(std::move(arguments)), description_(std::move(description)),
      helpOption_({QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Shows this help."))
{
}

QString Command::usage() const
{
    QString line = QStringLiteral("flatform-cli ") + name_;
    if (!arguments_.isEmpty())
        line += QLatin1Char(' ') + arguments_;
    return line + QStringLiteral(" [options]");
}

QString Command::helpText() const
{
    QList<QCommandLineOption> all = options_;
    all.append(helpOption_);
    QStringList left;
    qsizetype width = 0;
    for (const QCommandLineOption &o : all) {
        QStringList names;
        for (const QString &n : o.names())
            names << (n.size() == 1 ? QStringLiteral("-") : QStringLiteral("--")) + n;
        QString text = names.join(QStringLiteral(", "));
        if (!o.valueName().isEmpty())
            text += QStringLiteral(" <") + o.valueName() + QLatin1Char('>');
        width = std::max(width, text.size());
        left << text;
    }
    QString help = QStringLiteral("Usage: ") + usage() + QStringLiteral("\n") + description_ + QStringLiteral("\n\nOptions:\n");
    for (qsizetype k = 0; k < all.size(); ++k)
        help += QStringLiteral("  ") + left[k].leftJustified(width + 2) + all[k].description() + QLatin1Char('\n');
    return help;
}

bool Command::namesOption(const QString &argument) const
{
    if (!argument.startsWith(QLatin1Char('-')))
        return false;
    QString n = argument.mid(argument.startsWith(QLatin1String("--")) ? 2 : 1);
    n = n.left(n.indexOf(QLatin1Char('=')));
    if (helpOption_.names().contains(n))
        return true;
    for (const QCommandLineOption &o : options_)
        if (o.names().contains(n))
            return true;
    return false;
}

int Command::run(const QStringList &arguments, CommandIo &io)
{
    QCommandLineParser parser;
    parser.addOptions(options_);
    parser.addOption(helpOption_);
    QStringList words = arguments;
    if (optionsFirst_) {
        parser.setOptionsAfterPositionalArgumentsMode(QCommandLineParser::ParseAsPositionalArguments);
        // Everything from the first word that is not an option on is positional, also "-5".
        qsizetype k = 0;
        while (k < words.size() && words[k] != QLatin1String("--") && namesOption(words[k])) {
            const bool takesValue = std::any_of(options_.begin(), options_.end(), [&](const QCommandLineOption &o) {
                return !o.valueName().isEmpty() && !words[k].contains(QLatin1Char('='))
                    && o.names().contains(words[k].mid(words[k].startsWith(QLatin1String("--")) ? 2 : 1));
            });
            k += takesValue ? 2 : 1;
        }
        if (k < words.size() && words[k] != QLatin1String("--"))
            words.insert(k, QStringLiteral("--"));
    }
    // A minus before a number or a bracket is no option: such a word goes past the parser under
    // a stand-in name that no option can have, and comes back in its place.
    QStringList negative;
    for (QString &w : words) {
        if (w == QLatin1String("--"))
            break;
        if (w.size() > 1 && w.at(0) == QLatin1Char('-') && !w.at(1).isLetter() && w.at(1) != QLatin1Char('-')) {
            negative.append(w);
            w = QChar(0x1F) + QString::number(negative.size() - 1);
        }
    }
    // The parser takes the program's name first.
    if (!parser.parse(QStringList{QStringLiteral("flatform-cli")} + words))
        return usageError(io, parser.errorText());
    if (parser.isSet(helpOption_)) {
        io.out << helpText();
        return 0;
    }
    QStringList positional = parser.positionalArguments();
    for (QString &p : positional)
        if (p.startsWith(QChar(0x1F)))
            p = negative.value(p.mid(1).toInt());
    return execute(parser, positional, io);
}

void Command::writeUtf8(QTextStream &out, const QByteArray &text)
{
    if (QIODevice *device = out.device()) {
        out.flush();
        device->write(text);
    } else {
        out << QString::fromUtf8(text);
    }
}

int Command::usageError(CommandIo &io, const QString &why) const
{
    if (!why.isEmpty())
        io.err << name_ << ": " << why << "\n";
    io.err << "usage: " << usage() << "\n";
    return 2;
}

} // namespace ff::cli
