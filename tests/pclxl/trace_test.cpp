#include "quillrip/fonts/font_library.h"
#include "quillrip/pclxl/interpreter.h"
#include "tests/pclxl/stream_builder.h"
#include "tests/pclxl/xl_job.h"
#include "tests/support/memory_page_device.h"
#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>

using namespace quillrip;
using namespace quillrip::test;
using A = pclxl::Attribute;
using O = pclxl::Operator;

namespace {

TEST(XlTrace, NamesEachOperatorWithItsAttributes)
{
    XlStream c;
    c.cursor(3, 4).rectangle(1, 2, 3, 4).real(A::PenWidth, 1.5f).op(O::SetPenWidth);
    c.words(A::LineDashStyle, { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10 }).op(O::SetLineDash);
    MemoryPageDevice device(PixelFormat::Bilevel, 100);
    RecordingSink sink(RecordingSink::Listens::ToTraceToo);
    const Limits limits;
    FontLibrary fonts(limits);
    pclxl::Interpreter interpreter(device, sink, limits, fonts, {});
    const XlStream job = onePage(8, 8, c);
    MemoryInputStream input { ByteView(job.bytes()) };
    interpreter.run(input);
    const auto isTraced = [&](const std::string& line) {
        return std::any_of(sink.commands.begin(), sink.commands.end(),
            [&](const std::string& command) { return command.substr(command.find(' ') + 1) == line; });
    };
    for (const char* line : { "SetCursor Point=3,4", "Rectangle BoundingBox=1,2,3,4", "SetPenWidth PenWidth=1.5",
             "SetLineDash LineDashStyle=[1,2,3,4,5,6,7,8... 10]", "EndPage" })
        EXPECT_TRUE(isTraced(line)) << line;
}

} // namespace
