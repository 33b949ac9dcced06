// The start of the XML toolkit, and its memory: what it does where memory runs out.
#pragma once

#include <xercesc/framework/MemoryManager.hpp>

#include <cstddef>

namespace hbs::regfile {

/// Starts Xerces, or counts one more user of it where it runs already, whether for this library or
/// for another part of the process. It is never ended. A failure that Xerces reports is one line on
/// the standard error stream.
///
/// Raises `std::bad_alloc` where memory runs out. As a start can't be taken back halfway and tried
/// again, Xerces gets its memory from a reserve then. Three small objects, of Xerces itself and of
/// ICU, come from elsewhere: without them, `std::bad_alloc` is raised at each later call, too.
void startXerces();

/// The memory of one parser, which has to outlive it. Raises `xercesc::OutOfMemoryException`, on
/// which Xerces abandons half-made objects: they are freed with the memory.
class ParserMemory final : public xercesc::MemoryManager {
public:
    ParserMemory() = default;
    ~ParserMemory() override;
    ParserMemory(const ParserMemory&) = delete;
    ParserMemory& operator=(const ParserMemory&) = delete;

    void* allocate(XMLSize_t size) override;
    void deallocate(void* memory) override;
    /// An exception may outlive the parser.
    xercesc::MemoryManager* getExceptionMemoryManager() override;

private:
    /// In front of each block, which keeps the alignment of `malloc`.
    struct alignas(std::max_align_t) Header {
        Header* before;
        Header* next;
    };

    Header* m_blocks = nullptr;
};

} // namespace hbs::regfile
