// The page of a clock tree in a browser: what it shows, what pointing, sorting and filtering do.

#include <gmock/gmock.h>

#include <filesystem>

#include "support/support.h"

namespace {

using testing::HasSubstr;
using testing::Not;

constexpr const char* kExamples = TQ_SOURCE_DIR "/examples/clocks/";

/// A browser without a window; it has a folder of its own, and no network is needed.
std::string chromium(const support::TempDir& dir, const std::string& options) {
    return "HOME=" + dir.path().string() +
           " timeout 240 chromium --headless --no-sandbox --disable-gpu --disable-dev-shm-usage "
           "--hide-scrollbars --user-data-dir=" +
           dir.file("profile") + " " + options;
}

std::string writePage(const support::TempDir& dir, const std::string& tree,
                      const std::string& options = "") {
    const std::string page = dir.file("page.html");
    support::run(HBS_PROGRAM " clocks " + std::string(kExamples) + tree + " --html " + page + " " +
                 options);
    return page;
}

TEST(ClockPage, LoadsNothingAndEscapesNames) {
    const support::TempDir dir;
    std::string tree = support::readFile(std::string(kExamples) + "serial_buses.json");
    const std::string name = "\"I2C0\"";
    tree.replace(tree.find(name), name.size(), R"("<script>alert(1)</script>&")");
    const std::string page = dir.file("page.html");
    support::run(HBS_PROGRAM " clocks " + dir.write("t.json", tree) + " --html " + page);
    const std::string text = support::readFile(page);
    EXPECT_THAT(text, Not(HasSubstr("<script>alert")));
    EXPECT_THAT(text, HasSubstr("<td>&lt;script&gt;alert(1)&lt;/script&gt;&amp;</td>"));
    for (const char* loading : {"src=", "@import", "url(", "<link"})
        EXPECT_THAT(text, Not(HasSubstr(loading)));
}

TEST(ClockPage, ShowsConflictsOfATreeWithoutASolution) {
    const support::TempDir dir;
    const std::string text = support::readFile(writePage(dir, "video_recorder.json"));
    EXPECT_THAT(text, HasSubstr("<li><b>GPU, CENTER_BUS</b><br>"));
    EXPECT_THAT(text, Not(HasSubstr("<svg")));
}

TEST(ClockPage, LightsUpSortsAndFiltersInABrowser) {
    if (support::run("command -v chromium").status != 0)
        GTEST_SKIP() << "no chromium; ./run test installs it";
    const support::TempDir dir;
    const std::string page = writePage(dir, "programmable_soc.json", "--alternatives 4");
    std::string text = support::readFile(page);
    const std::string script = R"(<script>
const out = [], lit = () => document.querySelectorAll('tr.lit').length;
const rows = () => [...document.getElementById('requests').tBodies[0].rows];
const box = document.querySelector('svg rect[data-pll="PLL_LINK"]');
box.dispatchEvent(new MouseEvent('mouseenter'));
out.push('lit ' + lit());
box.dispatchEvent(new MouseEvent('mouseleave'));
out.push('dark ' + lit());
const button = document.querySelectorAll('th button')[2];
button.click();
out.push('least ' + rows()[0].cells[0].textContent);
button.click();
out.push('most ' + rows()[0].cells[2].textContent);
const filter = document.getElementById('filter');
filter.value = 'periph can';
filter.dispatchEvent(new Event('input'));
out.push('shown ' + rows().filter(row => !row.hidden).length);
document.body.textContent = out.join(', ');
</script></body>)";
    text.replace(text.rfind("</body>"), 7, script);
    const std::string driven = dir.write("driven.html", text);
    const support::RunResult dom =
        support::run(chromium(dir, "--dump-dom file://" + driven + " 2>/dev/null"));
    EXPECT_THAT(dom.output, HasSubstr("lit 5, dark 0, least SENSOR_ADC, most 1000.0000, shown 2"));
}

TEST(ClockPage, IsPicturedInABrowserAtTwoWidths) {
    if (support::run("command -v chromium").status != 0)
        GTEST_SKIP() << "no chromium; ./run test installs it";
    const support::TempDir dir;
    const std::string page = writePage(dir, "programmable_soc.json", "--alternatives 4");
    // Kept as artifacts of the run.
    const std::filesystem::path kept = std::filesystem::path(TQ_ARTIFACTS);
    std::filesystem::create_directories(kept);
    for (const auto& [name, size] :
         {std::pair{"clocks_wide.png", "1500,1700"}, {"clocks_narrow.png", "420,1700"}}) {
        const std::filesystem::path file = kept / name;
        std::filesystem::remove(file);
        support::run(chromium(dir, "--screenshot=" + file.string() + " --window-size=" + size +
                                       " file://" + page + " 2>/dev/null"));
        ASSERT_TRUE(std::filesystem::exists(file)) << name;
        EXPECT_GT(std::filesystem::file_size(file), 20000U) << name;
    }
}

} // namespace
