#include "quillrip/emf/plus/command_table.h"

#include <gtest/gtest.h>

#include <set>
#include <string>

using namespace quillrip::emf::plus;

TEST(EmfPlusCommandTable, EveryNumberHasAHandlerOrAReason)
{
    std::set<std::string> names;
    for (std::uint16_t number = kFirstRecord; number <= kLastRecord; ++number) {
        const Command* const command = findCommand(number);
        ASSERT_TRUE(command) << number;
        EXPECT_EQ(command->number, number);
        EXPECT_NE(command->handler == nullptr, command->whyIgnored == nullptr) << command->name;
        EXPECT_TRUE(names.insert(command->name).second) << command->name;
    }
}

TEST(EmfPlusCommandTable, OtherNumbersAreNotKnown)
{
    EXPECT_FALSE(findCommand(kFirstRecord - 1));
    EXPECT_FALSE(findCommand(kLastRecord + 1));
    EXPECT_FALSE(findCommand(0));
    EXPECT_FALSE(findCommand(0xFFFF));
}
