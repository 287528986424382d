#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/reporter.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <cstdint>

namespace quillrip::emf {

/// Numbers of spool records that hold fonts (MS-EMFSPOOL 2.2.3.3).
enum class FontRecord : std::uint32_t { Engine = 2, Type1 = 4, DesignVector = 6, Subset = 7, Delta = 8 };

bool isFontRecord(std::uint32_t id);

/// Takes the fonts of one spool record over: `data` behind its number and size. Those of kinds that cannot be drawn are
/// reported.
void takeFontRecord(WindowsFonts& fonts, std::uint32_t id, ByteView data, const Reporter& reporter);

/// The same for all records of a comment, one after the other.
void takeFontRecords(WindowsFonts& fonts, ByteView records, const Reporter& reporter);

} // namespace quillrip::emf
