#include "quillrip/hpgl/default_points.h"

#include "quillrip/base/input_stream.h"
#include "quillrip/hpgl/lexer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace quillrip::hpgl {

namespace {

constexpr std::array<DefaultPoints, 4> kDefaultPoints { {
    { { 11176, 8636 }, { 250, 596 }, { 10250, 7796 } },
    { { 11880, 8400 }, { 603, 521 }, { 10603, 7721 } },
    { { 17272, 11176 }, { 522, 259 }, { 15722, 10259 } },
    { { 16800, 11880 }, { 170, 602 }, { 15370, 10602 } },
} };

} // namespace

const DefaultPoints* defaultPointsFor(Point sheet)
{
    constexpr double kTolerance = 50;
    for (const DefaultPoints& points : kDefaultPoints) {
        if (std::abs(points.sheet.x - sheet.x) <= kTolerance && std::abs(points.sheet.y - sheet.y) <= kTolerance)
            return &points;
    }
    return nullptr;
}

/// Whether a plot uses what only HP-GL/2 knows: its P1 and P2 are then the sheet's corners without further word.
bool isSecondGeneration(ByteView plot)
{
    static constexpr std::array<Mnemonic, 13> kTelling { mnemonic("BP"), mnemonic("BZ"), mnemonic("LA"), mnemonic("MC"),
        mnemonic("NP"), mnemonic("PC"), mnemonic("PE"), mnemonic("PS"), mnemonic("RF"), mnemonic("SD"), mnemonic("TR"),
        mnemonic("UL"), mnemonic("WU") };
    constexpr std::size_t kLook = 65536;
    MemoryInputStream input(plot.sub(0, kLook));
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

} // namespace quillrip::hpgl
