#pragma once
// The page: the live state of the record on screen. It holds every element's value (field texts
// and dates, combo texts, check values, note texts, per-record picture names, the flow layer),
// which elements are locked, the page shown and the captions of the labels. The record codec fills
// it and reads it, formulas work on it, exports and prints read it, and the window binds its widgets
// to it, so that everything but the widgets works without a window.

#include "design/Design.h"

#include <QObject>
#include <QString>
#include <QVector>

namespace ff {

enum class ElementKind : uint8_t { None = 0, Field = 1, Check = 2, Combo = 3, Note = 4, Title = 5, Picture = 6, Button = 7 };

// A free label of the per-record flow layer.
struct FlowLabel {
    uint8_t page = 0;
    uint8_t style = 0; // units digit bold, tens italic, hundreds underline: 0, 1, 10, 11, 100, ...
    uint8_t fontSize = 8;
    uint8_t alignment = 0;
    QString text;
    int32_t color = 0;
    int32_t left = 0, top = 0;
    // The size on screen in twips, set by sizing the label; 0 follows the text. Not stored with
    // the record, which keeps only the place.
    int32_t width = 0, height = 0;
};

// A free picture of the per-record flow layer; its image is Images/<FlowImageId>.gif.
struct FlowImage {
    uint8_t page = 0;
    int32_t left = 0, top = 0, width = 0, height = 0;
    int32_t FlowImageId = 0;
    int32_t FlowImageLink = 0; // a record number to jump to, 0 for none
};

class Page : public QObject {
    Q_OBJECT
public:
    explicit Page(const Design &design, QObject *parent = nullptr);

    const Design &design() const { return design_; }

    // Values by element number, sized from the design (index 0 of fields, combos, notes unused).
    QVector<QString> FieldText;
    QVector<double> FieldDate; // the date behind a date field, as a day number
    QVector<bool> FieldLocked;
    QVector<QString> ComboText;
    QVector<bool> ComboLocked;
    QVector<int> CheckValue; // 0 or 1
    QVector<bool> CheckLocked;
    QVector<QString> NoteText;
    QVector<bool> NoteLocked;
    QVector<QString> PictureRecordName; // per picture; only Stretch pictures carry one
    QVector<QString> TitleCaption;      // live label captions (status line, record number, stamp, ...)
    QVector<FlowLabel> FlowLabels;
    QVector<FlowImage> FlowImages;
    double RecordStamp = 0;
    int CurrentPage = 0;

    // Setters that tell the window what changed; the engine may also write the vectors directly and
    // call notifyAll() once.
    void setFieldText(int index, const QString &text);
    void setComboText(int index, const QString &text);
    void setCheckValue(int index, int value);
    void setNoteText(int index, const QString &text);
    void setTitleCaption(int index, const QString &text);
    void setCurrentPage(int page);
    void notifyAll() { Q_EMIT reset(); }
    // The flow layer (FlowLabels, FlowImages) was edited in place.
    void notifyFlow() { Q_EMIT flowChanged(); }

Q_SIGNALS:
    void elementChanged(ff::ElementKind kind, int index);
    void pageChanged(int page);
    void reset();
    void flowChanged();

private:
    const Design &design_;
};

} // namespace ff
