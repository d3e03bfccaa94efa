#pragma once
// chart IMAGE TAG [--search "LINE"] [--png OUT] [--pie | --histogram]
//
// The chart of one element over all records, as the chart window shows it: for a number field the
// count, sum, average, lowest and highest and the ten ranges with their counts and shares; for any
// element the groups of its values (at most 31, the rest under "Others") with counts and shares.
// TAG is a name from the tags or F1, C1, K0. --search charts the records a select or find line
// lists. --png draws the chart into a PNG picture: the histogram of a number field unless --pie
// asks for the pie (a 3D pie; the pie is all an element without statistics has). --json prints the
// same figures as one JSON document.

#include "cli/DatabaseCommand.h"

namespace ff::cli {

class ChartCommand : public DatabaseCommand {
public:
    ChartCommand();

protected:
    std::optional<CliDatabase::Access> access(const QStringList &arguments, const QCommandLineParser &parser) const override;
    int executeOn(CliDatabase &database, const QStringList &arguments, const QCommandLineParser &parser,
                  CommandIo &io) override;

private:
    QCommandLineOption searchOption_;
    QCommandLineOption pngOption_;
    QCommandLineOption pieOption_;
    QCommandLineOption histogramOption_;
};

} // namespace ff::cli
