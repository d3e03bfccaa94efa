#pragma once
// One verb of flatform-cli. Each verb is a Command subclass in its own file that registers itself
// with FF_REGISTER_COMMAND; main() looks the verb up by name. Output goes to `out`, errors to `err`,
// and the return value is the process's exit code.

#include <QStringList>
#include <QTextStream>

#include <functional>
#include <memory>
#include <vector>

namespace ff::cli {

class Command {
public:
    virtual ~Command() = default;
    virtual QString name() const = 0;
    virtual QString usage() const = 0; // one line: "dump-design IMAGE"
    virtual int run(const QStringList &args, QTextStream &out, QTextStream &err) = 0;
};

using CommandFactory = std::function<std::unique_ptr<Command>()>;
std::vector<CommandFactory> &commandRegistry();

struct CommandRegistrar {
    explicit CommandRegistrar(CommandFactory factory) { commandRegistry().push_back(std::move(factory)); }
};

#define FF_REGISTER_COMMAND(Class)                                                                       \
    static ::ff::cli::CommandRegistrar registrar_##Class([] { return std::make_unique<Class>(); })

} // namespace ff::cli
