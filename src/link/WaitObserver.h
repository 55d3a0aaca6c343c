// Who hears that the link is waiting for the tester: a window counts the seconds down and offers to
// give up, a command line could say so on stderr.
#pragma once

#include "Clock.h"

namespace kalvo::link {

class WaitObserver {
public:
    virtual ~WaitObserver() = default;
    // The tester has not answered at once: the link waits at most `left` more. `cancellable`: a
    // Link::CancelWait ends this wait (false inside a transfer, which must not be cut off).
    // Called on the link's thread; an answer that comes quickly is not told at all.
    virtual void WaitStarted(Duration left, bool cancellable) = 0;
    // The wait told by WaitStarted is over: an answer came, the time ran out, or it was given up.
    virtual void WaitEnded() = 0;
};

} // namespace kalvo::link
