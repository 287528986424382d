#include "quillrip/emf/plus/hatch_styles.h"

#include <array>

namespace quillrip::emf::plus {

namespace {

constexpr std::array<std::uint64_t, kHatchStyles> kPatterns {
    0xFF00000000000000, // horizontal
    0x8080808080808080, // vertical
    0x8040201008040201, // forward diagonal
    0x0102040810204080, // backward diagonal /
    0xFF80808080808080, // large grid (cross)
    0x8142241818244281, // diagonal cross
    0x8000000008000000, // 5 %
    0x8000080080000800, // 10 %
    0x8800220088002200, // 20 %
    0x8822882288228822, // 25 %
    0xAA44AA11AA44AA11, // 30 %
    0xAA55AA51AA55AA15, // 40 %
    0xAA55AA55AA55AA55, // 50 %
    0xEE55BB55EE55BB55, // 60 %
    0x77DD77DD77DD77DD, // 70 %
    0x77FFDDFF77FFDDFF, // 75 %
    0xEFFFFEFFEFFFFEFF, // 80 %
    0xFFFFFFF7FFFFFF7F, // 90 %
    0x8844221188442211, // light downward diagonal
    0x1122448811224488, // light upward diagonal
    0xCC663399CC663399, // dark downward diagonal
    0x3366CC993366CC99, // dark upward diagonal
    0xC1E070381C0E0783, // wide downward diagonal
    0xC183070E1C3870E0, // wide upward diagonal
    0x8888888888888888, // light vertical
    0xFF000000FF000000, // light horizontal
    0xAAAAAAAAAAAAAAAA, // narrow vertical
    0xFF00FF00FF00FF00, // narrow horizontal
    0xCCCCCCCCCCCCCCCC, // dark vertical
    0xFFFF0000FFFF0000, // dark horizontal
    0x0000884422110000, // dashed downward diagonal
    0x0000112244880000, // dashed upward diagonal
    0xF00000000F000000, // dashed horizontal
    0x8080808008080808, // dashed vertical
    0x8008400210012004, // small confetti
    0xB130031BD8C00C8D, // large confetti
    0x8142241881422418, // zigzag
    0x001825C0001825C0, // wave
    0x0102040818244281, // diagonal brick
    0xFF808080FF080808, // horizontal brick
    0x8854224588142251, // weave
    0xAA55AA55F0F0F0F0, // plaid
    0x0010081000018001, // divot
    0xAA00800080008000, // dotted grid
    0x8000220008002200, // dotted diamond
    0x038448300C020101, // shingle
    0xFF66FF99FF66FF99, // trellis
    0x77898F8F7798F8F8, // sphere
    0xFF888888FF888888, // small grid
    0x9966669999666699, // small checkerboard
    0xF0F0F0F00F0F0F0F, // large checkerboard
    0x8244281028448201, // outlined diamond
    0x10387CFE7C381000, // solid diamond
};

} // namespace

std::uint64_t hatchPattern(std::uint32_t style) { return kPatterns[style < kPatterns.size() ? style : 0]; }

} // namespace quillrip::emf::plus
