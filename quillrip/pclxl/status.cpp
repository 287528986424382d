#include "quillrip/pclxl/status.h"

namespace quillrip::pclxl {

const char* nameOf(Error error)
{
    switch (error) {
    case Error::None:
        return "None";
    case Error::IllegalTag:
        return "IllegalTag";
    case Error::IllegalStreamHeader:
        return "IllegalStreamHeader";
    case Error::UnsupportedBinding:
        return "UnsupportedBinding";
    case Error::IllegalOperatorSequence:
        return "IllegalOperatorSequence";
    case Error::IllegalAttribute:
        return "IllegalAttribute";
    case Error::IllegalAttributeCombination:
        return "IllegalAttributeCombination";
    case Error::IllegalAttributeDataType:
        return "IllegalAttributeDataType";
    case Error::IllegalAttributeValue:
        return "IllegalAttributeValue";
    case Error::MissingAttribute:
        return "MissingAttribute";
    case Error::IllegalArraySize:
        return "IllegalArraySize";
    case Error::IllegalDataLength:
        return "IllegalDataLength";
    case Error::IllegalDataValue:
        return "IllegalDataValue";
    case Error::MissingData:
        return "MissingData";
    case Error::DataSourceNotOpen:
        return "DataSourceNotOpen";
    case Error::CurrentCursorUndefined:
        return "CurrentCursorUndefined";
    case Error::NoCurrentFont:
        return "NoCurrentFont";
    case Error::FontUndefined:
        return "FontUndefined";
    case Error::BadFontData:
        return "BadFontData";
    case Error::IllegalCharacterData:
        return "IllegalCharacterData";
    case Error::MissingPalette:
        return "MissingPalette";
    case Error::ImagePaletteMismatch:
        return "ImagePaletteMismatch";
    case Error::RasterPatternUndefined:
        return "RasterPatternUndefined";
    case Error::StreamUndefined:
        return "StreamUndefined";
    case Error::StreamNestingFull:
        return "StreamNestingFull";
    case Error::StreamAlreadyRunning:
        return "StreamAlreadyRunning";
    case Error::MaxGSLevelsExceeded:
        return "MaxGSLevelsExceeded";
    case Error::InsufficientMemory:
        return "InsufficientMemory";
    case Error::PrematureEnd:
        return "PrematureEnd";
    case Error::LimitExceeded:
        return "LimitExceeded";
    case Error::OutputFailed:
        return "OutputFailed";
    }
    return "";
}

} // namespace quillrip::pclxl
