#pragma once

#include "quillrip/emf/plus/region_object.h"
#include "quillrip/emf/plus/units.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace quillrip::emf::plus {

/// What records change and Save keeps ([MS-EMFPLUS] 2.3.6, 2.3.7, 2.3.9). Objects are no part of it.
struct GraphicsState {
    Matrix world;
    Unit pageUnit = Unit::Display;
    double pageScale = 1;
    /// From the page of the container that is open to pixels of the recording device.
    Matrix container;
    PixelSet clip; ///< device pixels; null: none
    PixelSet outerClip; ///< of the containers around; null: none
    Point renderingOrigin; ///< pixels of the recording device
    bool isSmooth = true; ///< images are interpolated
    bool replaces = false; ///< compositing mode: colours with alpha replace what is there

    /// World units to pixels of the page inside the container.
    Matrix worldToPage(const LogicalDevice& device) const
    {
        return world
            * Matrix::scaling(device.pixelsAcross(pageUnit) * pageScale, device.pixelsDown(pageUnit) * pageScale);
    }
    Matrix worldToReference(const LogicalDevice& device) const { return worldToPage(device) * container; }
};

/// The state and those that were saved, by the numbers that the metafile gave them. Containers lie on the same stack.
class StateStack {
public:
    GraphicsState& current() { return m_current; }
    const GraphicsState& current() const { return m_current; }

    /// False when too many states are saved; then nothing happens.
    [[nodiscard]] bool save(std::uint32_t index);
    /// Goes back to the state that was last saved under the number and forgets all later ones. False when there is
    /// none.
    [[nodiscard]] bool restore(std::uint32_t index);

private:
    struct Saved {
        std::uint32_t index;
        GraphicsState state;
    };

    static constexpr std::size_t kMostSaved = 4096;

    GraphicsState m_current;
    std::vector<Saved> m_saved;
};

} // namespace quillrip::emf::plus
