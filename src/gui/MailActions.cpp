#include "gui/MailActions.h"

#include "core/MessageSink.h"
#include "gui/MainWindow.h"
#include "gui/MainWindowHost.h"
#include "export/ExportKinds.h"
#include "pdf/PdfRecordExport.h"
#include "pdf/PdfReportExport.h"
#include "pdf/RecordMailer.h"
#include "print/StoreRecords.h"
#include "store/Database.h"
#include "toolkit/WaitWindow.h"

#include <QAction>
#include <QDir>
#include <QFileDialog>
#include <QMenu>
#include <QPainter>
#include <QPixmap>
#include <QPointer>
#include <QProcess>
#include <QStandardPaths>
#include <QToolBar>

namespace ff::gui {

namespace {

// The desktop's mail icon, or an envelope drawn here where the desktop has no icon theme: a tool
// button without an icon shows its whole caption and pushes the last buttons off the bar.
QIcon mailIcon()
{
    const QIcon themed = QIcon::fromTheme(QStringLiteral("mail-send"));
    if (!themed.isNull())
        return themed;
    QPixmap envelope(32, 32);
    envelope.fill(Qt::transparent);
    QPainter p(&envelope);
    p.setRenderHint(QPainter::Antialiasing);
    p.setPen(QPen(QColor(60, 60, 70), 2));
    p.setBrush(QColor(250, 250, 245));
    p.drawRect(QRectF(3, 8, 26, 17));
    p.drawPolyline(QPolygonF({QPointF(3, 8), QPointF(16, 18), QPointF(29, 8)}));
    return QIcon(envelope);
}

} // namespace

MailActions::MailActions(MainWindow &main) : QObject(&main), main_(main) {}

void MailActions::addCommands(QMenu *menu, QToolBar *bar)
{
    QAction *mail = menu->addAction(tr("&Mail this record..."), this, [this] { std::ignore = mailRecord(); });
    mail->setObjectName(QStringLiteral("mailCommand"));
    mail->setIcon(mailIcon());
    mail->setToolTip(tr("Mail this record"));
    if (!QStandardPaths::findExecutable(QStringLiteral("xdg-email")).isEmpty()) {
        QAction *compose = menu->addAction(tr("Mail with the desktop's &compose window..."), this,
                                           [this] { composeWithDesktop(); });
        compose->setObjectName(QStringLiteral("composeCommand"));
    }
    if (bar && main_.design().MailIconVisible)
        bar->addAction(mail);
}

int MailActions::savedRecord()
{
    RecordStore &store = main_.database().store();
    if (store.RecordCount() < 1 || !store.SaveIfDirty())
        return 0;
    return store.CurrentRecord();
}

QString MailActions::addressText() const
{
    const int field = main_.design().MailAddressField;
    return field > 0 ? main_.database().page().FieldText.value(field) : QString();
}

QString MailActions::mailRecord()
{
    const int record = savedRecord();
    if (record < 1)
        return QString();
    toolkit::WaitWindow wait(&main_);
    wait.setWindowTitle(tr("Mail"));
    wait.begin();
    pdf::RecordMailer mailer(main_.database().store(), main_.context(), main_.database().paths().AppFolder);
    const Result<QString> written = mailer.MailRecord(record, main_.design().MainCap, main_.database().clock().today());
    wait.end();
    if (!written) {
        // No PDF, no message: the mail program gets the address alone.
        main_.host().openWithDesktop(QStringLiteral("mailto:") + addressText(), QString());
        return QString();
    }
    main_.host().openWithDesktop(*written, QString());
    return *written;
}

void MailActions::composeWithDesktop()
{
    const int record = savedRecord();
    if (record < 1)
        return;
    pdf::RecordMailer mailer(main_.database().store(), main_.context(), main_.database().paths().AppFolder);
    const Result<QString> pdf = mailer.RecordPdf(record);
    if (!pdf) {
        main_.host().ShowMessage(QString(), tr("The record's PDF could not be made: %1.").arg(pdf.error().text), kMessageColour);
        return;
    }
    QStringList arguments{QStringLiteral("--subject"), QStringLiteral("Attached"), QStringLiteral("--attach"), *pdf};
    if (!addressText().trimmed().isEmpty())
        arguments << addressText().trimmed();
    // xdg-email ends at once when it finds no mail program (exit 3) or its mail program fails, and
    // says so only on its error output: the user hears it in a message. The process has no parent,
    // so closing the window does not end a compose window that is still open.
    auto *process = new QProcess;
    QPointer<MailActions> self(this);
    const auto failed = [self] {
        if (self)
            self->main_.host().ShowMessage(QString(), tr("The desktop's compose window could not be opened."),
                                           kMessageColour);
    };
    connect(process, &QProcess::finished, process, [process, failed](int exitCode, QProcess::ExitStatus status) {
        process->deleteLater();
        if (status != QProcess::NormalExit || exitCode != 0)
            failed();
    });
    connect(process, &QProcess::errorOccurred, process, [process, failed](QProcess::ProcessError error) {
        if (error == QProcess::FailedToStart) {
            process->deleteLater();
            failed();
        }
    });
    process->setProcessChannelMode(QProcess::ForwardedChannels);
    process->start(QStringLiteral("xdg-email"), arguments);
}

void MailActions::saveReportPdf(int reportIndex, const QVector<int> *list, QWidget *parent)
{
    const QString chosen = QFileDialog::getSaveFileName(parent, tr("Save the report as PDF"), QDir::currentPath(),
                                                        QStringLiteral("*.PDF;;*.*"));
    if (chosen.isEmpty())
        return;
    const QString path = pdf::PdfReportExport::ReportFileName(chosen);
    RecordStore &store = main_.database().store();
    print::StoreRecords records(store);
    toolkit::WaitWindow wait(parent);
    wait.setWindowTitle(tr("PDF"));
    wait.begin();
    pdf::PdfReportExport exporter(main_.design(), main_.database().paths().AppFolder, store.RecordPictureFolder());
    const Result<int> done = exporter.ExportPDFreport(reportIndex, records, path, list, &wait);
    wait.end();
    if (!done)
        main_.host().ShowMessage(QString(), tr("The PDF could not be written: %1.").arg(done.error().text), kMessageColour);
}

void MailActions::saveRowsPdf(const QVector<int> &rows, QWidget *parent)
{
    QString path = QFileDialog::getSaveFileName(parent, tr("Save the records as PDF"), QDir::currentPath(),
                                                QStringLiteral("*.pdf;;*.*"));
    if (path.isEmpty() || rows.isEmpty())
        return;
    path = CutExportExtension(path) + QStringLiteral(".pdf");
    RecordStore &store = main_.database().store();
    toolkit::WaitWindow wait(parent);
    wait.setWindowTitle(tr("PDF"));
    wait.begin();
    pdf::PdfRecordExport exporter(store, main_.context(), main_.database().paths().AppFolder);
    const Result<pdf::PdfOutcome> done =
        exporter.PrintPDF(path, pdf::PdfMode::OneDocument, ExportRange::ResultList(rows, store.RecordCount()), &wait);
    wait.end();
    if (!done)
        main_.host().ShowMessage(QString(), tr("The PDF could not be written: %1.").arg(done.error().text), kMessageColour);
}

QString MailActions::mailReport(int reportIndex, const QVector<int> *list)
{
    if (savedRecord() < 1)
        return QString();
    pdf::RecordMailer mailer(main_.database().store(), main_.context(), main_.database().paths().AppFolder);
    const Result<QString> written =
        mailer.MailReport(reportIndex, main_.design().MainCap, main_.database().clock().today(), list);
    if (!written) {
        main_.host().openWithDesktop(QStringLiteral("mailto:") + addressText(), QString());
        return QString();
    }
    main_.host().openWithDesktop(*written, QString());
    return *written;
}

} // namespace ff::gui
