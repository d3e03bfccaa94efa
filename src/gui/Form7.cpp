#include "gui/Form7.h"

#include "core/Scramble.h"
#include "entry/FieldEntry.h"
#include "gui/Form2Host.h"
#include "gui/Form3.h"
#include "gui/MainWindow.h"
#include "search/RecordScanner.h"
#include "search/SearchNames.h"
#include "search/SortIndexBuilder.h"
#include "store/Database.h"
#include "toolkit/Form4.h"

#include <QCheckBox>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

// Records between two looks at the stop button and two progress texts.
constexpr int kReplaceStep = 512;

SearchField focusedField(MainWindow &main)
{
    const EntryState &state = main.entry().state();
    const SearchNames names(main.design(), main.database().store().layout());
    return names.describe(static_cast<SearchKind>(int(state.focusKind)), state.focusIndex);
}

// The fields whose stored form is text: their bytes take a replaced text. Numbers, money and
// dates stored as binary values have no text to replace in.
bool holdsText(const SearchField &f)
{
    switch (f.value) {
    case ValueKind::Text:
    case ValueKind::NumberText:
    case ValueKind::TimeText:
    case ValueKind::DateText:
    case ValueKind::CheckByte: return f.valid();
    default: return false;
    }
}

void remember(QComboBox *box, const QString &text)
{
    if (box->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0)
        box->insertItem(0, text);
    box->setEditText(text);
}

} // namespace

Form7::Form7(MainWindow &main)
    : QWidget(&main, Qt::Window), main_(main), Combo1(new QComboBox(this)), Combo2(new QComboBox(this)),
      Check1(new QCheckBox(tr("Match case"), this)), Label1(new QLabel(tr("Find:"), this)),
      Label2(new QLabel(tr("Replace with:"), this)), mLabel(new QLabel(this)), fieldLabel_(new QLabel(this)),
      Command1(new QPushButton(tr("Replace all"), this)), ExitNow(new QPushButton(tr("Close"), this))
{
    const QString caption = main.design().Finden3Caption;
    setWindowTitle(caption.isEmpty() ? tr("Find and replace") : QString(caption).remove(QLatin1Char('&')));
    for (QComboBox *box : {Combo1, Combo2}) {
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        box->setMinimumWidth(300);
    }
    Combo1->setAccessibleName(tr("Text to find"));
    Combo2->setAccessibleName(tr("New text"));
    Label1->setBuddy(Combo1);
    Label2->setBuddy(Combo2);
    mLabel->setAccessibleName(tr("Progress"));
    QFont bold = fieldLabel_->font();
    bold.setBold(true);
    fieldLabel_->setFont(bold);
    Command1->setDefault(true);
    connect(Command1, &QPushButton::clicked, this, [this] { replaceAll(); });
    connect(ExitNow, &QPushButton::clicked, this, [this] {
        Form3::AbortFlag = true;
        close();
    });

    auto *grid = new QGridLayout;
    grid->addWidget(Label1, 0, 0);
    grid->addWidget(Combo1, 0, 1);
    grid->addWidget(Label2, 1, 0);
    grid->addWidget(Combo2, 1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(Check1);
    buttons->addStretch(1);
    buttons->addWidget(Command1);
    buttons->addWidget(ExitNow);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fieldLabel_);
    layout->addLayout(grid);
    layout->addLayout(buttons);
    layout->addWidget(mLabel);
}

QString Form7::progressText() const { return mLabel->text(); }
QString Form7::fieldText() const { return fieldLabel_->text(); }

void Form7::open()
{
    field_ = focusedField(main_);
    const bool usable = holdsText(field_) && main_.database().store().writingAllowed();
    fieldLabel_->setText(field_.valid() ? tr("In the field: %1").arg(Form3::fieldCaption(main_.design(), field_))
                                        : tr("No field of the record has the focus"));
    mLabel->setText(usable || !field_.valid() ? QString()
                                              : tr("This field holds no text to replace in."));
    Command1->setEnabled(usable);
    show();
    raise();
    activateWindow();
    Combo1->setFocus();
}

QString Form7::replacedText(const QString &text, const QString &find, const QString &with, bool matchCase)
{
    const bool found = text.contains(find, matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive);
    if (!found)
        return QString();
    // The replacement itself is always exact in case.
    QString out = text;
    out.replace(find, with, Qt::CaseSensitive);
    return out.isNull() ? QStringLiteral("") : out;
}

Form7::Outcome Form7::replaceAll()
{
    Outcome outcome;
    Form3::AbortFlag = false;
    const QString find = Combo1->currentText();
    const QString with = Combo2->currentText();
    if (find.isEmpty() || with.isEmpty() || !holdsText(field_))
        return outcome;
    Database &db = main_.database();
    RecordStore &store = db.store();
    if (!store.writingAllowed())
        return outcome;
    remember(Combo1, find);
    remember(Combo2, with);
    outcome.ran = true;

    store.SaveIfDirty(); // the record on the page goes to the file first, and its lock with it
    store.refreshCount();
    const int count = store.RecordCount;
    const bool scrambled = main_.design().ScrambleRecords == 1;
    const CodePage &codePage = store.codec().codePage();
    RecordScanner scanner(store.file(), count, scrambled);
    toolkit::Form4 wait(this);
    wait.begin();
    Command1->setEnabled(false);
    for (int n = 1; n <= count; ++n) {
        if ((n - 1) % kReplaceStep == 0) {
            const int percent = int(int64_t(n - 1) * 100 / count);
            mLabel->setText(QStringLiteral("%1%").arg(percent));
            wait.setPercent(percent);
            if (wait.cancelled() || Form3::AbortFlag) {
                outcome.aborted = true;
                break;
            }
        }
        const uint8_t *record = scanner.record(n, RecordScanner::Access::Forward);
        if (!record)
            continue;
        const char *slice = reinterpret_cast<const char *>(record + field_.offset);
        const QString text = codePage.decode(slice, field_.length);
        const QString replaced = replacedText(text, find, with, Check1->isChecked());
        if (replaced.isNull())
            continue;
        ++outcome.found;
        QByteArray bytes = codePage.encode(replaced);
        if (bytes.size() < field_.length)
            bytes.append(QByteArray(field_.length - bytes.size(), ' '));
        bytes.truncate(field_.length);
        if (bytes == QByteArray(slice, field_.length))
            continue; // found in another case: nothing to write
        if (scanner.heldByOther(n))
            continue; // another user is working on it
        if (scrambled)
            ScrambleBytes(bytes.data(), bytes.size());
        if (scanner.write(n, field_.offset, bytes).ok())
            ++outcome.changed;
    }
    wait.end();
    Command1->setEnabled(true);
    mLabel->setText(outcome.aborted ? tr("Stopped: %n record(s) changed", nullptr, outcome.changed)
                                    : tr("%n record(s) changed", nullptr, outcome.changed));
    // The record on the page as it is stored now.
    if (store.RecordCount > 0) {
        store.UnpackRecord();
        main_.host().recordShown();
    }
    return outcome;
}

void Form7::sortByFocusedField(MainWindow &main, int mode)
{
    RecordStore &store = main.database().store();
    store.SaveIfDirty();
    const EntryState &state = main.entry().state();
    if (state.focusKind == FocusKind::Field && state.focusIndex > 0 &&
        size_t(state.focusIndex) < main.design().Fields.size() && main.design().Fields[size_t(state.focusIndex)].FieldGlobal)
        return; // a field kept outside the records has nothing to sort by
    const SearchField field = focusedField(main);
    if (!field.valid())
        return;
    toolkit::Form4 wait(&main);
    wait.begin();
    SortIndexBuilder::BuildSortIndex(store, field, mode, &wait);
    wait.end();
    main.host().recordShown();
}

} // namespace ff::gui
