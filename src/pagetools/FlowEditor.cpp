#include "pagetools/FlowEditor.h"

#include "store/RecordStore.h"

#include <algorithm>

namespace ff {

FlowEditor::FlowEditor(Page &page, RecordStore *store) : page_(page), store_(store) {}

bool FlowEditor::begin()
{
    if (!store_)
        return true;
    if (!store_->writingAllowed())
        return false;
    // Only another user's lock refuses the change (and has shown the record again); a lock that
    // fails otherwise still lets the user work, as typing in a field does.
    const Status locked = store_->LockRecord();
    return locked.ok() || locked.error().code != ErrorCode::PermissionDenied;
}

FlowLabel *FlowEditor::label(FlowElement e)
{
    return e.kind == FlowElement::Kind::Label && e.index >= 0 && e.index < page_.FlowLabels.size()
        ? &page_.FlowLabels[e.index]
        : nullptr;
}

FlowImage *FlowEditor::image(FlowElement e)
{
    return e.kind == FlowElement::Kind::Image && e.index >= 0 && e.index < page_.FlowImages.size()
        ? &page_.FlowImages[e.index]
        : nullptr;
}

bool FlowEditor::exists(FlowElement e) const
{
    auto *self = const_cast<FlowEditor *>(this);
    return self->label(e) || self->image(e);
}

int32_t FlowEditor::left(FlowElement e) const
{
    auto *self = const_cast<FlowEditor *>(this);
    if (const FlowLabel *l = self->label(e))
        return l->left;
    const FlowImage *im = self->image(e);
    return im ? im->left : 0;
}

int32_t FlowEditor::top(FlowElement e) const
{
    auto *self = const_cast<FlowEditor *>(this);
    if (const FlowLabel *l = self->label(e))
        return l->top;
    const FlowImage *im = self->image(e);
    return im ? im->top : 0;
}

FlowElement FlowEditor::addLabel(int32_t left, int32_t top)
{
    if (!begin())
        return {};
    FlowLabel l;
    l.page = uint8_t(page_.CurrentPage);
    l.left = left;
    l.top = top;
    page_.FlowLabels.push_back(l);
    page_.notifyFlow();
    return {FlowElement::Kind::Label, int(page_.FlowLabels.size() - 1)};
}

FlowElement FlowEditor::addImage(int32_t x, int32_t y, int32_t imageId, QSize naturalTwips, int32_t link)
{
    if (imageId < 1 || !begin())
        return {};
    FlowImage im;
    im.page = uint8_t(page_.CurrentPage);
    im.width = std::max(naturalTwips.width(), MinimumSize);
    im.height = std::max(naturalTwips.height(), MinimumSize);
    im.left = GridSnap::snap(x - im.width / 2, grid_.GridX, grid_.scale);
    im.top = GridSnap::snap(y - im.height / 2, grid_.GridY, grid_.scale);
    im.FlowImageId = imageId;
    im.FlowImageLink = link;
    page_.FlowImages.push_back(im);
    page_.notifyFlow();
    return {FlowElement::Kind::Image, int(page_.FlowImages.size() - 1)};
}

bool FlowEditor::moveTo(FlowElement e, int32_t left, int32_t top)
{
    if (!exists(e) || !begin())
        return false;
    if (FlowLabel *l = label(e)) {
        l->left = left;
        l->top = top;
    } else if (FlowImage *im = image(e)) {
        im->left = left;
        im->top = top;
    }
    page_.notifyFlow();
    return true;
}

bool FlowEditor::snapPlace(FlowElement e)
{
    if (!exists(e))
        return false;
    if (!grid_.on())
        return true; // dropped where it was let go
    return moveTo(e, GridSnap::snap(left(e), grid_.GridX, grid_.scale), GridSnap::snap(top(e), grid_.GridY, grid_.scale));
}

bool FlowEditor::resize(FlowElement e, int32_t width, int32_t height, bool snap)
{
    if (!exists(e) || !begin())
        return false;
    width = std::max(width, MinimumSize);
    height = std::max(height, MinimumSize);
    if (snap && grid_.on()) {
        // A size rounded to no step at all would lose the element: one step is the least.
        const int32_t stepX = GridSnap::snap(int32_t(grid_.GridX * GridSnap::twipsPerUnit(grid_.scale)), grid_.GridX, grid_.scale);
        const int32_t stepY = GridSnap::snap(int32_t(grid_.GridY * GridSnap::twipsPerUnit(grid_.scale)), grid_.GridY, grid_.scale);
        width = std::max(GridSnap::snap(width, grid_.GridX, grid_.scale), stepX);
        height = std::max(GridSnap::snap(height, grid_.GridY, grid_.scale), stepY);
    }
    if (FlowLabel *l = label(e)) {
        l->width = width;
        l->height = height;
    } else if (FlowImage *im = image(e)) {
        im->width = width;
        im->height = height;
    }
    page_.notifyFlow();
    return true;
}

bool FlowEditor::setCaption(FlowElement e, const QString &text)
{
    FlowLabel *l = label(e);
    if (!l || l->text == text || !begin())
        return false;
    l = label(e); // a refused lock shows the record again
    if (!l)
        return false;
    l->text = text;
    page_.notifyFlow();
    return true;
}

bool FlowEditor::setFontSize(FlowElement e, int points)
{
    if (!label(e) || points < 1 || points > 255 || !begin())
        return false;
    FlowLabel *l = label(e);
    if (!l)
        return false;
    l->fontSize = uint8_t(points);
    page_.notifyFlow();
    return true;
}

uint8_t FlowEditor::withFlag(uint8_t style, uint8_t flag, bool on)
{
    const bool now = hasFlag(style, flag);
    if (now == on)
        return style;
    return uint8_t(on ? style + flag : style - flag);
}

bool FlowEditor::setStyleFlag(FlowElement e, uint8_t flag, bool on)
{
    if (!label(e) || (flag != Bold && flag != Italic && flag != Underline) || !begin())
        return false;
    FlowLabel *l = label(e);
    if (!l)
        return false;
    l->style = withFlag(l->style, flag, on);
    page_.notifyFlow();
    return true;
}

bool FlowEditor::setAlignment(FlowElement e, FlowAlignment alignment)
{
    if (!label(e) || !begin())
        return false;
    FlowLabel *l = label(e);
    if (!l)
        return false;
    l->alignment = uint8_t(alignment);
    page_.notifyFlow();
    return true;
}

bool FlowEditor::setColour(FlowElement e, int32_t colour)
{
    if (!label(e) || !begin())
        return false;
    FlowLabel *l = label(e);
    if (!l)
        return false;
    l->color = colour;
    page_.notifyFlow();
    return true;
}

int32_t FlowEditor::clampLink(int32_t record, int32_t recordCount)
{
    return std::clamp(record, 0, std::max(recordCount, 0));
}

int32_t FlowEditor::setLink(FlowElement e, int32_t record, int32_t recordCount)
{
    const int32_t link = clampLink(record, recordCount);
    if (!image(e) || !begin())
        return link;
    if (FlowImage *im = image(e)) {
        im->FlowImageLink = link;
        page_.notifyFlow();
    }
    return link;
}

bool FlowEditor::remove(FlowElement e)
{
    if (!exists(e) || !begin())
        return false;
    if (label(e))
        page_.FlowLabels.remove(e.index);
    else if (image(e))
        page_.FlowImages.remove(e.index);
    else
        return false;
    page_.notifyFlow();
    return true;
}

} // namespace ff
