#pragma once

#include "quillrip/base/limits.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/interpreter.h"

#include <cstdint>
#include <memory>

namespace quillrip {
class InputStream;
}

namespace quillrip::pcl {

class Cursor;
class ErrorState;
class FontSlots;
class Page;
class PatternCache;
class PrintModel;
struct State;

/// HP-GL/2 on a PCL page: entry and exit, the picture frame, and what the two languages share.
class PlotHost final : private hpgl::Host {
public:
    struct Surroundings {
        State& state;
        Page& page;
        Cursor& cursor;
        FontSlots& fonts;
        PatternCache& patterns;
        PrintModel& printModel;
        ErrorState& errors;
        const Limits& limits;
    };
    /// All references must outlive the host.
    explicit PlotHost(const Surroundings& surroundings);
    ~PlotHost() override;

    /// What comes next is HP-GL/2; its pen is where it was left, or at the cursor.
    void enter(bool isPenAtCursor);
    bool isOn() const { return m_isOn; }
    void leave() { m_isOn = false; }

    enum class End {
        Stays, ///< the input has ended, or the run has failed
        Left, ///< PCL goes on where the input stands
        Reset, ///< ESC E was taken
    };
    /// Draws what comes until the language or the input ends.
    End run(InputStream& input);

    /// The picture frame has moved or has another size.
    void frameChanged();
    /// The frame as a new page has it.
    void setDefaultFrame();
    void plotSizeChanged();
    /// ESC E, UEL: everything as after power on.
    void reset();

private:
    hpgl::Interpreter& interpreter();

    RunStatus beginMark(PageCanvas& canvas) override;
    PageCanvas previewCanvas() const override;
    hpgl::PictureFrame pictureFrame() const override;
    std::size_t paletteSize() const override;
    Rgb paletteColor(std::size_t index) const override;
    void newPalette(std::size_t size) override;
    void resizePalette(std::size_t size) override;
    void setPaletteColor(std::size_t index, Rgb color) override;
    std::uint8_t rasterOperation() const override;
    void setRasterOperation(std::uint8_t operation) override;
    bool isGridCentred() const override;
    void setGridCentred(bool isCentred) override;
    std::shared_ptr<const PatternTile> areaPattern(hpgl::AreaPattern kind, int id, const PageCanvas& canvas) override;
    SelectionContext fontContext() const override;

    State& m_state;
    Page& m_page;
    Cursor& m_cursor;
    FontSlots& m_fonts;
    PatternCache& m_patterns;
    PrintModel& m_printModel;
    ErrorState& m_errors;
    const Limits& m_limits;
    std::unique_ptr<hpgl::Interpreter> m_interpreter; ///< made when the job first needs it
    bool m_isOn = false;
};

} // namespace quillrip::pcl
