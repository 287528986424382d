#pragma once

#include "quillrip/pclxl/tags.h"

#include <cstdint>

namespace quillrip::pclxl {

/// The errors of the language that end a session, by their published names, and the two ends of a job that are not
/// the stream's fault.
enum class Error : std::uint8_t {
    None,
    IllegalTag,
    IllegalStreamHeader,
    UnsupportedBinding,
    IllegalOperatorSequence,
    IllegalAttribute,
    IllegalAttributeCombination,
    IllegalAttributeDataType,
    IllegalAttributeValue,
    MissingAttribute,
    IllegalArraySize,
    IllegalDataLength,
    IllegalDataValue,
    MissingData,
    DataSourceNotOpen,
    CurrentCursorUndefined,
    NoCurrentFont,
    FontUndefined,
    BadFontData,
    IllegalCharacterData,
    MissingPalette,
    ImagePaletteMismatch,
    RasterPatternUndefined,
    StreamUndefined,
    StreamNestingFull,
    StreamAlreadyRunning,
    MaxGSLevelsExceeded,
    InsufficientMemory,
    PrematureEnd, ///< the input ends within an operator; no name in the language
    LimitExceeded,
    OutputFailed,
};

const char* nameOf(Error error);

/// What became of an operator: all well, or an error with the attribute it concerns.
struct [[nodiscard]] Status {
    Error error = Error::None;
    Attribute attribute = Attribute::None;

    Status() = default;
    Status(Error code, Attribute concerned = Attribute::None)
        : error(code)
        , attribute(concerned)
    {
    }
    bool isOk() const { return error == Error::None; }
    /// True when not even another stream of the same job may be run.
    bool endsJob() const { return error == Error::LimitExceeded || error == Error::OutputFailed; }
};

} // namespace quillrip::pclxl
