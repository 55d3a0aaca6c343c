// A link over a scripted transport, a manual clock and a scripted prompter.
#pragma once

#include "link/Link.h"
#include "support/ScriptedPrompter.h"
#include "support/ScriptedTransport.h"

#include <gtest/gtest.h>

namespace kalvo::testing {

// One scripted tester at the end of one link; a fresh one per table row where rows must not meet.
struct ScriptedLink {
    link::ManualClock clock;
    ScriptedTransport transport{clock};
    ScriptedPrompter prompter;
    link::Link link{transport, prompter, clock};
};

class LinkFixture : public ::testing::Test, protected ScriptedLink {};

} // namespace kalvo::testing
