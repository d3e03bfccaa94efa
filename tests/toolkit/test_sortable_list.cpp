// The sortable list: row texts, the quick sort per column kind, reversing, marks, removing rows,
// choosing a row, and the sort on a list of 30,000 rows.

#include "toolkit/SortableList.h"

#include <QElapsedTimer>
#include <QHeaderView>
#include <QSignalSpy>
#include <QTableView>
#include <QtTest>

#include <algorithm>
#include <random>

using namespace ff::toolkit;

namespace {

// The first-column texts in the order shown.
QStringList shown(const ListSort &l, int column = 1)
{
    QStringList out;
    for (int p = 0; p < l.rowCount(); ++p)
        out << l.column(l.rowAt(p), column);
    return out;
}

bool isPermutation(const ListSort &l)
{
    std::vector<int32_t> o = l.RowOrder();
    std::sort(o.begin(), o.end());
    for (size_t i = 0; i < o.size(); ++i)
        if (o[i] != int32_t(i))
            return false;
    return true;
}

} // namespace

class ListPlusTest : public QObject {
    Q_OBJECT
private Q_SLOTS:
    void initTestCase() { QLocale::setDefault(QLocale(QLocale::English, QLocale::UnitedStates)); }

    void rowTextsFillElevenColumns()
    {
        ListSort l;
        l.AddArray({QStringLiteral("17"), QStringLiteral("4~a~b~~d"), QStringLiteral("x9~1~2~3~4~5~6~7~8~9~10~11~12")});
        QCOMPARE(l.ListTop(), 2);
        QCOMPARE(l.ListCount(), QStringLiteral("2")); // the upper bound, not the count
        QCOMPARE(l.GetContentNo(0), 17);
        QCOMPARE(l.GetText(0), QStringLiteral(",,,,,,,,,,")); // a number alone: eleven empty columns
        QCOMPARE(l.column(1, 4), QStringLiteral("d"));
        QCOMPARE(l.GetContentNo(2), 0);                      // Val of "x9"
        QCOMPARE(l.column(2, 11), QStringLiteral("11"));     // a twelfth piece is dropped
        QCOMPARE(l.RowOrder(), (std::vector<int32_t>{0, 1, 2}));
        l.AddArray({});
        QCOMPARE(l.ListTop(), -1);
        QVERIFY(!l.pressColumn(1)); // nothing to sort, nothing breaks
        QVERIFY(l.ASearchTypes(0, 1).ok());
        QVERIFY(l.ASearchTypes(11, 4).ok());
        QVERIFY(!l.ASearchTypes(12, 1).ok());
        QVERIFY(!l.ASearchTypes(-1, 1).ok());
    }

    void eachKindSortsByItsOwnOrder()
    {
        ListSort l;
        l.setSeed(7);
        l.AddArray({QStringLiteral("1~banana~$1,234.50~1/2/2024~10"), QStringLiteral("2~Apple~99.00~12/31/2023~9"),
                    QStringLiteral("3~cherry~-5~2/1/2024~100"), QStringLiteral("4~apple pie~($7.25)~1/10/2024~-3"),
                    QStringLiteral("5~Zed~1,000~not a date~abc")});
        for (int c = 1; c <= 4; ++c)
            QVERIFY(l.ASearchTypes(c, c).ok());
        QVERIFY(l.pressColumn(1)); // text, ignoring case
        QCOMPARE(shown(l), (QStringList{"Apple", "apple pie", "banana", "cherry", "Zed"}));
        QVERIFY(l.pressColumn(2)); // currency, with symbols, groups and brackets
        QCOMPARE(shown(l, 2), (QStringList{"($7.25)", "-5", "99.00", "1,000", "$1,234.50"}));
        QVERIFY(l.pressColumn(3)); // dates; a text that is no date counts as day 0
        QCOMPARE(shown(l, 3), (QStringList{"not a date", "12/31/2023", "1/2/2024", "1/10/2024", "2/1/2024"}));
        QVERIFY(l.pressColumn(4)); // whole numbers, not text: 9 before 10 before 100
        QCOMPARE(shown(l, 4), (QStringList{"-3", "abc", "9", "10", "100"}));
        QCOMPARE(l.SortColumn(), 4);
        QCOMPARE(ListSort::CurrencyKey(QStringLiteral("$1,234.50")), int64_t(12345000));
        QCOMPARE(ListSort::WholeKey(QStringLiteral("99999999999")), int32_t(2147483647));
    }

    void columnZeroAndUnknownKindsLeaveTheOrder()
    {
        ListSort l;
        l.AddArray({QStringLiteral("1~b~x"), QStringLiteral("2~a~y")});
        QVERIFY(l.ASearchTypes(1, 1).ok());
        QVERIFY(l.pressColumn(1));
        const std::vector<int32_t> sortedOrder = l.RowOrder();
        QVERIFY(!l.pressColumn(0));
        QVERIFY(!l.pressColumn(2)); // kind 0: not sortable
        QVERIFY(!l.pressColumn(12));
        QCOMPARE(l.RowOrder(), sortedOrder);
        QCOMPARE(l.SortColumn(), 1);
    }

    void secondPressReversesWithoutSorting()
    {
        // Counts of every remainder, with ties, so that the reverse is seen to keep the tie order
        // of the sort rather than sort again.
        for (int count : {1, 2, 3, 4, 5, 8, 11, 12, 50}) {
            ListSort l;
            l.setSeed(uint32_t(count));
            QStringList rows;
            for (int i = 0; i < count; ++i)
                rows << QStringLiteral("%1~%2").arg(i).arg(i % 3);
            l.AddArray(rows);
            QVERIFY(l.ASearchTypes(1, 4).ok());
            QVERIFY(l.pressColumn(1));
            std::vector<int32_t> expected = l.RowOrder();
            std::reverse(expected.begin(), expected.end());
            QVERIFY(l.pressColumn(1));
            QCOMPARE(l.RowOrder(), expected);
            std::reverse(expected.begin(), expected.end());
            QVERIFY(l.pressColumn(1)); // a third press goes back
            QCOMPARE(l.RowOrder(), expected);
        }
        // A press on another column and back sorts afresh, ascending.
        ListSort l;
        l.AddArray({QStringLiteral("1~b~2"), QStringLiteral("2~a~1"), QStringLiteral("3~c~3")});
        QVERIFY(l.ASearchTypes(1, 1).ok());
        QVERIFY(l.ASearchTypes(2, 4).ok());
        l.pressColumn(1);
        l.pressColumn(1);
        QCOMPARE(shown(l), (QStringList{"c", "b", "a"}));
        l.pressColumn(2);
        l.pressColumn(1);
        QCOMPARE(shown(l), (QStringList{"a", "b", "c"}));
    }

    void randomListsWithTiesSortToAPermutation()
    {
        // Many seeds and sizes around the selection-step limit; keys with many equal values.
        std::mt19937 gen(42);
        for (int round = 0; round < 60; ++round) {
            const int count = 1 + round * 7 % 97;
            QStringList rows;
            std::vector<int> values;
            for (int i = 0; i < count; ++i) {
                values.push_back(int(gen() % 6) - 2);
                rows << QStringLiteral("%1~%2").arg(i).arg(values.back());
            }
            ListSort l;
            l.setSeed(uint32_t(round));
            l.AddArray(rows);
            QVERIFY(l.ASearchTypes(1, 4).ok());
            l.pressColumn(1);
            QVERIFY(isPermutation(l));
            std::sort(values.begin(), values.end());
            for (int p = 0; p < count; ++p)
                QCOMPARE(l.column(l.rowAt(p), 1).toInt(), values[size_t(p)]);
            // Each row keeps its own record number: only the order moved.
            for (int r = 0; r < count; ++r)
                QCOMPARE(l.GetContentNo(r), r);
        }
    }

    void marksRemovalAndTheExportOrder()
    {
        ListSort l;
        l.AddArray({QStringLiteral("10~c"), QStringLiteral("20~a"), QStringLiteral("30~b"), QStringLiteral("40~A"),
                    QStringLiteral("50~d")});
        QVERIFY(l.ASearchTypes(1, 1).ok());
        l.pressColumn(1);
        l.pressColumn(1); // d c b a/A
        l.setMarked(2, true);
        QCOMPARE(l.PrintSelection(2), 30);
        QCOMPARE(l.PrintSelection(1), -1);
        QCOMPARE(l.RemoveText(QStringLiteral("a")), 3); // the mark, and "a" and "A" by name
        QCOMPARE(l.ListTop(), 1);
        QCOMPARE(shown(l), (QStringList{"d", "c"}));
        QCOMPARE(l.ImportReport(), (std::vector<int32_t>{50, 10}));
        QCOMPARE(l.markedCount(), 0);
        QCOMPARE(l.RemoveText(QStringLiteral("zz")), 0);
        l.pressColumn(1); // still the sort column: reverses
        QCOMPARE(l.ImportReport(), (std::vector<int32_t>{10, 50}));
    }

    void thirtyThousandRowsSortQuickly()
    {
        const int count = 30000;
        std::mt19937 gen(3);
        QStringList shuffled, inOrder;
        for (int i = 0; i < count; ++i) {
            const int v = int(gen() % 1000000);
            shuffled << QStringLiteral("%1~Name %2~%3.%4~%5").arg(i).arg(v).arg(v / 100).arg(v % 100, 2, 10, QLatin1Char('0')).arg(v);
            inOrder << QStringLiteral("%1~Name %2~%3.00~%4").arg(i).arg(i, 6, 10, QLatin1Char('0')).arg(i).arg(i);
        }
        const auto timeSort = [](const QStringList &rows, int column, int kind) {
            ListSort l;
            l.AddArray(rows);
            [&] { QVERIFY(l.ASearchTypes(column, kind).ok()); }();
            QElapsedTimer t;
            t.start();
            l.pressColumn(column);
            const qint64 ms = t.elapsed();
            [&] { QVERIFY(isPermutation(l)); }();
            return ms;
        };
        const qint64 text = timeSort(shuffled, 1, 1);
        const qint64 money = timeSort(shuffled, 2, 2);
        const qint64 whole = timeSort(shuffled, 3, 4);
        const qint64 sortedWhole = timeSort(inOrder, 3, 4);
        const qint64 sortedText = timeSort(inOrder, 1, 1);
        qInfo("30000 rows: text %lld ms, currency %lld ms, whole %lld ms; already in order: whole %lld ms, text %lld ms",
              text, money, whole, sortedWhole, sortedText);
        QVERIFY(text < 1500 && money < 1500 && whole < 1500);
        QVERIFY(sortedWhole < 1500 && sortedText < 1500);
    }

    void widgetSortsOnHeaderPressAndShowsTheDirection()
    {
        SortableList list;
        list.resize(500, 300);
        list.NameButton(0, QStringLiteral("No."));
        list.NameButton(1, QStringLiteral("Name"));
        QVERIFY(list.ASearchTypes(1, 1).ok());
        list.AddArray({QStringLiteral("1~b"), QStringLiteral("2~c"), QStringLiteral("3~a")});
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        QVERIFY(!list.view()->isColumnHidden(1));
        QVERIFY(list.view()->isColumnHidden(2)); // no caption, no text
        QSignalSpy sortedSpy(&list, &SortableList::sorted);
        QHeaderView *header = list.view()->horizontalHeader();
        const QPoint at(header->sectionViewportPosition(1) + 10, header->height() / 2);
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
        QCOMPARE(sortedSpy.count(), 1);
        QCOMPARE(list.view()->model()->index(0, 1).data().toString(), QStringLiteral("a"));
        QVERIFY(list.buttonCaption(1).endsWith(QChar(0x25B2)));
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, at);
        QCOMPARE(list.view()->model()->index(0, 1).data().toString(), QStringLiteral("c"));
        QVERIFY(list.buttonCaption(1).endsWith(QChar(0x25BC)));
        QTest::mouseClick(header->viewport(), Qt::LeftButton, {},
                          QPoint(header->sectionViewportPosition(0) + 10, header->height() / 2));
        QCOMPARE(sortedSpy.count(), 2); // column 0 sorts nothing
    }

    void choosingAndMarkingRows()
    {
        SortableList list;
        list.resize(500, 300);
        QVERIFY(list.ASearchTypes(1, 1).ok());
        list.AddArray({QStringLiteral("11~b"), QStringLiteral("22~c"), QStringLiteral("33~a")});
        list.show();
        QVERIFY(QTest::qWaitForWindowExposed(&list));
        QSignalSpy chosen(&list, &SortableList::rowChosen);
        list.SortButton(1); // a b c: place 1 is row 0, record 11
        QTableView *view = list.view();
        QTest::mouseClick(view->viewport(), Qt::LeftButton, {}, view->visualRect(view->model()->index(1, 1)).center());
        QCOMPARE(chosen.count(), 1);
        QCOMPARE(chosen.at(0).at(0).toInt(), 11);
        QCOMPARE(chosen.at(0).at(1).toInt(), 0);
        QCOMPARE(list.GetArrayItem(), 11);
        QCOMPARE(list.GetItem(), QStringLiteral("b"));
        // Keyboard: down to "c", Space marks it, Enter chooses it.
        view->setFocus();
        QTest::keyClick(view, Qt::Key_Down);
        QTest::keyClick(view, Qt::Key_Space);
        QVERIFY(list.isMarked(1));
        QCOMPARE(view->model()->index(2, 0).data(Qt::CheckStateRole).toInt(), int(Qt::Checked));
        QTest::keyClick(view, Qt::Key_Return);
        QCOMPARE(chosen.count(), 2);
        QCOMPARE(chosen.at(1).at(0).toInt(), 22);
        // Ctrl+S presses the current column's button: the same column, so it reverses and the
        // current row stays with its row.
        QTest::keyClick(view, Qt::Key_S, Qt::ControlModifier);
        QCOMPARE(view->model()->index(0, 1).data().toString(), QStringLiteral("c"));
        QCOMPARE(list.GetArrayItem(), 22);
        // With cSelect at most one row is marked; with mSelect off none can be.
        list.cSelect = 1;
        list.setMarked(2, true);
        QVERIFY(list.isMarked(2));
        QVERIFY(!list.isMarked(1));
        list.mSelect = 0;
        list.setMarked(0, true);
        QVERIFY(!list.isMarked(0));
        QVERIFY(!(view->model()->flags(view->model()->index(0, 0)) & Qt::ItemIsUserCheckable));
        QCOMPARE(list.RemoveText(), 1);
        QCOMPARE(list.rowCount(), 2);
        QCOMPARE(view->model()->rowCount(), 2);
    }
};

QTEST_MAIN(ListPlusTest)
#include "test_sortable_list.moc"
