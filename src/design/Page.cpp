#include "design/Page.h"

namespace ff {

Page::Page(const Design &design, QObject *parent) : QObject(parent), design_(design)
{
    FieldText.resize(design.Fields.size());
    FieldDate.resize(design.Fields.size());
    FieldLocked.resize(design.Fields.size());
    ComboText.resize(design.Combos.size());
    ComboLocked.resize(design.Combos.size());
    CheckValue.resize(design.Checks.size());
    CheckLocked.resize(design.Checks.size());
    NoteText.resize(design.Notes.size());
    NoteLocked.resize(design.Notes.size());
    PictureRecordName.resize(design.Pictures.size());
    TitleCaption.resize(design.Titles.size());
    for (size_t i = 0; i < design.Titles.size(); ++i)
        TitleCaption[i] = design.Titles[i].Caption;
    for (size_t i = 0; i < design.Checks.size(); ++i)
        CheckValue[i] = design.Checks[i].CheckDefault ? 1 : 0;
}

void Page::setFieldText(int index, const QString &text)
{
    if (index < 0 || index >= FieldText.size() || FieldText[index] == text)
        return;
    FieldText[index] = text;
    Q_EMIT elementChanged(ElementKind::Field, index);
}

void Page::setComboText(int index, const QString &text)
{
    if (index < 0 || index >= ComboText.size() || ComboText[index] == text)
        return;
    ComboText[index] = text;
    Q_EMIT elementChanged(ElementKind::Combo, index);
}

void Page::setCheckValue(int index, int value)
{
    if (index < 0 || index >= CheckValue.size() || CheckValue[index] == value)
        return;
    CheckValue[index] = value;
    Q_EMIT elementChanged(ElementKind::Check, index);
}

void Page::setNoteText(int index, const QString &text)
{
    if (index < 0 || index >= NoteText.size() || NoteText[index] == text)
        return;
    NoteText[index] = text;
    Q_EMIT elementChanged(ElementKind::Note, index);
}

void Page::setTitleCaption(int index, const QString &text)
{
    if (index < 0 || index >= TitleCaption.size() || TitleCaption[index] == text)
        return;
    TitleCaption[index] = text;
    Q_EMIT elementChanged(ElementKind::Title, index);
}

void Page::setCurrentPage(int page)
{
    if (page == CurrentPage)
        return;
    CurrentPage = page;
    Q_EMIT pageChanged(page);
}

} // namespace ff
