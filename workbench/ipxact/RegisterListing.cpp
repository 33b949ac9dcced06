#include "workbench/ipxact/RegisterListing.h"

#include <algorithm>
#include <utility>

#include "workbench/ipxact/Arithmetic.h"

namespace tq::ipxact {

namespace {

/// The first hard reset, else the first of all.
const Reset* chosen(const std::vector<Reset>& resets) {
    for (const Reset& reset : resets)
        if (reset.type.empty() || reset.type == "HARD")
            return &reset;
    return resets.empty() ? nullptr : &resets.front();
}

/// Row and column of one array's element.
std::vector<std::size_t> indicesOf(const Array& array, std::size_t linear) {
    std::vector<std::size_t> indices(array.dimensions.size());
    for (std::size_t i = indices.size(); i-- > 0;) {
        const auto count =
            static_cast<std::size_t>(std::max<Int128>(array.dimensions[i].count.value_or(1), 1));
        indices[i] = linear % count;
        linear /= count;
    }
    return indices;
}

std::string elementName(std::string name, const Array& array, std::size_t linear) {
    const std::vector<std::size_t> indices = indicesOf(array, linear);
    for (std::size_t i = 0; i < indices.size(); ++i) {
        const auto& labels = array.dimensions[i].labels;
        const std::string label =
            indices[i] < labels.size() ? labels[indices[i]] : std::to_string(indices[i]);
        const std::size_t mark = name.find("%s");
        if (mark == std::string::npos)
            name += "[" + label + "]";
        else
            name.replace(mark, 2, label);
    }
    return name;
}

Access inherited(Access own, Access around) {
    return own == Access::Unset ? around : own;
}

/// How bits inside a bank's item lie in the bank.
struct Placement {
    Number base;       ///< bits
    Int128 row = 0;    ///< bits of the bank beside one another; 0 for items behind one another
    Int128 width = 0;  ///< bits of the item in such a row
    Int128 column = 0; ///< where those start
};

Number placed(const Placement& placement, const Number& bit) {
    if (placement.row == 0 || !bit)
        return plus(placement.base, bit);
    const Int128 row = *bit / placement.width;
    return plus(placement.base,
                plus(times(row, placement.row), placement.column + *bit % placement.width));
}

/// Bits of an item beside others.
Number rowOf(const MemoryItem& item) {
    if (item.kind != MemoryItem::Kind::Bank)
        return item.width;
    Number row = 0;
    for (const MemoryItem& inner : item.items)
        row = item.isParallel ? plus(row, rowOf(inner))
                              : Number(std::max(row.value_or(0), rowOf(inner).value_or(0)));
    return row;
}

Number rangeOf(const MemoryItem& item) {
    if (item.kind != MemoryItem::Kind::Bank)
        return item.range;
    Number range = 0;
    for (const MemoryItem& inner : item.items)
        range = plus(range, rangeOf(inner));
    return range;
}

class Lister {
public:
    using BlockVisitor = std::function<void(const ListedBlock&)>;

    explicit Lister(const std::function<void(const ListedRegister&)>& visit,
                    BlockVisitor visitBlock = {})
        : m_visit(visit), m_visitBlock(std::move(visitBlock)) {}

    void listMap(const MemoryMap& map, const std::string& prefix) {
        m_unitBits = map.addressUnitBits;
        const std::string path = prefix + map.name;
        m_modes.clear();
        listItems(map.items, path);
        for (const MemoryRemap& remap : map.remaps) {
            m_modes = remap.modes;
            listItems(remap.items, path + "/" + remap.name);
        }
        m_modes.clear();
    }
    [[nodiscard]] bool isCutShort() const { return m_isCutShort; }

private:
    void listItems(const std::vector<MemoryItem>& items, const std::string& path) {
        for (const MemoryItem& item : items) {
            m_placements.push_back({times(item.base, m_unitBits), 0, 0, 0});
            listItem(item, path, Access::ReadWrite);
            m_placements.pop_back();
        }
    }
    void listItem(const MemoryItem& item, const std::string& path, Access access) {
        access = inherited(item.access, access);
        if (item.kind == MemoryItem::Kind::Bank)
            listBank(item, path + "/" + item.name, access);
        else if (item.kind == MemoryItem::Kind::Block)
            forEachElement(item.array, item.range, [&](const Number& offset, std::size_t linear) {
                const std::string inner = path + "/" + elementName(item.name, item.array, linear);
                if (m_visitBlock)
                    m_visitBlock(
                        {inner, addressOf(offset), item.range, m_unitBits, m_modes, &item, {}});
                listRegisters(item.registers, inner, offset, access);
            });
    }
    void listBank(const MemoryItem& bank, const std::string& path, Access access) {
        const Number row = rowOf(bank);
        Number column = 0, base = 0;
        for (const MemoryItem& item : bank.items) {
            const Number width = rowOf(item);
            Placement placement;
            if (!bank.isParallel)
                placement.base = base;
            else if (row && column && width && *width > 0)
                placement = {0, *row, *width, *column};
            m_placements.push_back(placement);
            listItem(item, path, access);
            m_placements.pop_back();
            column = plus(column, width);
            base = plus(base, times(rangeOf(item), m_unitBits));
        }
    }

    /// Calls `use(offset, linear index)` for each element.
    template <class Use>
    void forEachElement(const Array& array, const Number& size, Use use) {
        const Int128 count = countOf(array).value_or(1);
        const Number stride = strideOf(array, size);
        use(Number(0), std::size_t{0});
        ++m_repeated;
        for (Int128 linear = 1; linear < count && take(1); ++linear)
            use(times(stride, linear), static_cast<std::size_t>(linear));
        --m_repeated;
    }

    void listRegisters(const std::vector<Register>& items, const std::string& path,
                       const Number& base, Access access) {
        for (const Register& item : items)
            forEachElement(item.array, sizeOf(item, m_unitBits),
                           [&](const Number& offset, std::size_t linear) {
                               const std::string name = elementName(item.name, item.array, linear);
                               listOne(item, path, name, plus(plus(base, item.offset), offset),
                                       inherited(item.access, access));
                           });
    }
    void listOne(const Register& item, const std::string& path, const std::string& name,
                 const Number& offset, Access access) {
        if (item.isFile) {
            listRegisters(item.items, path + "/" + name, offset, access);
            return;
        }
        const std::string inner = path + "/" + name;
        report(item, inner, name, offset, access);
        for (const Register& alternate : item.alternates)
            reportAlternate(alternate, item, inner, offset, access);
    }
    void reportAlternate(const Register& alternate, const Register& item, const std::string& path,
                         const Number& offset, Access access) {
        const std::string modes = m_modes;
        m_modes += m_modes.empty() || alternate.modes.empty() ? "" : ", ";
        m_modes += alternate.modes;
        Register whole = alternate;
        if (!whole.size)
            whole.size = item.size;
        report(alternate, path + "/" + alternate.name, alternate.name, offset,
               inherited(alternate.access, access), whole.size);
        m_modes = modes;
    }
    void report(const Register& item, const std::string& path, const std::string& name,
                const Number& offset, Access access) {
        report(item, path, name, offset, access, item.size);
    }
    void report(const Register& item, const std::string& path, const std::string& name,
                const Number& offset, Access access, const Number& size) {
        ListedRegister entry;
        entry.path = path;
        entry.name = name;
        entry.address = addressOf(offset);
        entry.width = size;
        entry.access = access;
        entry.modes = m_modes;
        entry.source = &item;
        const Reset* const own = chosen(item.resets);
        for (const Field& field : item.fields)
            addField(entry, field, own == nullptr ? Number() : own->value);
        entry.reset = own != nullptr ? own->value : resetOf(entry.fields);
        if (m_repeated == 0 || take(entry.fields.size() + 1))
            m_visit(entry);
    }
    /// A field without a reset of its own has its bits of the register's, `own`.
    void addField(ListedRegister& entry, const Field& field, const Number& own) {
        const Reset* const reset = chosen(field.resets);
        forEachElement(field.array, field.bitWidth, [&](const Number& offset, std::size_t linear) {
            entry.fields.push_back({elementName(field.name, field.array, linear),
                                    plus(field.bitOffset, offset), field.bitWidth,
                                    inherited(field.access, entry.access),
                                    reset == nullptr ? Number() : reset->value, &field});
            if (ListedField& last = entry.fields.back(); reset == nullptr)
                last.reset = bitsOf(own, last.bitOffset, last.bitWidth);
        });
    }
    static Number bitsOf(const Number& value, const Number& offset, const Number& width) {
        if (!value || !offset || !width || *offset < 0 || *offset > 126 || *width < 1 ||
            *width > 126)
            return std::nullopt;
        return (*value >> static_cast<int>(*offset)) &
               ((Int128{1} << static_cast<int>(*width)) - 1);
    }
    /// Bits that no field resets are 0 then; unknown where no field has a reset.
    static Number resetOf(const std::vector<ListedField>& fields) {
        Number sum;
        for (const ListedField& field : fields) {
            if (!field.reset)
                continue;
            if (!field.bitOffset || *field.bitOffset < 0 || *field.bitOffset > 126)
                return std::nullopt;
            const Int128 factor = Int128{1} << static_cast<int>(*field.bitOffset);
            sum = plus(sum.value_or(0), times(field.reset, factor));
            if (!sum)
                return std::nullopt;
        }
        return sum;
    }

    [[nodiscard]] Number addressOf(const Number& offset) const {
        Number bit = times(offset, m_unitBits);
        for (std::size_t i = m_placements.size(); i-- > 0;)
            bit = placed(m_placements[i], bit);
        if (!bit || !m_unitBits || *m_unitBits < 1)
            return std::nullopt;
        return *bit / *m_unitBits;
    }
    /// Counts what arrays stand for beyond their first elements; gives false beyond the limit.
    bool take(std::size_t count) {
        m_unrolled += count;
        m_isCutShort = m_isCutShort || m_unrolled > kMostUnrolled;
        return !m_isCutShort;
    }

    const std::function<void(const ListedRegister&)>& m_visit;
    BlockVisitor m_visitBlock;
    Number m_unitBits = 8;
    std::string m_modes;
    std::vector<Placement> m_placements; ///< the outermost first
    int m_repeated = 0;                  ///< arrays around that are behind their first element
    std::size_t m_unrolled = 0;
    bool m_isCutShort = false;
};

} // namespace

namespace {

bool listAll(Lister& lister, const Component& component) {
    for (const MemoryMap& map : component.memoryMaps)
        lister.listMap(map, "");
    for (const AddressSpace& space : component.addressSpaces)
        if (space.localMap)
            lister.listMap(*space.localMap, space.name + "/");
    return !lister.isCutShort();
}

} // namespace

bool forEachRegister(const Component& component,
                     const std::function<void(const ListedRegister&)>& visit) {
    Lister lister(visit);
    return listAll(lister, component);
}

std::vector<ListedBlock> listBlocks(const Component& component) {
    std::vector<ListedBlock> blocks;
    const std::function<void(const ListedRegister&)> visit =
        [&blocks](const ListedRegister& entry) { blocks.back().registers.push_back(entry); };
    Lister lister(visit, [&blocks](const ListedBlock& block) { blocks.push_back(block); });
    static_cast<void>(listAll(lister, component));
    return blocks;
}

std::vector<ListedRegister> listRegisters(const Component& component) {
    std::vector<ListedRegister> all;
    forEachRegister(component, [&all](const ListedRegister& entry) { all.push_back(entry); });
    return all;
}

} // namespace tq::ipxact
