#include "gui/PictureLibraryWindow.h"

#include "core/MessageSink.h"
#include "core/SettingsStore.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "store/Database.h"
#include "pdfmail/PictureFit.h"
#include "toolkit/WaitWindow.h"

#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QGridLayout>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

const QString kSection = QStringLiteral("Settings");
constexpr QSize kPreviewSize(240, 200);

} // namespace

PictureLibraryWindow::PictureLibraryWindow(PictureTaker &taker, int field, MessageSink &messages, QString settingsApplication,
                                           QString keyPrefix, QWidget *parent)
    : QDialog(parent), taker_(taker), field_(field), messages_(messages),
      settingsApplication_(std::move(settingsApplication)), keyPrefix_(std::move(keyPrefix))
{
    setWindowTitle(tr("Picture library"));
    setObjectName(QStringLiteral("pictureLibrary"));
    auto *layout = new QGridLayout(this);

    // Finding files: the folder, the kind of file and the list.
    auto *folderRow = new QHBoxLayout;
    folder_ = new QLineEdit(this);
    folder_->setAccessibleName(tr("Folder"));
    connect(folder_, &QLineEdit::editingFinished, this, &PictureLibraryWindow::fillList);
    auto *browse = new QPushButton(tr("Folder..."), this);
    connect(browse, &QPushButton::clicked, this, &PictureLibraryWindow::chooseFolder);
    auto *open = new QPushButton(tr("Open file..."), this);
    open->setObjectName(QStringLiteral("openFileButton"));
    connect(open, &QPushButton::clicked, this, &PictureLibraryWindow::openFile);
    folderRow->addWidget(folder_, 1);
    folderRow->addWidget(browse);
    folderRow->addWidget(open);
    layout->addLayout(folderRow, 0, 0, 1, 2);

    pattern_ = new QComboBox(this);
    pattern_->setAccessibleName(tr("Kind of file"));
    pattern_->addItem(tr("Pictures (*.jpg *.jpeg *.gif *.bmp *.png)"), QStringLiteral("*.jpg *.jpeg *.gif *.bmp *.png"));
    pattern_->addItem(tr("All files (*)"), QStringLiteral("*"));
    connect(pattern_, &QComboBox::currentIndexChanged, this, &PictureLibraryWindow::fillList);
    layout->addWidget(pattern_, 1, 0);
    files_ = new QListWidget(this);
    files_->setAccessibleName(tr("Files"));
    files_->setMinimumWidth(200);
    connect(files_, &QListWidget::currentTextChanged, this, [this](const QString &name) {
        if (!name.isEmpty())
            showFile(QDir(folder()).filePath(name));
    });
    connect(files_, &QListWidget::itemDoubleClicked, this, &PictureLibraryWindow::takeSelected);
    layout->addWidget(files_, 2, 0, 2, 1);

    // The preview, its size and the switches.
    previewLabel_ = new QLabel(this);
    previewLabel_->setFixedSize(kPreviewSize);
    previewLabel_->setFrameShape(QFrame::StyledPanel);
    previewLabel_->setAlignment(Qt::AlignCenter);
    previewLabel_->setAccessibleName(tr("Preview"));
    layout->addWidget(previewLabel_, 1, 1, 2, 1);
    auto *side = new QVBoxLayout;
    sizeLabel_ = new QLabel(this);
    sizeLabel_->setAccessibleName(tr("Picture size"));
    resize_ = new QCheckBox(tr("Resize to the field (%1 x %2)").arg(taker_.fieldPixels(field_).width()).arg(taker_.fieldPixels(field_).height()), this);
    ratio_ = new QCheckBox(tr("Keep the ratio"), this);
    // Both switches are on unless the settings say otherwise.
    const auto stored = [this](const QString &key) {
        return SettingsStore::GetSetting(settingsApplication_, kSection, key, QStringLiteral("1")).trimmed() != QLatin1String("0");
    };
    resize_->setChecked(stored(resizeKey()));
    ratio_->setChecked(stored(ratioKey()));
    ratio_->setEnabled(resize_->isChecked());
    connect(resize_, &QCheckBox::toggled, this, [this](bool on) {
        ratio_->setEnabled(on);
        showPreview();
    });
    connect(ratio_, &QCheckBox::toggled, this, &PictureLibraryWindow::showPreview);
    side->addWidget(sizeLabel_);
    side->addWidget(resize_);
    side->addWidget(ratio_);

    take_ = new QPushButton(tr("&Use this picture"), this);
    paste_ = new QPushButton(tr("&Paste"), this);
    copy_ = new QPushButton(tr("&Copy"), this);
    delete_ = new QPushButton(tr("&Delete picture"), this);
    auto *close = new QPushButton(tr("Close"), this);
    take_->setDefault(true);
    connect(take_, &QPushButton::clicked, this, &PictureLibraryWindow::takeSelected);
    connect(paste_, &QPushButton::clicked, this, &PictureLibraryWindow::takeClipboard);
    connect(copy_, &QPushButton::clicked, this, &PictureLibraryWindow::copyToClipboard);
    connect(delete_, &QPushButton::clicked, this, &PictureLibraryWindow::deletePicture);
    connect(close, &QPushButton::clicked, this, &QDialog::accept);
    for (QPushButton *b : {take_, paste_, copy_, delete_})
        side->addWidget(b);
    side->addStretch();
    side->addWidget(close);
    layout->addLayout(side, 3, 1);

    // The field's own picture shows first.
    const QString current = taker_.currentFile(field_);
    setFolder(current.isEmpty() ? QDir::homePath() : QFileInfo(current).absolutePath());
    if (current.isEmpty())
        showPreview();
    else if (!selectFile(QFileInfo(current).fileName()))
        showFile(current);
}

PictureLibraryWindow::~PictureLibraryWindow() { saveSwitches(); }

void PictureLibraryWindow::openFor(MainWindow &main, int field)
{
    PictureTaker taker(main.database().store(), main.database().page());
    if (!taker.isRecordPicture(field))
        return;
    // Settings under the application's key, as the other windows keep theirs; the keys carry the
    // design's title so that each database has its own switches.
    const Design &d = main.design();
    const QString application = d.AppTitle.trimmed().isEmpty() ? main.database().paths().AppBase : d.AppTitle.trimmed();
    PictureLibraryWindow window(taker, field, main.host(), application, d.MainCap.trimmed(), &main);
    window.exec();
}

void PictureLibraryWindow::saveSwitches()
{
    SettingsStore::SaveSetting(settingsApplication_, kSection, resizeKey(), resize_->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
    SettingsStore::SaveSetting(settingsApplication_, kSection, ratioKey(), ratio_->isChecked() ? QStringLiteral("1") : QStringLiteral("0"));
}

void PictureLibraryWindow::setFolder(const QString &folder)
{
    folder_->setText(QDir::toNativeSeparators(folder));
    fillList();
}

QString PictureLibraryWindow::folder() const { return QDir::fromNativeSeparators(folder_->text().trimmed()); }

void PictureLibraryWindow::fillList()
{
    files_->clear();
    const QStringList patterns = pattern_->currentData().toString().split(QLatin1Char(' '));
    QDir dir(folder());
    dir.setNameFilters(patterns);
    dir.setFilter(QDir::Files | QDir::Readable);
    dir.setSorting(QDir::Name | QDir::IgnoreCase);
    files_->addItems(dir.entryList());
}

bool PictureLibraryWindow::selectFile(const QString &fileName)
{
    const QList<QListWidgetItem *> found = files_->findItems(fileName, Qt::MatchExactly);
    if (found.isEmpty())
        return false;
    files_->setCurrentItem(found.first());
    return true;
}

void PictureLibraryWindow::showFile(const QString &path)
{
    // A file that cannot be read leaves the preview empty.
    selectedPath_ = path;
    QImageReader reader(path);
    preview_ = reader.read();
    showPreview();
}

QImage PictureLibraryWindow::fittedPreview() const
{
    if (preview_.isNull() || !resize_->isChecked())
        return preview_;
    return PictureFit::fit(preview_, taker_.fieldPixels(field_), ratio_->isChecked() ? FitMode::KeepRatio : FitMode::Stretch);
}

void PictureLibraryWindow::showPreview()
{
    if (preview_.isNull()) {
        previewLabel_->clear();
        sizeLabel_->setText(selectedPath_.isEmpty() ? tr("No picture") : tr("Not a picture"));
        return;
    }
    // The picture as it will be stored, within the preview with its ratio kept.
    const QImage shown = fittedPreview();
    previewLabel_->setPixmap(QPixmap::fromImage(shown.scaled(kPreviewSize - QSize(4, 4), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    sizeLabel_->setText(tr("%1 x %2 pixels").arg(preview_.width()).arg(preview_.height()));
}

PictureTaker::Options PictureLibraryWindow::options() const
{
    return {resize_->isChecked(), ratio_->isChecked()};
}

void PictureLibraryWindow::report(const Error &error)
{
    messages_.ShowMessage(windowTitle(), error.text, kMessageColour);
}

void PictureLibraryWindow::takeSelected()
{
    if (selectedPath_.isEmpty()) {
        messages_.ShowMessage(windowTitle(), tr("Choose a picture file first."), kMessageColour);
        return;
    }
    Result<QString> stored = taker_.takeFile(field_, selectedPath_, options());
    if (!stored) {
        report(stored.error());
        return;
    }
    saveSwitches();
    accept();
}

void PictureLibraryWindow::takeClipboard()
{
    const QImage picture = QGuiApplication::clipboard()->image();
    toolkit::WaitWindow wait(this);
    wait.begin(tr("Processing"));
    Result<QString> stored = taker_.takeImage(field_, picture, options());
    wait.end();
    if (!stored) {
        report(stored.error());
        return;
    }
    saveSwitches();
    accept();
}

void PictureLibraryWindow::copyToClipboard()
{
    if (!preview_.isNull())
        QGuiApplication::clipboard()->setImage(preview_);
}

void PictureLibraryWindow::deletePicture()
{
    if (Status removed = taker_.removePicture(field_); !removed) {
        report(removed.error());
        return;
    }
    selectedPath_.clear();
    preview_ = QImage();
    showPreview();
}

void PictureLibraryWindow::chooseFolder()
{
    const QString chosen = QFileDialog::getExistingDirectory(this, tr("Picture folder"), folder());
    if (!chosen.isEmpty())
        setFolder(chosen);
}

void PictureLibraryWindow::openFile()
{
    const QString chosen = QFileDialog::getOpenFileName(this, tr("Open a picture"), folder(), pattern_->currentText());
    if (chosen.isEmpty())
        return;
    setFolder(QFileInfo(chosen).absolutePath());
    if (!selectFile(QFileInfo(chosen).fileName()))
        showFile(chosen);
}

} // namespace ff::gui
