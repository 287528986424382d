#include "quillrip/stream/containers.h"
#include "quillrip/stream/job_reader.h"
#include "tests/support/files.h"
#include "tests/support/foreign_kinds.h"
#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

namespace quillrip::stream {
namespace {

class ForeignKindTest : public testing::TestWithParam<test::ForeignKind> { };

TEST_P(ForeignKindTest, IsNamedAndHasNoPartToPrint)
{
    test::RecordingSink sink;
    MemoryInputStream input(test::bytesOf(GetParam().bytes));
    const Container container = unwrap(input);
    std::string name = container.refusal;
    if (name.empty()) {
        JobReader reader(container.job(input), sink, nullptr);
        EXPECT_FALSE(reader.next());
        name = reader.foreignName();
    }
    EXPECT_NE(name.find(GetParam().name), std::string::npos) << name;
}

INSTANTIATE_TEST_SUITE_P(All, ForeignKindTest, testing::ValuesIn(test::foreignKinds()),
    [](const testing::TestParamInfo<test::ForeignKind>& info) { return info.param.title; });

} // namespace
} // namespace quillrip::stream
