// Named sequences and the nesting of their markers.

#include <gmock/gmock.h>

#include <memory>
#include <vector>

#include "HTCErrors.h"
#include "cdo/HBSCdoSequenceMgr.h"
#include "support/support.h"

struct CdoSequence {};

namespace {

using HTCErrors::command_failed;
using support::expectThrows;

constexpr unsigned kOpen = 100; // as the tool's commands give them
constexpr unsigned kClose = 101;

void expectFailure(const std::string& text, HBSCdoSequenceWrapper& wrapper, const char* name,
                   unsigned kind) {
    expectThrows<command_failed>(text, [&] { wrapper.addMarker(name, kind); });
}

TEST(CdoMarkers, CloseInnermostFirstAndMayOpenAgain) {
    HBSCdoSequenceWrapper wrapper("boot", nullptr);
    wrapper.addMarker("a", kOpen);
    wrapper.addMarker("b", kOpen);
    expectFailure("Marker 'a' not matched with last opened marker 'b'", wrapper, "a", kClose);
    wrapper.addMarker("b", kClose);
    wrapper.addMarker("a", kClose);
    wrapper.addMarker("b", kOpen);
    wrapper.addMarker("b", kClose);
    EXPECT_NO_THROW(wrapper.markerCheck());
}

TEST(CdoMarkers, ViolationsAndOtherKindsChangeNothing) {
    HBSCdoSequenceWrapper wrapper("boot", nullptr);
    expectFailure("Marker '%s' is not opened", wrapper, "%s", kClose);
    for (const char* name : {"a", "", "b"})
        wrapper.addMarker(name, kOpen);
    expectFailure("Marker 'a' is already opened", wrapper, "a", kOpen);
    expectFailure("Marker 'x' not matched with last opened marker 'b'", wrapper, "x", kClose);
    for (const unsigned kind : {0U, 99U, 102U, ~0U})
        EXPECT_NO_THROW(wrapper.addMarker("a", kind));
    for (int again = 0; again < 2; ++again)
        expectThrows<command_failed>("Marker 'b, , a' not closed", [&] { wrapper.markerCheck(); });
}

TEST(CdoSequences, AreFoundByNameAndByAddress) {
    HBSCdoSequenceMgr& manager = HBSCdoSequenceMgr::getGlobal();
    CdoSequence sequence;
    CdoSequence stranger;
    EXPECT_EQ("", manager.getCdoSequenceName(nullptr));
    HBSCdoSequenceWrapper* const boot = manager.createCdoSequenceWrapper("boot", &sequence);
    HBSCdoSequenceWrapper* const empty = manager.createCdoSequenceWrapper("empty", nullptr);
    EXPECT_EQ("boot", boot->getName());
    EXPECT_EQ(boot, manager.getCdoSequenceWrapper("boot"));
    EXPECT_EQ(&sequence, manager.getCdoSequence("boot"));
    EXPECT_EQ("boot", manager.getCdoSequenceName(&sequence));
    EXPECT_EQ("empty", manager.getCdoSequenceName(nullptr));
    EXPECT_EQ("", manager.getCdoSequenceName(&stranger));

    std::vector<HBSCdoSequenceWrapper*> all{nullptr};
    manager.getCdoSeqWrapperColl(all);
    EXPECT_THAT(all, testing::UnorderedElementsAre(nullptr, boot, empty));
    manager.deleteCdoSequenceWrapper("boot");
    manager.deleteCdoSequenceWrapper("empty");
}

TEST(CdoSequences, UnknownNamesFailButForTheSequence) {
    HBSCdoSequenceMgr& manager = HBSCdoSequenceMgr::getGlobal();
    EXPECT_EQ(nullptr, manager.getCdoSequence("%d"));
    expectThrows<command_failed>("sequence '%d' does not exist",
                                 [&] { (void)manager.getCdoSequenceWrapper("%d"); });
    expectThrows<command_failed>("sequence '%d' does not exist",
                                 [&] { manager.deleteCdoSequenceWrapper("%d"); });
}

TEST(CdoSequences, ASecondOneTakesTheNameAndTheFirstLivesOn) {
    HBSCdoSequenceMgr& manager = HBSCdoSequenceMgr::getGlobal();
    CdoSequence sequence;
    const std::unique_ptr<HBSCdoSequenceWrapper> first(
        manager.createCdoSequenceWrapper("boot", &sequence));
    HBSCdoSequenceWrapper* const second = manager.createCdoSequenceWrapper("boot", nullptr);
    std::vector<HBSCdoSequenceWrapper*> all;
    manager.getCdoSeqWrapperColl(all);
    EXPECT_THAT(all, testing::ElementsAre(second));
    EXPECT_EQ(&sequence, first->getSequence());
    manager.deleteCdoSequenceWrapper("boot");
    EXPECT_EQ(nullptr, manager.getCdoSequence("boot"));
}

} // namespace
