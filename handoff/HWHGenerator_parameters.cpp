// The parameters of a module, with the values that the design gives them.

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
                                const std::string& value) {
    HXMLWElement* parameter = parameters.addChild(hwh::element::kParameter);
    add(*parameter, hwh::key::kName, name);
    // Callers of the text form keep values with commas out of it.
    if (value.find(',') == std::string::npos)
        add(*parameter, hwh::key::kValue, value);
    else
        parameter->addAttribute(hwh::field::kValue, value.c_str());
}
