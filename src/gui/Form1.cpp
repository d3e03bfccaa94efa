#include "gui/Form1.h"

#include "core/SettingsStore.h"
#include "entry/FieldEntry.h"
#include "gui/Form3.h"
#include "gui/MainWindow.h"
#include "search/SearchNames.h"
#include "search/SearchParser.h"
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

Form1::Form1(MainWindow &main)
    : QWidget(&main, Qt::Window), main_(main), Text1(new QComboBox(this)), CommLines(new QLabel(this)),
      Fw(new QCheckBox(tr("Search forward (oldest first)"), this)), Check1(new QCheckBox(tr("Match case"), this)),
      CurCat(new QLabel(this)), Fwhat(new QLabel(this)), SearchLabel(new QLabel(this)),
      Comman2(new QPushButton(tr("Search"), this))
{
    const QString caption = main.design().CaptionRun[7];
    setWindowTitle(caption.isEmpty() ? tr("Search") : QString(caption).remove(QLatin1Char('&')));

    Text1->setEditable(true);
    Text1->setInsertPolicy(QComboBox::NoInsert);
    Text1->setMinimumWidth(460);
    Text1->setMaxVisibleItems(16);
    Text1->setAccessibleName(tr("Search line"));
    Text1->setToolTip(tr("A text to find in the field, or a command: SELECT, SUM, COUNT, REPLACE"));
    connect(Text1, &QComboBox::editTextChanged, this, &Form1::lineChanged);
    // Enter is taken before the line edit sees it: an editable combo hands an unused Return back
    // to its line edit, which would start the search a second time.
    Text1->lineEdit()->installEventFilter(this);

    CommLines->setTextInteractionFlags(Qt::LinksAccessibleByMouse | Qt::LinksAccessibleByKeyboard);
    CommLines->setAccessibleName(tr("Store or remove the search line"));
    connect(CommLines, &QLabel::linkActivated, this, [this] { storeOrRemoveLine(); });

    Fw->setAccessibleName(tr("Forward"));
    Check1->setAccessibleName(tr("Match case"));
    Comman2->setAutoDefault(false);
    connect(Comman2, &QPushButton::clicked, this, &Form1::startSearch);

    QFont bold = CurCat->font();
    bold.setBold(true);
    CurCat->setFont(bold);
    CurCat->setAccessibleName(tr("Kind of field"));
    Fwhat->setAccessibleName(tr("Field searched"));
    SearchLabel->setText(tr("Type a text to find in this field, or choose a search line:"));

    auto *subject = new QHBoxLayout;
    subject->addWidget(CurCat);
    subject->addWidget(Fwhat, 1);
    auto *options = new QHBoxLayout;
    options->addWidget(Fw);
    options->addWidget(Check1);
    options->addStretch(1);
    options->addWidget(Comman2);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(subject);
    layout->addWidget(SearchLabel);
    layout->addWidget(Text1);
    layout->addWidget(CommLines, 0, Qt::AlignRight);
    layout->addLayout(options);
    lineChanged(QString());
}

bool Form1::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == Text1->lineEdit() && event->type() == QEvent::KeyPress) {
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (key == Qt::Key_Return || key == Qt::Key_Enter) {
            startSearch();
            return true;
        }
    }
    return QWidget::eventFilter(watched, event);
}

QString Form1::applicationKey() const
{
    const Design &d = main_.design();
    return d.AppTitle.trimmed().isEmpty() ? main_.database().paths().AppBase : d.AppTitle.trimmed();
}

QStringList Form1::storedLines(const QString &stored)
{
    QString text = stored;
    text.remove(QLatin1Char('{'));
    QStringList pieces = text.split(QLatin1Char('}'));
    pieces.removeLast(); // what follows the last "}"
    return pieces;
}

SearchField Form1::focusField() const
{
    const EntryState &state = main_.entry().state();
    SearchNames names(main_.design(), main_.database().store().layout());
    return names.describe(static_cast<SearchKind>(int(state.focusKind)), state.focusIndex);
}

void Form1::open()
{
    const QString shown = Text1->currentText();
    stored_ = SettingsStore::GetSetting(applicationKey(), kSection, kKey);
    QSignalBlocker block(Text1);
    Text1->clear();
    for (const QString &line : storedLines(stored_))
        Text1->addItem(line);
    addSampleLines();
    Text1->setEditText(shown);

    // A text field of another format than at the last search: the old line would not fit.
    const EntryState &state = main_.entry().state();
    if (state.focusKind == FocusKind::Field && state.focusIndex > 0 &&
        size_t(state.focusIndex) < main_.design().Fields.size()) {
        const int format = main_.design().Fields[size_t(state.focusIndex)].FieldType;
        if (format != lastFormat_) {
            Text1->setEditText(QString());
            main_.context().SearchLine.clear();
        }
        lastFormat_ = format;
    }
    // Fields picked with the right button: their values, all to be found.
    const MultiFieldSelection &picked = main_.entry().selection();
    if (picked.active())
        Text1->setEditText(picked.searchText());
    block.unblock();
    lineChanged(Text1->currentText());
    showSubject();
    show();
    raise();
    activateWindow();
    Text1->setFocus();
}

void Form1::addSampleLines()
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
        if (Text1->findText(s, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0)
            Text1->addItem(s);
}

void Form1::showSubject()
{
    const SearchField f = focusField();
    if (main_.entry().selection().active()) {
        CurCat->setText(tr("Variant Field"));
        Fwhat->setText(tr("%n picked field(s)", nullptr, main_.entry().selection().count()));
        return;
    }
    // A combo offers its list: the user selects rather than types.
    CurCat->setText(f.kind == SearchKind::Combo ? tr("Selective") : tr("Variant Field"));
    Fwhat->setText(f.valid() ? Form3::fieldCaption(main_.design(), f) : tr("(no field)"));
}

QString Form1::subjectText() const { return CurCat->text() + QLatin1String(": ") + Fwhat->text(); }

void Form1::lineChanged(const QString &text)
{
    const bool stored = !text.isEmpty() && stored_.contains(bracketed(text));
    commLinesText_ = stored ? QStringLiteral("Remove search line...") : QStringLiteral("Store search line...");
    CommLines->setText(QStringLiteral("<a href=\"line\">") + commLinesText_.toHtmlEscaped() + QStringLiteral("</a>"));
    main_.context().SearchLine = text;
}

void Form1::storeOrRemoveLine()
{
    const QString text = Text1->currentText();
    if (text.isEmpty())
        return;
    const QString entry = bracketed(text);
    {
        QSignalBlocker block(Text1);
        const int at = Text1->findText(text, Qt::MatchFixedString | Qt::MatchCaseSensitive);
        if (stored_.contains(entry)) {
            stored_.remove(stored_.indexOf(entry), entry.size());
            if (at >= 0)
                Text1->removeItem(at);
        } else {
            stored_ += entry;
            if (at < 0)
                Text1->addItem(text);
        }
        Text1->setEditText(text);
    }
    SettingsStore::SaveSetting(applicationKey(), kSection, kKey, stored_);
    lineChanged(text);
}

void Form1::startSearch()
{
    QString line = Text1->currentText();
    if (line.trimmed().isEmpty())
        return;
    {
        QSignalBlocker block(Text1);
        if (Text1->findText(line, Qt::MatchFixedString | Qt::MatchCaseSensitive) < 0)
            Text1->addItem(line);
        Text1->setEditText(line);
    }
    MultiFieldSelection &picked = main_.entry().selection();
    // A find over picked fields looks through the whole record.
    if (picked.active() && !SearchParser::IsCommand(line) && !line.startsWith(QLatin1Char('!')))
        line.prepend(QLatin1Char('!'));
    Form3::Request request;
    request.line = line;
    request.forward = Fw->isChecked();
    request.matchCase = Check1->isChecked();
    request.focus = focusField();
    hide();
    picked.clear();
    lastResults_ = Form3::start(main_, request);
}

} // namespace ff::gui
