#pragma once

#include "quillrip/base/bytes.h"

namespace quillrip::emf::plus {

/// Whether a dual metafile's EMF+ half shows something that only its plain half can be drawn from: pictures of the
/// 16-bit kind, as Office pastes formulas and clip art. `records`: those of the metafile behind its header; they may be
/// cut off anywhere.
bool isPlainHalfFuller(ByteView records);

} // namespace quillrip::emf::plus
