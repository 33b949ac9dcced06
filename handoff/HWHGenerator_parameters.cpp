// The parameters of a module, with the values that the design gives them.

#include <algorithm>

#include "handoff/HWHGenerator.h"
#include "handoff/HWHVocabulary.h"

void HWHGenerator::writeParameters(HXMLWElement& module, const std::string& moduleName) {
    HXMLWElement* parameters = module.addChild(hwh::element::kParameters);
    const auto entry = m_parameterTable.find(moduleName);
    if (entry == m_parameterTable.end())
        return;
    for (const auto& [name, value] : entry->second)
        addParameter(*parameters, name, m_designParams.resolve(value));
}

void HWHGenerator::addParameter(HXMLWElement& parameters, const std::string& name,
                                std::string value) {
    HXMLWElement* parameter = parameters.addChild(hwh::element::kParameter);
    add(*parameter, hwh::key::kName, name);
    // Callers of the text form keep values with commas out of it.
    if (value.find(',') == std::string::npos) {
        add(*parameter, hwh::key::kValue, value);
        return;
    }
    // A zero would end the value here. The writer replaces any other control character likewise.
    std::replace(value.begin(), value.end(), '\0', '\1');
    parameter->addAttribute(hwh::field::kValue, value.c_str());
}
