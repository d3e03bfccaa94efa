#include "gui/FindReplaceWindow.h"

#include "core/Scramble.h"
#include "entry/FieldEntry.h"
#include "gui/MainWindowHost.h"
#include "gui/ResultsWindow.h"
#include "gui/MainWindow.h"
#include "gui/ReplaceableField.h"
#include "gui/SearchSession.h"
#include "search/RecordScanner.h"
#include "search/SearchNames.h"
#include "search/SortIndexBuilder.h"
#include "store/Database.h"
#include "toolkit/WaitWindow.h"

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

void remember(QComboBox *box, const QString &text)
{
    if (box->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0)
        box->insertItem(0, text);
    box->setEditText(text);
}

} // namespace

FindReplaceWindow::FindReplaceWindow(MainWindow &main)
    : QWidget(&main, Qt::Window), main_(main), findBox_(new QComboBox(this)), replaceBox_(new QComboBox(this)),
      matchCaseBox_(new QCheckBox(tr("Match case"), this)), findLabel_(new QLabel(tr("Find:"), this)),
      replaceLabel_(new QLabel(tr("Replace with:"), this)), progressLabel_(new QLabel(this)), fieldLabel_(new QLabel(this)),
      startButton_(new QPushButton(tr("Replace all"), this)), exitButton_(new QPushButton(tr("Close"), this))
{
    const QString caption = main.design().Finden3Caption;
    setWindowTitle(caption.isEmpty() ? tr("Find and replace") : QString(caption).remove(QLatin1Char('&')));
    for (QComboBox *box : {findBox_, replaceBox_}) {
        box->setEditable(true);
        box->setInsertPolicy(QComboBox::NoInsert);
        box->setMinimumWidth(300);
    }
    findBox_->setAccessibleName(tr("Text to find"));
    replaceBox_->setAccessibleName(tr("New text"));
    findLabel_->setBuddy(findBox_);
    replaceLabel_->setBuddy(replaceBox_);
    progressLabel_->setAccessibleName(tr("Progress"));
    QFont bold = fieldLabel_->font();
    bold.setBold(true);
    fieldLabel_->setFont(bold);
    startButton_->setDefault(true);
    connect(startButton_, &QPushButton::clicked, this, [this] { replaceAll(); });
    connect(exitButton_, &QPushButton::clicked, this, [this] {
        main_.searchSession().requestStop();
        close();
    });

    auto *grid = new QGridLayout;
    grid->addWidget(findLabel_, 0, 0);
    grid->addWidget(findBox_, 0, 1);
    grid->addWidget(replaceLabel_, 1, 0);
    grid->addWidget(replaceBox_, 1, 1);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(matchCaseBox_);
    buttons->addStretch(1);
    buttons->addWidget(startButton_);
    buttons->addWidget(exitButton_);
    auto *layout = new QVBoxLayout(this);
    layout->addWidget(fieldLabel_);
    layout->addLayout(grid);
    layout->addLayout(buttons);
    layout->addWidget(progressLabel_);
}

ReplaceableField FindReplaceWindow::replaceable() const
{
    Database &db = main_.database();
    return ReplaceableField(field_, db.store().codec(), db.DecimalSeparator, main_.context().locale);
}

QString FindReplaceWindow::progressText() const { return progressLabel_->text(); }
QString FindReplaceWindow::fieldText() const { return fieldLabel_->text(); }

void FindReplaceWindow::open()
{
    field_ = focusedField(main_);
    const bool usable = replaceable().takesText() && main_.database().store().writingAllowed();
    fieldLabel_->setText(field_.valid() ? tr("In the field: %1").arg(ResultsWindow::fieldCaption(main_.design(), field_))
                                        : tr("No field of the record has the focus"));
    progressLabel_->setText(usable || !field_.valid() ? QString()
                                              : tr("This field holds no text to replace in."));
    startButton_->setEnabled(usable);
    show();
    raise();
    activateWindow();
    findBox_->setFocus();
}

QString FindReplaceWindow::replacedText(const QString &text, const QString &find, const QString &with, bool matchCase)
{
    const bool found = text.contains(find, matchCase ? Qt::CaseSensitive : Qt::CaseInsensitive);
    if (!found)
        return QString();
    // The replacement itself is always exact in case.
    QString out = text;
    out.replace(find, with, Qt::CaseSensitive);
    return out.isNull() ? QStringLiteral("") : out;
}

FindReplaceWindow::Outcome FindReplaceWindow::replaceAll()
{
    Outcome outcome;
    main_.searchSession().clearStop();
    const QString find = findBox_->currentText();
    const QString with = replaceBox_->currentText();
    const ReplaceableField target = replaceable();
    if (find.isEmpty() || with.isEmpty() || !target.takesText())
        return outcome;
    Database &db = main_.database();
    RecordStore &store = db.store();
    if (!store.writingAllowed())
        return outcome;
    remember(findBox_, find);
    remember(replaceBox_, with);
    // The record on the page goes to the file first, and its lock with it. One that cannot be
    // saved (the store has said so) stops the replace: the page is read back at the end, and its
    // edit would be lost.
    if (!store.SaveIfDirty())
        return outcome;
    outcome.ran = true;
    // Other users' new records come into the count; when it cannot be read, the last one stands.
    std::ignore = store.refreshCount();
    const int count = store.RecordCount();
    const bool scrambled = main_.design().ScrambleRecords == 1;
    const int recordLength = store.layout().RecordLength;
    RecordScanner scanner(store.file(), count, scrambled);
    toolkit::WaitWindow wait(this);
    wait.begin();
    startButton_->setEnabled(false);
    for (int n = 1; n <= count; ++n) {
        if ((n - 1) % kReplaceStep == 0) {
            const int percent = int(int64_t(n - 1) * 100 / count);
            progressLabel_->setText(QStringLiteral("%1%").arg(percent));
            wait.setPercent(percent);
            if (wait.cancelled() || main_.searchSession().stopRequested()) {
                outcome.aborted = true;
                break;
            }
        }
        const uint8_t *record = scanner.record(n, RecordScanner::Access::Forward);
        if (!record)
            continue;
        const QByteArray plain = QByteArray::fromRawData(reinterpret_cast<const char *>(record), recordLength);
        const QString replaced = replacedText(target.text(plain), find, with, matchCaseBox_->isChecked());
        if (replaced.isNull())
            continue;
        ++outcome.found;
        std::optional<QByteArray> bytes = target.bytes(replaced);
        if (!bytes)
            continue; // no number or date any more: the value stays as it was
        if (*bytes == plain.mid(field_.offset, field_.length))
            continue; // found in another case, or the same value: nothing to write
        if (scanner.heldByOther(n))
            continue; // another user is working on it
        if (scrambled)
            ScrambleBytes(bytes->data(), bytes->size());
        if (scanner.write(n, field_.offset, *bytes).ok())
            ++outcome.changed;
    }
    wait.end();
    startButton_->setEnabled(true);
    progressLabel_->setText(outcome.aborted ? tr("Stopped: %n record(s) changed", nullptr, outcome.changed)
                                    : tr("%n record(s) changed", nullptr, outcome.changed));
    // The record on the page as it is stored now.
    if (store.RecordCount() > 0) {
        // When it cannot be read the page keeps what it showed; the file holds the changes.
        std::ignore = store.UnpackRecord();
        main_.host().announceRecordShown();
    }
    return outcome;
}

void FindReplaceWindow::sortByFocusedField(MainWindow &main, BrowseOrder order)
{
    RecordStore &store = main.database().store();
    // The sort reads the stored records and leaves the page alone: a record that cannot be saved
    // (the store has said so) stays on the page with its edit, and the sort goes on.
    std::ignore = store.SaveIfDirty();
    const EntryState &state = main.entry().state();
    if (state.focusKind == FocusKind::Field && state.focusIndex > 0 &&
        size_t(state.focusIndex) < main.design().Fields.size() && main.design().Fields[size_t(state.focusIndex)].FieldGlobal)
        return; // a field kept outside the records has nothing to sort by
    const SearchField field = focusedField(main);
    if (!field.valid())
        return;
    toolkit::WaitWindow wait(&main);
    wait.begin();
    // A field the index cannot be built for leaves the order as it was.
    std::ignore = SortIndexBuilder::BuildSortIndex(store, field, order, &wait);
    wait.end();
    main.host().announceRecordShown();
}

} // namespace ff::gui
