// flatform-build: reads a readable design file (JSON) and the picture files beside it, and writes an
// app image: a copy of the run-time with the design block and its tail appended.

#include "design/BlockReader.h"
#include "design/DesignJson.h"
#include "design/DesignWriter.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTextStream>

namespace {

const char *kUsage = "usage: flatform-build DESIGN.json -o OUT.exe [--runtime PATH]\n";

int fail(const QString &message)
{
    QTextStream(stderr) << "flatform-build: " << message << "\n";
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    QCoreApplication app(argc, argv);
    QStringList args = app.arguments().mid(1);
    QString input, output, runtime;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args[i];
        if ((a == QLatin1String("-o") || a == QLatin1String("--runtime")) && i + 1 < args.size())
            (a == QLatin1String("-o") ? output : runtime) = args[++i];
        else if (a == QLatin1String("-h") || a == QLatin1String("--help")) {
            QTextStream(stdout) << kUsage;
            return 0;
        } else if (!a.startsWith(QLatin1Char('-')) && input.isEmpty())
            input = a;
        else {
            QTextStream(stderr) << "flatform-build: unexpected argument \"" << a << "\"\n" << kUsage;
            return 2;
        }
    }
    if (input.isEmpty() || output.isEmpty()) {
        QTextStream(stderr) << kUsage;
        return 2;
    }
    if (runtime.isEmpty())
        runtime = QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("flatform"));

    QFile jsonFile(input);
    if (!jsonFile.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read the design %1: %2").arg(input, jsonFile.errorString()));
    ff::Result<ff::Design> design = ff::DesignJson::fromText(jsonFile.readAll());
    if (!design)
        return fail(QStringLiteral("%1: %2").arg(input, design.error().text));

    // Picture files stand beside the design file; each name is embedded as it is written there.
    const QDir base = QFileInfo(input).absoluteDir();
    ff::DesignWriter::Files files;
    QStringList names;
    for (const auto &p : design->Pictures)
        names << p.FileName;
    names << design->BackgroundPicture;
    for (const QString &name : names) {
        if (name.isEmpty() || files.contains(name))
            continue;
        if (!ff::BlockReader::isSafeFileName(name))
            return fail(QStringLiteral("picture \"%1\": a picture must be a plain file name beside the design").arg(name));
        QFile picture(base.filePath(name));
        if (!picture.open(QIODevice::ReadOnly))
            return fail(QStringLiteral("picture \"%1\" not found beside the design (%2)").arg(name, picture.errorString()));
        files.insert(name, picture.readAll());
    }

    QFile runtimeFile(runtime);
    if (!runtimeFile.open(QIODevice::ReadOnly))
        return fail(QStringLiteral("cannot read the run-time %1: %2 (give one with --runtime PATH)").arg(runtime, runtimeFile.errorString()));
    const QByteArray head = runtimeFile.readAll();

    ff::Result<QByteArray> block = ff::DesignWriter::writeBlock(*design, head, files);
    if (!block)
        return fail(block.error().text);

    QSaveFile out(output);
    if (!out.open(QIODevice::WriteOnly) || out.write(head) != head.size() || out.write(*block) != block->size() || !out.commit())
        return fail(QStringLiteral("cannot write %1: %2").arg(output, out.errorString()));
    QFile::setPermissions(output, QFile::permissions(output) | QFileDevice::ExeOwner | QFileDevice::ExeGroup | QFileDevice::ExeOther);
    return 0;
}
