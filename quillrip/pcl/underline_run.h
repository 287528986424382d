#pragma once

#include "quillrip/pcl/logical_page.h"

namespace quillrip {
struct Font;
}

namespace quillrip::pcl {

class Page;
class PrintModel;
struct State;

/// The underline below a stretch of a line: grows with the text and is drawn when the stretch ends.
class UnderlineRun {
public:
    /// All references must outlive the run.
    UnderlineRun(const State& state, Page& page, PrintModel& printModel);

    /// From the baseline at `cursor` on, when underlining is on.
    void begin(Position cursor);
    /// Draws what there is to draw.
    void end();
    bool isOpen() const { return m_isOpen; }

    /// The line is at least as long as to here, or is exactly so long.
    void reach(InternalUnits x) { m_to = m_to < x ? x : m_to; }
    void setEnd(InternalUnits x) { m_to = x; }
    /// A character of that font stands on the line.
    void note(const Font& font);

private:
    const State& m_state;
    Page& m_page;
    PrintModel& m_printModel;
    bool m_isOpen = false;
    Position m_from;
    InternalUnits m_to = 0;
    InternalUnits m_top = 0; ///< from the baseline down
    InternalUnits m_thickness = 0;
};

} // namespace quillrip::pcl
