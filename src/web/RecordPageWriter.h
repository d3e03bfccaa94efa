#pragma once
// WriteRecordPages: what the page shows turned into HTML with absolute positions. In record mode
// each page of the design becomes one file of the record; in form mode all pages are stacked in
// one file with inputs in place of the values, for the PHP form site.
//
// The argument selects the mode and is changed by the call, as the export loop expects: 1 or more
// is record mode for that record number; -1 is form mode before the head is written, and the call
// sets it to -2 once the head is out so that it is not written again.
//
// Everything is read from the page after the record has been unpacked onto it (values, live
// label captions, the flow layer) and from the design (positions, fonts, colours); nothing is
// recalculated. Positions are in pixels, 15 twips each. Texts of records and of the design are
// escaped wherever they land in HTML, so a value shows as text whatever it holds; file names taken
// from records never leave the export folder.

#include "core/CodePage.h"
#include "core/Result.h"
#include "design/Page.h"
#include "formula/FormulaContext.h"
#include "web/FileWriter.h"
#include "web/TextWidths.h"

#include <QHash>
#include <QString>
#include <array>
#include <memory>
#include <vector>

namespace ff::web {

class RecordPageWriter {
public:
    // `pictureFolder`: the app's folder (design pictures); `recordPictureFolder`: where per-record
    // pictures are (with a trailing '/', may be empty).
    RecordPageWriter(const Design &design, const QString &pictureFolder, const QString &recordPictureFolder);
    ~RecordPageWriter();

    // `exportFolder` ends in '/'. `exportName` is ExportName with ".htm" behind it. With
    // `currentRecordNames` the pages are named by the export's name (ExportName.htm,
    // bExportName.htm, ...), otherwise by record number (17.htm, 17b.htm, ...).
    void setTarget(const QString &exportFolder, const QString &exportName, bool currentRecordNames);
    // The last record, for the navigation links.
    void setRecordCount(int count) { recordCount_ = count; }
    // Pages go to `files` to be written on its thread; without one they are written at once.
    void setFileWriter(FileWriter *files) { files_ = files; }

    Status WriteRecordPages(int &argument, const Page &page, const FormulaContext &context);

    int picturesWritten() const { return PictureCounter - kFirstPicture; }
    // The bottom of the lowest element of each page, in pixels.
    const std::array<int, 5> &pageHeights() const { return heights_; }
    // The file name of page `k` of `record` in record mode.
    QString pageFile(int record, int k) const;

private:
    static constexpr int kFirstPicture = 50;
    void measureHeights(const Page &page);
    void writeHead(QString &out, int page, bool formMode, int &argument) const;
    void writeMap(QString &out, int k, const Page &page, const FormulaContext &context) const;
    void writeTabs(QString &out, int record, int k) const;
    void writePictures(QString &out, int k, const Page &page);
    Status writeCheckPictures(int k);
    void writeFlowImages(QString &out, int k, const Page &page) const;
    void writeLabels(QString &out, int k, int record, const Page &page, const FormulaContext &context);
    void writeFlowLabels(QString &out, int k, const Page &page);
    void writeFields(QString &out, int k, bool formMode, const Page &page);
    void writeCombos(QString &out, int k, bool formMode, const Page &page);
    void writeNotes(QString &out, int k, bool formMode, const Page &page) const;
    void writeChecks(QString &out, int k, const Page &page) const;
    QString labelLink(const QString &caption, int record) const;
    const TextWidths &metricsFor(const QString &family, double points, bool bold, bool italic, bool underline = false);
    Status writeFile(const QString &path, const QString &text) const;

    const Design &design_;
    CodePage codePage_;
    QString pictureFolder_, recordPictureFolder_;
    QString folder_, exportName_;
    bool currentRecordNames_ = false;
    int recordCount_ = 0;
    FileWriter *files_ = nullptr;
    int offset_ = 0;
    std::array<int, 5> heights_{};
    std::array<bool, 14> checkWritten_{};
    struct FontWidths {
        QString family;
        double points;
        int style; // 1 bold, 2 italic, 4 underline
        std::unique_ptr<TextWidths> widths;
    };
    std::vector<FontWidths> metrics_;

public:
    int PictureCounter = kFirstPicture;
};

} // namespace ff::web
