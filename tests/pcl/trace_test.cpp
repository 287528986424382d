#include "quillrip/fonts/font_library.h"
#include "tests/pcl/printer.h"
#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

using namespace quillrip;
using namespace quillrip::test;

TEST(PclTrace, NamesEachCommandWithItsOffsetAndValue)
{
    const std::string job = e("E") + e("&l26a0O") + "text" + e("*b2W") + "ab" + e("!5z1Q");
    RecordingSink tracer { RecordingSink::Listens::ToTraceToo };
    MemoryPageDevice device { PixelFormat::Bilevel, 300 };
    const Limits limits;
    FontLibrary fonts { limits, &tracer };
    pcl::Interpreter interpreter { device, tracer, limits, fonts, {} };
    MemoryInputStream input { ByteView { reinterpret_cast<const std::uint8_t*>(job.data()), job.size() } };
    EXPECT_EQ(interpreter.run(input), pcl::Interpreter::End::InputEnded);
    EXPECT_EQ(tracer.commands,
        (std::vector<std::string> { "0 ESCE, printer reset", "2 ESC&l26A, page size",
            "8 ESC&l0O, logical page orientation", "14 ESC*b2W, transfer raster row, 2 bytes", "21 ESC!5Z, unknown",
            "25 ESC!1Q, unknown" }));
}
