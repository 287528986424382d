#include "quillrip/fonts/font_library.h"

#include "quillrip/base/escape_sequence.h"
#include "quillrip/fonts/faces/font_file.h"
#include "quillrip/fonts/faces/internal_face.h"
#include "quillrip/fonts/glyph_painter.h"
#include "quillrip/fonts/select/font_names.h"
#include "quillrip/fonts/select/font_selection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <memory>

namespace quillrip {

namespace {

constexpr double kQuarterPoint = 0.25;
constexpr double kLeastHeight = 0.25;
constexpr double kMostHeight = 999.75;
constexpr double kLeastPitch = 0.1;
constexpr double kMostPitch = 576;

/// Sets that are not known here, and the nearest that is.
std::uint16_t nearestSymbolSet(std::uint16_t number)
{
    switch (number) {
    case symbolSetNumber(6, 'M'):
        return symbolSetNumber(5, 'M');
    case symbolSetNumber(9, 'L'):
    case symbolSetNumber(11, 'L'):
    case symbolSetNumber(12, 'L'):
    case symbolSetNumber(13, 'L'):
        return symbolSetNumber(10, 'L');
    case symbolSetNumber(7, 'U'):
        return symbolSetNumber(0, 'N');
    case symbolSetNumber(18, 'U'):
        return symbolSetNumber(12, 'U');
    case symbolSetNumber(12, 'G'):
        return symbolSetNumber(10, 'G');
    case symbolSetNumber(8, 'R'):
        return symbolSetNumber(9, 'R');
    default:
        return number;
    }
}

/// Old names of the dingbats set lead to the same face.
std::uint16_t boundSetOf(std::uint16_t number)
{
    return number == symbolSetNumber(10, 'L') ? symbolSetNumber(14, 'L') : number;
}

/// Sets that belong to one built-in face: the others do not print them.
bool isPrivateSet(std::uint16_t number)
{
    return std::any_of(kInternalFaces, kInternalFaces + kInternalFaceCount,
        [number](const InternalFaceSpec& spec) { return spec.boundSet && spec.boundSet == boundSetOf(number); });
}

double clampedHeight(double height)
{
    // A height that is no number compares false and gets the default.
    if (!(height >= kLeastHeight))
        return height > 0 ? kLeastHeight : 12;
    return std::min(height, kMostHeight);
}

double clampedPitch(double pitch)
{
    if (!(pitch >= kLeastPitch))
        return pitch > 0 ? kLeastPitch : 10;
    return std::min(pitch, kMostPitch);
}

/// Height and pitch of a face as the request makes them.
void size(Font& font, const FontRequest& request)
{
    const FontTraits& traits = font.face->traits();
    if (traits.isFixedSize) {
        font.height = traits.height;
        font.pitch = traits.isProportional ? 0 : traits.pitch;
        return;
    }
    if (traits.isProportional) {
        font.height = clampedHeight(std::round(request.height / kQuarterPoint) * kQuarterPoint);
        font.pitch = 0;
        return;
    }
    font.pitch = clampedPitch(request.pitch);
    font.height = traits.spaceAdvance > 0 ? 72 / (font.pitch * traits.spaceAdvance) : 12;
}

} // namespace

/// The built-in faces, made without touching a file.
class InternalFaces {
public:
    explicit InternalFaces(DiagnosticSink* sink)
        : m_files(std::make_shared<FontFiles>())
    {
        for (std::size_t i = 0; i < kInternalFaceCount; ++i)
            m_faces.push_back(std::make_shared<InternalFace>(kInternalFaces[i], m_files, sink));
    }

    const std::vector<std::shared_ptr<const InternalFace>>& faces() const { return m_faces; }

private:
    std::shared_ptr<FontFiles> m_files;
    std::vector<std::shared_ptr<const InternalFace>> m_faces;
};

FontLibrary::FontLibrary(const Limits& limits, DiagnosticSink* sink)
    : m_sink(sink)
    , m_softFonts(limits.fontBytes)
    , m_internal(std::make_unique<InternalFaces>(sink))
    , m_glyphs(std::make_unique<GlyphPainter>())
{
    m_softFonts.setShapeFinder([this](const FontTraits& traits) {
        FontRequest request;
        request.isProportional = traits.isProportional;
        request.style = traits.style;
        request.weight = traits.weight;
        request.family = traits.family;
        return selectInternal(request);
    });
}

FontLibrary::~FontLibrary() = default;

std::shared_ptr<const Typeface> FontLibrary::selectInternal(const FontRequest& request) const
{
    std::vector<SelectionCandidate> candidates;
    std::vector<std::size_t> left;
    const auto& faces = m_internal->faces();
    for (std::size_t i = 0; i < faces.size(); ++i) {
        const bool isAddOn = faces[i]->spec().make == InternalFaceSpec::Make::AddOn;
        candidates.push_back({ &faces[i]->traits(), false, static_cast<int>(i), isAddOn });
        if (!faces[i]->traits().isBoundToSet)
            left.push_back(i);
    }
    return faces[selectByCharacteristics(candidates, std::move(left), request, {})];
}

std::shared_ptr<const Typeface> FontLibrary::selectInFamily(std::uint16_t family, std::uint16_t style, int weight) const
{
    std::vector<SelectionCandidate> candidates;
    std::vector<std::size_t> left;
    const auto& faces = m_internal->faces();
    for (std::size_t i = 0; i < faces.size(); ++i) {
        candidates.push_back({ &faces[i]->traits(), false, static_cast<int>(i), false });
        if (faces[i]->traits().family == family)
            left.push_back(i);
    }
    FontRequest request;
    request.family = family;
    request.style = style;
    request.weight = weight;
    request.isProportional = faces[left.front()]->traits().isProportional;
    return faces[selectByCharacteristics(candidates, std::move(left), request, {})];
}

Font FontLibrary::select(const FontRequest& request, const SelectionContext& context) const
{
    constexpr std::size_t kMostSelections = 16;
    const std::uint64_t generation = m_softFonts.generation() + m_symbolSetGeneration;
    if (generation != m_selectionGeneration) {
        m_selections.clear();
        m_selectionGeneration = generation;
    }
    const auto known = std::find_if(m_selections.begin(), m_selections.end(),
        [&](const Selection& selection) { return selection.request == request && selection.context == context; });
    if (known != m_selections.end())
        return known->font;
    Selection selection { request, context, selectAnew(request, context) };
    Font font = selection.font;
    if (m_selections.size() < kMostSelections) {
        m_selections.push_back(std::move(selection));
    } else {
        m_selections[m_nextSelection % kMostSelections] = std::move(selection);
        ++m_nextSelection;
    }
    return font;
}

Font FontLibrary::selectAnew(const FontRequest& request, const SelectionContext& context) const
{
    std::vector<SelectionCandidate> candidates;
    std::vector<std::shared_ptr<const Typeface>> faces;
    int order = 0;
    for (const auto& [key, entry] : m_softFonts.entries()) {
        if (!entry.font->traits().isScalable && !context.allowsBitmapFonts)
            continue;
        candidates.push_back({ &entry.font->traits(), true, order++, false });
        faces.push_back(entry.font);
    }
    for (const auto& face : m_internal->faces()) {
        candidates.push_back({ &face->traits(), false, order++, face->spec().make == InternalFaceSpec::Make::AddOn });
        faces.push_back(face);
    }

    // The wanted set, one like it, the default set, and at last any.
    std::vector<std::size_t> left;
    std::shared_ptr<const SymbolSet> set;
    const std::uint16_t tries[]
        = { request.symbolSet, nearestSymbolSet(request.symbolSet), context.defaultSymbolSet, kRoman8 };
    std::uint16_t used = request.symbolSet;
    for (const std::uint16_t number : tries) {
        set = symbolSet(number);
        used = number;
        const bool isPrivate = isPrivateSet(number);
        for (std::size_t i = 0; i < candidates.size(); ++i) {
            const bool isInternal = !candidates[i].isSoft;
            const FontTraits& traits = *candidates[i].traits;
            if (isInternal && isPrivate && !traits.isBoundToSet)
                continue;
            if (canPrint(traits, isInternal ? boundSetOf(number) : number, set.get()))
                left.push_back(i);
        }
        if (!left.empty())
            break;
    }
    if (used != request.symbolSet && m_sink) {
        m_sink->report({ Severity::Warning, 0, "font.symbol-set",
            "symbol set " + std::to_string(request.symbolSet / 32) + static_cast<char>(request.symbolSet % 32 + 64)
                + " is not known, another one is used" });
    }
    const std::size_t chosen = selectByCharacteristics(candidates, std::move(left), request, context);
    Font font;
    font.face = faces[chosen];
    if (font.face->traits().domain != CodeDomain::Bound)
        font.symbolSet = set;
    size(font, request);
    return font;
}

Font FontLibrary::selectById(const SoftFontKey& key, FontRequest& request, const SelectionContext& context) const
{
    Font font;
    const std::shared_ptr<SoftFont> soft = m_softFonts.find(key);
    if (!soft)
        return font;
    const FontTraits& traits = soft->traits();
    font.face = soft;
    if (traits.domain != CodeDomain::Bound) {
        font.symbolSet = symbolSet(request.symbolSet);
        if (!font.symbolSet)
            font.symbolSet = symbolSet(context.defaultSymbolSet);
        if (!font.symbolSet)
            font.symbolSet = symbolSet(kRoman8);
    }
    size(font, request);

    if (traits.isBoundToSet)
        request.symbolSet = traits.symbolSet;
    request.isProportional = traits.isProportional;
    if (!traits.isProportional)
        request.pitch = font.pitch;
    if (traits.isFixedSize || traits.isProportional)
        request.height = font.height;
    request.style = traits.style;
    request.weight = traits.weight;
    request.family = traits.family;
    return font;
}

Font FontLibrary::selectByName(const std::string& name, std::uint16_t symbolSetNumber, const Reporter& reporter) const
{
    std::shared_ptr<const Typeface> chosen;
    const std::string trimmed = name.substr(0, name.find_last_not_of(std::string(" \0", 2)) + 1);
    for (const auto& face : m_internal->faces()) {
        if (trimmed == face->spec().nameInPclXl)
            chosen = face;
    }
    if (!chosen) {
        const NamedFace named = readFontName(trimmed);
        if (!named.isKnown)
            reporter.warn("font.name", "font \"" + trimmed + "\" is not known, a similar one is used");
        chosen = selectInFamily(named.family, named.style, named.weight);
    }

    Font font;
    font.face = chosen;
    if (chosen->traits().domain != CodeDomain::Bound) {
        font.symbolSet = symbolSet(symbolSetNumber);
        if (!font.symbolSet)
            font.symbolSet = symbolSet(nearestSymbolSet(symbolSetNumber));
        if (!font.symbolSet) {
            reporter.warn(
                "font.symbol-set", "symbol set " + std::to_string(symbolSetNumber) + " is not known, Roman-8 is used");
            font.symbolSet = symbolSet(kRoman8);
        }
    }
    font.height = 1;
    font.pitch = chosen->traits().isProportional ? 0 : 72 / chosen->traits().spaceAdvance;
    return font;
}

Font FontLibrary::selectByEscapeSequence(ByteView commands, const SelectionContext& context) const
{
    FontRequest request;
    EscapeReader reader(commands);
    while (!reader.atEnd()) {
        if (!reader.open())
            reader.skip(1);
        while (const auto parameter = reader.next()) {
            const double value = std::clamp(parameter->value.number, -32767.0, 65535.0);
            const char letter = parameter->letter;
            if (parameter->group != 's' && letter >= 'A' && letter <= 'Z' && letter != 'X' && value >= 0)
                request.symbolSet = symbolSetNumber(static_cast<unsigned>(value), letter);
            else if (letter == 'P')
                request.isProportional = value != 0;
            else if (letter == 'H')
                request.pitch = value;
            else if (letter == 'V')
                request.height = value;
            else if (letter == 'S')
                request.style = static_cast<std::uint16_t>(std::max(0.0, value));
            else if (letter == 'B')
                request.weight = static_cast<int>(std::clamp(value, -7.0, 7.0));
            else if (letter == 'T')
                request.family = static_cast<std::uint16_t>(std::max(0.0, value));
        }
    }
    return select(request, context);
}

std::shared_ptr<const SymbolSet> FontLibrary::symbolSet(std::uint16_t number) const
{
    if (const auto found = m_userSymbolSets.find(number); found != m_userSymbolSets.end())
        return found->second.set;
    // Built-in sets live as long as the program: nothing to own.
    return std::shared_ptr<const SymbolSet>(std::shared_ptr<const SymbolSet>(), findSymbolSet(number));
}

void FontLibrary::defineSymbolSet(std::shared_ptr<const SymbolSet> set)
{
    if (!set)
        return;
    ++m_symbolSetGeneration;
    const std::uint16_t number = set->number();
    m_userSymbolSets[number] = { std::move(set), false };
}

void FontLibrary::removeSymbolSet(std::uint16_t number)
{
    ++m_symbolSetGeneration;
    m_userSymbolSets.erase(number);
}

void FontLibrary::removeAllSymbolSets()
{
    ++m_symbolSetGeneration;
    m_userSymbolSets.clear();
}

void FontLibrary::removeTemporarySymbolSets()
{
    ++m_symbolSetGeneration;
    for (auto at = m_userSymbolSets.begin(); at != m_userSymbolSets.end();)
        at = at->second.isPermanent ? std::next(at) : m_userSymbolSets.erase(at);
}

void FontLibrary::setSymbolSetPermanent(std::uint16_t number, bool isPermanent)
{
    if (const auto found = m_userSymbolSets.find(number); found != m_userSymbolSets.end())
        found->second.isPermanent = isPermanent;
}

std::vector<std::shared_ptr<const Typeface>> FontLibrary::builtInFaces() const
{
    return { m_internal->faces().begin(), m_internal->faces().end() };
}

} // namespace quillrip
