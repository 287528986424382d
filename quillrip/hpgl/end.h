#pragma once

namespace quillrip::hpgl {

/// How a run of HP-GL/2 ended.
enum class End {
    InputEnded, ///< a command in progress was carried out with what it had
    EnterPcl, ///< ESC%#A was taken; only inside PCL
    Reset, ///< ESC E was taken: what follows may be any language
    UniversalExit, ///< the input stands on the ESC of ESC%-12345X
    Failed, ///< the status says why; nothing more may be run
};

} // namespace quillrip::hpgl
