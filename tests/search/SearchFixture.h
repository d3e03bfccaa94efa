#pragma once
// A small database for the search tests: a design built in code with named fields of every kind
// the search reads, records written through the record store itself, and a search engine over it.
//
//   F1 name text 12, F2 price money(2), F3 qty whole, F4 when short date, F5 amount float,
//   F6 time "hh:nn:ss" text 8, F7 global (never searched), C1 city 10, C2 size 6 (a number combo),
//   C3 "name" again (the field wins), K0 paid, M1 memo 30.

#include "formula/DateNumber.h"
#include "search/SearchEngine.h"
#include "store/RecordStore.h"
#include "support/RecordingMessages.h"
#include "support/StoreFixture.h" // pins the locale

#include <QLocale>
#include <QTemporaryDir>

#include <gtest/gtest.h>

namespace ff::testsupport {

inline Design searchDesign(bool scramble = false)
{
    Design d;
    d.AppTitle = QStringLiteral("Search Test");
    d.MainCap = QStringLiteral("Search Test");
    d.DataExtension = QStringLiteral("dat");
    d.ScrambleRecords = scramble ? 1 : 0;
    d.Fields.resize(8);
    d.Fields[1] = makeField(0, 12);
    d.Fields[1].Tag = QStringLiteral("Name");
    d.Fields[2] = makeField(2);
    d.Fields[2].Tag = QStringLiteral("price");
    d.Fields[3] = makeField(5);
    d.Fields[3].Tag = QStringLiteral("qty");
    d.Fields[4] = makeField(7);
    d.Fields[4].Tag = QStringLiteral("when");
    d.Fields[5] = makeField(1);
    d.Fields[5].Tag = QStringLiteral("amount");
    d.Fields[6] = makeField(12, 8);
    d.Fields[6].Tag = QStringLiteral("time");
    d.Fields[7] = makeField(0, 5);
    d.Fields[7].FieldGlobal = true;
    d.Fields[7].Tag = QStringLiteral("global");
    d.FieldCount = 7;
    d.Combos.resize(4);
    d.Combos[1].MaxLength = 10;
    d.Combos[1].Tag = QStringLiteral("city");
    d.Combos[2].MaxLength = 6;
    d.Combos[2].ComboFormat = 1;
    d.Combos[2].Tag = QStringLiteral("size");
    d.Combos[3].MaxLength = 4;
    d.Combos[3].Tag = QStringLiteral("name");
    d.ComboCount = 3;
    d.Checks.resize(1);
    d.Checks[0].Tag = QStringLiteral("paid");
    d.CheckCount = 0;
    d.Notes.resize(2);
    d.Notes[1].MaxLength = 30;
    d.Notes[1].Tag = QStringLiteral("memo");
    d.NoteCount = 1;
    addLabels(d, 6);
    return d;
}

struct Row {
    QString name;
    QString price;
    int qty = 0;
    QDate when;
    double amount = 0;
    QString time;
    QString city;
    QString size;
    int paid = 0;
    QString memo;
};

// A database of the search design in a temporary folder.
struct SearchDb {
    QTemporaryDir dir;
    Design design;
    Page page;
    RecordStore store;
    RecordingMessages host;

    explicit SearchDb(bool scramble = false) : design(searchDesign(scramble)), page(design), store(design, page)
    {
        EXPECT_TRUE(store.openFileSet(dir.filePath(QStringLiteral("search.dat")), OpenMode::Create, QStringLiteral("Search")).ok());
    }

    void add(const Row &r)
    {
        ASSERT_TRUE(store.NewRecord().ok());
        page.FieldText[1] = r.name;
        page.FieldText[2] = r.price;
        page.FieldText[3] = QString::number(r.qty);
        page.FieldDate[4] = r.when.isValid() ? NumberFromDate(r.when) : 0;
        page.FieldText[5] = QString::number(r.amount, 'g', 15);
        page.FieldText[6] = r.time;
        page.ComboText[1] = r.city;
        page.ComboText[2] = r.size;
        page.CheckValue[0] = r.paid;
        page.NoteText[1] = r.memo;
        ASSERT_TRUE(store.PackRecord().ok());
    }

    SearchEngine engine() { return SearchEngine(store, QLatin1Char('.'), QLocale(QLocale::English, QLocale::UnitedStates)); }

    SearchResult run(const QString &line, SearchOptions o = {}, const QString &focus = QStringLiteral("F1"))
    {
        SearchEngine e = engine();
        const CompiledQuery q = e.compile(line, o.matchCase, e.names().byTag(focus));
        return e.run(q, o, &host);
    }
};

} // namespace ff::testsupport
