#pragma once
// A record store host that keeps the messages and counts the turns given to the event loop.

#include "store/StoreHost.h"
#include "support/RecordingMessages.h"

namespace ff::testsupport {

class RecordingStoreHost : public StoreHost, public RecordingMessages {
public:
    int yields = 0;
    void YieldToEvents() override { ++yields; }
};

} // namespace ff::testsupport
