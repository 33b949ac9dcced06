// The description of the interface that scripts see: one for all languages. Each language makes its
// classes, commands and messages of it when it is loaded, and the type stubs are written from it.
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include "bindings/core/Registry.h"
#include "bindings/core/ScriptError.h"
#include "bindings/core/Value.h"

namespace tq::bindings {

class Call;
struct Member;

struct Parameter {
    const char* name;
    bool isOptional = false;
    Value fallback;
    const Type* type = nullptr; ///< set by the builder, from the function
};

/// What a call needs beside the lock.
enum class Mode {
    Quick,  ///< neither prints nor takes long
    Slow,   ///< may do both
    Search, ///< a clock search: may take minutes, can be interrupted
};

struct TQ_BINDINGS_EXPORT Member {
    enum class Kind { Property, Method, Static };

    std::string name;
    std::string doc;
    Kind kind = Kind::Method;
    Mode mode = Mode::Quick;
    bool isChange = false;            ///< takes its object as one that it may change
    const ClassInfo* owner = nullptr; ///< null for a function of an island
    std::vector<Parameter> parameters;
    const Type* result = nullptr;
    void (*call)(Call&) = nullptr;
    void (*set)(Call&) = nullptr; ///< of a property that can be set
    unsigned index = 0;           ///< of all members

    [[nodiscard]] std::size_t requiredParameters() const;
};

/// A class of native objects.
struct TQ_BINDINGS_EXPORT ClassInfo {
    std::string name;     ///< that of the C++ class: "HBSPll"
    std::string ensemble; ///< the words of its Tcl ensemble: "clock pll"
    std::string noun;     ///< what messages call an object: "PLL"
    std::string doc;
    std::vector<Member> members;
    /// Makes an object; without one, scripts get objects from others alone.
    std::unique_ptr<Member> constructor;
    /// "the PLL PLL0 of clock tree soc".
    std::string (*describe)(const Object& object) = nullptr;
    void (*destroy)(void* native) = nullptr;               ///< null if scripts can't delete it
    void (*expectDeletable)(const void* native) = nullptr; ///< may be null
    /// What the class is iterated over and indexed by, if it is.
    const char* items = nullptr;
    const char* lookup = nullptr;
    const ScriptTables* tables = nullptr;
    mutable void* pythonType = nullptr; ///< the class that the Python layer made of it

    [[nodiscard]] const Member* find(std::string_view member) const;
};

/// Functions that belong to no object.
struct Island {
    std::string ensemble; ///< "addressing"
    std::string doc;
    std::vector<Member> functions;
};

/// All classes and functions, in the order of the documentation.
class TQ_BINDINGS_EXPORT Interface {
public:
    static const Interface& get();

    [[nodiscard]] const std::vector<const ClassInfo*>& classes() const { return m_classes; }
    [[nodiscard]] const std::vector<std::unique_ptr<Island>>& islands() const { return m_islands; }
    /// Records that functions give, in the order of their first use.
    [[nodiscard]] const std::vector<const Type*>& records() const { return m_records; }
    [[nodiscard]] unsigned memberCount() const { return m_memberCount; }

    // For the files that describe it.
    void add(ClassInfo& info);
    void add(Island island);

private:
    Interface();
    void number(Member& member);
    void noteRecords(const Type& type);

    std::vector<const ClassInfo*> m_classes;
    std::vector<std::unique_ptr<Island>> m_islands;
    std::vector<const Type*> m_records;
    unsigned m_memberCount = 0;
};

/// One call on its way from a script to the library and back.
class Call {
public:
    Call(Object* self, std::span<const Value> arguments) : m_self(self), m_arguments(arguments) {}

    [[nodiscard]] Object& self() { return *m_self; }
    [[nodiscard]] bool hasSelf() const { return m_self != nullptr; }
    [[nodiscard]] const Value& argument(std::size_t index) const { return m_arguments[index]; }
    [[nodiscard]] std::size_t argumentCount() const { return m_arguments.size(); }

    /// The root that objects given back belong to: that of `self`, unless set.
    [[nodiscard]] Object* root() const {
        return m_root != nullptr ? m_root : m_self != nullptr ? &m_self->rootObject() : nullptr;
    }
    void setRoot(Object& root) { m_root = &root; }

    /// Roots that a new root given back needs.
    std::vector<ObjectRef> needs;
    Value result;

private:
    Object* m_self;
    std::span<const Value> m_arguments;
    Object* m_root = nullptr;
};

/// The handle's native object. Raises `ScriptError` if it is gone or in a search.
TQ_BINDINGS_EXPORT void expectUsable(const Object& object);
/// Raises `ScriptError` for an object that the library shares.
TQ_BINDINGS_EXPORT void expectChangeable(const Object& object);

} // namespace tq::bindings
