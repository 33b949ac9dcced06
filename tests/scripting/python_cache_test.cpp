// Python objects bound to sequences, with a real Python behind them.

#include <Python.h>

#include <gtest/gtest.h>

#include <memory>

#include "HEXError.h"
#include "cdo/HBSCdoSequenceWrapper.h"
#include "native_cache_base.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

/// The Python layer's door into the tables.
template <class T>
struct hdi::pyinfra::py_native_cache_access {
    static auto& nativeToPython() { return py_native_cache<T>::get_n2py_cache(); }
    static auto& pythonToNative() { return py_native_cache<T>::get_py2n_cache(); }
    static bool observed() { return py_native_cache<T>::observers(); }
};

template <class T>
struct hdi::tcltasks::native_cache_access {
    static auto& nativeToTcl() { return native_cache<T>::get_n2t_cache(); }
};

/// What Python itself still holds when the process ends isn't this test's leak.
extern "C" const char* __lsan_default_suppressions() { // NOLINT(bugprone-reserved-identifier)
    return "leak:libpython";
}

namespace {

using hdi::pyinfra::py_native_cache_base;
using Wrappers = hdi::pyinfra::py_native_cache_access<HBSCdoSequenceWrapper*>;
using TclWrappers = hdi::tcltasks::native_cache_access<HBSCdoSequenceWrapper*>;

struct PythonReleaser {
    void operator()(PyObject* object) const { Py_DECREF(object); }
};
using Owned = std::unique_ptr<PyObject, PythonReleaser>;

/// Embeds Python, makes instances of a class with a flag `valid`, and binds them.
class PythonCache : public testing::Test {
protected:
    static void SetUpTestSuite() {
        Py_InitializeEx(0);
        PyRun_SimpleString("class Handle:\n    valid = True\n");
    }

    PythonCache() {
        m_before = py_native_cache_base::setRuntime({
            .py_exiting =
                [this] {
                    ++m_asked;
                    return m_exiting;
                },
            .mark_invalid =
                [](PyObject* object) { PyObject_SetAttrString(object, "valid", Py_False); },
            .error = [this](const char* text) { m_error = text; },
        });
        m_wrapper = std::make_unique<HBSCdoSequenceWrapper>("boot", nullptr);
    }
    ~PythonCache() override {
        Wrappers::nativeToPython().clear();
        Wrappers::pythonToNative().clear();
        py_native_cache_base::setRuntime(m_before);
    }

    Owned bind() {
        PyObject* const main = PyModule_GetDict(PyImport_AddModule("__main__"));
        Owned object(PyObject_CallNoArgs(PyDict_GetItemString(main, "Handle")));
        Wrappers::nativeToPython().emplace(m_wrapper.get(), object.get());
        Wrappers::pythonToNative().emplace(object.get(), m_wrapper.get());
        return object;
    }
    static bool isValid(const Owned& object) {
        return Owned(PyObject_GetAttrString(object.get(), "valid")).get() == Py_True;
    }

    int m_asked = 0;
    bool m_exiting = false;
    std::string m_error;
    std::unique_ptr<HBSCdoSequenceWrapper> m_wrapper;

private:
    py_native_cache_base::Runtime m_before;
};

TEST_F(PythonCache, BoundObjectsTurnInvalidButKeepTheirReferences) {
    const Owned first = bind();
    const Owned second = bind();
    m_wrapper.reset();
    for (const Owned* dead : {&first, &second}) {
        EXPECT_FALSE(isValid(*dead));
        EXPECT_EQ(1, Py_REFCNT(dead->get()));
    }
    EXPECT_TRUE(Wrappers::nativeToPython().empty());
    EXPECT_TRUE(Wrappers::pythonToNative().empty());
}

TEST_F(PythonCache, OnceTheTablesAreKnownADeathAsksOnce) {
    const Owned first = bind();
    m_wrapper.reset();
    m_wrapper = std::make_unique<HBSCdoSequenceWrapper>("next", nullptr);
    const Owned second = bind();
    m_asked = 0;
    m_wrapper.reset();
    EXPECT_EQ(1, m_asked);
    EXPECT_FALSE(isValid(second));
}

TEST_F(PythonCache, NothingIsTouchedWhilePythonIsExiting) {
    const Owned object = bind();
    m_exiting = true;
    m_wrapper.reset();
    m_exiting = false;
    EXPECT_TRUE(isValid(object));
    EXPECT_FALSE(Wrappers::observed());
}

TEST_F(PythonCache, ACorruptEntryIsReportedAndTheRangeStays) {
    const Owned object = bind();
    Wrappers::pythonToNative().clear();
    m_wrapper.reset();
    EXPECT_EQ("py_native_cache<> corrupt", m_error);
    EXPECT_TRUE(isValid(object));
    EXPECT_EQ(1U, Wrappers::nativeToPython().size());
}

TEST_F(PythonCache, ABrokenTclSideLeavesThePythonSideAlone) {
    const Owned object = bind();
    TclWrappers::nativeToTcl().emplace(m_wrapper.get(), nullptr);
    m_asked = 0;
    EXPECT_NO_THROW(m_wrapper.reset());
    EXPECT_TRUE(isValid(object));
    EXPECT_EQ(0, m_asked);
    TclWrappers::nativeToTcl().clear();
}

} // namespace
