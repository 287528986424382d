#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace quillrip::test {

struct Outcome {
    int exitCode = -1; ///< -1: ended by a signal
    std::string errors; ///< what it wrote to standard error
    std::string output; ///< and to standard output
    std::uint64_t peakBytes = 0; ///< of memory that was resident; not less than what this program has
};

/// Runs the quillrip that was built, as the window does: arguments as separate words, nothing on standard input unless
/// a file is named for it.
Outcome runQuillrip(const std::vector<std::string>& arguments, const std::vector<std::string>& environment = {},
    const std::string& input = "/dev/null");

/// A folder of its own for a test, removed with all it holds.
class TemporaryFolder {
public:
    TemporaryFolder();
    ~TemporaryFolder();
    TemporaryFolder(const TemporaryFolder&) = delete;
    TemporaryFolder& operator=(const TemporaryFolder&) = delete;

    std::string path(const std::string& name) const { return m_path + "/" + name; }
    /// Writes a file and returns its path.
    std::string file(const std::string& name, const std::string& bytes) const;
    /// Names of all that it holds, sorted, hidden things too.
    std::vector<std::string> names() const;

private:
    std::string m_path;
};

/// A file's bytes; empty when there is none.
std::string contentOf(const std::string& path);

} // namespace quillrip::test
