#include "quillrip/fonts/select/font_selection.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace quillrip {

namespace {

using Indices = std::vector<std::size_t>;

/// The bits of a family number without the vendor.
constexpr std::uint16_t kBaseFamily = 0x0FFF;
constexpr std::uint16_t kLinePrinterFamily = 0;

/// The fixed bitmap-sized face answers to these pitches: the number is written 16.67, 16.66, 16.6 and 16.5.
constexpr double kLeastCondensedPitch = 16.5;
constexpr double kMostCondensedPitch = 16.8;
constexpr double kLeastCondensedHeight = 8;
constexpr double kMostCondensedHeight = 9;

/// Keeps those that fulfil the condition, unless none does. Tells whether any did.
template <typename Condition> bool keep(Indices& left, Condition condition)
{
    Indices kept;
    std::copy_if(left.begin(), left.end(), std::back_inserter(kept), condition);
    if (kept.empty())
        return false;
    left = std::move(kept);
    return true;
}

/// Pitches are compared in hundredths, heights in quarter points: finer differences come from counting in dots.
long hundredths(double pitch) { return std::lround(pitch * 100); }
long quarterPoints(double height) { return std::lround(height * 4); }

class Steps {
public:
    Steps(const std::vector<SelectionCandidate>& candidates, Indices left, const FontRequest& request,
        const SelectionContext& context)
        : m_candidates(candidates)
        , m_left(std::move(left))
        , m_request(request)
        , m_context(context)
    {
    }

    std::size_t run()
    {
        withdrawAddOns();
        bool isFixed = !m_request.isProportional;
        if (!keep(m_left, [&](std::size_t i) { return traits(i).isProportional == m_request.isProportional; }))
            isFixed = !isFixed;
        if (isFixed)
            pitch();
        height();
        keep(m_left, [&](std::size_t i) { return traits(i).style == m_request.style; });
        weight();
        family();
        resolution();
        keep(m_left, [&](std::size_t i) { return m_candidates[i].isSoft; });
        keep(m_left, [&](std::size_t i) {
            return traits(i).isScalable || traits(i).orientation == (m_context.orientation & 3);
        });
        return *std::min_element(m_left.begin(), m_left.end(),
            [&](std::size_t a, std::size_t b) { return m_candidates[a].order < m_candidates[b].order; });
    }

private:
    const FontTraits& traits(std::size_t i) const { return *m_candidates[i].traits; }

    /// Faces of later devices would change what the older steps of the order lead to, so they only take part when
    /// their family is asked for.
    void withdrawAddOns()
    {
        const std::uint16_t wanted = m_request.family;
        const auto hasFamily = [&](bool isAddOn, std::uint16_t mask) {
            return std::any_of(m_left.begin(), m_left.end(), [&](std::size_t i) {
                return m_candidates[i].isAddOn == isAddOn && (traits(i).family & mask) == (wanted & mask);
            });
        };
        const bool asksForAddOn = hasFamily(true, 0xFFFF)
            || (!hasFamily(false, 0xFFFF) && !hasFamily(false, kBaseFamily) && hasFamily(true, kBaseFamily));
        keep(m_left, [&](std::size_t i) {
            if (!m_candidates[i].isAddOn)
                return true;
            return asksForAddOn && (traits(i).family & kBaseFamily) == (wanted & kBaseFamily);
        });
    }

    void pitch()
    {
        const double wanted = m_request.pitch;
        const auto isExact = [&](std::size_t i) {
            const FontTraits& t = traits(i);
            if (!t.isFixedSize)
                return true;
            if (!m_candidates[i].isSoft)
                return wanted >= kLeastCondensedPitch && wanted <= kMostCondensedPitch;
            return hundredths(t.pitch) == hundredths(wanted);
        };
        if (keep(m_left, isExact))
            return;
        // The next greater one, else the closest smaller one.
        double best = 0;
        for (const std::size_t i : m_left) {
            const double pitch = traits(i).pitch;
            const bool isGreater = pitch > wanted;
            if (best == 0 || (isGreater && (best < wanted || pitch < best))
                || (!isGreater && best < wanted && pitch > best))
                best = pitch;
        }
        keep(m_left, [&](std::size_t i) { return hundredths(traits(i).pitch) == hundredths(best); });
    }

    void height()
    {
        const auto difference = [&](std::size_t i) -> long {
            const FontTraits& t = traits(i);
            if (!t.isFixedSize)
                return 0;
            if (!m_candidates[i].isSoft && m_request.height >= kLeastCondensedHeight
                && m_request.height <= kMostCondensedHeight)
                return 0;
            return std::labs(quarterPoints(t.height) - quarterPoints(m_request.height));
        };
        long least = difference(m_left.front());
        for (const std::size_t i : m_left)
            least = std::min(least, difference(i));
        keep(m_left, [&](std::size_t i) { return difference(i) == least; });
    }

    void weight()
    {
        const int wanted = m_request.weight;
        const int direction = wanted >= 0 ? 1 : -1;
        // Distance in the preferred direction; the other direction only counts when there is nothing in that one.
        const auto distance = [&](std::size_t i) {
            constexpr int kOtherDirection = 100;
            const int steps = (traits(i).weight - wanted) * direction;
            return steps >= 0 ? steps : kOtherDirection - steps;
        };
        int least = distance(m_left.front());
        for (const std::size_t i : m_left)
            least = std::min(least, distance(i));
        keep(m_left, [&](std::size_t i) { return distance(i) == least; });
    }

    void family()
    {
        const std::uint16_t wanted = m_request.family;
        if (keep(m_left, [&](std::size_t i) { return traits(i).family == wanted; }))
            return;
        // Older drivers send the face's number without the vendor's.
        if (wanted != kLinePrinterFamily
            && keep(m_left, [&](std::size_t i) { return (traits(i).family & kBaseFamily) == (wanted & kBaseFamily); }))
            return;
        // Nobody knows the family: a request in the sizes of the line printer face means it, ...
        if (keep(m_left,
                [&](std::size_t i) { return !m_candidates[i].isSoft && traits(i).family == kLinePrinterFamily; }))
            return;
        // ... and sans serif numbers get a sans serif.
        constexpr std::uint16_t kSansSerifs[] = { 4, 52, 72, 218 };
        constexpr std::uint16_t kUnivers = 4148;
        if (std::any_of(std::begin(kSansSerifs), std::end(kSansSerifs),
                [&](std::uint16_t base) { return base == (wanted & kBaseFamily); }))
            keep(m_left, [&](std::size_t i) { return traits(i).family == kUnivers; });
    }

    void resolution()
    {
        const int page = m_context.resolution;
        const auto rank = [&](std::size_t i) {
            const FontTraits& t = traits(i);
            if (t.isScalable)
                return 1;
            if (t.resolution == page)
                return 0;
            return t.resolution < page ? 2 : 3;
        };
        int best = rank(m_left.front());
        for (const std::size_t i : m_left)
            best = std::min(best, rank(i));
        keep(m_left, [&](std::size_t i) { return rank(i) == best; });
    }

    const std::vector<SelectionCandidate>& m_candidates;
    Indices m_left;
    const FontRequest& m_request;
    const SelectionContext& m_context;
};

} // namespace

bool canPrint(const FontTraits& traits, std::uint16_t symbolSetNumber, const SymbolSet* set)
{
    if (traits.isBoundToSet)
        return traits.symbolSet == symbolSetNumber;
    if (!set)
        return false;
    // The low three bits tell the numbering; for every required collection the complement must have a zero.
    constexpr std::uint64_t kIndexBits = 7;
    const std::uint64_t required = set->requirements() & ~kIndexBits;
    return (required & traits.complement) == 0;
}

std::size_t selectByCharacteristics(const std::vector<SelectionCandidate>& candidates, std::vector<std::size_t> left,
    const FontRequest& request, const SelectionContext& context)
{
    return Steps(candidates, std::move(left), request, context).run();
}

} // namespace quillrip
