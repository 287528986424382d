#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/base/noise_watch.h"
#include "quillrip/hpgl/command.h"
#include "quillrip/hpgl/end.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/plotter.h"

#include <cstdint>
#include <optional>
#include <set>
#include <vector>

namespace quillrip::hpgl {

/// The interpreter proper: reads commands and has them carried out.
class Machine {
public:
    /// See Plotter.
    Machine(Host& host, Surface& surface, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        PlotListener* listener, RasterLanguage* rasterLanguage = nullptr);

    [[nodiscard]] End run(InputStream& input);
    /// The # of the ESC%#A that ended the last run.
    int enterPclValue() const { return m_enterPclValue; }
    RunStatus status() const { return m_plotter.status(); }
    /// Starts as a plotter does that is switched on, its palette included.
    void powerOn();

    Plotter& plotter() { return m_plotter; }

private:
    std::optional<End> obeyEscape(InputStream& input);
    void obeyDeviceControl(char control);
    void execute(Mnemonic mnemonic, Lexer& lexer, Command& command);
    void reportUnknown(Mnemonic mnemonic);
    bool hearsNoise(InputStream& input);
    void trace(const MnemonicEntry& entry, const std::vector<double>& operands) const;

    Plotter m_plotter;
    int m_enterPclValue = 0;
    bool m_isSwitchedOff = false; ///< between ESC.Z and ESC.Y
    std::set<Mnemonic> m_unknown;
    unsigned m_errors = 0;
    NoiseWatch m_noise;
    std::uint64_t m_heardUntil = 0; ///< offset of the input
};

} // namespace quillrip::hpgl
