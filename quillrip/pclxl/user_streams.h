#pragma once

#include "quillrip/pclxl/status.h"
#include "quillrip/pclxl/tag_reader.h"

#include <cstddef>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace quillrip::pclxl {

/// The streams that a job stores under names, the one that is being stored, and those that run. They live as long as
/// the job.
class UserStreams {
public:
    using Bytes = std::shared_ptr<const std::vector<std::uint8_t>>;

    explicit UserStreams(std::size_t maxBytes)
        : m_maxBytes(maxBytes)
    {
    }

    void beginDefinition(const std::string& name);
    /// The next `length` bytes of the stream that is being stored. MissingData, InsufficientMemory.
    Status append(EmbeddedData& data, std::uint64_t length);
    /// What was stored takes the place of the name's former stream.
    void endDefinition();
    void abandonDefinition();

    /// Null when there is none.
    Bytes find(const std::string& name) const;
    /// False when there is none.
    [[nodiscard]] bool remove(const std::string& name);

    /// From here on the stream runs. StreamAlreadyRunning; StreamNestingFull, when too many run within each other.
    Status enter(const std::string& name);
    void leave() { m_running.pop_back(); }

private:
    const std::size_t m_maxBytes;
    std::map<std::string, Bytes> m_streams;
    std::size_t m_bytes = 0;
    std::string m_definedName;
    std::vector<std::uint8_t> m_definedBytes;
    std::vector<std::string> m_running;
};

} // namespace quillrip::pclxl
