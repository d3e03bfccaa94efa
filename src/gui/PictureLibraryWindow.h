#pragma once
// The picture library: brings a picture into a per-record picture field. The user picks a picture
// file from a folder's list (with a preview and its size), or opens one with the file dialog, or
// takes the clipboard's picture; it is resized to the field (keeping its ratio or not) or kept as
// it is, and stored under the database's next picture number. The field's picture can also be
// copied to the clipboard or deleted. The resize and ratio switches are kept in the settings.

#include "gui/PictureTaker.h"

#include <QDialog>
#include <QImage>

class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QListWidget;
class QPushButton;

namespace ff {
class MessageSink;
}

namespace ff::gui {

class MainWindow;

class PictureLibraryWindow : public QDialog {
    Q_OBJECT
public:
    // `settingsApplication` and `keyPrefix` place the switches in the settings store, so that each
    // database keeps its own.
    PictureLibraryWindow(PictureTaker &taker, int field, MessageSink &messages, QString settingsApplication,
                         QString keyPrefix, QWidget *parent = nullptr);
    ~PictureLibraryWindow() override;

    // The main window's picture field `field` was clicked (the record is already claimed): the
    // library over it, with the database's settings. Returns when the window closes.
    static void openFor(MainWindow &main, int field);

    void setFolder(const QString &folder);
    QString folder() const;
    // Selects a file of the list by name, as a click does.
    bool selectFile(const QString &fileName);

    // The picture the preview shows, from the list or the field.
    const QImage &previewImage() const { return preview_; }

    QListWidget *fileList() const { return files_; }
    QLabel *previewLabel() const { return previewLabel_; }
    QLabel *sizeLabel() const { return sizeLabel_; }
    QCheckBox *resizeBox() const { return resize_; }
    QCheckBox *ratioBox() const { return ratio_; }
    QPushButton *takeButton() const { return take_; }
    QPushButton *pasteButton() const { return paste_; }
    QPushButton *copyButton() const { return copy_; }
    QPushButton *deleteButton() const { return delete_; }

    // The settings' keys, with the prefix.
    QString resizeKey() const { return keyPrefix_ + QStringLiteral("Resize"); }
    QString ratioKey() const { return keyPrefix_ + QStringLiteral("Ratio"); }

    // The picture as it would be stored with the switches now, for the preview.
    QImage fittedPreview() const;

private:
    void fillList();
    void showFile(const QString &path);
    void showPreview();
    void takeSelected();
    void takeClipboard();
    void copyToClipboard();
    void deletePicture();
    void chooseFolder();
    void openFile();
    void saveSwitches();
    PictureTaker::Options options() const;
    void report(const Error &error);

    PictureTaker &taker_;
    int field_;
    MessageSink &messages_;
    QString settingsApplication_, keyPrefix_;
    QString selectedPath_;
    QImage preview_;
    QLineEdit *folder_ = nullptr;
    QComboBox *pattern_ = nullptr;
    QListWidget *files_ = nullptr;
    QLabel *previewLabel_ = nullptr;
    QLabel *sizeLabel_ = nullptr;
    QCheckBox *resize_ = nullptr;
    QCheckBox *ratio_ = nullptr;
    QPushButton *take_ = nullptr, *paste_ = nullptr, *copy_ = nullptr, *delete_ = nullptr;
};

} // namespace ff::gui
