#include "gui/ReportPreviewWindow.h"

#include "core/SettingsStore.h"
#include "gui/MailActions.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "gui/PrintOptionsWindow.h"
#include "gui/PrinterTarget.h"
#include "gui/Twips.h"
#include "print/ImageTarget.h"
#include "store/Database.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QIntValidator>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPrinter>
#include <QPushButton>
#include <QScrollArea>
#include <QVBoxLayout>

namespace ff::gui {

namespace {

QString applicationKeyOf(MainWindow &main)
{
    const Design &d = main.design();
    return d.AppTitle.trimmed().isEmpty() ? main.database().paths().AppBase : d.AppTitle.trimmed();
}

} // namespace

ReportPreviewWindow::ReportPreviewWindow(MainWindow &main, print::ReportEngine engine, QWidget *parent)
    : QWidget(parent, Qt::Window), main_(main), engine_(std::move(engine)), records_(main.database().store()),
      tpp_(twipsPerPixel(&main)), view_(new QScrollArea(this)), pageLabel_(new QLabel), pageBox_(new QLineEdit(this)),
      printButton_(new QPushButton(tr("Print..."), this))
{
    setWindowTitle(engine_.caption());
    engine_.setCancelFlag(&CancelFlag);
    engine_.setPictureFolder(main.database().paths().AppFolder);
    engine_.setRecordPictureFolder(main.database().store().RecordPictureFolder());

    auto *bar = new QHBoxLayout;
    const std::array<QString, 4> captions{tr("|<"), tr("<"), tr(">"), tr(">|")};
    const std::array<print::ReportPaging, 4> buttons{print::ReportPaging::First, print::ReportPaging::Previous,
                                                     print::ReportPaging::Next, print::ReportPaging::Last};
    for (size_t i = 0; i < 4; ++i) {
        pagingButtons_[i] = new QPushButton(captions[i], this);
        pagingButtons_[i]->setFixedWidth(36);
        connect(pagingButtons_[i], &QPushButton::clicked, this, [this, b = buttons[i]] { pageTo(b); });
        bar->addWidget(pagingButtons_[i]);
        if (i == 1) {
            pageBox_->setValidator(new QIntValidator(1, 999999999, pageBox_));
            pageBox_->setFixedWidth(60);
            pageBox_->setAlignment(Qt::AlignCenter);
            bar->addWidget(pageBox_);
        }
    }
    connect(pageBox_, &QLineEdit::returnPressed, this, [this] { pageTo(print::ReportPaging::GoTo, pageBox_->text().toInt()); });
    bar->addStretch(1);
    bar->addWidget(printButton_);
    connect(printButton_, &QPushButton::clicked, this, [this] {
        QPrinter printer(QPrinter::HighResolution);
        printReport(printer);
    });
    // The PDF and mail buttons. The report is found in the design by its definition.
    auto *pdfButton = new QPushButton(tr("PDF..."), this);
    pdfButton->setObjectName(QStringLiteral("SavePDFFile"));
    auto *mailButton = new QPushButton(tr("Mail"), this);
    mailButton->setObjectName(QStringLiteral("mailReportButton"));
    mailButton->setVisible(main.design().MailIconVisible);
    bar->addWidget(pdfButton);
    bar->addWidget(mailButton);
    const auto reportIndex = [this] {
        const std::vector<ReportDefinition> &reports = main_.design().Reports;
        for (size_t i = 0; i < reports.size(); ++i)
            if (reports[i].Caption == engine_.caption() && reports[i].Labels.size() == engine_.definition().Labels.size())
                return int(i);
        return -1;
    };
    const auto list = [this]() -> const QVector<int> * {
        return engine_.source() == print::ReportSource::AllRecords ? nullptr : &engine_.sourceList();
    };
    connect(pdfButton, &QPushButton::clicked, this, [this, reportIndex, list] {
        if (const int i = reportIndex(); i >= 0)
            main_.mail().saveReportPdf(i, list(), this);
    });
    connect(mailButton, &QPushButton::clicked, this, [this, reportIndex, list] {
        if (const int i = reportIndex(); i >= 0)
            std::ignore = main_.mail().mailReport(i, list());
    });

    pageLabel_->setAlignment(Qt::AlignLeft | Qt::AlignTop);
    pageLabel_->installEventFilter(this);
    pageLabel_->setToolTip(tr("Double-click a row to show its record"));
    view_->setWidget(pageLabel_);
    view_->setBackgroundRole(QPalette::Dark);
    view_->setAlignment(Qt::AlignHCenter | Qt::AlignTop);
    auto *layout = new QVBoxLayout(this);
    layout->addLayout(bar);
    layout->addWidget(view_, 1);
    setMinimumSize(320, 240);
    const int width = toPixels(engine_.definition().WindowWidth > 0 ? engine_.definition().WindowWidth : engine_.pageWidth(), tpp_);
    const int height = toPixels(engine_.definition().WindowHeight > 0 ? engine_.definition().WindowHeight : 9000, tpp_);
    resize(qBound(320, width, 1200), qBound(240, height, 900));
}

ReportPreviewWindow::~ReportPreviewWindow() = default;

void ReportPreviewWindow::start()
{
    // The record shown is saved first, as every move does; a failed save has been told.
    std::ignore = main_.database().store().SaveIfDirty();
    std::ignore = engine_.ReportStart(records_, main_.database().store().CurrentRecord()); // the record stays if it can't come back
    main_.host().announceRecordShown();
    drawPage();
}

void ReportPreviewWindow::drawPage()
{
    print::ImageTarget target(QSizeF(engine_.pageWidth(), engine_.pageHeight()), 1440.0 / tpp_);
    {
        print::Printer printer(target);
        print::RecordPrinter drawing(main_.design(), main_.database().paths().AppFolder);
        engine_.Printreport(printer, drawing);
        std::ignore = printer.EndDoc(); // pictures in memory: nothing can fail to be written
    }
    page_ = target.pages().empty() ? QImage() : target.pages().front();
    pageLabel_->setPixmap(QPixmap::fromImage(page_));
    pageLabel_->resize(page_.size());
    pageBox_->setText(QString::number(engine_.pageNumber()));
    const bool paging = engine_.NavigationMode() != 4;
    for (QPushButton *b : pagingButtons_)
        b->setEnabled(paging);
}

void ReportPreviewWindow::pageTo(print::ReportPaging button, int typedPage)
{
    if (engine_.page(button, records_, typedPage)) {
        main_.host().announceRecordShown();
        drawPage();
    }
    pageBox_->setText(QString::number(engine_.pageNumber()));
}

void ReportPreviewWindow::jumpAt(QPoint pixels)
{
    const int label = engine_.labelAt(pixels.x() * tpp_, pixels.y() * tpp_);
    if (label < 0)
        return;
    const int record = engine_.recordOfRow(engine_.labelRow(label), records_);
    if (record < 1)
        return;
    if (records_.load(record))
        main_.host().announceRecordShown();
}

bool ReportPreviewWindow::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == pageLabel_ && event->type() == QEvent::MouseButtonDblClick) {
        jumpAt(static_cast<QMouseEvent *>(event)->position().toPoint());
        return true;
    }
    return QWidget::eventFilter(watched, event);
}

void ReportPreviewWindow::printReport(QPrinter &printer, bool options)
{
    int from = 1, to = engine_.pageCount(), copies = 1;
    bool rescale = false;
    if (options) {
        PrintOptionsWindow window(printer, applicationKeyOf(main_), QSizeF(engine_.pageWidth(), engine_.pageHeight()), this);
        window.setRange(1, engine_.pageCount(), engine_.pageCount(), false);
        window.applyStoredChoices();
        window.exec();
        if (window.PrintCancelled())
            return;
        from = window.first();
        to = window.last();
        copies = window.copies();
        rescale = window.rescale();
    }
    PrinterTarget target(printer);
    print::Printer device(target);
    if (rescale && engine_.pageWidth() > 0)
        device.setZoom(int(device.ScaleWidth() / engine_.pageWidth() * 100));
    print::RecordPrinter drawing(main_.design(), main_.database().paths().AppFolder);
    CancelFlag = false;
    const Result<int> done = engine_.printPages(device, drawing, records_, from, to, copies);
    if (!CancelFlag && !done)
        main_.host().ShowMessage(main_.design().AppTitle, done.error().text, 0);
    if (!CancelFlag) {
        main_.host().announceRecordShown();
        drawPage(); // the page last printed stays on screen
    }
}

void ReportPreviewWindow::closeEvent(QCloseEvent *event)
{
    CancelFlag = true;
    if (windowState() == Qt::WindowNoState) {
        const QString key = applicationKeyOf(main_);
        const QRect g = geometry();
        const QString section = QStringLiteral("Settings");
        SettingsStore::SaveSetting(key, section, key + QStringLiteral("ReportLeft"), QString::number(g.x() * tpp_));
        SettingsStore::SaveSetting(key, section, key + QStringLiteral("ReportTop"), QString::number(g.y() * tpp_));
        SettingsStore::SaveSetting(key, section, key + QStringLiteral("ReportWidth"), QString::number(g.width() * tpp_));
        SettingsStore::SaveSetting(key, section, key + QStringLiteral("ReportHeight"), QString::number(g.height() * tpp_));
    }
    QWidget::closeEvent(event);
}

} // namespace ff::gui
