#include "handoff/HWHMemoryMaps.h"

#include "handoff/HWHVocabulary.h"

namespace hwh {

using base::JsonNode;

MemoryMaps::MemoryMaps(const Model& model) : m_model(model) {
    m_reachable.reserve(model.slaves.size());
}

std::span<const std::uint32_t> MemoryMaps::reachableFrom(const Module& master) {
    const bool excludesAny = markExcluded(master);
    m_reachable.clear();
    for (std::uint32_t i = 0; i < m_model.slaves.size(); ++i)
        if (!excludesAny ||
            (m_marks[m_names[i].slave] != m_mark && m_marks[m_names[i].instance] != m_mark))
            m_reachable.push_back(i);
    return m_reachable;
}

/// A mark of its own for each master saves clearing the marks of the one before.
bool MemoryMaps::markExcluded(const Module& master) {
    if (master.excludingNode == kNone)
        return false;
    ++m_mark;
    bool excludesAny = false;
    const auto exclude = [&](const JsonNode& name) {
        if (!name.isString())
            return;
        // Most masters exclude nothing; the names of slaves are collected for the first that does.
        nameSlaves();
        const std::uint32_t number = m_table.find(name.text());
        if (number == kNone)
            return;
        m_marks[number] = m_mark;
        excludesAny = true;
    };
    m_model.tape->node(master.excludingNode)
        .forEachMember([&](const JsonNode& name, const JsonNode& value) {
            if (name.text() == member::kExcludedSlaves)
                value.forEachElement(exclude);
        });
    return excludesAny;
}

void MemoryMaps::nameSlaves() {
    if (m_names.size() == m_model.slaves.size())
        return;
    for (const std::uint32_t number : m_model.slaves) {
        const Instance& instance = m_model.instances[number];
        const InstanceFacts facts = m_model.factsOf(instance);
        if (m_model.namesDies)
            m_names.push_back({internWithDie(facts.sdkName, facts.slrNumber),
                               internWithDie(m_model.text(instance.name), facts.slrNumber)});
        else
            m_names.push_back(
                {m_table.intern(facts.sdkName), m_table.intern(m_model.text(instance.name))});
    }
    m_marks.resize(m_table.size());
}

std::uint32_t MemoryMaps::internWithDie(std::string_view name, std::string_view die) {
    return m_table.intern(m_joinedNames.emplace_back(std::string(name).append(":").append(die)));
}

} // namespace hwh
