#include "addressing/TclDeletion.h"

#include <new>
#include <string>
#include <string_view>
#include <vector>

namespace hbs_addressing {

namespace {

/// Calls a command that lists something, and `use` with each element.
template <class Use>
void forEachListed(const Tcl_CmdInfo& command, Tcl_Interp* interp,
                   const std::vector<std::string>& words, Use use) {
    std::vector<Tcl_Obj*> objects;
    objects.reserve(words.size());
    for (const std::string& word : words) {
        objects.push_back(Tcl_NewStringObj(word.data(), static_cast<int>(word.size())));
        Tcl_IncrRefCount(objects.back());
    }
    const int code = command.objProc(command.objClientData, interp,
                                     static_cast<int>(objects.size()), objects.data());
    for (Tcl_Obj* const object : objects)
        Tcl_DecrRefCount(object);
    Tcl_Obj* const list = Tcl_GetObjResult(interp);
    Tcl_IncrRefCount(list);
    Tcl_ResetResult(interp);
    int count = 0;
    Tcl_Obj** elements = nullptr;
    if (code == TCL_OK && Tcl_ListObjGetElements(nullptr, list, &count, &elements) == TCL_OK)
        for (int i = 0; i < count; ++i)
            use(Tcl_GetString(elements[i]));
    Tcl_DecrRefCount(list);
}

/// A namespace "" is the global one. Unsetting the array `env` would change the process.
void unsetVariables(Tcl_Interp* interp, const TclInspection& inspection,
                    const std::string& nameSpace) {
    forEachListed(inspection.vars, interp, {"vars", nameSpace + "::*"}, [&](const char* name) {
        if (std::string_view(name) != "::env")
            Tcl_UnsetVar2(interp, name, nullptr, TCL_GLOBAL_ONLY);
    });
}

void unsetAllVariables(Tcl_Interp* interp, const TclInspection& inspection) {
    std::vector<std::string> open{""};
    while (!open.empty()) {
        const std::string nameSpace = open.back();
        open.pop_back();
        unsetVariables(interp, inspection, nameSpace);
        forEachListed(inspection.children, interp, {"children", nameSpace + "::"},
                      [&](const char* child) { open.emplace_back(child); });
    }
}

} // namespace

TclInspection::TclInspection(Tcl_Interp* from) : interp{}, children{}, vars{} {
    Tcl_GetCommandInfo(from, "::interp", &interp);
    Tcl_GetCommandInfo(from, "::tcl::namespace::children", &children);
    Tcl_GetCommandInfo(from, "::tcl::info::vars", &vars);
}

void deleteInterpreter(Tcl_Interp* interp, const TclInspection& inspection) {
    Tcl_Preserve(interp);
    Tcl_DeleteInterp(interp);
    try {
        forEachListed(inspection.interp, interp, {"interp", "slaves"}, [&](const char* child) {
            if (Tcl_Interp* const slave = Tcl_GetSlave(interp, child))
                deleteInterpreter(slave, inspection);
        });
        unsetAllVariables(interp, inspection);
    } catch (const std::bad_alloc&) {
        // Tcl deletes the rest, only slower.
    }
    Tcl_Release(interp);
}

} // namespace hbs_addressing
