#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/base/work_meter.h"
#include "quillrip/pcl/raster_session.h"

#include <memory>

namespace quillrip::pcl {

class Cursor;
class ErrorState;
class Page;
class PlotVisit;
class PrintModel;
struct Environment;
struct State;

/// The raster that commands work on: there from its start, or from the first row that no start announced, to the first
/// command that is no part of it.
class CurrentRaster {
public:
    struct Surroundings {
        State& state;
        const Environment& environment;
        Page& page;
        Cursor& cursor;
        PrintModel& printModel;
        PlotVisit& visit;
        ErrorState& errors;
        WorkMeter& work;
    };
    /// All references must outlive the object.
    explicit CurrentRaster(const Surroundings& surroundings);

    bool isOpen() const { return m_session != nullptr; }
    /// ESC*r#A, 0 to 3: at the margin or at the cursor, in its own size or scaled.
    void start(int mode);
    /// Rows have been transferred, or planes of one.
    bool hasData() const { return m_session && m_session->hasBegun(); }
    /// Settings have changed before the first row: the raster takes them on.
    void settingsChanged();
    /// Leaves the cursor below it.
    void finish();
    /// The cursor moves, and the raster goes on from there: the next row still builds on the one before. Ink-jet
    /// drivers place every row by a command of its own.
    void interrupt();

    void skipRows(int rows);
    void transferPlane(ByteView data);
    void transferRow(ByteView data);

private:
    void prepareSheet();
    void dropDefaultTopMargin();
    void centreOnSheet();
    void cutSheetToRaster();
    bool isBare() const;
    void moveToBareOrigin();
    /// Of the pixels that source width and row offsets count in.
    Resolution resolution() const;
    InternalUnits declaredWidth() const;
    void begin();
    std::unique_ptr<RasterSession> sessionOf(RasterSession::Setup setup);
    void paintBlock(ByteView data);
    void ensureOpen();
    void close(Position end);
    int rowDirection() const;
    void report(RasterSession::Outcome outcome);

    State& m_state;
    const Environment& m_environment;
    Page& m_page;
    Cursor& m_cursor;
    PrintModel& m_printModel;
    PlotVisit& m_visit;
    ErrorState& m_errors;
    WorkMeter& m_work;
    std::unique_ptr<RasterSession> m_session;
    RasterLayout::Planes m_interrupted; ///< seed rows of a raster that goes on elsewhere; else empty
    bool m_isScaled = false;
    int m_rowsSkipped = 0; ///< before the first row
};

} // namespace quillrip::pcl
