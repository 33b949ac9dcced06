// Tcl objects bound to sequences, with a real Tcl behind them.

#include <gtest/gtest.h>
#include <tcl.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "HEXError.h"
#include "cdo/HBSCdoSequenceWrapper.h"
#include "clocking/HBSPll.h"
#include "scripting/native_cache.h"

/// The Tcl layer's door into the tables.
template <class T>
struct hdi::tcltasks::native_cache_access {
    static auto& nativeToTcl() { return native_cache<T>::get_n2t_cache(); }
    static auto& tclToNative() { return native_cache<T>::get_t2n_cache(); }
    static bool observed() { return native_cache<T>::observers(); }
};

namespace {

using hdi::tcltasks::native_cache_base;
using Wrappers = hdi::tcltasks::native_cache_access<HBSCdoSequenceWrapper*>;
using Plls = hdi::tcltasks::native_cache_access<hbs_clocking::HBSPll*>;

const Tcl_ObjType kHandleType = {"handle", nullptr, nullptr, nullptr, nullptr};

/// A Tcl object as a script holds it: one reference is the test's, one the cache's.
class Handle {
public:
    template <class Tables, class T>
    static Handle bind(const T* native) {
        Handle handle;
        handle.m_object->typePtr = &kHandleType;
        handle.m_object->internalRep.twoPtrValue.ptr1 = const_cast<T*>(native);
        Tcl_IncrRefCount(handle.m_object);
        Tables::nativeToTcl().emplace(native, handle.m_object);
        Tables::tclToNative().emplace(handle.m_object, native);
        return handle;
    }
    Handle() : m_object(Tcl_NewStringObj("handle", -1)) { Tcl_IncrRefCount(m_object); }
    Handle(Handle&& other) noexcept : m_object(std::exchange(other.m_object, nullptr)) {}
    Handle& operator=(Handle&&) = delete;
    ~Handle() {
        if (m_object != nullptr)
            Tcl_DecrRefCount(m_object);
    }

    [[nodiscard]] bool isValid() const { return m_object->internalRep.twoPtrValue.ptr1 != nullptr; }
    [[nodiscard]] int references() const { return m_object->refCount; }
    operator Tcl_Obj*() const { return m_object; }

private:
    Tcl_Obj* m_object;
};

class TclCache : public testing::Test {
protected:
    static void SetUpTestSuite() { Tcl_FindExecutable(nullptr); }

    TclCache() {
        m_before = native_cache_base::setRuntime({
            .tcl_exiting =
                [this] {
                    ++m_asked;
                    return m_exiting;
                },
            .mark_invalid = [](Tcl_Obj* script) { script->internalRep.twoPtrValue.ptr1 = nullptr; },
            .decr_refcount = [](Tcl_Obj* script) { Tcl_DecrRefCount(script); },
            .error = [this](const char* text) { m_error = text; },
        });
        m_wrapper = std::make_unique<HBSCdoSequenceWrapper>("boot", nullptr);
    }
    ~TclCache() override {
        for (const auto& entry : Wrappers::tclToNative())
            Tcl_DecrRefCount(entry.first);
        Wrappers::tclToNative().clear();
        Wrappers::nativeToTcl().clear();
        native_cache_base::setRuntime(m_before);
    }

    /// Brings the flag down, as after the end of the scripting side.
    void forgetObservers() {
        m_exiting = true;
        EXPECT_FALSE(Wrappers::observed());
        m_exiting = false;
        m_asked = 0;
    }

    int m_asked = 0;
    bool m_exiting = false;
    std::string m_error;
    std::unique_ptr<HBSCdoSequenceWrapper> m_wrapper;

private:
    native_cache_base::Runtime m_before;
};

TEST_F(TclCache, TwoObjectsOfOneSequenceAreInvalidAndReleased) {
    const HBSCdoSequenceWrapper other("other", nullptr);
    const Handle first = Handle::bind<Wrappers>(m_wrapper.get());
    const Handle second = Handle::bind<Wrappers>(m_wrapper.get());
    const Handle bystander = Handle::bind<Wrappers>(&other);
    m_wrapper.reset();
    for (const Handle* dead : {&first, &second}) {
        EXPECT_FALSE(dead->isValid());
        EXPECT_EQ(1, dead->references());
        EXPECT_EQ(0U, Wrappers::tclToNative().count(*dead));
    }
    EXPECT_TRUE(bystander.isValid());
    EXPECT_EQ(2, bystander.references());
    EXPECT_EQ(1U, Wrappers::nativeToTcl().size());
}

TEST_F(TclCache, ASequenceThatNoScriptTouchedAsksNothing) {
    forgetObservers();
    m_wrapper.reset();
    EXPECT_EQ(0, m_asked);
}

TEST_F(TclCache, OnceTheTablesAreKnownADeathAsksOnce) {
    (void)Wrappers::nativeToTcl();
    m_wrapper.reset();
    for (const bool bound : {false, true}) {
        m_wrapper = std::make_unique<HBSCdoSequenceWrapper>("next", nullptr);
        std::optional<Handle> handle;
        if (bound)
            handle.emplace(Handle::bind<Wrappers>(m_wrapper.get()));
        m_asked = 0;
        m_wrapper.reset();
        EXPECT_EQ(1, m_asked);
    }
}

TEST_F(TclCache, NothingIsTouchedWhileTclIsExiting) {
    const Handle handle = Handle::bind<Wrappers>(m_wrapper.get());
    m_exiting = true;
    m_wrapper.reset();
    EXPECT_TRUE(handle.isValid());
    EXPECT_EQ(2, handle.references());
    m_exiting = false;
    EXPECT_FALSE(Wrappers::observed());
}

TEST_F(TclCache, FetchingATableSetsTheFlagEvenWhileTclIsExiting) {
    forgetObservers();
    m_exiting = true;
    (void)Wrappers::tclToNative();
    m_exiting = false;
    EXPECT_TRUE(Wrappers::observed());
    EXPECT_EQ(1, m_asked);
}

TEST_F(TclCache, ACorruptEntryIsReportedAndTheRangeStays) {
    const Handle known = Handle::bind<Wrappers>(m_wrapper.get());
    const Handle stray = Handle::bind<Wrappers>(m_wrapper.get());
    Wrappers::tclToNative().erase(stray);
    m_wrapper.reset();
    EXPECT_EQ("native_cache<> corrupt", m_error);
    EXPECT_EQ(2U, Wrappers::nativeToTcl().size());
    EXPECT_TRUE(stray.isValid());
    EXPECT_EQ(2, stray.references());
    Tcl_DecrRefCount(stray);
}

TEST_F(TclCache, BindingsOfAClockingObjectOutliveIt) {
    auto pll = std::make_unique<hbs_clocking::HBSPll>("PLL0", "LPD", 0);
    const void* const address = pll.get();
    const Handle handle = Handle::bind<Plls>(pll.get());
    pll.reset();
    EXPECT_TRUE(handle.isValid());
    EXPECT_EQ(address, Plls::tclToNative().at(handle));
    EXPECT_EQ(1U, Plls::nativeToTcl().size());
    Tcl_DecrRefCount(handle);
}

TEST(TclRuntime, WithoutCallbacksNothingHappensAndErrorsAreRaised) {
    const auto before = native_cache_base::setRuntime({});
    EXPECT_FALSE(native_cache_base::tcl_exiting());
    native_cache_base::mark_invalid(nullptr);
    native_cache_base::decr_refcount(nullptr);
    EXPECT_THROW(native_cache_base::error("broken"), HEXError);
    native_cache_base::setRuntime(before);
}

} // namespace
