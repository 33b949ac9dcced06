// Makes running out of memory an exception while values are added to a plain RapidJSON document.
// Private to the addressing report.
#pragma once

#include <algorithm>
#include <cstddef>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "base/RapidJson.h"

namespace hbs_addressing {

/// RapidJSON writes through the null pointer that a pool without memory returns. So all memory is
/// requested before each step, in pieces of the document's own pool, and values are made in these
/// pieces:
///
///     CheckedPool pool(document.GetAllocator());
///     object.AddMember(name, value, pool.withRoomFor(CheckedPool::growthOf(object)));
class CheckedPool {
public:
    using Pool = rapidjson::Document::AllocatorType;

    explicit CheckedPool(Pool& pool) : m_pool(pool) {}

    /// A pool in which so many bytes can be had. Raises `std::bad_alloc`.
    Pool& withRoomFor(std::size_t bytes) {
        if (!m_piece || m_piece->Capacity() - m_piece->Size() < bytes)
            addPiece(std::max(bytes, kPieceBytes));
        return *m_piece;
    }

    /// What a copy of a text takes.
    static std::size_t bytesOf(const std::string& text) { return text.size() + 1 + kAlignment; }

    /// What one more member takes in an object that was built by adding members.
    static std::size_t growthOf(const rapidjson::Value& object) {
        const std::size_t count = object.IsObject() ? object.MemberCount() : 0;
        std::size_t capacity = 0;
        while (capacity < count)
            capacity = next(capacity);
        return capacity == count ? next(capacity) * sizeof(rapidjson::Value::Member) + kAlignment
                                 : 0;
    }

    /// What an array takes into which copies of the texts are pushed.
    static std::size_t bytesOf(const std::vector<std::string>& texts) {
        std::size_t bytes = 0;
        for (const std::string& text : texts)
            bytes += bytesOf(text);
        std::size_t capacity = 0;
        while (capacity < texts.size()) {
            capacity = next(capacity);
            bytes += capacity * sizeof(rapidjson::Value) + kAlignment;
        }
        return bytes;
    }

private:
    static constexpr std::size_t kPieceBytes = std::size_t{16} << 10U;
    static constexpr std::size_t kHeaderBytes = 64; ///< of a piece, at most
    static constexpr std::size_t kAlignment = 8;

    /// How the capacity of RapidJSON's arrays and objects grows.
    static std::size_t next(std::size_t capacity) {
        return capacity == 0 ? 16 : capacity + (capacity + 1) / 2;
    }

    void addPiece(std::size_t bytes) {
        void* const memory = m_pool.Malloc(bytes + kHeaderBytes);
        if (memory == nullptr)
            throw std::bad_alloc();
        m_piece.emplace(memory, bytes + kHeaderBytes);
    }

    Pool& m_pool;
    std::optional<Pool> m_piece;
};

} // namespace hbs_addressing
