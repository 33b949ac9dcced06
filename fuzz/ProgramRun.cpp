#include "fuzz/ProgramRun.h"

#include <algorithm>
#include <iostream>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include "host/Command.h"

namespace fuzz {

namespace {

/// Takes what goes to a stream while it lives.
class Diverted {
public:
    explicit Diverted(std::ostream& stream) : m_stream(stream), m_before(stream.rdbuf()) {
        stream.rdbuf(m_text.rdbuf());
    }
    ~Diverted() { m_stream.rdbuf(m_before); }
    Diverted(const Diverted&) = delete;
    Diverted& operator=(const Diverted&) = delete;
    [[nodiscard]] std::string text() const { return m_text.str(); }

private:
    std::ostream& m_stream;
    std::streambuf* m_before;
    std::ostringstream m_text;
};

} // namespace

std::string runProgram(std::initializer_list<std::string> words) {
    CLI::App app("", "hbs");
    tq::Outcome outcome = tq::Outcome::Found;
    host::declareCdo(app, outcome);
    host::declareHandoff(app, outcome);
    // CLI11 takes the words from the back.
    std::vector<std::string> reversed(words);
    std::reverse(reversed.begin(), reversed.end());
    const Diverted output(std::cout);
    const Diverted error(std::cerr);
    try {
        app.parse(std::move(reversed));
    } catch (const tq::InputError&) { // the way to refuse a file
    }
    return output.text();
}

} // namespace fuzz
