#pragma once

#include <memory>
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

/// What was to be made, or why it could not be.
template <typename Thing> class [[nodiscard]] Made {
public:
    Made(std::unique_ptr<Thing> thing)
        : m_thing(std::move(thing))
    {
    }
    /// `reason` is a sentence without full stop.
    static Made refused(const std::string& reason)
    {
        Made made { nullptr };
        made.m_reason = reason;
        return made;
    }

    explicit operator bool() const { return m_thing != nullptr; }
    Thing& operator*() const { return *m_thing; }
    Thing* operator->() const { return m_thing.get(); }
    /// Empty where there is the thing.
    const std::string& reason() const { return m_reason; }

private:
    std::unique_ptr<Thing> m_thing;
    std::string m_reason;
};

} // namespace quillrip
