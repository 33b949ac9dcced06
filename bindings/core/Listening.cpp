#include "bindings/core/Listening.h"

#include <iostream>
#include <mutex>
#include <new>
#include <streambuf>
#include <utility>

#include "ComMsgMgr.h"
#include "workbench/text/MessageFinding.h"

namespace tq::bindings {

namespace {

thread_local Listening* t_current = nullptr;

/// Takes the place of a standard stream's buffer: a text goes to the thread's listener, if it has
/// one, else to the buffer that was there.
class ThreadBuffer : public std::streambuf {
public:
    explicit ThreadBuffer(std::ostream& stream) : m_stream(stream) {}

    void install() { m_before = m_stream.rdbuf(this); }
    void remove() { m_stream.rdbuf(m_before); }

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        if (Listening* listening = Listening::current()) {
            listening->addText(text, static_cast<std::size_t>(size));
            return size;
        }
        return m_before->sputn(text, size);
    }
    int_type overflow(int_type character) override {
        if (traits_type::eq_int_type(character, traits_type::eof()))
            return traits_type::not_eof(character);
        const char text = traits_type::to_char_type(character);
        return xsputn(&text, 1) == 1 ? character : traits_type::eof();
    }
    int sync() override { return Listening::current() != nullptr ? 0 : m_before->pubsync(); }

private:
    std::ostream& m_stream;
    std::streambuf* m_before = nullptr;
};

/// In place while anybody listens.
class Switchboard {
public:
    void add() {
        const std::lock_guard lock(m_mutex);
        if (m_listeners++ > 0)
            return;
        m_output.install();
        m_errors.install();
        m_sink = ComMsgMgr::setSink([this](const ComMsg& message) { deliver(message); });
    }
    void remove() {
        const std::lock_guard lock(m_mutex);
        if (--m_listeners > 0)
            return;
        ComMsgMgr::setSink(std::exchange(m_sink, {}));
        m_errors.remove();
        m_output.remove();
    }

    // Around a fork. Threads that listened in the parent aren't there in the child.
    void lock() { m_mutex.lock(); }
    void unlock() { m_mutex.unlock(); }
    void beginChild() {
        new (&m_mutex) std::mutex;
        if (m_listeners == 0 || Listening::current() != nullptr)
            return;
        m_listeners = 1;
        remove();
    }

private:
    void deliver(const ComMsg& message) const {
        if (Listening* listening = Listening::current()) {
            Diagnostic finding = findingOf(message);
            if (message.scope == "cdo.gen") // where a reader begins and ends
                finding.severity = Severity::Remark;
            listening->add(std::move(finding));
        } else if (m_sink) {
            m_sink(message);
        }
    }

    std::mutex m_mutex;
    unsigned m_listeners = 0;
    ThreadBuffer m_output{std::cout};
    ThreadBuffer m_errors{std::cerr};
    ComMsgMgr::Sink m_sink;
};

/// Leaked, as threads may outlive everything.
Switchboard& switchboard() {
    static auto* const instance = new Switchboard;
    return *instance;
}

} // namespace

Listening::Listening() : m_outer(t_current) {
    switchboard().add();
    t_current = this;
}

Listening::~Listening() {
    t_current = m_outer;
    switchboard().remove();
}

Listening* Listening::current() {
    return t_current;
}

void Listening::beforeFork() {
    switchboard().lock();
}

void Listening::afterForkInParent() {
    switchboard().unlock();
}

void Listening::afterForkInChild() {
    switchboard().beginChild();
}

void Listening::add(Diagnostic message) {
    if (m_messages.size() < kMost)
        m_messages.push_back(std::move(message));
    else
        ++m_leftOut;
}

void Listening::addText(const char* text, std::size_t size) {
    for (std::size_t i = 0; i < size; ++i)
        if (text[i] == '\n')
            addLine();
        else
            m_line += text[i];
}

void Listening::addLine() {
    add(makeDiagnostic(Severity::Warning, "printed", {}, std::exchange(m_line, {})));
}

std::vector<Diagnostic> Listening::take() {
    if (!m_line.empty())
        addLine();
    if (m_leftOut > 0)
        m_messages.push_back(
            makeDiagnostic(Severity::Warning, "left-out", {},
                           std::to_string(m_leftOut) + " more messages were left out"));
    m_leftOut = 0;
    return std::exchange(m_messages, {});
}

} // namespace tq::bindings
