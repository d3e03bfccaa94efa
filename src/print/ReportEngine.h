#pragma once
// One report of the design: a free-form page of shapes, lines, pictures and labels, some bound
// to a field of the record in one of N numbered rows. A page holds N consecutive records; how many
// follows from the highest row any label or picture uses. The engine fills the page that starts at
// FirstOffset (LoadReport), pages through the records, and draws the filled page on a Printer
// (Printreport), for the preview and for paper alike.

#include "core/Result.h"
#include "design/Design.h"
#include "print/Printer.h"
#include "print/RecordPrinter.h"
#include "print/ReportRecords.h"

#include <QImage>
#include <QString>
#include <QVector>
#include <vector>

namespace ff::print {

// Where the records come from: all records in the main window's order, a search's list copied
// into the report, or the hit list of the last search.
enum class ReportSource { AllRecords = 0, SearchList = 3, HitList = 4 };
// The paging buttons.
enum class ReportPaging { First = 0, Previous = 1, Next = 2, Last = 3, GoTo = 8 };

class ReportEngine {
public:
    static constexpr int kMaxPictures = 201;

    // ReportLoading: takes report `index` (0-based; the report menu counts from 1) of the design.
    // A report without a caption, or one whose block breaks the report's limits, is an error with
    // a message; the rest of the program goes on without it.
    static Result<ReportEngine> ReportLoading(const Design &design, int index);

    const QString &caption() const { return definition_.Caption; }
    const ReportDefinition &definition() const { return definition_; }
    // The report's page in twips.
    double pageWidth() const { return definition_.PageWidth; }
    double pageHeight() const { return definition_.PageHeight; }

    // The source of the next ReportStart; `list` holds record numbers for the search sources.
    void setSource(ReportSource source, QVector<int> list = {});
    // The text that labels "T$" and "D$" show (the page's labels 2 and 3) and the flag that stops
    // a running fill or print when the window closes.
    void setCancelFlag(const bool *cancel) { cancel_ = cancel; }

    // Opens the report on `currentRecord`: the page that holds it, filled.
    Status ReportStart(ReportRecords &records, int currentRecord);
    // Fills every label and picture of the page that starts at FirstOffset.
    void LoadReport(ReportRecords &records);
    // A paging button; true when the page changed (and was loaded). `goToPage` is the typed page
    // number for GoTo.
    bool page(ReportPaging button, ReportRecords &records, int goToPage = 1);
    // Draws the filled page as one sheet, ending with NewPage.
    void Printreport(Printer &printer, RecordPrinter &drawing) const;
    // The print command: pages `from` to `to` (1-based), `copies` times; stops with KillDoc when
    // the cancel flag comes up. Returns the sheets printed.
    Result<int> printPages(Printer &printer, RecordPrinter &drawing, ReportRecords &records, int from, int to, int copies = 1);

    int RowsPerPage() const { return rowsPerPage_; }
    int FirstOffset() const { return firstOffset_; }
    int RecordTotal() const { return recordTotal_; }
    int NavigationMode() const { return navigationMode_; }
    // The number of the page shown (the page box) and the count the print offers.
    int pageNumber() const { return firstOffset_ / qMax(1, rowsPerPage_) + 1; }
    int pageCount() const { return recordTotal_ / qMax(1, rowsPerPage_) + 1; }
    // The record of `row` on the page shown; 0 when the row is past the end.
    int recordOfRow(int row, const ReportRecords &records) const;
    // The label (index from 0) under a point of the page in twips, or -1.
    int labelAt(double x, double y) const;
    // What a label shows after LoadReport.
    QString labelCaption(int label) const { return label >= 0 && size_t(label) < labels_.size() ? labels_[size_t(label)].Caption : QString(); }
    int labelRow(int label) const { return label >= 0 && size_t(label) < labels_.size() ? labels_[size_t(label)].LabelRow : 0; }
    // The source of the records and its list, as setSource gave them.
    ReportSource source() const { return source_; }
    const QVector<int> &sourceList() const { return RecordList; }
    // A label that shows a check field as a small picture instead of text, and whether it is ticked.
    bool labelIsCheck(int label) const { return label >= 0 && size_t(label) < labels_.size() && labels_[size_t(label)].Tag == QLatin1String("x"); }
    bool labelChecked(int label) const { return labelIsCheck(label) && labels_[size_t(label)].checked; }
    // The records shown on the page, row by row (0 for an empty row).
    QVector<int> recordsShown(const ReportRecords &records) const;

private:
    struct LabelState {
        QString Caption;
        QString Tag;
        int LabelRow = 0;
        bool checked = false;
    };
    ReportEngine() = default;
    QString wrapNote(const ReportLabel &label, const QString &text) const;
    QImage pictureOf(const ReportPicture &picture, const Page &page) const;
    bool cancelled() const { return cancel_ && *cancel_; }

    const Design *design_ = nullptr;
    ReportDefinition definition_;
    QString pictureFolder_;
    ReportSource source_ = ReportSource::AllRecords;
    QVector<int> RecordList;
    std::vector<LabelState> labels_;
    std::vector<QImage> pictures_;
    std::vector<int> LabelPageStart;
    int rowsPerPage_ = 1;
    int firstOffset_ = 0;
    int recordTotal_ = 0;
    int navigationMode_ = 0;
    int LoadedRecord = 0;
    int sortMode_ = 0;
    QVector<int> sortIndex_;
    const bool *cancel_ = nullptr;

public:
    // Where the design's pictures are, for pictures that copy a page picture.
    void setPictureFolder(const QString &folder) { pictureFolder_ = folder; }
    void setRecordPictureFolder(const QString &folder) { recordPictureFolder_ = folder; }

private:
    QString recordPictureFolder_;
};

} // namespace ff::print
