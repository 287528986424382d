#pragma once

#include <cstddef>
#include <cstdint>

namespace quillrip {

/// Codes of ternary raster operations as the languages number them: bit 4 T + 2 S + D of the code is the result for
/// texture T, source S and destination D, where 1 is white. With a black source they read as the comments say.
namespace rop {

constexpr std::uint8_t kBlackness = 0;
constexpr std::uint8_t kDestinationInvert = 85; ///< ~D
constexpr std::uint8_t kTextureXorDestination = 90; ///< T ^ D
constexpr std::uint8_t kSourceXorDestination = 102; ///< S ^ D
constexpr std::uint8_t kSourceAndDestination = 136; ///< S & D: ink is added to ink
constexpr std::uint8_t kTextureAndDestination = 160; ///< T & D
constexpr std::uint8_t kTextureOrSourceAndDestination = 168; ///< (T | S) & D: the texture's ink is added to the page's
constexpr std::uint8_t kDestination = 170; ///< nothing happens
constexpr std::uint8_t kTexturePaint = 184; ///< (T & ~S) | (D & S): the texture where the source is black
constexpr std::uint8_t kSource = 204; ///< S: an image replaces what is there
constexpr std::uint8_t kSourceOrDestination = 238; ///< S | D
constexpr std::uint8_t kTexture = 240; ///< T: the texture replaces what is there, wherever the source is
constexpr std::uint8_t kTextureOrSource
    = 252; ///< T | S: the texture where the source is black, the start of all languages
constexpr std::uint8_t kWhiteness = 255;

} // namespace rop

/// One of the 256 ternary raster operations, on operands as the page stores them: 1 = ink. (The languages number the
/// operations for 1 = white; the truth table is turned round once, here.)
///
/// For given source and texture every operation does one of four things to a bit of the page: clears it, sets it,
/// leaves it or inverts it. So D' = (D & keep(S, T)) ^ flip(S, T), and keep and flip are exclusive sums of the terms
/// 1, S, T and S & T: at most eight terms, evaluated without a branch on words or bytes.
class RasterOperation {
public:
    explicit RasterOperation(std::uint8_t code)
    {
        unsigned flip[4];
        unsigned keep[4];
        for (unsigned texture = 0; texture < 2; ++texture) {
            for (unsigned source = 0; source < 2; ++source) {
                const auto inkAt = [&](unsigned destination) {
                    const unsigned lightIndex = 4 * (1 - texture) + 2 * (1 - source) + (1 - destination);
                    return 1 - (code >> lightIndex & 1u);
                };
                flip[2 * source + texture] = inkAt(0);
                keep[2 * source + texture] = inkAt(0) ^ inkAt(1);
            }
        }
        m_flip = Sum(flip);
        m_keep = Sum(keep);
    }

    template <typename Word> Word flip(Word source, Word texture) const { return m_flip.at(source, texture); }
    template <typename Word> Word keep(Word source, Word texture) const { return m_keep.at(source, texture); }

    template <typename Word> Word apply(Word source, Word texture, Word destination) const
    {
        return static_cast<Word>((destination & keep(source, texture)) ^ flip(source, texture));
    }

    /// The same for many bytes: result[i] from source[i], texture[i] and page[i]. `result` may be `page`.
    void applyBytes(const std::uint8_t* source, const std::uint8_t* texture, const std::uint8_t* page,
        std::uint8_t* result, std::size_t count) const
    {
        const Bytes flips(m_flip);
        const Bytes keeps(m_keep);
        for (std::size_t i = 0; i < count; ++i) {
            const std::uint8_t s = source[i];
            const std::uint8_t t = texture[i];
            result[i] = static_cast<std::uint8_t>((page[i] & keeps.at(s, t)) ^ flips.at(s, t));
        }
    }

private:
    struct Sum {
        std::uint64_t one = 0;
        std::uint64_t source = 0;
        std::uint64_t texture = 0;
        std::uint64_t both = 0;

        Sum() = default;
        /// Values of the function at index 2 * source + texture.
        explicit Sum(const unsigned (&value)[4])
            : one(0 - std::uint64_t { value[0] })
            , source(0 - std::uint64_t { value[0] ^ value[2] })
            , texture(0 - std::uint64_t { value[0] ^ value[1] })
            , both(0 - std::uint64_t { value[0] ^ value[1] ^ value[2] ^ value[3] })
        {
        }

        template <typename Word> Word at(Word s, Word t) const
        {
            return static_cast<Word>(one ^ (source & s) ^ (texture & t) ^ (both & s & t));
        }
    };

    /// A sum in bytes, which the compiler handles many at a time.
    struct Bytes {
        std::uint8_t one, source, texture, both;

        explicit Bytes(const Sum& sum)
            : one(static_cast<std::uint8_t>(sum.one))
            , source(static_cast<std::uint8_t>(sum.source))
            , texture(static_cast<std::uint8_t>(sum.texture))
            , both(static_cast<std::uint8_t>(sum.both))
        {
        }
        std::uint8_t at(std::uint8_t s, std::uint8_t t) const
        {
            return static_cast<std::uint8_t>(one ^ (source & s) ^ (texture & t) ^ (both & s & t));
        }
    };

    Sum m_flip;
    Sum m_keep;
};

} // namespace quillrip
