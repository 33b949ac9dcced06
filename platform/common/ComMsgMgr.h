// The tool's messages: what is sent, and where it goes.
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include "tq_export.h"

/// One message as it was sent.
struct TQ_EXPORT ComMsg {
    int count = 0;                      ///< number of arguments that the sender claims
    std::string category;               ///< the sending library, here always "hbs"
    std::string scope;                  ///< scope of a scoped message, else empty
    unsigned mask = 0;                  ///< the sender's mask
    std::string format;                 ///< "@91-48@%s%s" (catalogue) or a plain format
    std::vector<std::string> arguments; ///< as text; a boolean under %d is "1" or "0"
    std::string file;                   ///< the sender's source file
    int line = 0;                       ///< and line

    /// The whole sentence for a person, without a line end that the format didn't give it. A
    /// catalogue format takes its sentence from the catalogue; an id that isn't there shows the
    /// id and the arguments.
    [[nodiscard]] std::string text() const;
};

/// Sends messages to the one sink of the process. Not guarded: one thread at a time.
class TQ_EXPORT ComMsgMgr {
public:
    /// Receives messages in the order in which they are sent.
    using Sink = std::function<void(const ComMsg&)>;

    /// Puts a sink in place and gives back the one before. An empty function brings back the
    /// default, which writes each sentence as a line on the standard error stream and leaves out
    /// the entry and exit lines of scope "cdo.gen".
    static Sink setSink(Sink sink);

    /// Sends a message; `count` is how many arguments the sender claims.
    struct TQ_EXPORT sendMsg {
        template <class... Args>
        static void eval(int count, const char* file, int line, const char* category, unsigned mask,
                         const char* format, const Args&... args) {
            deliver({count, category, "", mask, format, {toText(args)...}, file, line});
        }
    };

    /// The same with a scope.
    struct TQ_EXPORT sendScopedMsg {
        template <class... Args>
        static void eval(int count, const char* file, int line, const char* category,
                         const char* scope, unsigned mask, const char* format,
                         const Args&... args) {
            deliver({count, category, scope, mask, format, {toText(args)...}, file, line});
        }
    };

private:
    static void deliver(const ComMsg& message);

    static std::string toText(std::string_view text) { return std::string(text); }
    static std::string toText(double value);
    static std::string toText(float value) { return toText(static_cast<double>(value)); }
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    static std::string toText(Integer value) {
        return std::to_string(value);
    }
};
