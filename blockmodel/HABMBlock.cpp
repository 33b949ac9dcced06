#include "blockmodel/HABMBlock.h"

#include <algorithm>
#include <utility>

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMPathText.h"

namespace {

/// Adds what `make` makes under a name that is free, or gives what `flag` says.
template <class Object, class Make, class NameOf>
Object* created(HABMNamedStore<Object>& store, const std::string& name, bool flag, Make make,
                NameOf nameOf) {
    std::unique_ptr<Object> object(make());
    const std::string_view key = nameOf(*object);
    Object* const added = store.add(key, std::move(object));
    return added == nullptr && flag ? store.find(name) : added;
}

template <class Object>
std::string freeName(const HABMNamedStore<Object>& store, const char* stem, unsigned& next) {
    std::string name;
    do
        name = stem + std::to_string(next++);
    while (store.find(name) != nullptr);
    return name;
}

/// Sets the value of a parameter or an attribute.
template <class Entry>
Entry* valueSet(HABMNamedStore<Entry>& store, const std::string& name, const std::string& value,
                bool replaces) {
    if (name.empty())
        return nullptr;
    Entry* entry = store.find(name);
    if (entry != nullptr && !replaces)
        return nullptr;
    if (entry == nullptr) {
        auto fresh = std::make_unique<Entry>(name);
        const std::string_view key = fresh->getName();
        entry = store.add(key, std::move(fresh));
    }
    entry->setValue(value);
    return entry;
}

} // namespace

HABMBlock::HABMBlock(HABMBlock* parent, const std::string& instance, const std::string& module)
    : m_parent(parent), m_instanceName(instance), m_parts(std::make_unique<Parts>()) {
    m_parts->moduleName = module;
}

HABMBlock::~HABMBlock() = default;

std::unique_ptr<HABMBlock> HABMBlock::createTopBlock(const std::string& name) {
    return std::unique_ptr<HABMBlock>(new HABMBlock(nullptr, "", name));
}

const std::string& HABMBlock::getModuleName() const {
    return m_parts->moduleName;
}

std::string HABMBlock::getInstancePath() const {
    std::size_t length = 0;
    for (const HABMBlock* block = this; block->m_parent != nullptr; block = block->m_parent)
        length += 1 + block->m_instanceName.size();
    std::string path(length, '/');
    for (const HABMBlock* block = this; block->m_parent != nullptr; block = block->m_parent) {
        length -= block->m_instanceName.size();
        std::copy(block->m_instanceName.begin(), block->m_instanceName.end(),
                  path.begin() + static_cast<std::ptrdiff_t>(length));
        --length;
    }
    return path;
}

const HABMBlock* HABMBlock::getTopBlock() const {
    const HABMBlock* block = this;
    while (block->m_parent != nullptr)
        block = block->m_parent;
    return block;
}

HABMBlock* HABMBlock::getTopBlock() {
    return const_cast<HABMBlock*>(std::as_const(*this).getTopBlock());
}

int HABMBlock::level() const {
    int level = 1;
    for (const HABMBlock* block = m_parent; block != nullptr; block = block->m_parent)
        ++level;
    return level;
}

int HABMBlock::levelsBelow() const {
    int most = 0;
    m_parts->subBlocks.forEach(
        [&](const HABMBlock& block) { most = std::max(most, 1 + block.levelsBelow()); });
    return most;
}

const std::string& HABMBlock::getModuleVlnv() const {
    return m_parts->moduleVlnv;
}

void HABMBlock::setModuleVlnv(const std::string& vlnv) {
    m_parts->moduleVlnv = vlnv;
}

const std::string& HABMBlock::getEnablement() const {
    return m_parts->enablement;
}

void HABMBlock::setEnablement(const std::string& expression) {
    m_parts->enablement = expression;
}

const HABMAddrValue& HABMBlock::getBaseAddress() const {
    return m_parts->baseAddress;
}

void HABMBlock::setBaseAddress(const HABMAddrValue& address) {
    m_parts->baseAddress = address;
}

bool HABMBlock::isBlockStub() const {
    return m_parts->isStub;
}

void HABMBlock::setBlockStub(const bool& isStub) {
    m_parts->isStub = isStub;
}

HABMBlock* HABMBlock::createSubBlock(const std::string& instance, const std::string& module,
                                     const bool& flag) {
    if (!habm::isName(instance) || level() >= kMostLevels)
        return nullptr;
    return created(
        m_parts->subBlocks, instance, flag, [&] { return new HABMBlock(this, instance, module); },
        [](const HABMBlock& block) -> std::string_view { return block.m_instanceName; });
}

HABMBlock* HABMBlock::getSubBlock(const std::string& instance) const {
    return m_parts->subBlocks.find(instance);
}

std::vector<HABMBlock*> HABMBlock::getSubBlocks() const {
    return m_parts->subBlocks.all();
}

std::unique_ptr<HABMBlock> HABMBlock::removeSubBlock(const std::string& instance) {
    const HABMBlock* const leaving = m_parts->subBlocks.find(instance);
    if (leaving == nullptr)
        return nullptr;
    if (HABMConnectionIndex* const index = standingConnectionIndex())
        index->removeBelow(*leaving);
    const std::string before = leaving->getInstancePath();
    std::unique_ptr<HABMBlock> block = m_parts->subBlocks.take(instance);
    block->m_parent = nullptr;
    block->m_instanceName.clear();
    block->movePaths(before, "");
    return block;
}

HABMPort* HABMBlock::createPort(const std::string& name, const bool& flag) {
    if (!habm::isName(name))
        return nullptr;
    return created(
        m_parts->ports, name, flag, [&] { return new HABMPort(this, name); },
        [](const HABMPort& port) -> std::string_view { return port.getPortName(); });
}

HABMPort* HABMBlock::getPort(const std::string& name) const {
    return m_parts->ports.find(name);
}

std::vector<HABMPort*> HABMBlock::getPorts() const {
    return m_parts->ports.all();
}

HABMInterface* HABMBlock::createInterface(const std::string& name, const bool& flag) {
    if (!habm::isName(name))
        return nullptr;
    return created(
        m_parts->interfaces, name, flag, [&] { return new HABMInterface(this, name); },
        [](const HABMInterface& interface) -> std::string_view {
            return interface.getInterfaceName();
        });
}

HABMInterface* HABMBlock::getInterface(const std::string& name) const {
    return m_parts->interfaces.find(name);
}

std::vector<HABMInterface*> HABMBlock::getInterfaces() const {
    return m_parts->interfaces.all();
}

bool HABMBlock::removeInterface(const std::string& name) {
    return m_parts->interfaces.take(name) != nullptr;
}

HABMPortConnection* HABMBlock::createPortConnection(const std::string& name, const bool& flag) {
    const std::string chosen = name.empty() ? freeName(m_parts->portConnections, "port_connection_",
                                                       m_parts->nextPortConnection)
                                            : name;
    const std::size_t before = m_parts->portConnections.size();
    HABMPortConnection* const connection = created(
        m_parts->portConnections, chosen, flag,
        [&] { return new HABMPortConnection(this, chosen); },
        [](const HABMPortConnection& c) -> std::string_view { return c.getName(); });
    HABMConnectionIndex* const index = standingConnectionIndex();
    if (index != nullptr && m_parts->portConnections.size() > before)
        index->add(*connection);
    return connection;
}

std::vector<HABMPortConnection*> HABMBlock::getPortConnections() const {
    return m_parts->portConnections.all();
}

bool HABMBlock::removePortConnection(const std::string& name) {
    const std::unique_ptr<HABMPortConnection> removed = m_parts->portConnections.take(name);
    HABMConnectionIndex* const index = standingConnectionIndex();
    if (removed != nullptr && index != nullptr)
        index->remove(*removed);
    return removed != nullptr;
}

HABMInterfaceConnection* HABMBlock::createInterfaceConnection(const std::string& name,
                                                              const bool& flag) {
    const std::string chosen =
        name.empty() ? freeName(m_parts->interfaceConnections, "interface_connection_",
                                m_parts->nextInterfaceConnection)
                     : name;
    const std::size_t before = m_parts->interfaceConnections.size();
    HABMInterfaceConnection* const connection = created(
        m_parts->interfaceConnections, chosen, flag,
        [&] { return new HABMInterfaceConnection(this, chosen); },
        [](const HABMInterfaceConnection& c) -> std::string_view { return c.getName(); });
    HABMConnectionIndex* const index = standingConnectionIndex();
    if (index != nullptr && m_parts->interfaceConnections.size() > before)
        index->add(*connection);
    return connection;
}

std::vector<HABMInterfaceConnection*> HABMBlock::getInterfaceConnections() const {
    return m_parts->interfaceConnections.all();
}

bool HABMBlock::removeInterfaceConnection(const std::string& name) {
    const std::unique_ptr<HABMInterfaceConnection> removed =
        m_parts->interfaceConnections.take(name);
    HABMConnectionIndex* const index = standingConnectionIndex();
    if (removed != nullptr && index != nullptr)
        index->remove(*removed);
    return removed != nullptr;
}

HABMParameter* HABMBlock::setParameter(const std::string& name, const std::string& value,
                                       const bool& flag) {
    return valueSet(m_parts->parameters, name, value, flag);
}

std::vector<HABMGeneric*> HABMBlock::getGenerics() const {
    const std::vector<HABMParameter*> parameters = m_parts->parameters.all();
    return {parameters.begin(), parameters.end()};
}

HABMAttribute* HABMBlock::setAttribute(const std::string& name, const std::string& value,
                                       const bool& flag) {
    return valueSet(m_parts->attributes, name, value, flag);
}

HABMAttribute* HABMBlock::getAttribute(const std::string& name) const {
    return m_parts->attributes.find(name);
}

std::vector<HABMAttribute*> HABMBlock::getAttributes() const {
    return m_parts->attributes.all();
}

HABMMemoryMap* HABMBlock::createMemoryMap(const std::string& name) {
    if (!habm::isName(name))
        return nullptr;
    return created(
        m_parts->memoryMaps, name, false, [&] { return new HABMMemoryMap(this, name); },
        [](const HABMMemoryMap& map) -> std::string_view { return map.getName(); });
}

HABMMemoryMap* HABMBlock::getMemoryMap(const std::string& name) const {
    return m_parts->memoryMaps.find(name);
}

std::vector<HABMMemoryMap*> HABMBlock::getMemoryMaps() const {
    return m_parts->memoryMaps.all();
}

HABMAddrSpace* HABMBlock::createAddrSpace(const std::string& name) {
    if (!habm::isName(name))
        return nullptr;
    return created(
        m_parts->addrSpaces, name, false, [&] { return new HABMAddrSpace(this, name); },
        [](const HABMAddrSpace& space) -> std::string_view { return space.getName(); });
}

HABMAddrSpace* HABMBlock::getAddrSpace(const std::string& name) const {
    return m_parts->addrSpaces.find(name);
}

std::vector<HABMAddrSpace*> HABMBlock::getAddrSpaces() const {
    return m_parts->addrSpaces.all();
}

HABMAddrAssign* HABMBlock::createAddrAssign(const std::string& name) {
    if (!habm::isName(name))
        return nullptr;
    return created(
        m_parts->addrAssigns, name, false, [&] { return new HABMAddrAssign(this, name); },
        [](const HABMAddrAssign& assign) -> std::string_view { return assign.getName(); });
}

HABMAddrAssign* HABMBlock::getAddrAssign(const std::string& name) const {
    return m_parts->addrAssigns.find(name);
}

std::vector<HABMAddrAssign*> HABMBlock::getAddrAssigns() const {
    return m_parts->addrAssigns.all();
}

HABMConnectionIndex& HABMBlock::connectionIndex() {
    HABMBlock& top = *getTopBlock();
    if (top.m_parts->connectionIndex == nullptr)
        top.m_parts->connectionIndex = std::make_unique<HABMConnectionIndex>(top);
    return *top.m_parts->connectionIndex;
}

HABMConnectionIndex* HABMBlock::standingConnectionIndex() const {
    return getTopBlock()->m_parts->connectionIndex.get();
}
