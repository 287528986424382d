#pragma once

namespace quillrip::hpgl {

/// What stands outside the plot: options of the program, variables of the job control language.
struct Environment {
    /// Sheet for every page in decipoints as read: width across, height down. 0: from the plot (PS, a full-page IP or
    /// IW, the extent of the drawing).
    double paperWidth = 0;
    double paperHeight = 0;
    /// Where a plot tells its size only by the extent of the drawing: A4 and its kin, or Letter and its kin.
    bool prefersMetricPaper = true;
};

} // namespace quillrip::hpgl
