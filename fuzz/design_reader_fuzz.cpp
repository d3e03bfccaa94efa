// libFuzzer target: the design block reader over arbitrary image bytes. Nothing is extracted; the
// reader must return a design and an error, never crash, hang or read outside the buffer.

#include "design/DesignJson.h"
#include "design/DesignReader.h"

#include <cstddef>
#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray image = QByteArray::fromRawData(reinterpret_cast<const char *>(data), qsizetype(size));
    ff::DesignReadOptions options;
    options.collectFiles = true;
    const ff::DesignLoad load = ff::ReadDesignFromBytes(image, options);
    // Whatever was read must also go through the readable form, as dump-design does.
    if (load.complete())
        (void)ff::DesignJson::toText(load.design);
    return 0;
}
