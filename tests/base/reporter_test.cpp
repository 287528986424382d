#include "quillrip/base/reporter.h"

#include "tests/support/recording_sink.h"

#include <gtest/gtest.h>

#include <vector>

namespace quillrip {
namespace {

using test::RecordingSink;

TEST(Reporter, TellsTheKindTheMessageAndThePlace)
{
    RecordingSink sink;
    Reporter reporter(&sink, 7);
    reporter.warn("a.kind", "something is done differently");
    reporter.at(9);
    reporter.damage("another.kind", "something is broken");
    ASSERT_EQ(sink.diagnostics.size(), 2u);
    EXPECT_EQ(sink.diagnostics[0].severity, Severity::Warning);
    EXPECT_EQ(sink.diagnostics[0].offset, 7u);
    EXPECT_EQ(sink.diagnostics[0].kind, "a.kind");
    EXPECT_EQ(sink.diagnostics[1].severity, Severity::Damage);
    EXPECT_EQ(sink.diagnostics[1].offset, 9u);
    EXPECT_EQ(sink.message(), "something is broken");
}

TEST(Reporter, TracesCommandsWithTheirValuesOnlyForWhoListens)
{
    RecordingSink sink(RecordingSink::Listens::ToTraceToo);
    Reporter reporter(&sink, 12);
    EXPECT_TRUE(reporter.isTracing());
    reporter.trace("PA", std::vector<double> { 100, -2.5, 0.1 });
    reporter.at(20);
    reporter.trace("ESC&l26A");
    EXPECT_EQ(sink.commands, (std::vector<std::string> { "12 PA 100 -2.5 0.1", "20 ESC&l26A" }));

    RecordingSink deaf;
    const Reporter silent(&deaf);
    EXPECT_FALSE(silent.isTracing());
    silent.trace("PA");
    EXPECT_TRUE(deaf.commands.empty());
}

TEST(Reporter, NeedsNobodyToListen)
{
    const Reporter reporter;
    reporter.warn("a.kind", "nobody hears");
    reporter.trace("PA");
    EXPECT_FALSE(reporter.isTracing());
}

} // namespace
} // namespace quillrip
