// Script objects bound to native ones, on both scripting sides. The tables never look into a script
// object, so plain addresses take their place.

#include <gtest/gtest.h>

#include <array>
#include <map>
#include <memory>
#include <string>

#include "HEXError.h"
#include "cdo/HBSCdoSequenceWrapper.h"
#include "clocking/HBSPll.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

// The scripting layers' doors into the tables.

template <class T>
struct hdi::tcltasks::native_cache_access {
    static auto& toScript() { return native_cache<T>::get_n2t_cache(); }
    static auto& toNative() { return native_cache<T>::get_t2n_cache(); }
    static bool observed() { return native_cache<T>::observers(); }
};

template <class T>
struct hdi::pyinfra::py_native_cache_access {
    static auto& toScript() { return py_native_cache<T>::get_n2py_cache(); }
    static auto& toNative() { return py_native_cache<T>::get_py2n_cache(); }
    static bool observed() { return py_native_cache<T>::observers(); }
};

namespace {

using hbs_clocking::HBSPll;
using hdi::pyinfra::py_native_cache_base;
using hdi::tcltasks::native_cache_base;

struct Tcl {
    using Object = Tcl_Obj;
    using Base = native_cache_base;
    template <class T>
    using Tables = hdi::tcltasks::native_cache_access<T*>;
    static constexpr const char* kDeath = "invalid released ";
    static constexpr const char* kCorrupt = "native_cache<> corrupt";

    template <class Test>
    static Base::Runtime runtime(Test& test) {
        return {.tcl_exiting = [&] { return test.askExiting(); },
                .mark_invalid = [&](Object* script) { test.calls[script] += "invalid "; },
                .decr_refcount = [&](Object* script) { test.calls[script] += "released "; },
                .error = [&](const char* text) { test.error = text; }};
    }
};

struct Python {
    using Object = _object;
    using Base = py_native_cache_base;
    template <class T>
    using Tables = hdi::pyinfra::py_native_cache_access<T*>;
    static constexpr const char* kDeath = "invalid ";
    static constexpr const char* kCorrupt = "py_native_cache<> corrupt";

    template <class Test>
    static Base::Runtime runtime(Test& test) {
        return {.py_exiting = [&] { return test.askExiting(); },
                .mark_invalid = [&](Object* script) { test.calls[script] += "invalid "; },
                .error = [&](const char* text) { test.error = text; }};
    }
};

template <class Side>
class Cache : public testing::Test {
public:
    using Object = typename Side::Object;
    using Wrappers = typename Side::template Tables<HBSCdoSequenceWrapper>;
    using Plls = typename Side::template Tables<HBSPll>;

    Cache() : m_before(Side::Base::setRuntime(Side::runtime(*this))) {}
    ~Cache() override {
        Wrappers::toScript().clear();
        Wrappers::toNative().clear();
        Side::Base::setRuntime(m_before);
    }

    bool askExiting() {
        ++asked;
        return exiting;
    }
    template <class T>
    Object* bind(const T* native) {
        auto* const script = reinterpret_cast<Object*>(&m_places.at(m_bound++));
        using Tables = typename Side::template Tables<T>;
        Tables::toScript().emplace(native, script);
        Tables::toNative().emplace(script, native);
        return script;
    }
    /// Ends a sequence with so many bindings, and gives how often it asked whether all is ending.
    int askedByDeath(int bindings) {
        auto next = std::make_unique<HBSCdoSequenceWrapper>("next", nullptr);
        for (int i = 0; i < bindings; ++i)
            bind(next.get());
        asked = 0;
        next.reset();
        return asked;
    }

    int asked = 0;
    bool exiting = false;
    std::string error;
    std::map<Object*, std::string> calls; ///< what the library asked to be done with each object
    std::unique_ptr<HBSCdoSequenceWrapper> wrapper =
        std::make_unique<HBSCdoSequenceWrapper>("boot", nullptr);

private:
    std::array<char, 4> m_places{};
    std::size_t m_bound = 0;
    typename Side::Base::Runtime m_before;
};

using Sides = testing::Types<Tcl, Python>;
TYPED_TEST_SUITE(Cache, Sides, );

TYPED_TEST(Cache, EveryObjectOfADeadSequenceIsToldAndLeavesBothTables) {
    const HBSCdoSequenceWrapper other("other", nullptr);
    auto* const first = this->bind(this->wrapper.get());
    auto* const second = this->bind(this->wrapper.get());
    auto* const bystander = this->bind(&other);
    this->wrapper.reset();
    EXPECT_EQ((decltype(this->calls){{first, TypeParam::kDeath}, {second, TypeParam::kDeath}}),
              this->calls);
    EXPECT_EQ(1U, TestFixture::Wrappers::toNative().count(bystander));
    EXPECT_EQ(1U, TestFixture::Wrappers::toNative().size());
    EXPECT_EQ(1U, TestFixture::Wrappers::toScript().size());
}

TYPED_TEST(Cache, ADeathAsksOnceAndNothingWhereNoScriptTouchedTheType) {
    (void)TestFixture::Wrappers::toScript();
    this->wrapper.reset(); // the first one gets to know the tables
    EXPECT_EQ(1, this->askedByDeath(0));
    EXPECT_EQ(1, this->askedByDeath(1));
    this->exiting = true;
    EXPECT_FALSE(TestFixture::Wrappers::observed()) << "brings the flag down";
    EXPECT_EQ(0, this->askedByDeath(0));
    (void)TestFixture::Wrappers::toNative();
    this->exiting = false;
    EXPECT_TRUE(TestFixture::Wrappers::observed()) << "fetching a table sets it even at the end";
}

TYPED_TEST(Cache, NothingIsTouchedWhileTheSideIsExiting) {
    this->bind(this->wrapper.get());
    this->exiting = true;
    this->wrapper.reset();
    this->exiting = false;
    EXPECT_TRUE(this->calls.empty());
    EXPECT_FALSE(TestFixture::Wrappers::observed());
}

TYPED_TEST(Cache, ACorruptEntryIsReportedAndTheRangeStays) {
    this->bind(this->wrapper.get());
    auto* const stray = this->bind(this->wrapper.get());
    TestFixture::Wrappers::toNative().erase(stray);
    EXPECT_NO_THROW(this->wrapper.reset());
    EXPECT_EQ(TypeParam::kCorrupt, this->error);
    EXPECT_EQ(2U, TestFixture::Wrappers::toScript().size());
    EXPECT_EQ(0U, this->calls.count(stray));
}

TYPED_TEST(Cache, BindingsOfAClockingObjectOutliveIt) {
    auto pll = std::make_unique<HBSPll>("PLL0", "LPD", 0);
    const void* const address = pll.get();
    auto* const script = this->bind(pll.get());
    pll.reset();
    EXPECT_TRUE(this->calls.empty());
    EXPECT_EQ(address, TestFixture::Plls::toNative().at(script));
    EXPECT_EQ(1U, TestFixture::Plls::toScript().size());
}

TYPED_TEST(Cache, WithoutARuntimeErrorsAreRaised) {
    const auto mine = TypeParam::Base::setRuntime({});
    TypeParam::Base::mark_invalid(nullptr);
    EXPECT_THROW(TypeParam::Base::error("broken"), HEXError);
    TypeParam::Base::setRuntime(mine);
}

using PythonCache = Cache<Python>;

TEST_F(PythonCache, IsLeftAloneWhereTheTclSideIsBroken) {
    using TclWrappers = Tcl::Tables<HBSCdoSequenceWrapper>;
    bind(wrapper.get());
    TclWrappers::toScript().emplace(wrapper.get(), nullptr);
    asked = 0;
    EXPECT_NO_THROW(wrapper.reset());
    EXPECT_EQ(0, asked);
    EXPECT_TRUE(calls.empty());
    TclWrappers::toScript().clear();
}

} // namespace
