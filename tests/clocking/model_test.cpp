// The objects of a clock tree and the process's list of solvers.

#include <gmock/gmock.h>

#include "clocking/HBSClockingAlgo1Pll.h"
#include "clocking/HBSClockingAlgo2Pll.h"
#include "clocking/HBSClockingAlgoMgr.h"
#include "support/support.h"

using namespace hbs_clocking;

namespace {

TEST(Manager, KeepsSolversByNameAndANullEntryForAnUnknownKind) {
    HBSClockingAlgoMgr* mgr = HBSClockingAlgoMgr::getGlobal();
    EXPECT_FALSE(std::unique_ptr<HSTFwdIter<HBSClockingAlgo*>>(mgr->getClockingAlgos())->isValid());
    HBSClockingAlgo* one = mgr->addClockingAlgo("x", 1);
    EXPECT_EQ(nullptr, mgr->addClockingAlgo("x", 4));
    HBSClockingAlgo* two = mgr->addClockingAlgo("x", 2);
    EXPECT_NE(nullptr, dynamic_cast<HBSClockingAlgo1Pll*>(one));
    EXPECT_NE(nullptr, dynamic_cast<HBSClockingAlgo2Pll*>(two));

    const std::unique_ptr<HSTFwdIter<HBSClockingAlgo*>> it(mgr->getClockingAlgos());
    std::vector<HBSClockingAlgo*> listed;
    while (it->isValid())
        listed.push_back(it->next());
    EXPECT_THAT(listed, testing::ElementsAre(one, nullptr, two));

    // The first of that name goes, whichever of them was given.
    EXPECT_TRUE(mgr->deleteClockingAlgo(two));
    EXPECT_EQ(two, mgr->getClockingAlgo("x"));
    EXPECT_TRUE(mgr->deleteClockingAlgo(two));
    EXPECT_EQ(nullptr, mgr->getClockingAlgo("x"));
}

TEST(Tree, DomainsAreFoundByTheFirstOfTheirNameAndPeripheralsStayWhereTheyWereAdded) {
    HBSClockingAlgo2Pll solver("tree");
    const HBSPeripheral* early = solver.addPeripheral("early", "D", 1.0F, true);
    HBSPowerDomain* first = solver.addPowerDomain("D");
    solver.addPowerDomain("D");
    const HBSPll* pll = solver.createPllConfig("PLL", "D");
    HBSPeripheral* late = solver.addPeripheral("late", "D", 1.0F, false);
    solver.addPeripherals({late});

    EXPECT_EQ(-1, early->getPowerDomainIndex());
    EXPECT_EQ("D", early->getPowerDomainName());
    EXPECT_EQ(first, solver.getPowerDomain("D"));
    EXPECT_EQ(pll, first->getPll("PLL"));
    EXPECT_EQ(2U, solver.getAllPeripherals().size());
    EXPECT_THAT(solver.getEnabledPeripherals(), testing::ElementsAre(early));
    EXPECT_TRUE(late->setPowerDomain("E"));
    EXPECT_EQ("E", late->getPowerDomainName());
    EXPECT_EQ(0, late->getPowerDomainIndex());
    late->setMaxAllowedPeripheralError(250.0F);
    EXPECT_EQ(100.0F, late->getMaxAllowedPeripheralError());
}

TEST(Tree, DomainLimitIsItsLargestPllLimitButNeverBelowOne) {
    HBSPowerDomain domain("D", 3);
    EXPECT_EQ(1.0F, domain.getMaxPllFreq());
    domain.addPll("A", true)->setMaxPllFreq(0.25F);
    EXPECT_EQ(1.0F, domain.getMaxPllFreq());
    domain.addPll("B", false)->setMaxPllFreq(800.0F);
    EXPECT_EQ(800.0F, domain.getMaxPllFreq());
    EXPECT_TRUE(domain.getPllAt(0)->isNOCpll());
    EXPECT_EQ(3, domain.getPllAt(1)->getPowerDomainIndex());
    support::CapturedOutput output;
    EXPECT_EQ(nullptr, domain.getPllAt(2));
    EXPECT_EQ("", HBSClockingAlgo2Pll("").getPllNameByIndex(2));
    EXPECT_EQ("Index out of range\nIndex out of range\n", output.text());
}

TEST(Tree, ActualFrequencyIsDirectInTheOwnDomainAndFromDomainOneToZeroOnly) {
    HBSClockingAlgo2Pll solver("tree");
    solver.createPllConfig("PLL0", "D0")->setConfig(90, 2, 4, 1000.0);
    solver.createPllConfig("PLL1", "D1")->setConfig(90, 2, 4, 1000.0);
    HBSPeripheral* zero = solver.addPeripheral("zero", "D0", 1.0F, true);
    HBSPeripheral* one = solver.addPeripheral("one", "D1", 1.0F, true);
    zero->setPllResult("PLL0", 5);
    EXPECT_EQ(200.0, zero->getActualFreq());
    zero->setPllResult("PLL1", 4);
    EXPECT_EQ(250.0, zero->getActualFreq());
    one->setPllResult("PLL0", 5);
    EXPECT_EQ(50.0, one->getActualFreq());
    one->setPllResult("PLL9", 7);
    EXPECT_EQ(50.0, one->getActualFreq());
    EXPECT_EQ(7U, one->getClkoutDiv());
}

} // namespace
