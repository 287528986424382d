#pragma once

#include "quillrip/base/bytes.h"
#include "quillrip/pcl/raster_session.h"

#include <memory>

namespace quillrip::pcl {

class Cursor;
class ErrorState;
class Page;
class PlotVisit;
class PrintModel;
struct State;

/// The raster that commands work on: there from its start, or from the first row that no start announced, to the first
/// command that is no part of it.
class CurrentRaster {
public:
    struct Surroundings {
        State& state;
        Page& page;
        Cursor& cursor;
        PrintModel& printModel;
        PlotVisit& visit;
        ErrorState& errors;
    };
    /// All references must outlive the object.
    explicit CurrentRaster(const Surroundings& surroundings);

    bool isOpen() const { return m_session != nullptr; }
    /// ESC*r#A, 0 to 3: at the margin or at the cursor, in its own size or scaled.
    void start(int mode);
    /// Leaves the cursor below it.
    void finish();

    void skipRows(int rows);
    void transferPlane(ByteView data);
    void transferRow(ByteView data);

private:
    void begin(bool isScaled);
    void ensureOpen();
    int rowDirection() const;
    void report(RasterSession::Outcome outcome);

    State& m_state;
    Page& m_page;
    Cursor& m_cursor;
    PrintModel& m_printModel;
    PlotVisit& m_visit;
    ErrorState& m_errors;
    std::unique_ptr<RasterSession> m_session;
};

} // namespace quillrip::pcl
