#pragma once
// The top of the formula language: recalculating the record on the page. RunFormulas takes a
// snapshot of what the page shows, runs the formula of each text field in the order of the field
// numbers and writes the results back into the page. SubstituteFields replaces field references
// and system variables in a line before the evaluator sees it; RunStatement carries out one
// assignment token.
//
// References read: F1.. text fields, C1.. combos, K0.. check fields, V0..V99 variables, all upper
// case and exact. Targets: f1.., c1.., k0.., m1.. (notes), v0..v99, MSGBOX, compared ignoring case.

#include "core/Result.h"
#include "design/Page.h"
#include "design/PendingRecord.h"
#include "formula/FormulaContext.h"

#include <QString>
#include <QVector>

#include <optional>
#include <vector>

namespace ff {

class FormulaEngine {
public:
    FormulaEngine(Page &page, FormulaContext &context);

    // Recalculates every formula of the record on the page. Failures are passed over: a failing
    // line has no effect and the walk goes on with the next line.
    void RunFormulas();
    // The same for a record not yet on the page (see PendingRecord): values are read from
    // `pending` until a formula writes their element, which `pending` puts on the page first.
    void RunFormulas(PendingRecord &pending);

    // Number mode (any mode but 1): system variables, then F, C and K references by their values
    // in the recalculation. Text mode (1): F and C by the live page texts with blanks turned into
    // "_", then K. Higher numbers first, so that F12 is not hit by F1.
    QString SubstituteFields(QString &line, int mode);
    // V99 down to V0 by the formula variables.
    QString ReplaceVariables(QString &line);
    // Lines of a page button: exact case throughout, live page values, no text mode.
    QString InsertV(QString &line);

    Status RunStatement(QString &token);

    // The value of text field n in the current or last recalculation as a number line holds it;
    // empty when no line named the field.
    QString FieldValue(int n) const;

private:
    int fieldCount() const;
    int comboCount() const;
    int noteCount() const;
    int checkCount() const; // highest check number, -1 for none
    // The values a recalculation substitutes, indexed by element number: each is made from the
    // record as it was when the recalculation began, the first time a line names it, and
    // replaced by what a formula assigns. Most formulas name a few fields of many.
    void startSnapshot();
    // The live values of the page, or of the pending record for elements not on the page yet.
    QString liveFieldText(int n) const;
    QString liveComboText(int n) const;
    // Before a formula writes an element of a pending record, its values go on the page.
    void touch(ElementKind kind, int n);
    const QString &fieldValue(int n);
    const QString &comboValue(int n);
    const QString &checkValue(int n);
    Status runLine(QString line, int fieldType);
    void showBareResult(int field, const QString &value);
    Status assignField(int field, QString &right);
    Status assignCheck(int check, QString &right);
    QString systemVariables(QString &line, Qt::CaseSensitivity cs);

    Page &page_;
    FormulaContext &context_;
    QVector<QString> startFieldText_;
    QVector<QString> startComboText_;
    QVector<int> startCheckValue_;
    std::vector<std::optional<QString>> fieldValues_;
    std::vector<std::optional<QString>> comboValues_;
    std::vector<std::optional<QString>> checkValues_;
    PendingRecord *pending_ = nullptr;
    std::vector<uint8_t> onPage_[4]; // of a pending record: fields, combos, checks, notes on the page
};

} // namespace ff
