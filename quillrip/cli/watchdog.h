#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::cli {

/// Ends the process when it takes too long in real time, whatever it is doing, with exit code 5 and some last words:
/// the last resort behind the limits that are asked inside the work. What is written so far has no name, or a hidden
/// one that the next run with the same output removes. One at a time in a process.
class Watchdog {
public:
    /// What is written to a descriptor, in one piece, before the process ends.
    struct LastWords {
        int descriptor;
        std::string bytes;
    };

    Watchdog(std::uint32_t seconds, std::vector<LastWords> lastWords);
    ~Watchdog() { rest(); }
    Watchdog(const Watchdog&) = delete;
    Watchdog& operator=(const Watchdog&) = delete;

    /// From here on nothing is ended: what begins now is short and should not be cut.
    void rest();
};

} // namespace quillrip::cli
