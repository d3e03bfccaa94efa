#pragma once
// What the record store needs from its host beyond the message box (MessageSink): a chance to let
// the event loop run. The window implements it; the command line and tests need not.

#include "core/MessageSink.h"

namespace ff {

class StoreHost : public virtual MessageSink {
public:
    // Long walks and each record write give the event loop a turn.
    virtual void YieldToEvents() {}
};

} // namespace ff
