#include "quillrip/hpgl/plot_file.h"

#include "quillrip/hpgl/default_points.h"
#include "quillrip/hpgl/drawing_pass.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/measuring_pass.h"
#include "quillrip/hpgl/offset_sink.h"
#include "quillrip/hpgl/plot_page.h"
#include "quillrip/hpgl/plot_source.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

namespace quillrip::hpgl {

class PlotFile::Implementation {
public:
    Implementation(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        const Environment& environment, RasterLanguageFactory rasterLanguage)
        : m_device(device)
        , m_fonts(fonts)
        , m_sink(sink)
        , m_limits(limits)
        , m_environment(environment)
        , m_rasterLanguage(std::move(rasterLanguage))
    {
    }

    End run(InputStream& input)
    {
        skipLeadingResets(input);
        OffsetSink sink(m_sink, input.offset());
        PlotSource source(input);
        const std::vector<std::uint8_t> kept = keep(source);
        const bool isOlder = !isSecondGeneration(ByteView(kept));

        std::vector<PlotFacts> facts;
        {
            MemoryInputStream bytes { ByteView(kept) };
            MeasuringPass pass(m_fonts, m_limits, m_environment, m_rasterLanguage);
            prepare(pass.machine(), isOlder);
            facts = pass.run(bytes);
        }

        std::vector<PlotPage> pages;
        bool isReduced = false;
        for (const PlotFacts& page : facts) {
            pages.push_back(plotPage(page, m_environment));
            isReduced = isReduced || (page.isDrawn && pages.back().isReduced);
        }
        if (isReduced)
            sink.report({ Severity::Warning, 0, "hpgl.huge-plot",
                "the drawing is larger than any sheet and was reduced to fit one" });
        ReplayStream replay(kept, source);
        DrawingPass pass(m_device, m_fonts, sink, m_limits, m_rasterLanguage, std::move(pages));
        prepare(pass.machine(), isOlder);
        m_status = pass.run(replay);
        if (m_status != RunStatus::Done)
            return End::Failed;
        return source.end();
    }

    RunStatus status() const { return m_status; }

private:
    static void skipLeadingResets(InputStream& input)
    {
        for (;;) {
            const ByteView window = input.window(2);
            if (window.size >= 2 && window[0] == kEscape && window[1] == 'E')
                input.skip(2);
            else if (!window.empty() && (window[0] == ' ' || window[0] == '\r' || window[0] == '\n' || window[0] == 0))
                input.skip(1);
            else
                return;
        }
    }

    std::vector<std::uint8_t> keep(InputStream& source) const
    {
        std::vector<std::uint8_t> kept;
        constexpr std::size_t kPart = 65536;
        while (kept.size() < m_limits.macroBytes) {
            const std::size_t before = kept.size();
            const std::size_t wanted = std::min(kPart, m_limits.macroBytes - before);
            kept.resize(before + wanted);
            const std::size_t got = source.read(kept.data() + before, wanted);
            kept.resize(before + got);
            if (got == 0)
                break;
        }
        return kept;
    }

    void prepare(Machine& machine, bool isOlder) const
    {
        if (const DefaultPoints* points = isOlder ? defaultPointsFor(assumedPaper(m_environment)) : nullptr)
            machine.plotter().coordinates.setDefaultPoints(points->p1, points->p2);
        // Plots that choose no pen, or none before their first marks, are meant to be seen all the same.
        machine.plotter().pens.setFirstPen(1);
        machine.powerOn();
    }

    PageDevice& m_device;
    FontLibrary& m_fonts;
    DiagnosticSink& m_sink;
    const Limits m_limits;
    const Environment m_environment;
    const RasterLanguageFactory m_rasterLanguage;
    RunStatus m_status = RunStatus::Done;
};

PlotFile::PlotFile(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
    const Environment& environment, RasterLanguageFactory rasterLanguage)
    : m_implementation(
        std::make_unique<Implementation>(device, fonts, sink, limits, environment, std::move(rasterLanguage)))
{
}

PlotFile::~PlotFile() = default;

End PlotFile::run(InputStream& input) { return m_implementation->run(input); }

RunStatus PlotFile::status() const { return m_implementation->status(); }

} // namespace quillrip::hpgl
