#include "quillrip/job/job_runner.h"

#include "quillrip/emf/interpreter.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/plot_file.h"
#include "quillrip/hpgl/recognition.h"
#include "quillrip/job/diagnostic_recorder.h"
#include "quillrip/job/document_renderer.h"
#include "quillrip/job/environments.h"
#include "quillrip/job/image_page_device.h"
#include "quillrip/job/metered_input.h"
#include "quillrip/job/pass_through.h"
#include "quillrip/pcl/interpreter.h"
#include "quillrip/pcl/plotter_raster.h"
#include "quillrip/pclxl/interpreter.h"
#include "quillrip/stream/containers.h"
#include "quillrip/stream/job_reader.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace quillrip {

namespace {

bool isPlot(ByteView window) { return hpgl::looksLikePlot(window) || hpgl::looksLikeRasterPlot(window); }

/// The name that the language was published under.
std::string languageOf(const stream::Part& part)
{
    switch (part.kind) {
    case stream::ContentKind::Pcl:
        return part.isInkjet ? "PCL 3" : "PCL 5";
    case stream::ContentKind::PclXl:
        return "PCL XL";
    case stream::ContentKind::Plot:
        return "HP-GL/2";
    case stream::ContentKind::Emf:
        return "EMF";
    case stream::ContentKind::Pdf:
        return "PDF";
    case stream::ContentKind::Xps:
        return "XPS";
    default:
        return "PostScript";
    }
}

/// The interpreters of one input, made when the first job of their language comes.
class Runner {
public:
    Runner(InputStream& input, ImagePageDevice& device, const Limits& limits, DiagnosticRecorder& diagnostics,
        const DocumentPrograms& programs, ConversionObserver& observer)
        : m_input(input, *limits.work)
        , m_device(device)
        , m_limits(limits)
        , m_diagnostics(diagnostics)
        , m_programs(programs)
        , m_observer(observer)
        , m_fonts(limits, &diagnostics)
        , m_reader(m_input, diagnostics, &isPlot)
    {
    }

    ConversionResult run()
    {
        while (const auto part = m_reader.next()) {
            m_observer.partFound(languageOf(*part));
            const std::uint64_t before = m_input.offset();
            const RunStatus status = runPart(*part);
            if (status == RunStatus::LimitExceeded || m_limits.work->isExhausted())
                return result(ConversionStatus::LimitExceeded, limitReason());
            if (status == RunStatus::OutputFailed)
                return result(ConversionStatus::OutputFailed, m_device.reason());
            if (status == RunStatus::Damaged) {
                noteDamage(before);
                m_device.dropOpenPage();
                m_reader.skipRest();
            } else if (m_input.offset() == before && !m_input.atEnd()) {
                // Whatever it is, it is not what it was taken for; another try would see the same.
                m_reader.skipRest();
                if (m_input.offset() == before)
                    m_input.skip(1);
            }
        }
        const RunStatus status = finishPcl();
        if (status == RunStatus::LimitExceeded || m_limits.work->isExhausted())
            return result(ConversionStatus::LimitExceeded, limitReason());
        if (status == RunStatus::OutputFailed)
            return result(ConversionStatus::OutputFailed, m_device.reason());
        if (status == RunStatus::Damaged)
            noteDamage(m_input.offset());
        return conclusion();
    }

private:
    RunStatus runPart(const stream::Part& part)
    {
        if (m_serial != m_reader.job().serial) {
            m_serial = m_reader.job().serial;
            m_device.beginJob(m_reader.job().firstPage, m_reader.job().lastPage);
        }
        m_device.setGray(m_reader.environment().isGray);
        if (part.kind != stream::ContentKind::Pcl) {
            const RunStatus status = finishPcl();
            if (status != RunStatus::Done)
                return status;
        }
        switch (part.kind) {
        case stream::ContentKind::Pcl:
            return runPcl(part);
        case stream::ContentKind::PclXl:
            return runPclXl();
        case stream::ContentKind::Plot:
            return runPlot();
        case stream::ContentKind::Emf:
            return runEmf();
        default:
            return runDocument(part);
        }
    }

    RunStatus runPcl(const stream::Part& part)
    {
        const pcl::Environment environment = pclEnvironment(m_reader.environment(), part);
        if (m_pcl)
            m_pcl->setEnvironment(environment);
        else
            m_pcl.emplace(m_device, m_diagnostics, m_limits, m_fonts, environment);
        m_isPclOpen = true;
        if (m_pcl->run(m_input) != pcl::Interpreter::End::Failed)
            return RunStatus::Done;
        const RunStatus status = m_pcl->status();
        if (status == RunStatus::Damaged) {
            m_isPclOpen = false;
            m_pcl.reset();
        }
        return status;
    }

    /// Whoever met the limit has told why: the renderer, the device, or an interpreter by its diagnostics.
    std::string limitReason() const
    {
        if (!m_reason.empty())
            return m_reason;
        if (m_input.isTooLong())
            return "too much of the input belongs to no page";
        if (m_limits.work->isExhausted())
            return m_limits.work->reason();
        if (!m_device.reason().empty() || !m_diagnostics.damage())
            return m_device.reason();
        return m_diagnostics.damage()->message;
    }

    RunStatus finishPcl()
    {
        if (!m_isPclOpen)
            return RunStatus::Done;
        m_isPclOpen = false;
        return m_pcl->finish();
    }

    RunStatus runPclXl()
    {
        pclxl::Environment environment = pclXlEnvironment(m_reader.environment());
        PassThrough passThrough(m_device, m_diagnostics, m_limits);
        environment.passThrough = &passThrough;
        pclxl::Interpreter interpreter(m_device, m_diagnostics, m_limits, m_fonts, environment);
        interpreter.run(m_input);
        return interpreter.status();
    }

    RunStatus runPlot()
    {
        const auto raster = [this](FontLibrary& fonts, DiagnosticSink& diagnostics) {
            return std::make_unique<pcl::PlotterRaster>(fonts, diagnostics, m_limits);
        };
        hpgl::PlotFile plot(
            m_device, m_fonts, m_diagnostics, m_limits, plotEnvironment(m_reader.environment()), raster);
        return plot.run(m_input) == hpgl::PlotFile::End::Failed ? plot.status() : RunStatus::Done;
    }

    RunStatus runEmf()
    {
        emf::Interpreter interpreter(m_device, m_diagnostics, m_limits);
        interpreter.run(m_input);
        // What stands behind the last record belongs to no job.
        if (interpreter.status() == RunStatus::Done)
            m_reader.skipRest();
        return interpreter.status();
    }

    RunStatus runDocument(const stream::Part& part)
    {
        const DocumentLanguage language = part.kind == stream::ContentKind::Pdf ? DocumentLanguage::Pdf
            : part.kind == stream::ContentKind::Xps                             ? DocumentLanguage::Xps
                                                                                : DocumentLanguage::PostScript;
        const auto program = m_programs.find(language);
        if (!program) {
            if (m_refusedDocument.empty())
                m_refusedDocument
                    = std::string("is ") + nameOf(language) + ", which needs " + DocumentPrograms::wanted(language);
            m_reader.skipRest();
            return RunStatus::Done;
        }
        DocumentRenderer renderer(*program, m_device, m_diagnostics, m_limits, m_budget);
        const RunStatus status = renderer.run(m_input, language);
        if (status == RunStatus::LimitExceeded || status == RunStatus::OutputFailed)
            m_reason = renderer.reason();
        return status;
    }

    void noteDamage(std::uint64_t offset)
    {
        if (!m_diagnostics.damage())
            m_diagnostics.report(
                { Severity::Damage, offset, "job.damaged", "the job cannot be understood from here on" });
    }

    ConversionResult result(ConversionStatus status, std::string reason) const
    {
        return { status, std::move(reason), {}, m_device.pageCount() };
    }

    std::string foreignReason() const
    {
        const std::string place = m_reader.foreignOffset() == 0
            ? std::string("is ")
            : "holds, at offset " + std::to_string(m_reader.foreignOffset()) + ", ";
        return place + m_reader.foreignName();
    }

    ConversionResult conclusion()
    {
        const int pages = m_device.pageCount();
        if (const auto& damage = m_diagnostics.damage())
            return result(ConversionStatus::Damaged,
                "damaged at offset " + std::to_string(damage->offset) + ": " + damage->message + "; "
                    + std::to_string(pages) + (pages == 1 ? " page kept" : " pages kept"));
        const std::string passedOver = !m_refusedDocument.empty() ? m_refusedDocument
            : !m_reader.foreignName().empty()                     ? foreignReason() + ", not a print job for quillrip"
                                                                  : std::string();
        if (pages > 0) {
            if (!passedOver.empty())
                m_diagnostics.report({ Severity::Warning, m_reader.foreignOffset(), "job.passed-over",
                    "left out a part of the file: it " + passedOver });
            return result(ConversionStatus::Done, {});
        }
        if (!passedOver.empty())
            return result(ConversionStatus::BadInput, passedOver);
        return result(ConversionStatus::BadInput, m_input.offset() == 0 ? "is empty" : "holds no page to print");
    }

    MeteredInput m_input;
    ImagePageDevice& m_device;
    const Limits& m_limits;
    DiagnosticRecorder& m_diagnostics;
    const DocumentPrograms& m_programs;
    ConversionObserver& m_observer;
    RunBudget m_budget;
    FontLibrary m_fonts;
    stream::JobReader m_reader;
    std::optional<pcl::Interpreter> m_pcl;
    bool m_isPclOpen = false;
    std::uint32_t m_serial = UINT32_MAX;
    std::string m_refusedDocument;
    std::string m_reason;
};

} // namespace

ConversionResult runJob(InputStream& input, PageSink& sink, const PageSettings& settings, const Limits& limits,
    DiagnosticSink& diagnostics, const DocumentPrograms& programs, ConversionObserver& observer)
{
    DiagnosticRecorder recorder(diagnostics);
    ImagePageDevice device(sink, settings, limits);
    const stream::Container container = stream::unwrap(input);
    if (!container.refusal.empty())
        return { ConversionStatus::BadInput, "is " + container.refusal, {}, 0 };
    Runner runner(container.job(input), device, limits, recorder, programs, observer);
    return runner.run();
}

} // namespace quillrip
