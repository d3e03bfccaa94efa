#pragma once
// The program's own message box: a band across the whole screen with a caption, the message (each
// "|" a line break) and an OK button in the caller's colour. Modal; returns when OK is pressed.

#include <QDialog>

class QLabel;
class QPushButton;

namespace ff::toolkit {

class MessageWindow : public QDialog {
    Q_OBJECT
public:
    explicit MessageWindow(QWidget *parent = nullptr);

    // Lays the band out for the message; exec() then shows it.
    void setMessage(const QString &caption, const QString &message, int colour);
    QString messageText() const;
    QPushButton *okButton() const { return okButton_; }

private:
    QLabel *captionLabel_;
    QLabel *textLabel_;
    QPushButton *okButton_;
};

// Shows the message box modally. `colour` is a colour long (0x00BBGGRR) for the OK button.
void ShowMessage(QWidget *parent, const QString &caption, const QString &message, int colour = 16744576);

} // namespace ff::toolkit
