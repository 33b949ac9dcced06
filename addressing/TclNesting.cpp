#include "addressing/TclNesting.h"

#include <cstddef>
#include <limits>
#include <vector>

namespace hbs_addressing {

namespace {

constexpr std::string_view kNameCharacters =
    "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789_:";

/// A push-down automaton over the characters of a script.
class NestingScan {
public:
    explicit NestingScan(std::string_view script) : m_script(script) { m_frames.emplace_back(); }

    bool findsTooDeep() {
        while (m_position < m_script.size()) {
            step();
            if (m_frames.back().depth > kMostNestedSubstitutions)
                return true;
        }
        return false;
    }

private:
    enum class Kind { Script, Command, Braces, Quotes, Index, Comment };

    struct Frame {
        Kind kind = Kind::Script;
        int depth = 0; ///< substitutions around, up to the next braces or comment
        bool isInComment = false;
        bool isAtWord = true;    ///< the next character starts a word
        bool isAtCommand = true; ///< the next word starts a command
        /// What `m_openBraces` is inside of the nearest braces; below it they are closed.
        std::ptrdiff_t openBraces = std::numeric_limits<std::ptrdiff_t>::min();
    };

    [[nodiscard]] bool holdsWords() const {
        const Kind kind = m_frames.back().kind;
        return kind == Kind::Script || kind == Kind::Command || kind == Kind::Braces;
    }
    [[nodiscard]] bool startsWord() const { return holdsWords() && m_frames.back().isAtWord; }

    void push(Kind kind, int depth) {
        m_frames.back().isAtWord = m_frames.back().isAtCommand = false;
        Frame frame = m_frames.back();
        frame.kind = kind;
        frame.depth = depth;
        frame.isAtWord = frame.isAtCommand = true;
        m_frames.push_back(frame);
    }

    void pop() { m_frames.pop_back(); }

    /// Ends the nearest frame of a kind, and the unfinished ones inside of it.
    void popThrough(Kind kind) {
        while (m_frames.back().kind != kind)
            pop();
        pop();
    }

    void step() {
        const char c = m_script[m_position++];
        switch (c) {
        case '\\':
            return escape();
        case '{':
            return openBrace();
        case '}':
            return closeBrace();
        case '[':
            return push(Kind::Command, m_frames.back().depth + 1);
        case ']':
            return m_frames.back().kind == Kind::Command ? pop() : literal();
        case '$':
            return variable();
        case ')':
            return m_frames.back().kind == Kind::Index ? pop() : literal();
        case '"':
            return quote();
        case '#':
            return hash();
        case '\n':
        case ';':
            return endCommand(c);
        case ' ':
        case '\t':
        case '\v':
        case '\f':
        case '\r':
            m_frames.back().isAtWord = true;
            return;
        default:
            return literal();
        }
    }

    void literal() { m_frames.back().isAtWord = m_frames.back().isAtCommand = false; }

    /// An escaped line end separates words.
    void escape() {
        if (m_position < m_script.size() && m_script[m_position] == '\n')
            m_frames.back().isAtWord = true;
        else
            literal();
        ++m_position;
    }

    /// Every unescaped brace counts for the braces around it, also one that is a literal in the
    /// script between them.
    void openBrace() {
        ++m_openBraces;
        if (!startsWord())
            return literal();
        push(Kind::Braces, 0);
        m_frames.back().openBraces = m_openBraces;
    }

    void closeBrace() {
        --m_openBraces;
        if (m_openBraces >= m_frames.back().openBraces ||
            m_frames.back().openBraces == std::numeric_limits<std::ptrdiff_t>::min())
            return literal();
        popThrough(Kind::Braces);
        // After the "{*}" in front of a word the word itself follows.
        m_frames.back().isAtWord = true;
    }

    void variable() {
        literal();
        const std::size_t end = m_script.find_first_not_of(kNameCharacters, m_position);
        if (end == std::string_view::npos || m_script[end] != '(')
            return;
        push(Kind::Index, m_frames.back().depth + 1);
        m_position = end + 1;
    }

    void quote() {
        if (m_frames.back().kind == Kind::Quotes)
            return pop();
        if (!startsWord())
            return literal();
        push(Kind::Quotes, m_frames.back().depth);
    }

    void hash() {
        if (!startsWord() || !m_frames.back().isAtCommand)
            return literal();
        push(Kind::Comment, 0);
        m_frames.back().isInComment = true;
    }

    void endCommand(char c) {
        if (c == '\n' && m_frames.back().isInComment)
            popThrough(Kind::Comment);
        m_frames.back().isAtWord = m_frames.back().isAtCommand = true;
    }

    std::string_view m_script;
    std::size_t m_position = 0;
    std::ptrdiff_t m_openBraces = 0;
    std::vector<Frame> m_frames;
};

} // namespace

bool isNestedTooDeep(std::string_view script) {
    return NestingScan(script).findsTooDeep();
}

} // namespace hbs_addressing
