#include <algorithm>
#include <utility>

#include "bindings/interface/Parts.h"

namespace tq::bindings {

Interface::Interface() {
    describeClocks(*this);
    describeBlocks(*this);
    describeAddressing(*this);
    describeHandoff(*this);
    describeHardBlocks(*this);
    describeSequences(*this);
    describeRegisters(*this);
    describeIpxact(*this);
}

const Interface& Interface::get() {
    static const auto* const interface = new Interface; // handles point into it to the very end
    return *interface;
}

void Interface::add(ClassInfo& info) {
    if (info.constructor)
        number(*info.constructor);
    for (Member& member : info.members)
        number(member);
    m_classes.push_back(&info);
}

void Interface::add(Island island) {
    m_islands.push_back(std::make_unique<Island>(std::move(island)));
    for (Member& member : m_islands.back()->functions)
        number(member);
}

void Interface::number(Member& member) {
    member.index = m_memberCount++;
    noteRecords(*member.result);
}

void Interface::noteRecords(const Type& type) {
    if (type.element != nullptr)
        noteRecords(*type.element);
    for (const Type::Field& field : type.fields)
        noteRecords(*field.type);
    if (type.kind != Type::Kind::Record)
        return;
    const bool isKnown = std::any_of(m_records.begin(), m_records.end(), [&](const Type* known) {
        return std::string_view(known->record) == type.record;
    });
    if (!isKnown)
        m_records.push_back(&type);
}

} // namespace tq::bindings
