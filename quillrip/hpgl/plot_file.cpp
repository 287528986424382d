#include "quillrip/hpgl/plot_file.h"

#include "quillrip/hpgl/extent_surface.h"
#include "quillrip/hpgl/machine.h"
#include "quillrip/hpgl/page_surface.h"
#include "quillrip/hpgl/plot_page.h"
#include "quillrip/hpgl/plot_source.h"
#include "quillrip/raster/compose/area_patterns.h"

#include <algorithm>
#include <array>
#include <optional>

namespace quillrip::hpgl {

namespace {

constexpr double kDecipointsPerUnit = kDecipointsPerInch / kPlotterUnitsPerInch;
constexpr double kPatternDpi = 300;

class SilentSink final : public DiagnosticSink {
public:
    void report(const Diagnostic&) override { }
};

/// Offsets count from the start of the plot; the job wants those of the whole input.
class OffsetSink final : public DiagnosticSink {
public:
    OffsetSink(DiagnosticSink& sink, std::uint64_t start)
        : m_sink(sink)
        , m_start(start)
    {
    }

    void report(const Diagnostic& diagnostic) override
    {
        Diagnostic moved = diagnostic;
        moved.offset += m_start;
        m_sink.report(moved);
    }

private:
    DiagnosticSink& m_sink;
    std::uint64_t m_start;
};

/// The part of a host that measuring and drawing have in common: pens and modes of a plotter.
class PlotterHost : public Host {
public:
    std::size_t paletteSize() const override { return m_palette.size(); }
    Rgb paletteColor(std::size_t index) const override { return m_palette[std::min(index, m_palette.size() - 1)]; }
    void newPalette(std::size_t size) override { m_palette.assign(std::max<std::size_t>(size, 2), Rgb {}); }
    void resizePalette(std::size_t size) override { m_palette.resize(std::max<std::size_t>(size, 2)); }
    void setPaletteColor(std::size_t index, Rgb color) override
    {
        if (index < m_palette.size())
            m_palette[index] = color;
    }
    std::uint8_t rasterOperation() const override { return m_rasterOperation; }
    void setRasterOperation(std::uint8_t operation) override { m_rasterOperation = operation; }
    bool isGridCentred() const override { return m_isGridCentred; }
    void setGridCentred(bool isCentred) override { m_isGridCentred = isCentred; }

    std::shared_ptr<const PatternTile> areaPattern(AreaPattern kind, int id, const PageCanvas& canvas) override
    {
        if (kind != AreaPattern::CrossHatch)
            return nullptr;
        const PatternTile tile = hatchTile(id);
        if (tile.width == 0)
            return nullptr;
        return std::make_shared<const PatternTile>(
            tile.scaled(canvas.resolution.x / kPatternDpi, canvas.resolution.y / kPatternDpi));
    }

    SelectionContext fontContext() const override
    {
        SelectionContext context;
        context.allowsBitmapFonts = false;
        return context;
    }

private:
    std::vector<Rgb> m_palette = std::vector<Rgb>(2);
    std::uint8_t m_rasterOperation = kDefaultRasterOperation;
    bool m_isGridCentred = false;
};

std::optional<Point> sizeOfPlotSize(const std::vector<double>& operands, const PlotEnvironment& environment)
{
    if (operands.empty() || !(operands[0] > 0))
        return std::nullopt;
    if (operands.size() >= 2 && operands[1] > 0)
        return Point { operands[0], operands[1] };
    PlotFacts facts;
    facts.plotLength = operands[0];
    const PictureFrame frame = plotPage(facts, environment).frame;
    return Point { frame.plotWidth / kDecipointsPerUnit, frame.plotHeight / kDecipointsPerUnit };
}

/// The first reading: nothing is drawn, but what every page needs is found out.
class MeasuringPass final : public PlotterHost, private PlotListener {
public:
    MeasuringPass(FontLibrary& fonts, const Limits& limits, const PlotEnvironment& environment,
        const RasterLanguageFactory& rasterLanguage)
        : m_environment(environment)
        , m_size(assumedPaper(environment))
        , m_rasterLanguage(rasterLanguage ? rasterLanguage(fonts, m_sink) : nullptr)
        , m_machine(*this, m_surface, fonts, m_sink, limits, this, m_rasterLanguage.get())
    {
    }

    Machine& machine() { return m_machine; }

    std::vector<PlotFacts> run(InputStream& input)
    {
        // Marks are noted in the system that they were made in; which one is known from the machine.
        m_surface.onMark = [this](const PageRect& bounds) { mark(bounds); };
        m_machine.run(input);
        endPage();
        return std::move(m_pages);
    }

private:
    RunStatus beginMark(PageCanvas&) override { return RunStatus::Done; }
    PageCanvas previewCanvas() const override { return {}; }

    PictureFrame pictureFrame() const override
    {
        PictureFrame frame;
        frame.left = frame.top = 0;
        frame.width = m_size.x * kDecipointsPerUnit;
        frame.height = m_size.y * kDecipointsPerUnit;
        frame.cutsAtFrame = false;
        constexpr double kEndless = 1e12;
        frame.clipLeft = frame.clipTop = -kEndless;
        frame.clipRight = frame.clipBottom = kEndless;
        return frame;
    }

    bool plotSize(const std::vector<double>& operands) override
    {
        if (m_facts.isDrawn)
            return false;
        m_facts.plotLength = m_facts.plotWidth = std::nullopt;
        m_size = assumedPaper(m_environment);
        if (const auto size = sizeOfPlotSize(operands, m_environment)) {
            m_facts.plotLength = size->x;
            m_facts.plotWidth = size->y;
            m_size = *size;
        }
        return true;
    }

    void plotWindow(bool isInputWindow, Point corner1, Point corner2) override
    {
        if (!isInputWindow)
            m_hasOwnPoints = true;
        if (m_facts.isDrawn)
            return;
        PlotRect rect = PlotRect::nothing();
        rect.include(corner1);
        rect.include(corner2);
        (isInputWindow ? m_facts.inputWindow : m_facts.inputPoints) = rect;
        PlotRect unrotated = PlotRect::nothing();
        unrotated.include(withoutRotation(m_machine.plotterToPage().apply(corner1)));
        unrotated.include(withoutRotation(m_machine.plotterToPage().apply(corner2)));
        (isInputWindow ? m_unrotatedWindow : m_unrotatedPoints) = unrotated;
    }

    void pointsDefaulted() override { m_hasOwnPoints = false; }

    void scaled() override
    {
        if (!m_hasOwnPoints)
            m_facts.usesDefaultPoints = true;
    }

    void advancePage(bool isForced) override
    {
        if (m_facts.isDrawn || isForced)
            endPage();
    }

    void endPage()
    {
        if (m_facts.hasMixedTurns || m_facts.hasRaster)
            m_facts.extent = m_unrotated;
        PlotFacts page = m_facts;
        if (page.hasRaster) {
            page.inputWindow = m_unrotatedWindow;
            page.inputPoints = m_unrotatedPoints;
        }
        m_pages.push_back(page);
        // PS stays in force until the next; what the state still holds is known to the next page too.
        PlotFacts next;
        next.plotLength = m_facts.plotLength;
        next.plotWidth = m_facts.plotWidth;
        next.inputWindow = m_facts.inputWindow;
        next.inputPoints = m_facts.inputPoints;
        next.usesDefaultPoints = m_facts.usesDefaultPoints;
        m_facts = next;
        m_unrotated = PlotRect::nothing();
    }

    void mark(const PageRect& bounds)
    {
        const int turns = m_machine.state().quarterTurns;
        if (!m_facts.isDrawn)
            m_facts.quarterTurns = turns;
        else if (m_facts.quarterTurns != turns)
            m_facts.hasMixedTurns = true;
        m_facts.isDrawn = true;
        const Matrix toPlotter = m_machine.plotterToPage().inverted();
        for (const Point corner : { Point { bounds.left, bounds.top }, Point { bounds.right, bounds.bottom } }) {
            m_facts.extent.include(toPlotter.apply(corner));
            m_unrotated.include(withoutRotation(corner));
        }
    }

    void rasterCovered(const PageRect& raster) override
    {
        m_facts.isDrawn = true;
        m_facts.hasRaster = true;
        m_unrotated.include(withoutRotation({ raster.left, raster.top }));
        m_unrotated.include(withoutRotation({ raster.right, raster.bottom }));
    }

    /// Page space to plotter units at RO0.
    Point withoutRotation(Point page) const
    {
        return { page.x / kDecipointsPerUnit, m_size.y - page.y / kDecipointsPerUnit };
    }

    const PlotEnvironment& m_environment;
    Point m_size; ///< of the sheet, as far as it is known
    SilentSink m_sink;
    ExtentSurface m_surface;
    PlotFacts m_facts;
    PlotRect m_unrotated = PlotRect::nothing();
    std::optional<PlotRect> m_unrotatedWindow;
    std::optional<PlotRect> m_unrotatedPoints;
    bool m_hasOwnPoints = false;
    std::vector<PlotFacts> m_pages;
    std::unique_ptr<RasterLanguage> m_rasterLanguage;
    Machine m_machine;
};

/// The second reading: pages of known size are drawn.
class DrawingPass final : public PlotterHost, private PlotListener {
public:
    DrawingPass(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        const RasterLanguageFactory& rasterLanguage, std::vector<PlotPage> pages)
        : m_device(device)
        , m_pages(std::move(pages))
        , m_surface(*this)
        , m_rasterLanguage(rasterLanguage ? rasterLanguage(fonts, sink) : nullptr)
        , m_machine(*this, m_surface, fonts, sink, limits, this, m_rasterLanguage.get())
    {
    }

    Machine& machine() { return m_machine; }

    RunStatus run(InputStream& input)
    {
        m_machine.run(input);
        if (m_machine.status() == RunStatus::Done)
            endPage();
        return m_machine.status();
    }

private:
    const PlotPage& page() const { return m_pages[std::min(m_page, m_pages.size() - 1)]; }

    RunStatus beginMark(PageCanvas& canvas) override
    {
        // Vectors and raster ask each for itself.
        RunStatus status = RunStatus::Done;
        if (!m_isOpen)
            status = m_device.beginPage(page().sheet, m_canvas);
        m_isOpen = status == RunStatus::Done;
        canvas = m_canvas;
        return status;
    }
    PageCanvas previewCanvas() const override { return m_device.preview(page().sheet); }
    PictureFrame pictureFrame() const override { return page().frame; }

    bool plotSize(const std::vector<double>&) override { return !m_isOpen; }
    void plotWindow(bool, Point, Point) override { }
    void pointsDefaulted() override { }
    void scaled() override { }
    void rasterCovered(const PageRect&) override { }

    void advancePage(bool isForced) override
    {
        if (isForced && !m_isOpen) {
            PageCanvas canvas;
            const RunStatus status = beginMark(canvas);
            if (status != RunStatus::Done) {
                m_surface.fail(status);
                return;
            }
        }
        endPage();
    }

    void endPage()
    {
        if (!m_isOpen)
            return;
        m_isOpen = false;
        m_surface.leavePage();
        ++m_page;
        const RunStatus status = m_device.endPage();
        if (status != RunStatus::Done)
            m_surface.fail(status);
    }

    PageDevice& m_device;
    std::vector<PlotPage> m_pages;
    std::size_t m_page = 0;
    bool m_isOpen = false;
    PageCanvas m_canvas;
    PageSurface m_surface;
    std::unique_ptr<RasterLanguage> m_rasterLanguage;
    Machine m_machine;
};

/// Whether a plot uses what only HP-GL/2 knows: its P1 and P2 are then the sheet's corners without further word.
bool isSecondGeneration(const std::vector<std::uint8_t>& bytes)
{
    static constexpr std::array<Mnemonic, 13> kTelling { mnemonic("BP"), mnemonic("BZ"), mnemonic("LA"), mnemonic("MC"),
        mnemonic("NP"), mnemonic("PC"), mnemonic("PE"), mnemonic("PS"), mnemonic("RF"), mnemonic("SD"), mnemonic("TR"),
        mnemonic("UL"), mnemonic("WU") };
    constexpr std::size_t kLook = 65536;
    MemoryInputStream input(ByteView(bytes).sub(0, kLook));
    Lexer lexer(input);
    for (;;) {
        Mnemonic name = 0;
        switch (lexer.next(name)) {
        case Lexer::Token::End:
            return false;
        case Lexer::Token::Escape:
            readEscape(input);
            continue;
        case Lexer::Token::Mnemonic:
            break;
        }
        if (std::binary_search(kTelling.begin(), kTelling.end(), name))
            return true;
        if (name == mnemonic("LB")) {
            constexpr int kUsualTerminator = 3;
            int byte = input.get();
            while (byte >= 0 && byte != kUsualTerminator)
                byte = input.get();
        }
        lexer.skipOperands();
    }
}

/// P1 and P2 that desktop plotters start with, by the sheet they are loaded with.
struct DefaultPoints {
    Point sheet;
    Point p1;
    Point p2;
};
constexpr std::array<DefaultPoints, 4> kDefaultPoints { {
    { { 11176, 8636 }, { 250, 596 }, { 10250, 7796 } },
    { { 11880, 8400 }, { 603, 521 }, { 10603, 7721 } },
    { { 17272, 11176 }, { 522, 259 }, { 15722, 10259 } },
    { { 16800, 11880 }, { 170, 602 }, { 15370, 10602 } },
} };

const DefaultPoints* defaultPointsFor(Point sheet)
{
    constexpr double kTolerance = 50;
    for (const DefaultPoints& points : kDefaultPoints) {
        if (std::abs(points.sheet.x - sheet.x) <= kTolerance && std::abs(points.sheet.y - sheet.y) <= kTolerance)
            return &points;
    }
    return nullptr;
}

} // namespace

class PlotFile::Implementation {
public:
    Implementation(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        const PlotEnvironment& environment, RasterLanguageFactory rasterLanguage)
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
        const bool isOlder = !isSecondGeneration(kept);

        bool needsPen = false;
        std::vector<PlotFacts> facts;
        {
            MemoryInputStream bytes { ByteView(kept) };
            MeasuringPass pass(m_fonts, m_limits, m_environment, m_rasterLanguage);
            prepare(pass.machine(), isOlder, false);
            facts = pass.run(bytes);
            needsPen = !pass.machine().hasSelectedPen();
        }
        if (needsPen) {
            // Plots that never choose a pen are meant to be seen all the same.
            MemoryInputStream bytes { ByteView(kept) };
            MeasuringPass pass(m_fonts, m_limits, m_environment, m_rasterLanguage);
            prepare(pass.machine(), isOlder, true);
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
        prepare(pass.machine(), isOlder, needsPen);
        m_status = pass.run(replay);
        if (m_status != RunStatus::Done)
            return End::Failed;
        switch (source.end()) {
        case PlotSource::End::UniversalExit:
            return End::UniversalExit;
        case PlotSource::End::Reset:
            return End::Reset;
        case PlotSource::End::InputEnded:
            break;
        }
        return End::InputEnded;
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

    void prepare(Machine& machine, bool isOlder, bool needsPen) const
    {
        if (const DefaultPoints* points = isOlder ? defaultPointsFor(assumedPaper(m_environment)) : nullptr)
            machine.setDefaultScalingPoints(points->p1, points->p2);
        if (needsPen)
            machine.setDefaultPen(1);
        machine.powerOn();
    }

    PageDevice& m_device;
    FontLibrary& m_fonts;
    DiagnosticSink& m_sink;
    const Limits m_limits;
    const PlotEnvironment m_environment;
    const RasterLanguageFactory m_rasterLanguage;
    RunStatus m_status = RunStatus::Done;
};

PlotFile::PlotFile(PageDevice& device, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
    const PlotEnvironment& environment, RasterLanguageFactory rasterLanguage)
    : m_implementation(
        std::make_unique<Implementation>(device, fonts, sink, limits, environment, std::move(rasterLanguage)))
{
}

PlotFile::~PlotFile() = default;

PlotFile::End PlotFile::run(InputStream& input) { return m_implementation->run(input); }

RunStatus PlotFile::status() const { return m_implementation->status(); }

} // namespace quillrip::hpgl
