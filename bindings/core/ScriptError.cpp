#include "bindings/core/ScriptError.h"

#include <new>
#include <utility>

#include "HTCErrors.h"
#include "clocking/SearchInterruption.h"
#include "workbench/files/InputError.h"

namespace tq::bindings {

ScriptError::ScriptError(Failure::Kind kind, std::string text)
    : m_kind(kind), m_text(std::move(text)) {}

ScriptError::~ScriptError() = default;

const char* ScriptError::what() const noexcept {
    return m_text.c_str();
}

Failure currentFailure() {
    using Kind = Failure::Kind;
    try {
        throw;
    } catch (const ScriptError& error) {
        return {error.kind(), error.what(), {}};
    } catch (const InputError& error) {
        return {Kind::Input, error.what(), {error.diagnostic()}};
    } catch (const hbs_clocking::SearchInterrupted& error) {
        return {Kind::Interrupted, error.what(), {}};
    } catch (const HTCErrors::command_failed& error) {
        return {Kind::Command, error.what(), {}};
    } catch (const HEXAll& error) {
        return {Kind::Input, error.what(), {}};
    } catch (const std::bad_alloc&) {
        return {Kind::Memory, "out of memory", {}};
    } catch (const std::exception& error) {
        return {Kind::Internal, error.what(), {}};
    }
}

const char* codeOf(Failure::Kind kind) {
    static constexpr const char* codes[] = {"DELETED",     "BUSY",     "INPUT",
                                            "ARGUMENT",    "NOTFOUND", "COMMAND",
                                            "INTERRUPTED", "MEMORY",   "INTERNAL"};
    return codes[static_cast<std::size_t>(kind)];
}

} // namespace tq::bindings
