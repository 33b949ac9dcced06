#include "addressing/TclThreadState.h"

namespace hbs_addressing {

namespace {

constexpr const char* kPrecision = "tcl_precision";
/// The blocking mode is first: text that is flushed when the others change isn't lost then.
constexpr std::array<const char*, 6> kChannelOptions{"-blocking", "-buffering", "-buffersize",
                                                     "-encoding", "-eofchar",   "-translation"};

/// The value of a channel's option while it lives, in Tcl's memory.
class OptionValue {
public:
    OptionValue(Tcl_Channel channel, const char* option) {
        Tcl_DStringInit(&m_text);
        Tcl_GetChannelOption(nullptr, channel, option, &m_text);
    }
    ~OptionValue() { Tcl_DStringFree(&m_text); }
    OptionValue(const OptionValue&) = delete;
    OptionValue& operator=(const OptionValue&) = delete;

    [[nodiscard]] const char* get() const { return Tcl_DStringValue(&m_text); }

private:
    Tcl_DString m_text;
};

std::string textOrEmpty(const char* text) {
    return text == nullptr ? std::string() : text;
}

} // namespace

StandardChannel::StandardChannel(int type) : m_type(type), m_channel(Tcl_GetStdChannel(type)) {
    if (m_channel == nullptr)
        return;
    m_top = Tcl_GetTopChannel(m_channel);
    for (const char* option : kChannelOptions)
        m_options.emplace_back(option, OptionValue(m_channel, option).get());
    // With this reference, a script that closes the channel only loses its own access to it.
    Tcl_RegisterChannel(nullptr, m_channel);
}

void StandardChannel::restore(Tcl_Interp* interp) {
    if (m_channel == nullptr)
        return;
    popTransformations(interp);
    for (const auto& [option, value] : m_options)
        if (OptionValue(m_channel, option).get() != value)
            Tcl_SetChannelOption(nullptr, m_channel, option, value.c_str());
    // Tcl closes a standard channel when its last reference but one is unregistered, but not when
    // an interpreter that holds it is deleted. So the interpreter's must be the last.
    Tcl_RegisterChannel(interp, m_channel);
    Tcl_UnregisterChannel(nullptr, m_channel);
}

void StandardChannel::popTransformations(Tcl_Interp* interp) {
    // A transformation whose script fails on the text that is still to be written stays the first
    // time, but Tcl then drops the text.
    int failures = 0;
    while (failures < 2 && Tcl_GetTopChannel(m_channel) != m_top) {
        Tcl_Channel top = Tcl_GetTopChannel(m_channel);
        Tcl_UnstackChannel(interp, m_channel);
        failures = Tcl_GetTopChannel(m_channel) == top ? failures + 1 : 0;
    }
}

void StandardChannel::closeReplacement() const {
    // Where the process has no such channel, Tcl takes a file that a script opens for it.
    if (m_channel != nullptr)
        return;
    if (Tcl_Channel replacement = Tcl_GetStdChannel(m_type))
        Tcl_UnregisterChannel(nullptr, replacement);
}

TclThreadState::TclThreadState(Tcl_Interp* interp)
    : m_channels{StandardChannel(TCL_STDIN), StandardChannel(TCL_STDOUT),
                 StandardChannel(TCL_STDERR)},
      m_encoding(textOrEmpty(Tcl_GetEncodingName(nullptr))),
      m_encodingFolders(Tcl_GetEncodingSearchPath()),
      m_precision(textOrEmpty(Tcl_GetVar2(interp, kPrecision, nullptr, TCL_GLOBAL_ONLY))) {
    Tcl_IncrRefCount(m_encodingFolders);
}

TclThreadState::~TclThreadState() {
    Tcl_DecrRefCount(m_encodingFolders);
}

void TclThreadState::restore(Tcl_Interp* interp) {
    for (StandardChannel& channel : m_channels)
        channel.restore(interp);
    Tcl_SetEncodingSearchPath(m_encodingFolders);
    if (m_encoding != Tcl_GetEncodingName(nullptr))
        Tcl_SetSystemEncoding(nullptr, m_encoding.c_str());
    Tcl_SetVar2(interp, kPrecision, nullptr, m_precision.c_str(), TCL_GLOBAL_ONLY);
}

void TclThreadState::closeReplacements() const {
    for (const StandardChannel& channel : m_channels)
        channel.closeReplacement();
}

} // namespace hbs_addressing
