#pragma once

#include "quillrip/base/diagnostics.h"
#include "quillrip/base/limits.h"
#include "quillrip/fonts/font_library.h"
#include "quillrip/hpgl/host.h"
#include "quillrip/hpgl/label.h"
#include "quillrip/hpgl/lexer.h"
#include "quillrip/hpgl/line_pattern.h"
#include "quillrip/hpgl/polygon.h"
#include "quillrip/hpgl/raster_language.h"
#include "quillrip/hpgl/state.h"
#include "quillrip/hpgl/surface.h"

#include <map>
#include <optional>
#include <set>
#include <string>

namespace quillrip::hpgl {

/// What a plot file's page size is concluded from; told while the page is drawn. All in plotter units.
class PlotListener {
public:
    virtual ~PlotListener() = default;
    /// PS with its operands as they came. False when it comes too late for the page.
    virtual bool plotSize(const std::vector<double>& operands) = 0;
    /// IP or IW with four operands: a rectangle of the rotated system.
    virtual void plotWindow(bool isInputWindow, Point corner1, Point corner2) = 0;
    /// P1 and P2 went back to where they are without IP.
    virtual void pointsDefaulted() = 0;
    /// SC with operands.
    virtual void scaled() = 0;
    /// PG, AF, AH, BP: the page is finished. `isForced`: also when nothing was drawn.
    virtual void advancePage(bool isForced) = 0;
    /// A raster of the plotter's other language lies there, in page space.
    virtual void rasterCovered(const PageRect& raster) = 0;
};

/// The interpreter proper: state, commands and the drawing that follows from them.
class Machine {
public:
    enum class Stop { InputEnded, EnterPcl, Reset, UniversalExit, Failed };

    /// `listener` is null inside PCL; with it, the commands of plot files of their own are obeyed. `rasterLanguage` is
    /// what ESC%#A leads to in those; null: it is passed over.
    Machine(Host& host, Surface& surface, FontLibrary& fonts, DiagnosticSink& sink, const Limits& limits,
        PlotListener* listener, RasterLanguage* rasterLanguage = nullptr);

    Stop run(InputStream& input);
    int enterPclValue() const { return m_enterPclValue; }
    RunStatus status() const { return m_rasterStatus != RunStatus::Done ? m_rasterStatus : m_surface.status(); }

    Point penOnPage();
    void setPenOnPage(Point page);
    void reset();
    /// The host's picture frame is another: the state that hangs on it goes back to it.
    void frameChanged();
    /// The host's picture frame is another, only the scale follows.
    void frameRescaled();
    /// Other defaults for P1 and P2 than the frame's corners, in force from the next IN or IP.
    void setDefaultScalingPoints(Point p1, Point p2);
    /// The pen that is selected without SP, in force from the next IN; -1 for none.
    void setDefaultPen(int pen) { m_defaultPen = pen; }
    /// Starts as a plotter does that is switched on, its palette included.
    void powerOn();
    bool hasSelectedPen() const { return m_hasSelectedPen; }

    /// The commands by name, in the order of the table that they are looked up in.
    static std::vector<Mnemonic> knownCommands();

    const State& state() const { return m_state; }
    const Matrix& plotterToPage() const { return m_plotterToPage; }

private:
    using Handler = void (Machine::*)();

    /// How the operands of a command are read.
    enum class Operands : std::uint8_t {
        Numbers, ///< all of them, then the handler
        Coordinates, ///< the handler is called again for every few thousand
        Raw, ///< the handler reads the input itself
    };

    /// What becomes of the line being drawn.
    enum class Line : std::uint8_t {
        Goes, ///< the command may go on with it
        Ends, ///< drawn; the line type goes on where it was
        Breaks, ///< drawn, and the line type begins anew
    };

    enum class Scope : std::uint8_t {
        Everywhere,
        PlotFile, ///< skipped within PCL
    };

    struct Entry {
        Mnemonic mnemonic;
        Handler handler;
        const char* name;
        Line line = Line::Ends;
        Operands operands = Operands::Numbers;
        bool isLegalInPolygon = false;
        Scope scope = Scope::Everywhere;
    };

    static const Entry* find(Mnemonic mnemonic);
    /// Sorted by mnemonic.
    static const std::vector<Entry>& commands();

    void makeReady();
    void initialise(); ///< as IN does, without its effect on the palette
    void execute(Mnemonic mnemonic, Lexer& lexer);
    bool obeyEscape(InputStream& input, Stop& stop);
    void handleControl(char control);
    void warn(const char* kind, std::string message);
    std::size_t operandCount() const { return m_operands.size(); }
    double operand(std::size_t index, double otherwise = 0) const
    {
        return index < m_operands.size() ? m_operands[index] : otherwise;
    }
    /// Rounded and cut to -32768 ... 32767.
    int clampedInteger(std::size_t index, int otherwise = 0) const;
    double clampedReal(std::size_t index, double otherwise = 0) const;

    // Raster between vectors (raster_visit.cpp)
    class VisitedPage;
    void visitRasterLanguage(InputStream& input, RasterLanguage::Entry entry);
    void skipRasterLanguage(InputStream& input);

    // Coordinates (configuration_commands.cpp)
    void updateFrame();
    void updateScaling();
    void updateClip();
    Point frameSize() const; ///< of the plot at RO0, plotter units
    Point rotatedFrameSize() const;
    double diagonal() const; ///< from P1 to P2, plotter units
    void setDefaults();
    void defaultScalingPoints();
    void setScalingPoints(Point p1, const Point* p2);
    void freezeWindow();
    void freezeHatching();

    void initialiseCommand();
    void defaultsCommand();
    void inputPoints();
    void inputRelativePoints();
    void scale();
    void inputWindow();
    void rotate();

    // Vectors (vector_commands.cpp, encoded_polyline.cpp, curve_commands.cpp)
    void travelTo(Point to, bool isDrawing, bool endsVector = true);
    void plotPoints();
    void plotAbsolute();
    void plotRelative();
    void penUp();
    void penDown();
    void selectPen();
    void selectPen(int pen);
    void penWidth();
    void penWidthUnit();
    void encodedPolyline();
    void arcTo(Point centre, Point radius, double sweep, double chord);
    std::vector<LineVertex> arcPoints(Point centre, Point radius, double sweep, double chord) const;
    void arcAbsolute();
    void arcRelative();
    void arcThreePoint(Point middle, Point end, std::size_t chordIndex);
    void arcThreePointAbsolute();
    void arcThreePointRelative();
    void bezierTo(Point control1, Point control2, Point end);
    void bezierAbsolute();
    void bezierRelative();
    void circle();
    double chordAngle(std::size_t index, double radius) const;
    void chordTolerance();

    // Lines (line_commands.cpp, drawing.cpp)
    void lineType();
    void userLineType();
    void lineAttributes();
    void screenVectors();
    void symbolMode();
    void finishLine();
    void flushStrokes();
    void drawLine(const std::vector<LineVertex>& line, double& phase);
    void drawSeparateLine(const std::vector<LineVertex>& line);
    void drawDot(Point page);
    StrokeStyle strokeStyle() const;
    double penWidthDecipoints() const;
    double patternDecipoints(const PatternLength& length) const;
    Rgb penColor(int pen) const;
    int wrappedPen(int pen) const;
    std::optional<Ink> penInk(int pen) const;
    std::optional<Ink> lineInk();
    std::optional<Ink> fillInk();
    std::optional<Ink> shadingInk(double percent);
    std::optional<Ink> rasterInk(int index, bool usesCurrentPen);
    std::optional<Ink> storedPatternInk(AreaPattern kind, int id);
    void usePatternAnchor(Ink& ink) const;

    // Polygons (polygon_commands.cpp)
    void polygonMode();
    void fillPolygon();
    void edgePolygon();
    void fillPolygon(const Polygon& polygon, bool isNonZero);
    void fillPath(const Path& page, FillRule rule);
    void hatchPolygon(const Polygon& polygon, bool isNonZero, const Hatching& hatching, double turn);
    void edgePolygon(const Polygon& polygon);
    void addToPolygon(Point at, bool isPenDown, bool endsVector);
    void rectangleTo(Point corner);
    Point rectangleCorner(bool isRelative) const;
    void fillRectangle(bool isRelative);
    void edgeRectangle(bool isRelative);
    void fillRectangleAbsolute();
    void fillRectangleRelative();
    void edgeRectangleAbsolute();
    void edgeRectangleRelative();
    bool wedge();
    void fillWedge();
    void edgeWedge();

    // Fills and colours (fill_commands.cpp, palette_commands.cpp)
    void fillType();
    void rasterFill();
    void anchorCorner();
    void transparencyMode();
    void mergeControl();
    void pixelPlacement();
    void numberOfPens();
    void penColors();
    void colorRange();
    void defaultPalette(std::size_t from);

    // Text (character_commands.cpp, label.cpp, glyph_drawing.cpp)
    void defineFont(FontAttributes& attributes);
    void fontById(FontAttributes& attributes);
    void standardFont();
    void alternateFont();
    void selectStandard();
    void selectAlternate();
    void primaryFont();
    void secondaryFont();
    void standardCharacterSet();
    void alternateCharacterSet();
    void scalableOrBitmap();
    void labelMode();
    void defineTerminator();
    void transparentData();
    void absoluteSize();
    void relativeSize();
    void slant();
    void setDirection(bool isRelative);
    void absoluteDirection();
    void relativeDirection();
    void verticalPath();
    void extraSpace();
    void labelOrigin();
    void characterPlot();
    void characterFill();
    void label();
    void bufferLabel();
    void printBuffer();
    void writeToDisplay();
    std::string readLabel(std::size_t atMost, bool& isComplete);
    bool endsLabel(ByteView window) const;
    void drawLabel(const std::string& text);
    void obeyLabelControl(std::uint32_t code, LabelLine& line);
    void setLine(LabelLine& line);
    void moveByLines(const LabelMetrics& metrics, double lines);
    void returnCarriage(const LabelMetrics& metrics);
    const Font& currentFont();
    LabelMetrics labelMetrics();
    void symbolAtPen();
    void drawCharacter(const LabelMetrics& metrics, std::uint32_t glyph, Point at);
    void drawStrokedCharacter(const LabelMetrics& metrics, char32_t character, const Matrix& glyphToPlotter);
    void drawTypefaceCharacter(const Font& font, GlyphId glyph, const Matrix& glyphToPlotter);

    // Job control (job_commands.cpp)
    void beginPlot();
    void advancePage();
    void advanceFrame();
    void leavePage(bool isForced);
    void plotSize();
    void comment();
    void ignore();
    void tickLength();
    void tickX();
    void tickY();
    void tick(Point direction);
    void userCharacter();

    Host& m_host;
    Surface& m_surface;
    FontLibrary& m_fonts;
    DiagnosticSink& m_sink;
    const Limits m_limits;
    PlotListener* const m_listener;
    RasterLanguage* const m_rasterLanguage;
    RunStatus m_rasterStatus = RunStatus::Done;

    State m_state;
    PictureFrame m_frame;
    Matrix m_frameToPage; ///< plotter units at RO0 to page space
    Matrix m_plotterToPage; ///< rotated plotter units to page space
    double m_plotScale = 1; ///< the smaller of the frame's scale factors: for metric lengths
    UserToPlotter m_userToPlotter;
    bool m_isReady = false; ///< the state is there; false after a reset
    bool m_hasDefaultScalingPoints = false;
    int m_defaultPen = -1;
    bool m_hasSelectedPen = false; ///< SP was seen
    Point m_defaultP1;
    Point m_defaultP2;
    PageRect m_clip;
    bool m_clipIsStale = true;
    double m_clipReach = 0; ///< half the pen's width when the clip was made

    InputStream* m_input = nullptr;
    std::vector<double> m_operands;
    bool m_isContinued = false; ///< the handler has seen operands of the same command before
    std::uint64_t m_commandOffset = 0;
    int m_enterPclValue = 0;
    bool m_isSwitchedOff = false; ///< between ESC.Z and ESC.Y
    std::set<Mnemonic> m_unknown;
    unsigned m_errors = 0;
    bool m_hasDrawn = false;

    std::vector<LineVertex> m_line; ///< being drawn, page space
    double m_linePhase = 0;
    Path m_strokes; ///< finished solid lines that look the same
    bool m_hasDotToDraw = false; ///< the pen went down and has not moved
    LineType m_rememberedLineType; ///< for LT99
    double m_rememberedPhase = 0;
    Point m_rememberedPen;
    bool m_hasRememberedLineType = false;

    bool m_isPolygonMode = false;
    Polygon m_polygon;
    bool m_polygonIsFull = false;

    std::map<int, std::shared_ptr<const PatternTile>> m_shadings;
    std::string m_labelBuffer;
    double m_tickPositive = 0.5;
    double m_tickNegative = 0.5;
    Font m_font;
    FontAttributes m_fontAttributes;
    bool m_fontAllowsBitmaps = false;
    bool m_hasFont = false;
};

} // namespace quillrip::hpgl
