#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/input_stream.h"
#include "quillrip/base/limits.h"
#include "quillrip/pclxl/attribute_list.h"
#include "quillrip/pclxl/command_table.h"
#include "quillrip/pclxl/environment.h"
#include "quillrip/pclxl/interpreter.h"
#include "quillrip/pclxl/status.h"
#include "quillrip/pclxl/tag_reader.h"

#include <cstdint>
#include <memory>
#include <vector>

namespace quillrip {

class FontLibrary;
class Reporter;

namespace pclxl {

class Drawing;
class GraphicsStack;
class Page;
class PageImage;
class PatternInProgress;
class PatternStore;
class SoftFonts;
class TextSetter;
class UserStreams;
struct DataSource;
struct FastRasterImage;
struct GraphicsState;
struct Session;
struct VendorImage;

/// Reads a stream's operators, checks each against the command table and has its handler carry it out. What they work
/// with lives in rooms, each with its own state and contract; a handler asks for the room that it needs.
class Machine {
public:
    Machine(PageDevice& device, DiagnosticSink& diagnostics, const Limits& limits, FontLibrary& fonts,
        const Environment& environment);
    ~Machine();
    Machine(const Machine&) = delete;
    Machine& operator=(const Machine&) = delete;

    Interpreter::End run(InputStream& input);
    RunStatus status() const { return m_status; }

    // The operator that runs.
    const CommandEntry& command() const { return *m_command; }
    const AttributeList& operands() const { return m_operands; }
    EmbeddedData& data() { return *m_data; }
    TagReader& reader() { return *m_reader; }
    /// The points of its embedded data; kept for their memory.
    std::vector<Point>& points() { return m_points; }

    const Limits& limits() const { return m_limits; }
    const Environment& environment() const { return m_environment; }
    FontLibrary& fonts() { return m_fonts; }

    // The rooms.
    Reporter& reporter();
    /// For the font code, whose reports wait for the operator's end.
    Reporter fontReporter();
    Session& session();
    DataSource& dataSource();
    Page& page();
    GraphicsStack& graphics();
    GraphicsState& state();
    const GraphicsState& state() const;
    Drawing& drawing();
    TextSetter& textSetter();
    PatternStore& patterns();
    const PatternStore& patterns() const;
    SoftFonts& softFonts();
    UserStreams& userStreams();
    /// What a Begin operator has begun; null while none has.
    std::unique_ptr<PageImage>& image();
    std::unique_ptr<PatternInProgress>& definedPattern();
    std::unique_ptr<VendorImage>& vendorImage();
    std::unique_ptr<FastRasterImage>& fastRaster();

    /// From here on only the definition's own operators may stand, till its end.
    void beginDefinition(Definition definition) { m_definition = definition; }
    void endDefinition() { m_definition = Definition::None; }
    /// Finishes the image of vendor raster and the page of fast raster, if there are any.
    void endVendorImages();
    /// The operators of a user stream, as if they stood here. LimitExceeded when such streams do too much.
    Status runUserStream(ByteView bytes);

    /// The page is over, delivered or not: all that was only its own is gone.
    void leavePage();
    void resetSession();

private:
    Status interpret(TagReader& reader, bool isUserStream);
    Status execute(TagReader& reader);
    Status readOperators(ByteView bytes);
    void passOver(TagReader& reader, bool hasLostTrack);
    void reportError(const Status& status);

    struct Rooms;

    const Limits m_limits;
    FontLibrary& m_fonts;
    const Environment m_environment;
    RunStatus m_status = RunStatus::Done;
    std::unique_ptr<Rooms> m_rooms;

    TagReader* m_reader = nullptr;
    EmbeddedData* m_data = nullptr;
    AttributeList m_operands;
    std::vector<Point> m_points;
    const CommandEntry* m_command = nullptr; ///< null where no operator is to blame
    Definition m_definition = Definition::None;
    std::uint64_t m_position = 0; ///< operators since the stream's start, the first is 1
};

} // namespace pclxl
} // namespace quillrip
