// Writes a block as the text of a ".bmj" file.

#include "base/JsonDocument.h"
#include "base/RapidJson.h"

#include <cstddef>
#include <cstdint>
#include <set>
#include <string_view>

#include "blockmodel/HABMBmj.h"
#include "blockmodel/HABMSchema.h"

namespace habm::bmj {

namespace {

/// So small that a piece is still in the cache when it is written.
constexpr std::size_t kPieceBytes = std::size_t{1} << 16;

/// RapidJSON makes room for a text as if all its bytes needed an escape of six, and reckons the
/// room, with the quotes, in 32 bits. A longer text would overrun it.
constexpr std::size_t kMostTextBytes = (0xFFFFFFFF - 2) / 6;

/// Those of an object that has just been created.
template <class Object>
const FieldsOf<Object>& freshFields() {
    static const FieldsOf<Object> fresh{};
    return fresh;
}

class BlockWriter {
public:
    explicit BlockWriter(const Sink& sink) : m_sink(sink) {}

    /// True if all was taken.
    bool file(const HABMBlock& top) {
        m_writer.StartObject();
        key("format");
        string(kFormat);
        key("version");
        m_writer.Uint(kVersion);
        key("block");
        object(top);
        m_writer.EndObject();
        m_buffer.Put('\n');
        giveOut();
        return m_isTaken;
    }

private:
    void giveOut() {
        m_bytes += m_buffer.GetSize();
        m_isTaken = m_isTaken && m_bytes <= kMostBytes &&
                    m_sink({m_buffer.GetString(), m_buffer.GetSize()});
        m_buffer.Clear();
    }
    void giveOutIfFull() {
        if (m_buffer.GetSize() >= kPieceBytes)
            giveOut();
    }

    void key(std::string_view name) { string(name); }
    void string(std::string_view text) {
        m_isTaken = m_isTaken && text.size() <= kMostTextBytes;
        m_writer.String(text.data(), m_isTaken ? static_cast<rapidjson::SizeType>(text.size()) : 0);
    }
    static std::string textOf(const HABMAddrValue& value) {
        return value.isValid() ? value.getHexStringValue(0) : std::string();
    }
    void pair(std::string_view first, std::string_view second) {
        m_writer.StartArray();
        string(first);
        string(second);
        m_writer.EndArray();
    }

    // The value of a field.

    void put(const std::string& text) { string(text); }
    void put(unsigned number) { m_writer.Uint(number); }
    void put(bool flag) { m_writer.Bool(flag); }
    void put(const HABMAddrValue& value) { string(textOf(value)); }
    void put(const HABMAddrAperture& value) {
        pair(textOf(value.getStart()), textOf(value.getSize()));
    }
    template <class Item>
    void put(const std::set<Item>& items) {
        m_writer.StartArray();
        for (const Item& item : items) {
            put(item);
            giveOutIfFull();
        }
        m_writer.EndArray();
    }

    /// A member, unless the value is that of a fresh object.
    template <class Fields, class Value>
    void member(const Field<Fields, Value>& field, const Fields& fields, const Fields& fresh) {
        if (fields.*field.place == fresh.*field.place)
            return;
        key(field.key);
        put(fields.*field.place);
    }
    /// The texts are compared, as a number that isn't one of the enumeration's has the first text.
    template <class Fields, class Value>
    void member(const Choice<Fields, Value>& field, const Fields& fields, const Fields& fresh) {
        if (fields.*field.place == fresh.*field.place)
            return;
        const std::string text = field.decode(fields.*field.place);
        if (text == field.decode(fresh.*field.place))
            return;
        key(field.key);
        string(text);
    }

    template <class Pair>
    void object(const Pair& entry) requires(!HasFields<Pair>) {
        pair(nameOf(entry), valueOf(entry));
    }
    template <class Object>
    void object(const Object& owner) requires HasFields<Object> {
        m_writer.StartObject();
        if (!nameOf(owner).empty()) { // a top block's is
            key(kNameKey<Object>);
            string(nameOf(owner));
        }
        const auto& fields = HABMObjectAccess::fieldsOf(owner);
        forEachField<Object>(
            [&](const auto& field) { member(field, fields, freshFields<Object>()); });
        forEachStore([&](const auto& owned, const auto& objects) { store(owned.key, objects); },
                     owner);
        m_writer.EndObject();
    }
    /// An array of the objects; writes nothing for an empty list.
    template <class Store>
    void store(std::string_view name, const Store& store) {
        if (store.size() == 0)
            return;
        key(name);
        m_writer.StartArray();
        store.forEach([&](const auto& owned) {
            if (!m_isTaken)
                return;
            object(owned);
            giveOutIfFull();
        });
        m_writer.EndArray();
    }

    using Buffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, JsonAllocator>;

    const Sink& m_sink;
    bool m_isTaken = true;     ///< all so far; nothing more is worth writing if not
    std::uint64_t m_bytes = 0; ///< given out
    Buffer m_buffer;
    rapidjson::Writer<Buffer, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator> m_writer{
        m_buffer};
};

} // namespace

bool write(const HABMBlock& top, const Sink& sink) {
    return BlockWriter(sink).file(top);
}

} // namespace habm::bmj
