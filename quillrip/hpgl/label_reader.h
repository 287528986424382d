#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/hpgl/state.h"

#include <cstddef>
#include <string>

namespace quillrip::hpgl {

/// Reads the text of LB, BL and WD in parts: one without a terminator goes on to the end of the data.
class LabelReader {
public:
    LabelReader(InputStream& input, const TextState& text)
        : m_input(input)
        , m_text(text)
    {
    }

    /// The next part up to the label terminator, which is taken.
    std::string next();
    bool isComplete() const { return m_isComplete; }
    /// Takes what is left of the label.
    void skip();

private:
    bool standsOnExit() const;

    InputStream& m_input;
    const TextState& m_text;
    bool m_isComplete = false;
};

} // namespace quillrip::hpgl
