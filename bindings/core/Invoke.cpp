#include "bindings/core/Invoke.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <iterator>
#include <utility>

#include "bindings/core/Convert.h"
#include "bindings/core/Listening.h"

namespace tq::bindings {

namespace {

thread_local std::vector<Diagnostic> t_messages;

/// Listens, and hands over what was heard.
class Heard {
public:
    explicit Heard(std::vector<Diagnostic>& messages) : m_messages(messages) {}
    ~Heard() {
        auto heard = m_listening.take();
        std::move(heard.begin(), heard.end(), std::back_inserter(m_messages));
    }
    Heard(const Heard&) = delete;
    Heard& operator=(const Heard&) = delete;

private:
    std::vector<Diagnostic>& m_messages;
    Listening m_listening;
};

void callLocked(const Member& member, Call& call) {
    const auto held = Registry::get().lock();
    if (call.hasSelf())
        expectUsable(call.self());
    if (member.isChange)
        expectChangeable(call.self());
    member.call(call);
}

void callSlowly(const Member& member, Call& call, Waiting& waiting) {
    const OthersRun others(waiting);
    const Heard heard(t_messages);
    callLocked(member, call);
}

void callSearch(const Member& member, Call& call, Waiting& waiting) {
    std::vector<Diagnostic> messages;
    const auto deliver = [&] {
        std::move(messages.begin(), messages.end(), std::back_inserter(t_messages));
    };
    try {
        runSearch(call.self().rootObject(), waiting, [&] {
            const Heard heard(messages);
            member.call(call);
        });
    } catch (...) {
        deliver();
        throw;
    }
    deliver();
}

} // namespace

void expectUsable(const Object& object) {
    if (object.native == nullptr)
        throw ScriptError(Failure::Kind::Deleted,
                          (object.was.empty() ? "the " + object.type->noun : object.was) +
                              " was deleted");
    const Object& root = object.root ? *object.root : object;
    if (root.part->isBusy)
        throw ScriptError(Failure::Kind::Busy,
                          root.type->describe(root) + " is being searched on another thread");
}

void expectChangeable(const Object& object) {
    const Object& root = object.root ? *object.root : object;
    if (root.part->isConst)
        throw ScriptError(Failure::Kind::Command, root.type->describe(root) +
                                                      " is shared with the library and can't be "
                                                      "changed; change a clone of it");
}

void invoke(const Member& member, Call& call, Waiting& waiting) {
    switch (member.mode) {
    case Mode::Quick:
        callLocked(member, call);
        break;
    case Mode::Slow:
        callSlowly(member, call, waiting);
        break;
    case Mode::Search:
        callSearch(member, call, waiting);
        break;
    }
}

void assign(const Member& property, Object& self, const Value& value) {
    Call call(&self, {&value, 1});
    const auto held = Registry::get().lock();
    expectUsable(self);
    expectChangeable(self);
    property.set(call);
}

std::vector<Diagnostic> takeMessages() {
    return std::exchange(t_messages, {});
}

DiagnosticSink messageSink() {
    return [](Diagnostic finding) {
        if (Listening* listening = Listening::current())
            listening->add(std::move(finding));
    };
}

void raiseArgument(const std::string& text) {
    throw ScriptError(Failure::Kind::Argument, text);
}

double asWritten(float number) {
    if (!std::isfinite(number))
        return static_cast<double>(number);
    // Below this no two numbers of three decimals are the same in single precision.
    constexpr double mostPlain = 4096.0;
    const double wide = static_cast<double>(number);
    const double plain = std::nearbyint(wide * 1000.0) / 1000.0;
    if (std::fabs(wide) < mostPlain && static_cast<float>(plain) == number)
        return plain;
    char text[32];
    const auto written = std::to_chars(std::begin(text), std::end(text), number);
    double value = 0;
    std::from_chars(std::begin(text), written.ptr, value);
    return value;
}

std::size_t Member::requiredParameters() const {
    return static_cast<std::size_t>(
        std::count_if(parameters.begin(), parameters.end(),
                      [](const Parameter& parameter) { return !parameter.isOptional; }));
}

const Member* ClassInfo::find(std::string_view member) const {
    const auto found = std::find_if(members.begin(), members.end(),
                                    [member](const Member& m) { return m.name == member; });
    return found == members.end() ? nullptr : &*found;
}

std::string nameOf(const Type& type) {
    switch (type.kind) {
    case Type::Kind::None:
        return "nothing";
    case Type::Kind::Bool:
        return "true or false";
    case Type::Kind::Int:
        return "a whole number";
    case Type::Kind::Float:
        return "a number";
    case Type::Kind::Text:
        return "a text";
    case Type::Kind::Address:
        return "an address or size";
    case Type::Kind::Object:
        return "a handle of class " + type.object->name;
    case Type::Kind::Sequence:
        return "a list (of " + nameOf(*type.element) + " each)";
    case Type::Kind::Mapping:
    case Type::Kind::Record:
    case Type::Kind::Json:
        break;
    }
    return "a dictionary";
}

} // namespace tq::bindings
