#include "quillrip/pclxl/state.h"

#include <algorithm>
#include <cmath>

namespace quillrip::pclxl {

void CharacterState::moveToEnd(CharTransform which)
{
    const auto found = std::find(order.begin(), order.end(), which);
    std::rotate(found, found + 1, order.end());
}

bool isUsableMatrix(const Matrix& m)
{
    const double limit = 1e9;
    for (const double v : { m.a, m.b, m.c, m.d })
        if (!std::isfinite(v) || std::abs(v) > limit)
            return false;
    return std::isfinite(m.e) && std::isfinite(m.f) && std::abs(m.determinant()) > 1e-18;
}

bool GraphicsState::changeMatrix(const Matrix& matrix)
{
    if (!isUsableMatrix(matrix))
        return false;
    if (path.hasPoints())
        path.transform(userToDevice * matrix.inverted());
    userToDevice = matrix;
    return true;
}

} // namespace quillrip::pclxl
