#pragma once
// The readable design file: a Design as JSON and back. The builder reads it, `flatform-cli
// dump-design` writes it. Keys are the C++ member names of Design and its element structs; the
// format is described in docs/formats/design-json.md.

#include "core/Result.h"
#include "design/Design.h"

#include <QByteArray>
#include <QJsonObject>

namespace ff {

class DesignJson {
public:
    static constexpr int kVersion = 1;

    static QJsonObject toJson(const Design &design);
    // Missing members take the defaults of Design; unknown keys (other than comments, keys starting
    // with "_") and values of the wrong kind or range are errors that name the key.
    static Result<Design> fromJson(const QJsonObject &json);

    // Pretty text with a stable key order.
    static QByteArray toText(const Design &design);
    static Result<Design> fromText(const QByteArray &text);
};

} // namespace ff
