#include "gui/PickedFieldsFind.h"

#include "search/SearchParser.h"

#include <algorithm>
#include <limits>

namespace ff::gui {

PickedFieldsFind::PickedFieldsFind(SearchEngine &engine, QVector<SearchField> fields) : engine_(engine)
{
    // A field picked twice is looked in once; elements the search cannot read are left out.
    for (const SearchField &f : fields) {
        if (!f.valid())
            continue;
        const bool known = std::any_of(fields_.cbegin(), fields_.cend(),
                                       [&](const SearchField &g) { return g.kind == f.kind && g.index == f.index; });
        if (!known)
            fields_.append(f);
    }
}

bool PickedFieldsFind::takes(const QString &line) const
{
    return !fields_.isEmpty() && !SearchParser::IsCommand(line) && !line.startsWith(QLatin1Char('!'));
}

PickedFieldsFind::WalkRank::WalkRank(const SearchOptions &o) : direction(o.forward ? 1 : -1)
{
    if (o.within && !o.within->isEmpty()) {
        byPlace = true;
        for (qsizetype k = 0; k < o.within->size(); ++k)
            places.insert(o.within->at(k), k + 1);
    } else if (o.sortIndex && (o.order == BrowseOrder::SortIndexUp || o.order == BrowseOrder::SortIndexDown)) {
        // Sort down reads the index from its end.
        byPlace = true;
        const int64_t sign = o.order == BrowseOrder::SortIndexDown ? -1 : 1;
        for (qsizetype k = 1; k < o.sortIndex->size(); ++k)
            places.insert(o.sortIndex->at(k), sign * k);
    }
}

int64_t PickedFieldsFind::WalkRank::of(int record) const
{
    return direction * (byPlace ? places.value(record) : int64_t(record));
}

SearchResult PickedFieldsFind::run(const QString &line, const SearchOptions &options, FormulaContext *context)
{
    QVector<CompiledQuery> queries;
    for (const SearchField &f : fields_)
        queries.append(engine_.compile(line, options.matchCase, f));
    const CompiledQuery &model = queries.first();
    if (model.terms.isEmpty())
        return engine_.run(model, options, nullptr, context); // nothing to find: nothing is walked

    // With "+" terms, one stage per term, each over the records that held the terms before it;
    // with " or " terms (or one term) a single stage. A stage is one pass per picked field.
    const qsizetype stages = model.allTerms ? model.terms.size() : 1;
    SearchOptions pass = options;
    pass.hitCap = std::numeric_limits<int>::max(); // a pass loses no hit: the cap is for the list
    pass.silent = true;
    const bool restricted = options.within && !options.within->isEmpty();
    QVector<int> candidates = restricted ? *options.within : QVector<int>();

    SearchResult out;
    out.command = CommandKind::Find;
    bool columnsSet = false;
    QHash<int, QString> found; // the stage's hits with their rows
    for (qsizetype stage = 0; stage < stages && !out.aborted; ++stage) {
        if (stage > 0 || restricted) {
            if (candidates.isEmpty())
                break; // an empty list would walk every record
            pass.within = &candidates;
        } else {
            pass.within = nullptr;
        }
        found.clear();
        for (const CompiledQuery &q : queries) {
            CompiledQuery one = q;
            if (model.allTerms && q.terms.size() == model.terms.size())
                one.terms = {q.terms.at(stage)};
            const SearchResult r = engine_.run(one, pass, nullptr, context);
            out.ran = out.ran || r.ran;
            if (r.ran && !columnsSet) {
                out.columns = r.columns;
                out.columnCount = r.columnCount;
                columnsSet = true;
            }
            if (stage == 0)
                out.walked = std::max(out.walked, r.walked);
            for (qsizetype k = 0; k < r.hits.size() && k < r.rows.size(); ++k)
                found.insert(r.hits.at(k), r.rows.at(k)); // the same row from whichever field found it
            if (r.aborted) {
                out.aborted = true;
                break;
            }
        }
        if (out.aborted && stage + 1 < stages)
            found.clear(); // stopped before the last term: no record is known to hold them all
        candidates = found.keys();
        std::sort(candidates.begin(), candidates.end()); // the next passes read in file order
    }

    // In the order of the walk asked for.
    const WalkRank rank(options);
    QVector<int> hits = found.keys();
    std::sort(hits.begin(), hits.end(), [&](int a, int b) { return rank.of(a) < rank.of(b); });
    out.found = hits.size();
    const qsizetype kept = std::min<qsizetype>(hits.size(), std::max(0, options.hitCap));
    for (qsizetype k = 0; k < kept; ++k) {
        out.hits.append(hits.at(k));
        out.rows.append(found.value(hits.at(k)));
    }
    return out;
}

} // namespace ff::gui
