#include "workbench/ipxact/RegisterExport.h"

#include "workbench/addressing/export/MapExport.h"
#include "workbench/files/InputError.h"
#include "workbench/ipxact/ComponentWriter.h"
#include "workbench/ipxact/RegisterMapModel.h"

namespace tq::ipxact {

std::string exportComponent(const Component& component, const std::string& path,
                            const DiagnosticSink& sink) {
    if (path.ends_with(".2022.xml"))
        return writeComponent(component, WrittenEdition::Ieee2022, sink);
    if (path.ends_with(".xml"))
        return writeComponent(component, WrittenEdition::Ieee2014, sink);
    const auto format = mapFormatOf(path);
    if (!format)
        throw fileError(path, "its ending is no format's: .xml, .2022.xml, " + mapFormatEndings());
    return exportMap(mapModelOf(component, sink), *format, sink);
}

} // namespace tq::ipxact
