#pragma once
// Where each element's value sits in a record. A record is RecordLength bytes: fields, combos,
// check boxes, per-record picture names, notes, the stamp and the flow area, in that order; the
// slot ends with one spare byte. Offsets are 1-based; 0 means the element has no bytes.

#include "design/Design.h"

#include <vector>

namespace ff {

constexpr int kPictureNameLength = 8;
constexpr int kStampLength = 8;
constexpr int kFlowAreaLength = 10000;

struct RecordLayout {
    int RecordLength = 1;
    int ColumnCount = 15; // every element visited plus 15, used by exports
    std::vector<int> FieldOffset, FieldSize;     // 0..FieldCount
    std::vector<int> ComboOffset, ComboSize;     // 0..ComboCount
    std::vector<int> CheckOffset;                // 0..CheckCount, one byte each
    std::vector<int> PictureOffset;              // 0..PictureCount, 8 bytes for Stretch pictures
    std::vector<int> NoteOffset, NoteSize;       // 0..NoteCount
    int StampOffset = 0; // when Title(4) stands on a page
    int FlowOffset = 0;  // when FlowPageEnabled is 1
};

// Bytes a field of this type takes: text types their MaxLength (type 23 always 10), numbers and
// dates 8, whole numbers 4.
int FieldByteSize(const FieldElement &field);

// True when the field has bytes in the record: on a page and not global.
bool FieldIsStored(const FieldElement &field);

RecordLayout ComputeRecordLayout(const Design &design);

} // namespace ff
