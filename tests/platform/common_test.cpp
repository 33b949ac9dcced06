// Parameters, messages, exceptions and iterators of the common library.

#include <gtest/gtest.h>

#include <clocale>

#include "ComMsgMgr.h"
#include "HEXError.h"
#include "HPAParamMgr.h"
#include "support/support.h"

namespace {

TEST(ParamMgr, ReadsAcceptedSpellingsAndRaisesForTheRest) {
    HPAParamMgr& params = *HPAParamMgr::getParamMgr();
    using Case = std::pair<const char*, bool>;
    for (const auto& [text, flag] :
         {Case{"true", true}, Case{"1", true}, Case{"yes", true}, Case{"On", true},
          Case{"FALSE", false}, Case{"0", false}, Case{"No", false}, Case{"off", false}}) {
        params.setValue("test.flag", text);
        EXPECT_EQ(flag, params.getValueAsBool("test.flag")) << text;
    }
    for (const char* text : {"", "x", "7x", " 7", "+-7", "99999999999"}) {
        params.setValue("test.flag", text);
        EXPECT_THROW((void)params.getValueAsInt("test.flag"), HEXError) << text;
        EXPECT_THROW((void)params.getValueAsBool("test.flag"), HEXError) << text;
        EXPECT_TRUE(params.getValueIfExistAsBool("test.flag", true)) << text;
    }
    for (int again = 0; again < 2; ++again)
        params.unsetValue("test.flag");
    support::expectThrows<HEXError>("parameter 'test.flag' does not exist",
                                    [&] { (void)params.getValueAsInt("test.flag"); });
}

TEST(ParamMgr, DefaultsStandAgainAfterUnset) {
    HPAParamMgr& params = *HPAParamMgr::getParamMgr();
    const int before = params.getValueAsInt("general.maxThreads");
    EXPECT_TRUE(before >= 1 && before <= 8) << before;
    params.setValue("general.maxThreads", "+16");
    EXPECT_EQ(16, params.getValueAsInt("general.maxThreads"));
    params.unsetValue("general.maxThreads");
    EXPECT_EQ(before, params.getValueAsInt("general.maxThreads"));
}

TEST(ComMsg, KeepsArgumentsAsTextAndSpeaksToPeople) {
    support::CapturedMessages messages;
    ComMsgMgr::sendMsg::eval(2, "a.cpp", 7, "hbs", 0x20000000, "@91-48@%s%s", "odd",
                             std::string("left port"));
    ComMsgMgr::sendScopedMsg::eval(3, "a.cpp", 8, "hbs", "HBS.TCL", 1, "%d %f %% %s\n", true, 0.5F,
                                   "100%d");
    ComMsgMgr::sendMsg::eval(1, "a.cpp", 9, "hbs", 0, "@99-1@%d", 12);
    ASSERT_EQ(3U, messages.all().size());
    EXPECT_EQ("Unknown key 'odd'; the known keys are: left port", messages.all()[0].text());
    EXPECT_EQ("HBS.TCL", messages.all()[1].scope);
    EXPECT_EQ("1 0.500000 %% 100%d\n", messages.all()[1].text());
    EXPECT_EQ("99-1: 12", messages.all()[2].text());
}

TEST(ComMsg, DefaultSinkWritesLinesAndSkipsEntryLines) {
    support::CapturedError error;
    ComMsgMgr::sendMsg::eval(1, "a.cpp", 1, "hbs", 0, "@91-45@%s", "a:b");
    ComMsgMgr::sendScopedMsg::eval(0, "a.cpp", 2, "hbs", "cdo.gen", 0, "Exit\n");
    EXPECT_EQ("'a:b' isn't of the form vendor:library:name:version\n", error.text());
}

} // namespace
