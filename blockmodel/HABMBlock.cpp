#include "blockmodel/HABMBlock.h"

#include <algorithm>
#include <utility>

#include "blockmodel/HABMBlockParts.h"
#include "blockmodel/HABMPathText.h"

namespace {

/// Sets the value of a parameter or an attribute.
template <class Entry>
Entry* setValue(HABMNamedStore<Entry>& store, const std::string& name, const std::string& value,
                bool replaces) {
    if (name.empty())
        return nullptr;
    Entry* const fresh = store.create(name, name, value);
    if (fresh != nullptr || !replaces)
        return fresh;
    Entry* const known = store.find(name);
    known->setValue(value);
    return known;
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
    // Measured first, so that the text is allocated once: reports ask for the path of each object.
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

bool HABMBlock::isRecursive() const {
    const std::string& vlnv = getModuleVlnv();
    for (const HABMBlock* block = m_parent; block != nullptr && !vlnv.empty();
         block = block->m_parent)
        if (block->getModuleVlnv() == vlnv)
            return true;
    return false;
}

HABMBlock* HABMBlock::createSubBlock(const std::string& instance, const std::string& module,
                                     const bool& flag) {
    // The bound keeps the walks over a tree, which recurse, within the stack.
    if (!habm::isName(instance) || level() >= kMostLevels)
        return nullptr;
    return m_parts->subBlocks.createOrFind(instance, flag, this, instance, module);
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
    const std::string before = leaving->getInstancePath();
    // From here on nothing fails: only the update of the index allocates, and it handles failure.
    HABMConnectionIndex::update(*this,
                                [&](HABMConnectionIndex& index) { index.removeBelow(*leaving); });
    std::unique_ptr<HABMBlock> block = m_parts->subBlocks.take(instance);
    block->m_parent = nullptr;
    block->m_instanceName.clear();
    block->movePaths(before, "");
    return block;
}

HABMPort* HABMBlock::createPort(const std::string& name, const bool& flag) {
    return habm::isName(name) ? m_parts->ports.createOrFind(name, flag, this, name) : nullptr;
}

HABMPort* HABMBlock::getPort(const std::string& name) const {
    return m_parts->ports.find(name);
}

std::vector<HABMPort*> HABMBlock::getPorts() const {
    return m_parts->ports.all();
}

HABMInterface* HABMBlock::createInterface(const std::string& name, const bool& flag) {
    return habm::isName(name) ? m_parts->interfaces.createOrFind(name, flag, this, name) : nullptr;
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

HABMParameter* HABMBlock::setParameter(const std::string& name, const std::string& value,
                                       const bool& flag) {
    return setValue(m_parts->parameters, name, value, flag);
}

std::vector<HABMGeneric*> HABMBlock::getGenerics() const {
    const std::vector<HABMParameter*> parameters = m_parts->parameters.all();
    return {parameters.begin(), parameters.end()};
}

HABMAttribute* HABMBlock::setAttribute(const std::string& name, const std::string& value,
                                       const bool& flag) {
    return setValue(m_parts->attributes, name, value, flag);
}

HABMAttribute* HABMBlock::getAttribute(const std::string& name) const {
    return m_parts->attributes.find(name);
}

std::vector<HABMAttribute*> HABMBlock::getAttributes() const {
    return m_parts->attributes.all();
}
