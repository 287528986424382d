#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/base/reporter.h"
#include "quillrip/emf/devmode.h"
#include "quillrip/fonts/select/windows_fonts.h"

#include <cstdint>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace quillrip::emf {

/// A page of a spool file with all that its painting needs.
struct SpooledPage {
    std::vector<std::uint8_t> metafile;
    std::uint64_t offset = 0; ///< of the metafile in the input
    std::optional<Devmode> settings; ///< of its own, or of the last page that had some
    bool isCut = false; ///< the job ends within it
    bool isUnfinished = false; ///< other pages are marked as complete, this one is not
};

/// Walks the records of a spool file. A page's settings stand behind it, so it is held back until the record that
/// completes it, the next page, or the end.
class SpoolReader {
public:
    /// The input stands on the file's header. The references must outlive the reader.
    SpoolReader(InputStream& input, WindowsFonts& fonts, const Limits& limits, DiagnosticSink& diagnostics);

    /// The next page; nothing at the end. Fonts that lie between the records are embedded on the way.
    std::optional<SpooledPage> next();
    /// A page was larger than may be kept.
    bool hasMetLimit() const { return m_hasMetLimit; }

private:
    struct RecordHead {
        std::uint32_t id = 0;
        std::uint64_t size = 0;
        std::uint64_t offset = 0; ///< of the record's number
    };
    bool readHead(RecordHead& head);
    std::vector<std::uint8_t> readData(std::uint64_t size);
    std::optional<SpooledPage> takeHeld();
    void damage(std::uint64_t offset, const char* kind, const std::string& message);
    void complete(const RecordHead& head);

    InputStream& m_input;
    WindowsFonts& m_fonts;
    const Limits& m_limits;
    Reporter m_reporter;
    std::uint64_t m_start = 0; ///< of the spool file in the input
    std::optional<SpooledPage> m_held;
    std::uint64_t m_heldOffset = 0; ///< of its record
    bool m_isHeldComplete = false;
    std::optional<Devmode> m_ownSettings; ///< between the held page and what completes it
    std::optional<Devmode> m_settings; ///< the last ones before
    bool m_hasCompletedPage = false;
    bool m_isAtEnd = false;
    bool m_hasMetLimit = false;
    std::set<std::uint32_t> m_unknown;
};

} // namespace quillrip::emf
