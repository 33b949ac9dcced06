// Restores the state that all interpreters of a thread or of the process share after a run.
#pragma once

#include <tcl.h>

#include <array>
#include <string>
#include <utility>
#include <vector>

namespace hbs_addressing {

/// A standard channel that scripts can use, but not close, reconfigure or transform for good.
class StandardChannel {
public:
    /// `type` is TCL_STDIN, TCL_STDOUT or TCL_STDERR.
    explicit StandardChannel(int type);

    /// Before the interpreter is deleted.
    void restore(Tcl_Interp* interp);
    /// After it was deleted.
    void closeReplacement() const;

private:
    void popTransformations(Tcl_Interp* interp);

    int m_type;
    Tcl_Channel m_channel; ///< null if the process has none
    Tcl_Channel m_top = nullptr;
    std::vector<std::pair<const char*, std::string>> m_options;
};

/// The standard channels, the encodings and the precision of numbers. All of them outlive the
/// interpreter in which a script changes them.
class TclThreadState {
public:
    explicit TclThreadState(Tcl_Interp* interp);
    ~TclThreadState();
    TclThreadState(const TclThreadState&) = delete;
    TclThreadState& operator=(const TclThreadState&) = delete;

    /// Before the interpreter is deleted.
    void restore(Tcl_Interp* interp);
    /// After it was deleted.
    void closeReplacements() const;

private:
    std::array<StandardChannel, 3> m_channels;
    std::string m_encoding;
    Tcl_Obj* m_encodingFolders;
    std::string m_precision;
};

} // namespace hbs_addressing
