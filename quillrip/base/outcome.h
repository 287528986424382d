#pragma once

#include <string>
#include <utility>

namespace quillrip {

/// How an interpreter's run, or any step of it, ended.
enum class RunStatus {
    Done, ///< went on to the end that was asked for
    Damaged, ///< nothing more can be understood; whole pages so far are good
    LimitExceeded, ///< a limit that no honest job meets
    OutputFailed, ///< the pages cannot be delivered
};

/// How something ended and, when not well, why. `Status` is an enumeration with a Done.
template <typename Status> struct [[nodiscard]] OutcomeOf {
    Status status = Status::Done;
    std::string reason; ///< a sentence without full stop; empty when Done

    OutcomeOf() = default;
    OutcomeOf(Status ended, std::string because)
        : status(ended)
        , reason(std::move(because))
    {
    }

    bool isDone() const { return status == Status::Done; }
};

using Outcome = OutcomeOf<RunStatus>;

} // namespace quillrip
