// What the program tells of itself, mistyped words, and where its output goes.

#include "host/hbs.h"

namespace {

using testing::HasSubstr;

TEST(Program, TellsOfItsWords) {
    struct Case {
        const char* arguments;
        const char* shown;
    };
    for (const auto& [arguments, shown] :
         {Case{"", "  hbs addressing  Configures a hard block subsystem"},
          Case{"help", "  hbs clocks "}, Case{"help clocks", "--alternatives"},
          Case{"clocks --help", "--alternatives"}, Case{"manual", "\n.SS ipxact map\n"},
          Case{"completion fish", "complete -c hbs"}}) {
        const auto result = hbs(arguments);
        EXPECT_EQ(0, result.status) << arguments;
        EXPECT_THAT(result.output, HasSubstr(shown));
        EXPECT_EQ("", result.error);
    }
}

TEST(Program, OffersTheNearestNameForAMistypedOne) {
    struct Case {
        const char* arguments;
        const char* complaint;
    };
    for (const auto& [arguments, complaint] :
         {Case{"clokcs tree.json", "hbs: error: there is no word \"clokcs\", expected one of: "},
          Case{"clokcs", "did you mean \"clocks\"?"},
          Case{"help clock", "did you mean \"clocks\"?"},
          Case{"clocks tree.json --jsno", "did you mean \"--json\"?"},
          Case{"clocks tree.json --swep=x", "did you mean \"--sweep\"?"},
          Case{"ipxact mpa x.xml", "did you mean \"map\"?"},
          Case{"completion csh", "there is no completion for \"csh\", expected one of: bash"}}) {
        const auto result = hbs(arguments);
        EXPECT_EQ(2, result.status) << arguments;
        EXPECT_THAT(result.error, HasSubstr(complaint));
        EXPECT_EQ("", result.output);
    }
}

TEST(Program, CompletesWordsAndOptionsInAShell) {
    const auto complete = [](const std::string& words, int place) {
        return support::run("bash -c 'source <(" HBS_PROGRAM " completion bash); COMP_WORDS=(" +
                            words + "); COMP_CWORD=" + std::to_string(place) +
                            "; _hbs 2>/dev/null; echo ${COMPREPLY[@]}'");
    };
    EXPECT_EQ("clocks\n", complete("hbs cl", 1).output);
    EXPECT_EQ("--alternatives\n", complete("hbs clocks x.json --al", 3).output);
    EXPECT_EQ("map\n", complete("hbs ipxact m", 2).output);
}

TEST(Program, FailsWhenItsOutputCantBeWritten) {
    const auto lost = support::run(HBS_PROGRAM " --version >/dev/full");
    EXPECT_EQ(3, lost.status);
    EXPECT_EQ("hbs: the output can't be written\n", lost.error);
    const support::TempDir folder;
    const std::string tree = TQ_SOURCE_DIR "/examples/clocks/audio_hub.json";
    const auto file = hbs("clocks " + tree + " --svg " + folder.file("no/such.svg"));
    EXPECT_EQ(3, file.status);
    EXPECT_THAT(file.error, HasSubstr("no/such.svg: error: can't be written: "));
}

TEST(Program, GivesOneDocumentToTheStandardOutput) {
    const std::string tree = TQ_SOURCE_DIR "/examples/clocks/audio_hub.json";
    const auto picture = hbs("clocks " + tree + " --svg -");
    EXPECT_EQ(0, picture.status);
    EXPECT_THAT(picture.output, testing::StartsWith("<?xml "));
    EXPECT_THAT(picture.output, testing::EndsWith("</svg>\n"));
    const auto both = hbs("clocks " + tree + " --svg - --html -");
    EXPECT_EQ(2, both.status);
    EXPECT_EQ("hbs: error: only one file can be the standard output (-)\n", both.error);
}

TEST(Program, TakesAnOptionsValueForNoOption) {
    const std::string file = TQ_SOURCE_DIR "/examples/device/dma.xml";
    EXPECT_EQ(1, hbs("registers " + file + " --match --x").status);
}

TEST(Program, ReadsOverAByteOrderMark) {
    const std::string tree = support::readFile(TQ_SOURCE_DIR "/examples/clocks/audio_hub.json");
    EXPECT_EQ(0, hbsOn("clocks", "tree.json", "\xEF\xBB\xBF" + tree).status);
}

} // namespace
