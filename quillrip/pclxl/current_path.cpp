#include "quillrip/pclxl/current_path.h"

#include <utility>

namespace quillrip::pclxl {

const Path& CurrentPath::path() const
{
    static const Path s_empty;
    return m_path ? *m_path : s_empty;
}

Path& CurrentPath::edit()
{
    if (!m_path)
        m_path = std::make_shared<Path>();
    else if (m_path.use_count() > 1)
        m_path = std::make_shared<Path>(*m_path);
    return *m_path;
}

void CurrentPath::setCursor(Point cursor)
{
    m_cursor = cursor;
    m_isOpenAtCursor = false;
}

void CurrentPath::clear()
{
    // The memory of a path that nobody shares serves the next one.
    if (m_path && m_path.use_count() == 1)
        m_path->clear();
    else
        m_path.reset();
    m_isOpenAtCursor = false;
}

void CurrentPath::clearAll()
{
    clear();
    m_cursor.reset();
}

void CurrentPath::replace(Path path)
{
    clearAll();
    edit() = std::move(path);
}

void CurrentPath::transform(const Matrix& matrix)
{
    if (!path().empty())
        edit() = path().transformed(matrix);
    if (m_cursor)
        m_cursor = matrix.apply(*m_cursor);
}

Status CurrentPath::checkRoom(std::size_t points, std::size_t maxPoints) const
{
    return path().pointCount() + points > maxPoints ? Status(Error::LimitExceeded) : Status();
}

/// Makes the cursor the end of an open subpath, so that `points` more can be appended.
Status CurrentPath::beginSegment(std::size_t points, std::size_t maxPoints)
{
    if (!m_cursor)
        return Error::CurrentCursorUndefined;
    const Status status = checkRoom(points + 1, maxPoints);
    if (status.isOk() && !m_isOpenAtCursor) {
        edit().moveTo(*m_cursor);
        m_isOpenAtCursor = true;
    }
    return status;
}

Status CurrentPath::addLines(const std::vector<Point>& points, std::size_t maxPoints)
{
    const Status status = beginSegment(points.size(), maxPoints);
    if (!status.isOk())
        return status;
    Path& path = edit();
    for (const Point& p : points)
        path.lineTo(p);
    m_cursor = path.current();
    return {};
}

Status CurrentPath::addCurves(const std::vector<Point>& points, std::size_t maxPoints)
{
    const Status status = beginSegment(points.size(), maxPoints);
    if (!status.isOk())
        return status;
    Path& path = edit();
    for (std::size_t i = 0; i + 2 < points.size(); i += 3)
        path.cubicTo(points[i], points[i + 1], points[i + 2]);
    m_cursor = path.current();
    return {};
}

void CurrentPath::close()
{
    if (!m_isOpenAtCursor)
        return;
    Path& path = edit();
    path.close();
    setCursor(path.current());
}

Status CurrentPath::append(const Path& outlines, std::size_t maxPoints)
{
    const Status status = checkRoom(outlines.pointCount(), maxPoints);
    if (status.isOk())
        edit().append(outlines);
    return status;
}

} // namespace quillrip::pclxl
