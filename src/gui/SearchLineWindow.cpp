#include "gui/SearchLineWindow.h"

#include "core/SettingsStore.h"
#include "entry/FieldEntry.h"
#include "gui/ResultsWindow.h"
#include "gui/MainWindow.h"
#include "search/SearchNames.h"
#include "store/Database.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

const QString kSection = QStringLiteral("Settings");
const QString kKey = QStringLiteral("SQLcommands");

QString bracketed(const QString &line) { return QLatin1Char('{') + line + QLatin1Char('}'); }

// A value as a search line writes it: in apostrophes when it holds a blank.
QString lineValue(const QString &value)
{
    return value.contains(QLatin1Char(' ')) ? QLatin1Char('\'') + value + QLatin1Char('\'') : value;
}

} // namespace

SearchLineWindow::SearchLineWindow(MainWindow &main)
    : QWidget(&main, Qt::Window), main_(main), lineBox_(new QComboBox(this)), storeLineLink_(new QLabel(this)),
      forwardBox_(new QCheckBox(tr("Search forward (oldest first)"), this)), matchCaseBox_(new QCheckBox(tr("Match case"), this)),
      fieldKindLabel_(new QLabel(this)), fieldNameLabel_(new QLabel(this)), searchLabel_(new QLabel(this)),
      searchButton_(new QPushButton(tr("Search"), this))
{
    const QString caption = main.design().CaptionRun[7];
    setWindowTitle(caption.isEmpty() ? tr("Search") : QString(caption).remove(QLatin1Char('&')));

    lineBox_->setEditable(true);
    lineBox_->setInsertPolicy(QComboBox::NoInsert);
    lineBox_->setMinimumWidth(460);
    lineBox_->setMaxVisibleItems(16);
    lineBox_->setAccessibleName(tr("Search line"));
    lineBox_->setToolTip(tr("A text to find in the field, or a command: SELECT, SUM, COUNT, REPLACE"));
    connect(lineBox_, &QComboBox::editTextChanged, this, &SearchLineWindow::lineChanged);
    // Enter is taken on its way in, whichever of the two has the focus: the combo keeps the focus
    // and takes the key first (it never reaches the line edit), and a Return that did reach the
    // line edit must not also be handed back to the combo, which would start a second search.
    lineBox_->installEventFilter(this);
    lineBox_->lineEdit()->installEventFilter(this);

    storeLineLink_->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    storeLineLink_->setAccessibleName(tr("Store or remove the search line"));
    connect(storeLineLink_, &QLabel::linkActivated, this, [this] { storeOrRemoveLine(); });

    forwardBox_->setAccessibleName(tr("Forward"));
    matchCaseBox_->setAccessibleName(tr("Match case"));
    searchButton_->setAutoDefault(false);
    connect(searchButton_, &QPushButton::clicked, this, &SearchLineWindow::startSearch);

    QFont bold = fieldKindLabel_->font();
    bold.setBold(true);
    fieldKindLabel_->setFont(bold);
    fieldKindLabel_->setAccessibleName(tr("Kind of field"));
    fieldNameLabel_->setAccessibleName(tr("Field searched"));
    searchLabel_->setText(tr("Type a text to find in this field, or choose a search line:"));

    auto *subject = new QHBoxLayout;
    subject->addWidget(fieldKindLabel_);
    subject->addWidget(fieldNameLabel_, 1);
    auto *options = new QHBoxLayout;
    options->addWidget(forwardBox_);
    options->addWidget(matchCaseBox_);
    options->addStretch(1);
    options->addWidget(searchButton_);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(subject);
    layout->addWidget(searchLabel_);
    layout->addWidget(lineBox_);
    layout->addWidget(storeLineLink_, 0, Qt::AlignRight);
    layout->addLayout(options);
    lineChanged(QString());
}

bool SearchLineWindow::eventFilter(QObject *watched, QEvent *event)
{
    if ((watched == lineBox_ || watched == lineBox_->lineEdit()) && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            startSearch();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

QString SearchLineWindow::applicationKey() const
{
    const Design &d = main_.design();
    return d.AppTitle.trimmed().isEmpty() ? main_.database().paths().AppBase : d.AppTitle.trimmed();
}

QStringList SearchLineWindow::storedLines(const QString &stored)
{
    QString text = stored;
    text.remove(QLatin1Char('{'));
    QStringList pieces = text.split(QLatin1Char('}'));
    pieces.removeLast(); // what follows the last "}"
    return pieces;
}

SearchField SearchLineWindow::focusField() const
{
    const EntryState &state = main_.entry().state();
    SearchNames names(main_.design(), main_.database().store().layout());
    return names.describe(static_cast<SearchKind>(int(state.focusKind)), state.focusIndex);
}

void SearchLineWindow::open()
{
    const QString shown = lineBox_->currentText();
    stored_ = SettingsStore::GetSetting(applicationKey(), kSection, kKey);
    QSignalBlocker block(lineBox_);
    lineBox_->clear();
    for (const QString &line : storedLines(stored_))
        lineBox_->addItem(line);
    addSampleLines();
    lineBox_->setEditText(shown);

    // A text field of another format than at the last search: the old line would not fit.
    const EntryState &state = main_.entry().state();
    if (state.focusKind == FocusKind::Field && state.focusIndex > 0 &&
        size_t(state.focusIndex) < main_.design().Fields.size()) {
        const int format = main_.design().Fields[size_t(state.focusIndex)].FieldType;
        if (format != lastFormat_) {
            lineBox_->setEditText(QString());
            main_.context().SearchLine.clear();
        }
        lastFormat_ = format;
    }
    // Fields picked with the right button: their values, all to be found.
    const MultiFieldSelection &picked = main_.entry().selection();
    if (picked.active())
        lineBox_->setEditText(picked.searchText());
    block.unblock();
    lineChanged(lineBox_->currentText());
    showSubject();
    show();
    raise();
    activateWindow();
    lineBox_->setFocus();
}

void SearchLineWindow::addSampleLines()
{
    const Design &d = main_.design();
    SearchNames names(d, main_.database().store().layout());
    Page &page = main_.database().page();
    QStringList textNames, numberNames, checkNames;
    QString valued, valuedText;
    for (size_t i = 1; i < d.Fields.size(); ++i) {
        const QString name = d.Fields[i].Tag.trimmed();
        if (name.isEmpty() || name.contains(QLatin1Char(' ')) || !names.describe(SearchKind::Field, int(i)).valid())
            continue;
        const int type = d.Fields[i].FieldType;
        if (type >= 1 && type <= 5)
            numberNames << name;
        if (type == 0) {
            textNames << name;
            const QString value = page.FieldText.value(int(i)).trimmed();
            if (valued.isEmpty() && !value.isEmpty() && value.size() <= 40) {
                valued = name;
                valuedText = value;
            }
        }
    }
    for (size_t i = 0; i < d.Checks.size(); ++i) {
        const QString name = d.Checks[i].Tag.trimmed();
        if (!name.isEmpty() && !name.contains(QLatin1Char(' ')) && names.describe(SearchKind::Check, int(i)).valid())
            checkNames << name;
    }
    const QString columns = textNames.isEmpty() ? QStringLiteral("*") : textNames.mid(0, 3).join(QLatin1Char(' '));
    QStringList samples;
    if (!checkNames.isEmpty())
        samples << QStringLiteral("SELECT ") + columns + QStringLiteral(" WHERE ") + checkNames.first() + QStringLiteral("=1");
    else if (!textNames.isEmpty())
        samples << QStringLiteral("SELECT ") + columns + QStringLiteral(" WHERE ") + textNames.first() + QStringLiteral("=a*");
    if (!valued.isEmpty())
        samples << QStringLiteral("SELECT ") + columns + QStringLiteral(" WHERE ") + valued + QStringLiteral("='") +
                       valuedText + QLatin1Char('\'');
    if (!numberNames.isEmpty())
        samples << QStringLiteral("SUM ") + numberNames.first();
    if (!valued.isEmpty())
        samples << QStringLiteral("COUNT ") + valued + QLatin1Char('=') + lineValue(valuedText);
    else if (!checkNames.isEmpty())
        samples << QStringLiteral("COUNT ") + checkNames.first() + QStringLiteral("=1");
    for (const QString &s : samples)
        if (lineBox_->findText(s, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0)
            lineBox_->addItem(s);
}

void SearchLineWindow::showSubject()
{
    const SearchField f = focusField();
    if (main_.entry().selection().active()) {
        fieldKindLabel_->setText(tr("Variant Field"));
        fieldNameLabel_->setText(tr("%n picked field(s)", nullptr, main_.entry().selection().count()));
        return;
    }
    // A combo offers its list: the user selects rather than types.
    fieldKindLabel_->setText(f.kind == SearchKind::Combo ? tr("Selective") : tr("Variant Field"));
    fieldNameLabel_->setText(f.valid() ? ResultsWindow::fieldCaption(main_.design(), f) : tr("(no field)"));
}

QString SearchLineWindow::subjectText() const { return fieldKindLabel_->text() + QLatin1String(": ") + fieldNameLabel_->text(); }

void SearchLineWindow::lineChanged(const QString &text)
{
    const bool stored = !text.isEmpty() && stored_.contains(bracketed(text));
    commLinesText_ = stored ? QStringLiteral("Remove search line...") : QStringLiteral("Store search line...");
    storeLineLink_->setText(QStringLiteral("<a href=\"line\">") + commLinesText_.toHtmlEscaped() + QStringLiteral("</a>"));
    main_.context().SearchLine = text;
}

void SearchLineWindow::storeOrRemoveLine()
{
    const QString text = lineBox_->currentText();
    if (text.isEmpty())
        return;
    const QString entry = bracketed(text);
    {
        QSignalBlocker block(lineBox_);
        const int at = lineBox_->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
        if (stored_.contains(entry)) {
            stored_.remove(stored_.indexOf(entry), entry.size());
            if (at >= 0)
                lineBox_->removeItem(at);
        } else {
            stored_ += entry;
            if (at < 0)
                lineBox_->addItem(text);
        }
        lineBox_->setEditText(text);
    }
    SettingsStore::SaveSetting(applicationKey(), kSection, kKey, stored_);
    lineChanged(text);
}

void SearchLineWindow::startSearch()
{
    const QString line = lineBox_->currentText();
    if (line.trimmed().isEmpty())
        return;
    {
        QSignalBlocker block(lineBox_);
        if (lineBox_->findText(line, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0)
            lineBox_->addItem(line);
        lineBox_->setEditText(line);
    }
    ResultsWindow::Request request;
    request.line = line;
    request.forward = forwardBox_->isChecked();
    request.matchCase = matchCaseBox_->isChecked();
    request.focus = focusField();
    // Fields picked with the right button: a find looks in them, and in no other.
    MultiFieldSelection &picked = main_.entry().selection();
    if (picked.active()) {
        const SearchNames names(main_.design(), main_.database().store().layout());
        for (const MultiFieldSelection::Entry &e : picked.fields())
            request.picked.append(names.describe(static_cast<SearchKind>(int(e.kind)), e.index));
    }
    hide();
    picked.clear();
    lastResults_ = ResultsWindow::start(main_, request);
}

} // namespace ff::gui
