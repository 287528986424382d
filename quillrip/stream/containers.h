#pragma once

#include "quillrip/base/input_stream.h"

#include <memory>
#include <string>
#include <vector>

namespace quillrip::stream {

/// What stands around the whole print job, found at the first byte of the input.
struct Container {
    /// The streams that take the wrapping off, innermost last; empty when the input is the job itself.
    std::vector<std::unique_ptr<InputStream>> layers;
    /// Set when the container holds no print data; for a message.
    std::string refusal;

    InputStream& job(InputStream& input) const { return layers.empty() ? input : *layers.back(); }
};

/// Takes off MacBinary, captures of the LPD and IPP protocols, and lines of line-printer control data. The input stands
/// at its start; it must outlive the result.
Container unwrap(InputStream& input);

} // namespace quillrip::stream
