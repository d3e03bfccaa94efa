// dump-design IMAGE: prints an app image's design as the readable design file.

#include "cli/Command.h"
#include "design/DesignJson.h"
#include "design/DesignReader.h"

namespace ff::cli {

class DumpDesignCommand : public Command {
public:
    QString name() const override { return QStringLiteral("dump-design"); }
    QString usage() const override { return QStringLiteral("dump-design IMAGE"); }
    int run(const QStringList &args, QTextStream &out, QTextStream &err) override
    {
        if (args.size() != 1) {
            err << "usage: flatform-cli " << usage() << "\n";
            return 2;
        }
        // No extraction folder: a dump never writes the embedded files.
        const DesignLoad load = ReadDesign(args.first(), DesignReadOptions{});
        if (!load.complete()) {
            err << "dump-design: " << args.first() << ": " << load.error.text << "\n";
            return 1;
        }
        out << QString::fromUtf8(DesignJson::toText(load.design));
        return 0;
    }
};

FF_REGISTER_COMMAND(DumpDesignCommand);

} // namespace ff::cli
