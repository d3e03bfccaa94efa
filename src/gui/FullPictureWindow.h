#pragma once
// The full-picture window: one picture, shrunk to fit the window when it is larger (the width
// first, then the height), with a print button that puts it on a sheet: in its natural size when
// it fits the sheet's width, else as wide as the sheet with its proportions kept.

#include "print/Printer.h"

#include <QDialog>
#include <QImage>

class QLabel;
class QPushButton;

namespace ff::gui {

class FullPictureWindow : public QDialog {
    Q_OBJECT
public:
    FullPictureWindow(QImage picture, QWidget *parent = nullptr);

    // The size the picture is shown at inside an inner area of `inner` pixels.
    static QSize shownSize(QSize picture, QSize inner);
    // Draws the picture on `printer` and ends the document.
    Status printOn(print::Printer &printer) const;

    QPushButton *printButton() const { return printButton_; }
    QLabel *pictureLabel() const { return label_; }

Q_SIGNALS:
    void printRequested();

protected:
    void resizeEvent(QResizeEvent *event) override;

private:
    QImage picture_;
    QLabel *label_;
    QPushButton *printButton_;
};

} // namespace ff::gui
