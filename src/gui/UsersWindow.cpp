#include "gui/UsersWindow.h"

#include "design/Design.h"
#include "store/Database.h"
#include "toolkit/MessageWindow.h"

#include <QApplication>
#include <QCheckBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QScrollBar>
#include <QVBoxLayout>
#include <QWheelEvent>

namespace ff::gui {

namespace {

QString uiText(const Design &design, int index, const QString &fallback)
{
    const QString &t = design.UiText[size_t(index)];
    return t.isEmpty() ? fallback : t;
}

// A prompt loses its trailing colon to read as a column head.
QString heading(QString text)
{
    if (text.endsWith(QLatin1Char(':')))
        text.chop(1);
    return text;
}

} // namespace

UsersWindow::UsersWindow(UserTable &users, const Design &design, QWidget *parent)
    : QDialog(parent), users_(users), appTitle_(design.AppTitle.isEmpty() ? design.MainCap : design.AppTitle),
      rowScroll_(new QScrollBar(Qt::Vertical, this)), addUser_(new QPushButton(this)),
      deleteButton_(new QPushButton(QStringLiteral("Delete Selected User"), this)), closeButton_(new QPushButton(this))
{
    setModal(true);
    setWindowTitle(uiText(design, 11, tr("Users")));
    showMessage = [this](const QString &caption, const QString &message, int colour) {
        toolkit::ShowMessage(this, caption, message, colour);
    };

    auto *rows = new QGridLayout;
    rows->setHorizontalSpacing(0);
    rows->setVerticalSpacing(1);
    const QString nameHead = heading(uiText(design, 8, tr("User name:")));
    const QString passwordHead = heading(uiText(design, 9, tr("Password:")));
    const QString rightsHead = uiText(design, 15, tr("Read only"));
    auto *head = new QWidget(this);
    auto *headLayout = new QHBoxLayout(head);
    headLayout->setContentsMargins(4, 0, 4, 0);
    auto *numberHead = new QLabel(QStringLiteral("#"), head);
    numberHead->setFixedWidth(36);
    headLayout->addWidget(numberHead);
    for (const QString &text : {nameHead, passwordHead}) {
        auto *label = new QLabel(text, head);
        label->setMinimumWidth(180);
        headLayout->addWidget(label, 1);
    }
    auto *rightsLabel = new QLabel(rightsHead, head);
    rightsLabel->setFixedWidth(90);
    headLayout->addWidget(rightsLabel);
    rows->addWidget(head, 0, 0);

    for (int k = 0; k < kRows; ++k) {
        auto *frame = new QWidget(this);
        frame->setAutoFillBackground(true);
        auto *line = new QHBoxLayout(frame);
        line->setContentsMargins(4, 1, 4, 1);
        rowNumber_[size_t(k)] = new QLabel(frame);
        rowNumber_[size_t(k)]->setFixedWidth(36);
        nameBoxes_[size_t(k)] = new QLineEdit(frame);
        passwordBoxes_[size_t(k)] = new QLineEdit(frame);
        readOnlyBoxes_[size_t(k)] = new QCheckBox(frame); // the column head names it
        readOnlyBoxes_[size_t(k)]->setFixedWidth(90);
        for (QLineEdit *edit : {nameBoxes_[size_t(k)], passwordBoxes_[size_t(k)]}) {
            edit->setMinimumWidth(180);
            edit->setFrame(false);
        }
        line->addWidget(rowNumber_[size_t(k)]);
        line->addWidget(nameBoxes_[size_t(k)], 1);
        line->addWidget(passwordBoxes_[size_t(k)], 1);
        line->addWidget(readOnlyBoxes_[size_t(k)]);
        for (QWidget *w : std::initializer_list<QWidget *>{nameBoxes_[size_t(k)], passwordBoxes_[size_t(k)], readOnlyBoxes_[size_t(k)]})
            w->installEventFilter(this);
        frame->installEventFilter(this);
        rowFrame_[size_t(k)] = frame;
        rows->addWidget(frame, k + 1, 0);

        // Typing goes straight into the entry being worked on.
        connect(nameBoxes_[size_t(k)], &QLineEdit::textEdited, this,
                [this](const QString &text) { users_.UserName[size_t(SelectedUser)] = text; });
        connect(passwordBoxes_[size_t(k)], &QLineEdit::textEdited, this,
                [this](const QString &text) { users_.UserPassword[size_t(SelectedUser)] = text; });
        connect(readOnlyBoxes_[size_t(k)], &QCheckBox::clicked, this, [this, k] { takeRights(k); });
    }
    rowScroll_->setRange(0, kUserCount - kRows);
    rowScroll_->setPageStep(kRows);
    rowScroll_->setAccessibleName(tr("Scroll the users"));
    rows->addWidget(rowScroll_, 1, 1, kRows, 1);
    connect(rowScroll_, &QScrollBar::valueChanged, this, [this] {
        // Text typed after a scroll belongs to the entry the focused row now shows.
        const int row = rowOf(QApplication::focusWidget());
        if (row >= 0)
            SelectedUser = firstShown() + row;
        repaintRows();
    });

    addUser_->setText(uiText(design, 12, tr("Add")));
    addUser_->setToolTip(tr("Go to the first free entry"));
    closeButton_->setText(uiText(design, 4, tr("Close")));
    for (QPushButton *b : {addUser_, deleteButton_, closeButton_})
        b->setAutoDefault(false);
    connect(addUser_, &QPushButton::clicked, this, &UsersWindow::addEntry);
    connect(deleteButton_, &QPushButton::clicked, this, &UsersWindow::deleteSelected);
    connect(closeButton_, &QPushButton::clicked, this, &UsersWindow::tryClose);
    auto *buttons = new QHBoxLayout;
    buttons->addWidget(addUser_);
    buttons->addWidget(deleteButton_);
    buttons->addStretch(1);
    buttons->addWidget(closeButton_);

    auto *layout = new QVBoxLayout(this);
    layout->addLayout(rows);
    layout->addLayout(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);

    // Tab goes along each row, then to the next row, then to the buttons.
    QWidget *previous = nullptr;
    for (int k = 0; k < kRows; ++k)
        for (QWidget *w : std::initializer_list<QWidget *>{nameBoxes_[size_t(k)], passwordBoxes_[size_t(k)], readOnlyBoxes_[size_t(k)]}) {
            if (previous)
                setTabOrder(previous, w);
            previous = w;
        }
    setTabOrder(previous, addUser_);
    setTabOrder(addUser_, deleteButton_);
    setTabOrder(deleteButton_, closeButton_);
    repaintRows();
}

void UsersWindow::runUsers(Database &db, QWidget *parent)
{
    db.users().decodeAll(db.codePage());
    {
        UsersWindow window(db.users(), db.design(), parent);
        window.exec();
    }
    db.users().codeAll(db.codePage());
}

bool UsersWindow::offeredTo(const Database &db) { return !db.loginRequired() || db.administrator(); }

int UsersWindow::firstShown() const { return rowScroll_->value(); }

void UsersWindow::scrollTo(int first) { rowScroll_->setValue(first); }

QColor UsersWindow::rowColour(int row) const
{
    const int entry = firstShown() + row;
    if (entry == SelectedUser)
        return QColor(0xef, 0xef, 0xef);
    if (entry == 0)
        return palette().color(QPalette::ToolTipBase); // the system's tool-tip back colour
    return QColor(Qt::white);
}

void UsersWindow::repaintRows()
{
    for (int k = 0; k < kRows; ++k) {
        const size_t entry = size_t(firstShown() + k);
        rowNumber_[size_t(k)]->setText(QString::number(entry));
        const QString name = tr("user %1").arg(entry);
        nameBoxes_[size_t(k)]->setAccessibleName(tr("Name of %1").arg(name));
        passwordBoxes_[size_t(k)]->setAccessibleName(tr("Password of %1").arg(name));
        readOnlyBoxes_[size_t(k)]->setAccessibleName(tr("%1 may only read").arg(name));
        // Setting an unchanged text would move the cursor of the box being typed in.
        if (nameBoxes_[size_t(k)]->text() != users_.UserName[entry])
            nameBoxes_[size_t(k)]->setText(users_.UserName[entry]);
        if (passwordBoxes_[size_t(k)]->text() != users_.UserPassword[entry])
            passwordBoxes_[size_t(k)]->setText(users_.UserPassword[entry]);
        readOnlyBoxes_[size_t(k)]->setChecked(users_.UserRights[entry] == 1);
        const QColor colour = rowColour(k);
        for (QWidget *w : std::initializer_list<QWidget *>{rowFrame_[size_t(k)], nameBoxes_[size_t(k)], passwordBoxes_[size_t(k)]}) {
            QPalette p = w->palette();
            p.setColor(QPalette::Window, colour);
            p.setColor(QPalette::Base, colour);
            p.setColor(QPalette::Text, Qt::black);
            p.setColor(QPalette::WindowText, Qt::black);
            w->setPalette(p);
        }
        QPalette p = readOnlyBoxes_[size_t(k)]->palette();
        p.setColor(QPalette::WindowText, Qt::black);
        readOnlyBoxes_[size_t(k)]->setPalette(p);
    }
}

int UsersWindow::rowOf(QObject *widget) const
{
    for (int k = 0; k < kRows; ++k)
        if (widget == nameBoxes_[size_t(k)] || widget == passwordBoxes_[size_t(k)] || widget == readOnlyBoxes_[size_t(k)])
            return k;
    return -1;
}

void UsersWindow::selectRow(int row)
{
    SelectedUser = firstShown() + row;
    repaintRows();
}

void UsersWindow::takeRights(int row)
{
    if (SelectedUser == firstShown() + row)
        users_.UserRights[size_t(SelectedUser)] = readOnlyBoxes_[size_t(row)]->isChecked() ? 1 : 0;
}

void UsersWindow::addEntry()
{
    for (int i = 1; i < kUserCount; ++i) {
        if (!users_.UserName[size_t(i)].isEmpty() || !users_.UserPassword[size_t(i)].isEmpty())
            continue;
        if (i < firstShown() || i >= firstShown() + kRows)
            scrollTo(std::min(i, kUserCount - kRows));
        nameBoxes_[size_t(i - firstShown())]->setFocus(Qt::OtherFocusReason);
        selectRow(i - firstShown());
        return;
    }
}

void UsersWindow::deleteSelected()
{
    users_.deleteUser(SelectedUser);
    repaintRows();
}

void UsersWindow::tryClose()
{
    const int row = rowOf(QApplication::focusWidget());
    if (row >= 0)
        takeRights(row);
    if (users_.UserPassword[0].isEmpty()) {
        showMessage(appTitle_, QStringLiteral("System needs a main password..."), 0xff8080);
        return;
    }
    accept();
}

void UsersWindow::reject() { tryClose(); }

bool UsersWindow::eventFilter(QObject *watched, QEvent *event)
{
    const int row = rowOf(watched);
    switch (event->type()) {
    case QEvent::FocusIn:
        if (row >= 0)
            selectRow(row);
        break;
    case QEvent::FocusOut:
        if (row >= 0 && watched != nameBoxes_[size_t(row)])
            takeRights(row);
        break;
    case QEvent::KeyPress: {
        // Up and Down move between rows, scrolling at the edges.
        const int key = static_cast<QKeyEvent *>(event)->key();
        if (row < 0 || (key != Qt::Key_Up && key != Qt::Key_Down))
            break;
        const int step = key == Qt::Key_Up ? -1 : 1;
        const int target = row + step;
        auto *w = static_cast<QWidget *>(watched);
        const int column = w == nameBoxes_[size_t(row)] ? 0 : w == passwordBoxes_[size_t(row)] ? 1 : 2;
        const auto at = [this, column](int k) -> QWidget * {
            return column == 0 ? static_cast<QWidget *>(nameBoxes_[size_t(k)])
                : column == 1  ? static_cast<QWidget *>(passwordBoxes_[size_t(k)])
                               : static_cast<QWidget *>(readOnlyBoxes_[size_t(k)]);
        };
        if (target >= 0 && target < kRows) {
            at(target)->setFocus(Qt::OtherFocusReason);
        } else {
            rowScroll_->setValue(rowScroll_->value() + step);
            selectRow(row);
        }
        return true;
    }
    case QEvent::Wheel:
        if (row >= 0 || std::find(rowFrame_.begin(), rowFrame_.end(), watched) != rowFrame_.end()) {
            const int delta = static_cast<QWheelEvent *>(event)->angleDelta().y();
            rowScroll_->setValue(rowScroll_->value() - (delta > 0 ? 3 : delta < 0 ? -3 : 0));
            return true;
        }
        break;
    default:
        break;
    }
    return QDialog::eventFilter(watched, event);
}

} // namespace ff::gui
