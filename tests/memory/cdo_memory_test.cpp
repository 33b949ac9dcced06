// Configuration sequences, and the tables that tie them to script objects, while memory runs out.

#include <gtest/gtest.h>

#include <array>
#include <stdexcept>

#include "HTCErrors.h"
#include "cdo/HBSCdoCommandParse.h"
#include "cdo/HBSCdoSequenceMgr.h"
#include "memory/trial.h"
#include "scripting/native_cache.h"
#include "scripting/py_native_cache.h"

template <class T>
struct hdi::tcltasks::native_cache_access {
    static auto& toScript() { return native_cache<T>::get_n2t_cache(); }
    static auto& toNative() { return native_cache<T>::get_t2n_cache(); }
};

template <class T>
struct hdi::pyinfra::py_native_cache_access {
    static auto& toScript() { return py_native_cache<T>::get_n2py_cache(); }
    static auto& toNative() { return py_native_cache<T>::get_py2n_cache(); }
};

namespace {

using TclTables = hdi::tcltasks::native_cache_access<HBSCdoSequenceWrapper*>;
using PyTables = hdi::pyinfra::py_native_cache_access<HBSCdoSequenceWrapper*>;

constexpr const char* kName = "a sequence of a name that is too long for a short text";
constexpr const char* kMarker = "a marker of a name that is too long for a short text";

TEST(CdoSequences, AreMadeAndMarkedWholeOrNotAtAll) {
    memory::failEachAllocation([](const memory::Attempt& attempt) {
        HBSCdoSequenceMgr& manager = HBSCdoSequenceMgr::getGlobal();
        const auto count = [&] {
            std::vector<HBSCdoSequenceWrapper*> all;
            manager.getCdoSeqWrapperColl(all);
            return all.size();
        };
        try {
            attempt([&] {
                auto* const wrapper = manager.createCdoSequenceWrapper(kName, nullptr);
                wrapper->addMarker(kMarker, HBSCdoSequenceWrapper::kMarkerOpens);
                wrapper->addMarker("inner", HBSCdoSequenceWrapper::kMarkerOpens);
                wrapper->addMarker("inner", HBSCdoSequenceWrapper::kMarkerCloses);
                wrapper->addMarker(kMarker, HBSCdoSequenceWrapper::kMarkerCloses);
                wrapper->markerCheck();
                manager.deleteCdoSequenceWrapper(kName);
            });
        } catch (const std::bad_alloc&) {
            if (count() != 0)
                manager.deleteCdoSequenceWrapper(kName);
            if (count() != 0)
                throw std::logic_error("a sequence was left behind");
            throw;
        }
        return std::to_string(count());
    });
}

TEST(CdoSequences, FailuresAreReportedOrTheCallerLearnsThatMemoryRanOut) {
    memory::failEachAllocation([](const memory::Attempt& attempt) {
        std::string text;
        for (const char* const input : {"", "-1", "0x10 behind it there is more text than fits",
                                        "0x1111111111111111111111111111111111111111111111111"})
            try {
                attempt([&] { return HBSCdoCommandParse::parseValue(input); });
            } catch (const HTCErrors::command_failed& failure) {
                text += failure.what();
            }
        return text;
    });
}

/// The death of a sequence must not leave a binding to it, however little memory there is.
TEST(ScriptTables, ForgetASequenceThatDiesWhileMemoryRunsOut) {
    std::array<char, 6> places{};
    memory::run({.operation =
                     [&](const memory::Attempt& attempt) {
                         auto wrapper = std::make_unique<HBSCdoSequenceWrapper>(kName, nullptr);
                         std::size_t bound = 0;
                         for (int i = 0; i < 3; ++i) {
                             auto* const tcl = reinterpret_cast<Tcl_Obj*>(&places.at(bound++));
                             TclTables::toScript().emplace(wrapper.get(), tcl);
                             TclTables::toNative().emplace(tcl, wrapper.get());
                             auto* const py = reinterpret_cast<_object*>(&places.at(bound++));
                             PyTables::toScript().emplace(wrapper.get(), py);
                             PyTables::toNative().emplace(py, wrapper.get());
                         }
                         attempt([&] { wrapper.reset(); });
                         const std::size_t left =
                             TclTables::toScript().size() + TclTables::toNative().size() +
                             PyTables::toScript().size() + PyTables::toNative().size();
                         TclTables::toScript().clear();
                         TclTables::toNative().clear();
                         PyTables::toScript().clear();
                         PyTables::toNative().clear();
                         return std::to_string(left);
                     },
                 .andAllLater = true});
}

} // namespace
