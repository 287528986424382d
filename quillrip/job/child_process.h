#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/job/run_budget.h"

#include <memory>
#include <string>
#include <sys/types.h>
#include <vector>

namespace quillrip {

/// A program run on a file, whose output is read as it comes. It ends with this object, with this process at the
/// latest, is held to limits of memory and time, can write no file, and, where the kernel offers it
/// (sandbox.h), reads none but its input, its own and the system's, and has no network.
class ChildProcess {
public:
    enum class End {
        Done, ///< by itself, with status 0
        Failed, ///< by itself with another status, or by a fault
        NotStarted, ///< the system had no room for it, or could not load the program
        OutOfTime, ///< the budget is spent
    };

    /// The budget must outlive the process.
    explicit ChildProcess(RunBudget& budget);
    /// Ends the program if it still runs.
    ~ChildProcess();
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;

    /// `arguments[0]` is the program's path; no shell takes part. `input` becomes its standard input, from the
    /// start; programs that read the same file side by side open it anew, as /proc/self/fd/0. False when the system has
    /// no room for another process.
    [[nodiscard]] bool start(const std::vector<std::string>& arguments, int input);

    /// What a program reads and runs of the system: libraries, its resources, fonts.
    static std::vector<std::string> neededPaths(const std::string& program);

    /// Its standard output; ends when the budget is spent. Only after start().
    InputStream& output();

    /// Waits for its end.
    [[nodiscard]] End finish();

    /// The first line that it wrote to standard error, of those that tell of errors if any do, without control
    /// characters; something general when there is none. Only after finish() or the end of the output.
    std::string complaint() const;

private:
    class Output;

    int wait();

    RunBudget& m_budget;
    pid_t m_process = -1;
    std::unique_ptr<Output> m_output;
};

} // namespace quillrip
