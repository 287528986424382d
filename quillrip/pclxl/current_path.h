#pragma once

#include "quillrip/base/geometry.h"
#include "quillrip/pclxl/status.h"
#include "quillrip/raster/paths/path.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace quillrip::pclxl {

/// The path under construction and the cursor, both in user space. Copies share the path until one of them changes it,
/// so that saving the graphics state costs nothing.
class CurrentPath {
public:
    const Path& path() const;
    bool hasPoints() const { return !path().empty() || m_cursor; }
    const std::optional<Point>& cursor() const { return m_cursor; }

    /// A segment that follows begins a new subpath there.
    void setCursor(Point cursor);
    /// The path is empty; the cursor stays.
    void clear();
    /// The cursor is gone too, as after a shape was painted.
    void clearAll();
    /// Takes the place of what was there, without a cursor.
    void replace(Path path);
    void transform(const Matrix& matrix);

    /// LimitExceeded when so many points more would be too many.
    Status checkRoom(std::size_t points, std::size_t maxPoints) const;
    /// Lines to each of the points; or curves, three points each. They begin at the cursor, which moves to the last
    /// point. CurrentCursorUndefined, LimitExceeded.
    Status addLines(const std::vector<Point>& points, std::size_t maxPoints);
    Status addCurves(const std::vector<Point>& points, std::size_t maxPoints);
    /// The cursor goes to the subpath's start. Nothing happens when none is open.
    void close();
    /// Outlines that are no part of a subpath; the cursor stays.
    Status append(const Path& outlines, std::size_t maxPoints);

    /// A figure of at most so many points, which `add` appends to the path given it. The cursor goes to its end, where
    /// an open figure may be continued.
    template <typename Add> Status addFigure(std::size_t points, std::size_t maxPoints, bool isOpen, Add add)
    {
        const Status status = checkRoom(points, maxPoints);
        if (!status.isOk())
            return status;
        Path& path = edit();
        add(path);
        m_cursor = path.current();
        m_isOpenAtCursor = isOpen;
        return {};
    }

private:
    Status beginSegment(std::size_t points, std::size_t maxPoints);
    Path& edit();

    std::shared_ptr<Path> m_path;
    std::optional<Point> m_cursor;
    bool m_isOpenAtCursor = false; ///< the next segment continues the last subpath
};

} // namespace quillrip::pclxl
