#pragma once

#include "quillrip/base/bytes.h"

namespace quillrip::emf {

/// Whether the bytes are the beginning of an EMF spool file. NUL padding before other jobs looks like its version, so
/// the header and the record behind it have to make sense.
bool looksLikeSpoolFile(ByteView window);

/// Whether the bytes are the beginning of a metafile.
bool looksLikeMetafile(ByteView window);

} // namespace quillrip::emf
