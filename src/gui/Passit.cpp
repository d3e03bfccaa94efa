#include "gui/Passit.h"

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

Passit::Passit(const UserTable &users, const CodePage &codePage, const Design &design, QWidget *parent)
    : QDialog(parent), check_(users, codePage), Label0(new QLabel(this)), Label1(new QLabel(this)),
      cancel_(new QPushButton(this))
{
    setModal(true);
    const QString title = design.AppTitle.isEmpty() ? design.MainCap : design.AppTitle;
    setWindowTitle(uiText(design, 10, tr("Log in")) + (title.isEmpty() ? QString() : QStringLiteral(" - ") + title));
    passwordPrompt_ = uiText(design, 9, tr("Password:"));

    for (auto &box : Pss) {
        box = new QLineEdit(this);
        box->setMinimumWidth(220);
        connect(box, &QLineEdit::textChanged, this, &Passit::checkBoxes);
    }
    Pss[0]->setEchoMode(QLineEdit::Password);
    Pss[0]->setAccessibleName(tr("Password"));
    Pss[1]->setAccessibleName(tr("User name"));
    Label0->setText(passwordPrompt_);
    Label0->setBuddy(Pss[0]);
    Label1->setText(uiText(design, 8, tr("User name:")));
    Label1->setBuddy(Pss[1]);

    auto *grid = new QGridLayout;
    grid->addWidget(Label0, 0, 0);
    grid->addWidget(Pss[0], 0, 1);
    grid->addWidget(Label1, 1, 0);
    grid->addWidget(Pss[1], 1, 1);
    // Without names only the password alone can match: the name box would only mislead.
    const bool names = anyUserHasName(users);
    Label1->setVisible(names);
    Pss[1]->setVisible(names);

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
    setTabOrder(Pss[0], Pss[1]);
    setTabOrder(Pss[1], cancel_);
    Pss[0]->setFocus();
}

QString Passit::passwordBoxText() const { return Pss[0]->text(); }

void Passit::checkBoxes()
{
    if (loginUser_)
        return;
    const LoginOutcome out = check_.check(Pss[0]->text(), Pss[1]->text());
    if (out.askPassword) {
        // The name is known: box 1 now takes that user's password.
        Label1->setText(passwordPrompt_);
        Pss[1]->setEchoMode(QLineEdit::Password);
        Pss[1]->setAccessibleName(tr("Password of the user"));
        Pss[1]->clear();
        Pss[1]->setFocus();
        return;
    }
    if (out.success) {
        loginUser_ = out.user;
        Q_EMIT loggedIn(out.user);
        accept();
    }
}

std::optional<int> Passit::runLogin(Database &db, QWidget *parent)
{
    if (!db.loginRequired())
        return 0;
    Passit window(db.users(), db.codePage(), db.design(), parent);
    window.exec();
    if (!window.loginUser())
        return std::nullopt;
    db.applyLogin(*window.loginUser(), window.passwordBoxText());
    return window.loginUser();
}

} // namespace ff::gui
