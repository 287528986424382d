#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/job/spool_file.h"

#include <cstdint>
#include <memory>

namespace quillrip {

/// Images that a program has drawn before their turn has come, in a temporary file without a name. They stay there
/// until the store goes.
class ImageStore {
public:
    explicit ImageStore(std::uint64_t mostBytes = std::uint64_t { 1 } << 30)
        : m_mostBytes(mostBytes)
    {
    }

    /// Takes all that the stream still has, and gives it back as a stream, which must not outlive the store. Null when
    /// there is no room: then what was taken is lost.
    std::unique_ptr<InputStream> keep(InputStream& images);

private:
    SpoolFile m_file;
    std::uint64_t m_mostBytes;
    std::uint64_t m_bytes = 0;
};

} // namespace quillrip
