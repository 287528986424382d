#include "tests/cli/program.h"
#include "tests/support/foreign_kinds.h"

#include <gtest/gtest.h>

namespace quillrip::test {
namespace {

TEST(Program, EveryKindThatIsNoJobIsNamedAndLeavesNothing)
{
    for (const ForeignKind& kind : foreignKinds()) {
        const TemporaryFolder folder;
        const std::string job = folder.file("job", kind.bytes);
        const Outcome outcome = runQuillrip({ "-o", folder.path("page.png"), "-i", job });
        EXPECT_EQ(outcome.exitCode, 2) << kind.title;
        EXPECT_NE(outcome.errors.find(kind.name), std::string::npos) << kind.title << ": " << outcome.errors;
        EXPECT_EQ(folder.names(), std::vector<std::string> { "job" }) << kind.title;
    }
}

} // namespace
} // namespace quillrip::test
