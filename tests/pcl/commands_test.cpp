#include "quillrip/pcl/command_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <set>
#include <sstream>

using namespace quillrip::pcl;

namespace {

/// Every parameterised command of PCL 5e, 5c and the ink-jet dialects, by group. Symbol sets have no letter here.
constexpr const char* kCommandIndex = "%A %B %X "
                                      "&aC &aG &aH &aL &aM &aN &aP &aR &aV &bF &bM &bW &cT &d@ &dD &fS &fX &fY "
                                      "&kG &kH &kS &kW &lA &lC &lD &lE &lF &lG &lH &lL &lM &lO &lP &lS &lT &lU &lW "
                                      "&lX &lZ &nW &pC &pI &pS &pX &rF &sC &tP &uD "
                                      "( (@ (X (fW (sB (sH (sP (sQ (sS (sT (sU (sV (sW "
                                      ") )@ )X )sB )sH )sP )sQ )sS )sT )sU )sV )sW "
                                      "*bM *bS *bV *bW *bX *bY *cA *cB *cD *cE *cF *cG *cH *cK *cL *cP *cQ *cR *cS *cT "
                                      "*cV *cW *cX *cY *gW *iW *lO *lR *lW *mW *oD *oM *oQ *oW *pP *pR *pX *pY *rA *rB "
                                      "*rC *rF *rQ *rS *rT *rU *sI *sM *sT *sU *sX *tH *tI *tJ *tR *tV *vA *vB *vC *vI "
                                      "*vN *vO *vS *vT *vW";

std::string nameOf(const CommandEntry& entry)
{
    std::string name { entry.prefix };
    if (entry.group)
        name += entry.group;
    if (entry.terminator)
        name += entry.terminator;
    return name;
}

} // namespace

TEST(PclCommands, TableIsSortedWithoutDoubles)
{
    const auto& all = commandTable();
    EXPECT_TRUE(std::is_sorted(
        all.begin(), all.end(), [](const CommandEntry& a, const CommandEntry& b) { return a.key() < b.key(); }));
    std::set<std::uint32_t> keys;
    for (const CommandEntry& entry : all)
        EXPECT_TRUE(keys.insert(entry.key()).second) << nameOf(entry);
}

TEST(PclCommands, TableHoldsExactlyTheCommandsOfTheLanguage)
{
    std::set<std::string> expected;
    std::istringstream index { kCommandIndex };
    for (std::string name; index >> name;)
        expected.insert(name);
    std::set<std::string> found;
    for (const CommandEntry& entry : commandTable())
        found.insert(nameOf(entry));
    EXPECT_EQ(found, expected);
    EXPECT_EQ(twoCharacterTable().size(), 6u);
}

TEST(PclCommands, EveryEntryHasAName)
{
    for (const CommandEntry& entry : commandTable())
        EXPECT_GT(std::string(entry.name).size(), 3u) << nameOf(entry);
}

TEST(PclCommands, CommandsThatEndInWCarryDataButForTheTextScale)
{
    for (const CommandEntry& entry : commandTable()) {
        const bool expectsData
            = (entry.terminator == 'W' && nameOf(entry) != "&kW") || nameOf(entry) == "&pX" || nameOf(entry) == "*bV";
        EXPECT_EQ(entry.data == DataRule::Bytes, expectsData) << nameOf(entry);
    }
}
