#include "support/ExampleImage.h"

#include "design/DesignJson.h"
#include "design/DesignWriter.h"
#include "support/Programs.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

namespace ff::testsupport {

QString examplePath(const QString &relative) { return sourcePath(QStringLiteral("examples/") + relative); }

ExampleImage buildExample(const QString &name, const QString &folder, const std::function<void(Design &)> &edit)
{
    QFile json(examplePath(name + QLatin1Char('/') + name + QStringLiteral(".json")));
    if (!json.open(QIODevice::ReadOnly))
        qFatal("cannot open the example %s", qPrintable(name));
    auto design = DesignJson::fromText(json.readAll());
    if (!design)
        qFatal("example %s: %s", qPrintable(name), qPrintable(design.error().text));
    if (edit)
        edit(*design);
    DesignWriter::Files files;
    const QDir dir(examplePath(name));
    for (const QString &file : dir.entryList({QStringLiteral("*.gif")}, QDir::Files)) {
        QFile f(dir.filePath(file));
        if (f.open(QIODevice::ReadOnly))
            files.insert(file, f.readAll());
    }
    QByteArray head(8192, '\0');
    QRandomGenerator rng(7);
    for (auto &b : head)
        b = static_cast<char>(rng.bounded(256));
    auto image = DesignWriter::writeImage(*design, head, files);
    if (!image)
        qFatal("writing the image failed: %s", qPrintable(image.error().text));
    ExampleImage out{*image, head.size(), QString()};
    if (!folder.isEmpty()) {
        out.path = QDir(folder).filePath(name + QStringLiteral(".exe"));
        QFile f(out.path);
        if (!f.open(QIODevice::WriteOnly) || f.write(out.bytes) != out.bytes.size())
            qFatal("cannot write the image");
    }
    return out;
}

QString loadSamples(const QString &name, const QString &imagePath)
{
    const ProgramRun loaded = runProgram(QStringLiteral("python3"),
                                         {sourcePath(QStringLiteral("tools/load_samples.py")),
                                          binaryPath(QStringLiteral("flatform-cli")), imagePath, examplePath(name)});
    return loaded.exitCode == 0 ? QString() : QString::fromLocal8Bit(loaded.err);
}

DesignLoad loadImage(const QString &path)
{
    DesignReadOptions options;
    options.extractFolder = QFileInfo(path).absolutePath();
    return ReadDesign(path, options);
}

QStringList sampleColumn(const QString &name, const QString &column)
{
    QFile f(examplePath(name + QStringLiteral("/records.tsv")));
    if (!f.open(QIODevice::ReadOnly))
        return {};
    const QStringList lines = QString::fromUtf8(f.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    const int at = int(lines.first().split(QLatin1Char('\t')).indexOf(column));
    QStringList values;
    for (const QString &line : lines.mid(1))
        values << line.split(QLatin1Char('\t')).value(at);
    return values;
}

} // namespace ff::testsupport
