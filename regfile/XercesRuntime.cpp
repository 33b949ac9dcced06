#include "regfile/XercesRuntime.h"

#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PanicHandler.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/XMLException.hpp>
#include <xercesc/util/XMLUni.hpp>

#include <array>
#include <cstdlib>
#include <functional>
#include <iostream>
#include <new>

#include "regfile/XmlGuards.h"

namespace hbs::regfile {

namespace {

/// Memory for objects that exist as long as Xerces does.
class RuntimeMemory final : public xercesc::MemoryManager {
public:
    /// Says whether the reserve may be used where the process has no memory left.
    void useReserve(bool isUsed) { m_usesReserve = isUsed; }

    void* allocate(XMLSize_t size) override {
        void* memory = std::malloc(size);
        if (memory == nullptr && m_usesReserve)
            memory = fromReserve(size);
        if (memory == nullptr)
            throw xercesc::OutOfMemoryException();
        return memory;
    }
    void deallocate(void* memory) override {
        if (!isOfReserve(memory))
            std::free(memory);
    }
    xercesc::MemoryManager* getExceptionMemoryManager() override { return this; }

private:
    static constexpr std::size_t kReserveBytes = std::size_t{1} << 20U;
    static constexpr std::size_t kAlignment = alignof(std::max_align_t);

    void* fromReserve(std::size_t size) {
        const std::size_t rounded = (size + kAlignment - 1) / kAlignment * kAlignment;
        if (rounded > m_reserve.size() - m_used)
            return nullptr;
        void* const memory = m_reserve.data() + m_used;
        m_used += rounded;
        return memory;
    }
    [[nodiscard]] bool isOfReserve(const void* memory) const {
        const std::less<> isBelow;
        return !isBelow(memory, m_reserve.data()) &&
               isBelow(memory, m_reserve.data() + m_reserve.size());
    }

    bool m_usesReserve = false;
    std::size_t m_used = 0;
    alignas(
        kAlignment) std::array<char, kReserveBytes> m_reserve; // no page of it is touched before
};

/// Xerces' own one ends the process with status 255.
class PanicHandler final : public xercesc::PanicHandler {
public:
    void panic(PanicReasons /*reason*/) override { throw xercesc::OutOfMemoryException(); }
};

bool g_isBroken = false; ///< after a start that failed halfway

/// Never destroyed: another user of Xerces may end it at exit, which needs both objects.
template <class Object>
Object& lasting() {
    alignas(Object) static std::array<char, sizeof(Object)> place;
    static Object& object = *new (place.data()) Object;
    return object;
}

/// Far more than what Xerces and ICU ask others for while they start: where that is missing they
/// aren't started at all.
constexpr std::size_t kProbeBytes = std::size_t{1} << 16U;

void initialize() {
    ::operator delete(::operator new(kProbeBytes));
    auto& memory = lasting<RuntimeMemory>();
    memory.useReserve(true);
    try {
        xercesc::XMLPlatformUtils::Initialize(xercesc::XMLUni::fgXercescDefaultLocale, nullptr,
                                              &lasting<PanicHandler>(), &memory);
    } catch (const xercesc::XMLException&) {
        memory.useReserve(false);
        throw;
    } catch (...) { // out of memory in ICU
        memory.useReserve(false);
        g_isBroken = true;
    }
    memory.useReserve(false);
}

} // namespace

void startXerces() {
    try {
        if (!g_isBroken)
            initialize();
    } catch (const xercesc::XMLException& error) {
        std::cerr << "XML toolkit initialization error: " << toText(error.getMessage())
                  << std::endl;
    }
    if (g_isBroken)
        throw std::bad_alloc();
}

ParserMemory::~ParserMemory() {
    while (m_blocks != nullptr)
        deallocate(m_blocks + 1);
}

void* ParserMemory::allocate(XMLSize_t size) {
    auto* const block = static_cast<Header*>(std::malloc(sizeof(Header) + size));
    if (block == nullptr)
        throw xercesc::OutOfMemoryException();
    *block = {nullptr, m_blocks};
    if (m_blocks != nullptr)
        m_blocks->before = block;
    m_blocks = block;
    return block + 1;
}

void ParserMemory::deallocate(void* memory) {
    if (memory == nullptr)
        return;
    Header* const block = static_cast<Header*>(memory) - 1;
    (block->before != nullptr ? block->before->next : m_blocks) = block->next;
    if (block->next != nullptr)
        block->next->before = block->before;
    std::free(block);
}

xercesc::MemoryManager* ParserMemory::getExceptionMemoryManager() {
    return xercesc::XMLPlatformUtils::fgMemoryManager;
}

} // namespace hbs::regfile
