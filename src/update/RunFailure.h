// The first failure of an update run, kept while the run goes on to leave the tester restarted.
#pragma once

#include "link/Errors.h"
#include "link/Link.h"

#include <exception>

namespace kalvo::update {

// A transfer that failed (no answer in a phase, a report missing or out of place, a refusal) ends
// only that transfer: a tester left in configuration mode or in a loader would not take the next
// person's commands, so the run still restarts it where it would have, and tells the failure
// after that. No loader opens once a transfer has failed: what the tester holds is not known.
class RunFailure {
public:
    explicit RunFailure(link::Link &link) : m_link(link) {}

    // Runs `step`. What it throws is kept (the first failure only) while the line is still there
    // to restart the tester; a port that is gone ends the run at once. False when it failed.
    template <typename Step> bool Attempt(Step step)
    {
        try {
            step();
            return true;
        } catch (const link::KalvoError &) {
            if (!m_link.IsOpen())
                throw;
            if (!m_failure)
                m_failure = std::current_exception();
            return false;
        }
    }

    bool failed() const { return m_failure != nullptr; }

    // Runs what ends the run (the restart, the identity); when it fails after a kept failure, the
    // kept one is told: it is the cause. Then throws the kept failure, if any.
    template <typename Steps> void Finish(Steps steps) const
    {
        try {
            steps();
        } catch (const link::KalvoError &) {
            if (m_failure)
                std::rethrow_exception(m_failure);
            throw;
        }
        if (m_failure)
            std::rethrow_exception(m_failure);
    }

private:
    link::Link &m_link;
    std::exception_ptr m_failure;
};

} // namespace kalvo::update
