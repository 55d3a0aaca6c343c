// A link to a tester that answers with a fuzzer input, on a clock that moves only when waited on.
#pragma once

#include "FuzzTransport.h"

#include "bench/QuietPrompter.h"
#include "link/Link.h"

#include <QByteArray>

namespace kalvo::fuzz {

struct FuzzDevice {
    // Short enough that a silence runs into the time-out after a few script steps.
    static constexpr auto kTimeout = std::chrono::seconds(2);

    explicit FuzzDevice(const QByteArray &script) : transport(script, clock), link(transport, prompter, clock)
    {
        link.setTimeout(kTimeout);
        link.OpenPort(QStringLiteral("fuzz"));
    }

    link::ManualClock clock;
    FuzzTransport transport;
    bench::QuietPrompter prompter;
    link::Link link;
};

} // namespace kalvo::fuzz
