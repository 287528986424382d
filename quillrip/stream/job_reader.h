#pragma once

#include "quillrip/base/input_stream.h"
#include "quillrip/base/reporter.h"
#include "quillrip/stream/content.h"
#include "quillrip/stream/pjl_environment.h"

#include <cstdint>
#include <optional>
#include <string>

namespace quillrip::stream {

/// A stretch of one page description language. The input stands on its first byte.
struct Part {
    ContentKind kind = ContentKind::Pcl; ///< Pcl, PclXl, Plot, Emf, PostScript, Pdf or Xps
    std::uint64_t offset = 0;
    bool isNamed = false; ///< the job language entered the language
    bool isInkjet = false; ///< PCL 3
    bool isInkjetRaster = false; ///< PCL of an ink-jet driver, whose text is always a broken command
};

/// What a job asks for as a whole.
struct JobRange {
    std::uint32_t serial = 0; ///< counts the jobs of the input
    std::uint64_t firstPage = 1; ///< of the job, from 1
    std::uint64_t lastPage = UINT64_MAX;
};

/// Finds the parts of an input that interpreters can read, one after the other: reads the job language between them,
/// drops padding, passes over what is not for quillrip. The interpreter runs on the input itself and leaves it where
/// its language ended.
class JobReader {
public:
    /// All references must outlive the reader.
    JobReader(InputStream& input, DiagnosticSink& diagnostics, PlotTest isPlot);

    /// Goes on to the next part; nothing at the end of the input.
    std::optional<Part> next();

    /// Passes over the rest of a part, up to a Universal Exit that another job can follow, or to the end.
    void skipRest();

    const PjlEnvironment& environment() const { return m_environment; }
    const JobRange& job() const { return m_job; }

    /// The first thing passed over since it is not for quillrip, such as "a PNG image"; empty when there was none.
    const std::string& foreignName() const { return m_foreignName; }
    std::uint64_t foreignOffset() const { return m_foreignOffset; }

private:
    std::optional<Part> readPjl();
    /// Takes a line of the job language whose @PJL comes next; nothing when it is longer than any.
    std::optional<PjlLine> takePjlLine();
    std::optional<Part> enterLanguage(std::string name);
    std::optional<Part> partOf(const Content& content);
    void obey(const PjlLine& line, std::uint64_t offset);
    void skipTransferredData(const PjlLine& line);
    void skipPrescribe();
    void passOver(const std::string& name, std::uint64_t offset);
    void warn(const char* kind, std::string message, std::uint64_t offset);
    void resetEnvironment();
    void universalExitTaken();
    Content look(bool isNamed);

    InputStream& m_input;
    Reporter m_reporter;
    PlotTest m_isPlot;
    PjlEnvironment m_environment;
    JobRange m_job;
    bool m_isInsideJob = false; ///< between JOB and EOJ
    bool m_hasDataSinceReset = false;
    bool m_isReadingPjl = false;
    bool m_hadPart = false;
    bool m_isNamedPlot = false; ///< the job language named a plot, whose resets do not end it
    std::string m_foreignName;
    std::uint64_t m_foreignOffset = 0;
};

} // namespace quillrip::stream
