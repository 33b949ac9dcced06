#include "memory/failing_allocations.h"

#include <execinfo.h>
#include <link.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdlib>
#include <new>
#include <string_view>

// The allocator underneath: the sanitizers' where one is built in, else the C library's.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
#define TQ_UNDERNEATH(function) __interceptor_##function
#elif defined(__has_feature)
#if __has_feature(address_sanitizer) || __has_feature(thread_sanitizer)
#define TQ_UNDERNEATH(function) __interceptor_##function
#endif
#endif
#ifndef TQ_UNDERNEATH
#define TQ_UNDERNEATH(function) __libc_##function
#endif

// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" {
void* TQ_UNDERNEATH(malloc)(std::size_t size);
void* TQ_UNDERNEATH(calloc)(std::size_t count, std::size_t size);
void* TQ_UNDERNEATH(realloc)(void* memory, std::size_t size);
void* TQ_UNDERNEATH(memalign)(std::size_t alignment, std::size_t size);
void TQ_UNDERNEATH(free)(void* memory);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace {

std::atomic<bool> g_armed = false;
std::atomic<std::uint64_t> g_count = 0;
std::atomic<std::uint64_t> g_first = 0;
std::atomic<std::uint64_t> g_last = 0;
std::atomic<bool> g_failed = false;
std::atomic<std::int64_t> g_live = 0;

struct Range {
    std::uintptr_t begin = 0;
    std::uintptr_t end = 0;
};

bool isIn(const Range& code, const void* address) {
    const auto number = reinterpret_cast<std::uintptr_t>(address);
    return number >= code.begin && number < code.end;
}

Range g_tcl;
Range g_libc;

Range codeOf(const dl_phdr_info& library) {
    for (int i = 0; i < library.dlpi_phnum; ++i) {
        const auto& segment = library.dlpi_phdr[i];
        if (segment.p_type == PT_LOAD && (segment.p_flags & PF_X) != 0)
            return {library.dlpi_addr + segment.p_vaddr,
                    library.dlpi_addr + segment.p_vaddr + segment.p_memsz};
    }
    return {};
}

int findLibrary(dl_phdr_info* library, std::size_t, void*) {
    const std::string_view name = library->dlpi_name;
    if (name.find("libtcl") != std::string_view::npos)
        g_tcl = codeOf(*library);
    else if (name.find("/libc.so") != std::string_view::npos)
        g_libc = codeOf(*library);
    return 0;
}

std::array<void*, 32> framesAbove() {
    std::array<void*, 32> frames{};
    backtrace(frames.data(), static_cast<int>(frames.size()));
    return frames;
}

[[maybe_unused]] const bool g_isReady = [] {
    dl_iterate_phdr(findLibrary, nullptr);
    framesAbove(); // the first call allocates
    return true;
}();

bool isTcl(const void* caller) {
    return isIn(g_tcl, caller);
}

/// Whether the C library allocates at the request of Tcl.
bool isForTcl(const void* caller) {
    if (!isIn(g_libc, caller))
        return false;
    const auto frames = framesAbove();
    return std::any_of(frames.begin(), frames.end(), isTcl);
}

bool failsNow(const void* caller) {
    if (!g_armed.load() || isTcl(caller) || isForTcl(caller))
        return false;
    const std::uint64_t number = ++g_count;
    if (number < g_first || number > g_last)
        return false;
    g_failed = true;
    errno = ENOMEM;
    return true;
}

void* counted(void* memory, const void* caller) {
    if (memory != nullptr && !isTcl(caller))
        ++g_live;
    return memory;
}

void release(void* memory, const void* caller) {
    if (memory != nullptr && !isTcl(caller))
        --g_live;
    TQ_UNDERNEATH(free)(memory);
}

void* allocate(std::size_t size, const void* caller) {
    return failsNow(caller) ? nullptr : counted(TQ_UNDERNEATH(malloc)(size), caller);
}

void* allocateAligned(std::size_t alignment, std::size_t size, const void* caller) {
    return failsNow(caller) ? nullptr : counted(TQ_UNDERNEATH(memalign)(alignment, size), caller);
}

[[noreturn]] void raiseBadAlloc() {
    if (const std::new_handler handler = std::get_new_handler())
        handler();
    throw std::bad_alloc();
}

void* allocateOrThrow(std::size_t size, const void* caller) {
    void* const memory = allocate(size == 0 ? 1 : size, caller);
    if (memory == nullptr)
        raiseBadAlloc();
    return memory;
}

void* allocateAlignedOrThrow(std::size_t alignment, std::size_t size, const void* caller) {
    void* const memory = allocateAligned(alignment, size == 0 ? 1 : size, caller);
    if (memory == nullptr)
        raiseBadAlloc();
    return memory;
}

} // namespace

#define TQ_CALLER __builtin_return_address(0)

extern "C" {

void* malloc(std::size_t size) {
    return allocate(size, TQ_CALLER);
}

void* calloc(std::size_t count, std::size_t size) {
    const void* const caller = TQ_CALLER;
    return failsNow(caller) ? nullptr : counted(TQ_UNDERNEATH(calloc)(count, size), caller);
}

void* realloc(void* memory, std::size_t size) {
    const void* const caller = TQ_CALLER;
    if (memory == nullptr)
        return allocate(size, caller);
    if (size == 0) {
        release(memory, caller);
        return nullptr;
    }
    return failsNow(caller) ? nullptr : TQ_UNDERNEATH(realloc)(memory, size);
}

void* memalign(std::size_t alignment, std::size_t size) {
    return allocateAligned(alignment, size, TQ_CALLER);
}

void* aligned_alloc(std::size_t alignment, std::size_t size) {
    return allocateAligned(alignment, size, TQ_CALLER);
}

int posix_memalign(void** result, std::size_t alignment, std::size_t size) {
    void* const memory = allocateAligned(alignment, size, TQ_CALLER);
    if (memory == nullptr)
        return ENOMEM;
    *result = memory;
    return 0;
}

void free(void* memory) {
    release(memory, TQ_CALLER);
}

} // extern "C"

// The library's own would do without the sanitizers, which bring theirs.

void* operator new(std::size_t size) {
    return allocateOrThrow(size, TQ_CALLER);
}
void* operator new[](std::size_t size) {
    return allocateOrThrow(size, TQ_CALLER);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size, TQ_CALLER);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size, TQ_CALLER);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateAlignedOrThrow(static_cast<std::size_t>(alignment), size, TQ_CALLER);
}
void* operator new[](std::size_t size, std::align_val_t alignment) {
    return allocateAlignedOrThrow(static_cast<std::size_t>(alignment), size, TQ_CALLER);
}
void operator delete(void* memory) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete[](void* memory) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete(void* memory, std::size_t) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete[](void* memory, std::size_t) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete[](void* memory, std::align_val_t) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory, TQ_CALLER);
}
void operator delete[](void* memory, std::size_t, std::align_val_t) noexcept {
    release(memory, TQ_CALLER);
}

namespace memory {

FailingAllocation::FailingAllocation(std::uint64_t number, bool andAllLater) {
    g_count = 0;
    g_failed = false;
    g_first = number;
    g_last = andAllLater ? UINT64_MAX : number;
    g_armed = number != 0;
}

FailingAllocation::~FailingAllocation() {
    g_armed = false;
}

bool hasFailed() {
    return g_failed;
}

std::int64_t liveAllocations() {
    return g_live;
}

} // namespace memory
