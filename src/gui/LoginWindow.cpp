#include "gui/LoginWindow.h"

#include "design/Design.h"
#include "store/Database.h"

#include <QDialogButtonBox>
#include <QGridLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

// A design may leave an interface text empty: fall back to the plain English word.
QString uiText(const Design &design, int index, const QString &fallback)
{
    const QString &t = design.UiText[size_t(index)];
    return t.isEmpty() ? fallback : t;
}

bool anyUserHasName(const UserTable &users)
{
    for (const QString &name : users.UserName)
        if (!name.isEmpty())
            return true;
    return false;
}

} // namespace

LoginWindow::LoginWindow(const UserTable &users, const CodePage &codePage, const Design &design, QWidget *parent)
    : QDialog(parent), check_(users, codePage), passwordLabel_(new QLabel(this)), namePrompt_(new QLabel(this)),
      cancel_(new QPushButton(this))
{
    setModal(true);
    const QString title = design.AppTitle.isEmpty() ? design.MainCap : design.AppTitle;
    setWindowTitle(uiText(design, 10, tr("Log in")) + (title.isEmpty() ? QString() : QStringLiteral(" - ") + title));
    passwordPrompt_ = uiText(design, 9, tr("Password:"));

    for (auto &box : boxes_) {
        box = new QLineEdit(this);
        box->setMinimumWidth(220);
        connect(box, &QLineEdit::textChanged, this, &LoginWindow::checkBoxes);
    }
    boxes_[0]->setEchoMode(QLineEdit::Password);
    boxes_[0]->setAccessibleName(tr("Password"));
    boxes_[1]->setAccessibleName(tr("User name"));
    passwordLabel_->setText(passwordPrompt_);
    passwordLabel_->setBuddy(boxes_[0]);
    namePrompt_->setText(uiText(design, 8, tr("User name:")));
    namePrompt_->setBuddy(boxes_[1]);

    auto *grid = new QGridLayout;
    grid->addWidget(passwordLabel_, 0, 0);
    grid->addWidget(boxes_[0], 0, 1);
    grid->addWidget(namePrompt_, 1, 0);
    grid->addWidget(boxes_[1], 1, 1);
    // Without names only the password alone can match: the name box would only mislead.
    const bool names = anyUserHasName(users);
    namePrompt_->setVisible(names);
    boxes_[1]->setVisible(names);

    cancel_->setText(uiText(design, 1, tr("Cancel")));
    cancel_->setAutoDefault(false);
    cancel_->setAccessibleName(tr("Cancel and end the program"));
    connect(cancel_, &QPushButton::clicked, this, &QDialog::reject);
    auto *buttons = new QDialogButtonBox(this);
    buttons->addButton(cancel_, QDialogButtonBox::RejectRole);

    auto *layout = new QVBoxLayout(this);
    if (!title.isEmpty()) {
        auto *heading = new QLabel(title, this);
        QFont bold = heading->font();
        bold.setBold(true);
        bold.setPointSizeF(bold.pointSizeF() * 1.2);
        heading->setFont(bold);
        layout->addWidget(heading);
    }
    layout->addLayout(grid);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    setTabOrder(boxes_[0], boxes_[1]);
    setTabOrder(boxes_[1], cancel_);
    boxes_[0]->setFocus();
}

QString LoginWindow::passwordBoxText() const { return boxes_[0]->text(); }

void LoginWindow::checkBoxes()
{
    if (loginUser_)
        return;
    const LoginOutcome out = check_.check(boxes_[0]->text(), boxes_[1]->text());
    if (out.askPassword) {
        // The name is known: box 1 now takes that user's password.
        namePrompt_->setText(passwordPrompt_);
        boxes_[1]->setEchoMode(QLineEdit::Password);
        boxes_[1]->setAccessibleName(tr("Password of the user"));
        boxes_[1]->clear();
        boxes_[1]->setFocus();
        return;
    }
    if (out.success) {
        loginUser_ = out.user;
        Q_EMIT loggedIn(out.user);
        accept();
    }
}

std::optional<int> LoginWindow::runLogin(Database &db, QWidget *parent)
{
    if (!db.loginRequired())
        return 0;
    LoginWindow window(db.users(), db.codePage(), db.design(), parent);
    window.exec();
    if (!window.loginUser())
        return std::nullopt;
    db.applyLogin(*window.loginUser(), window.passwordBoxText());
    return window.loginUser();
}

} // namespace ff::gui
