#pragma once
// Turns one imported row into a stored record: a new record's defaults, the values of the columns
// that name its elements, the formulas, and the record bytes as PackRecord writes them.
//
// How a value comes in depends on the element: a date field (types 6 to 9) reads it with the one
// date reader and shows it in its date format; a number field (1 to 5) reads it through the
// number clean-up and Val; other fields, combos and notes take the text; a check box is on for
// any number but 0; a record picture takes the name the import stored it under.
//
// One maker serves one thread: it has its own page and reads the shared design, layout and
// columns only. The record is built from the row's bytes directly; when the design has formulas,
// the row also goes onto the page, the formulas run, and what they changed is packed into it.

#include "core/CodePage.h"
#include "core/Result.h"
#include "design/Page.h"
#include "design/PendingRecord.h"
#include "export/ImportLineMachine.h"
#include "store/FormulaHooks.h"
#include "store/RecordCodec.h"
#include "store/RecordLayout.h"

#include <QLocale>
#include <QString>
#include <QStringList>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace ff {

// Which column feeds which element, from the upper-cased names of the header; -1 for none.
struct ImportColumns {
    std::vector<int> field, combo, check, note, picture; // indexed by element number
    int matched = 0;                                       // elements fed by some column
    int pictureColumns = 0;                                // record pictures among them

    // `header`: the column names, upper case. A column named "NO." (the record number of the
    // program's own export) feeds nothing.
    static ImportColumns match(const Design &design, const QStringList &header);
};

class ImportRecordMaker : private PendingRecord {
public:
    // `blank`: a new record's page (defaults, stamp); `hooks` run the formulas and format dates;
    // `locale` reads dates.
    ImportRecordMaker(const Design &design, const RecordLayout &layout, const ImportColumns &columns,
                      FormulaHooks &hooks, QChar decimalSeparator, const Page &blank, QLocale locale);

    // Record `record` from row `row` of `rows` into `out` (RecordLength bytes, as stored).
    // `pictureNames`: the row's stored picture names by picture number (may be null). A value
    // that does not fit its field (a whole number beyond 32 bits, an amount beyond the currency
    // range) comes in as 0 and is reported in `warnings`.
    void make(const ImportRows &rows, int row, int64_t record, const QString *pictureNames, char *out,
              QStringList &warnings);

    // Val(CleanNumber(text)) on the code page's bytes, as the number fields read their text.
    // `cleaned`, when given, receives the text after the clean-up (blanks out, "." the decimal
    // point, characters outside ASCII '?'); it stays empty with a separator outside ASCII.
    static double NumberFromBytes(std::string_view bytes, QChar decimalSeparator, const CodePage &codePage,
                                  std::string *cleaned = nullptr);

private:
    // The date reader's and the formatter's answers are kept: asking again changes nothing.
    std::optional<double> date(std::string_view bytes) const;
    QString dateText(int field, int type, double day) const;
    bool numberFits(int type, double value) const;
    // The row being made, as the formulas see it.
    QString fieldText(int n) const override;
    QString comboText(int n) const override;
    int checkValue(int n) const override;
    void putOnPage(ElementKind kind, int n, Page &page) override;
    int columnOf(const std::vector<int> &columns, int n) const; // -1 when the row has no value for it
    QString textOf(int column) const;
    double dayOf(int n) const;
    void fillBytes(const ImportRows &rows, int row, const QString *pictureNames, char *plain, QStringList &warnings);
    void putText(char *plain, int offset1, int size, std::string_view bytes) const;

    const Design &design_;
    const RecordLayout &layout_;
    const ImportColumns &columns_;
    FormulaHooks &hooks_;
    QChar decimalSeparator_;
    QString separatorText_;
    const Page &blank_;
    QLocale locale_;
    CodePage codePage_;
    RecordCodec codec_;
    Page page_;
    bool formulas_ = false;
    QByteArray blankPlain_; // the blank record's bytes, unscrambled
    QByteArray record_;     // the record being made, unscrambled
    const ImportRows *rows_ = nullptr;
    int row_ = 0;
    std::vector<std::pair<ElementKind, int>> onPage_; // elements the formulas wrote, on page_
    struct DateSlot {
        std::string key;
        std::optional<double> value;
        bool used = false;
    };
    mutable std::vector<DateSlot> dateSlots_; // the date reader's answers
    struct DateTextSlot {
        int type = -1;
        double day = 0;
        QString text;
    };
    mutable std::vector<DateTextSlot> dateTextSlots_; // shown texts of the days
    // The row's number fields as fillBytes read them (value and cleaned text), for the formulas
    // that name them: by field index, valid while `numbersRow_` is the row being made.
    struct RowNumber {
        double value = 0;
        std::string cleaned;
        bool read = false;
    };
    std::vector<RowNumber> rowNumbers_;
    const ImportRows *numbersRows_ = nullptr;
    int numbersRow_ = -1;
    QVector<QString> blankFieldText_, blankComboText_, blankNoteText_, blankPictureNames_;
    QVector<double> blankFieldDate_;
    QVector<bool> blankFieldLocked_;
    QVector<int> blankCheckValue_;
};

} // namespace ff
