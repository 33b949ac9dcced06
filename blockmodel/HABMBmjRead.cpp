// Makes a block of the text of a ".bmj" file.

#include <string>
#include <type_traits>

#include "blockmodel/HABMBmj.h"
#include "blockmodel/HABMBmjSource.h"
#include "blockmodel/HABMSchema.h"

namespace habm::bmj {

namespace {

/// The fault that the model refused to create an object of that name.
template <class Object>
Fault refusalOf(const std::string& name) {
    if constexpr (std::is_same_v<Object, HABMBlock>)
        return Fault("the sub-block " + quoted(name) +
                     " has an unusable or repeated name, or is nested too deeply");
    else
        return Fault("the name " + quoted(name) + " is empty, holds a '/' or occurs twice");
}

template <class Object>
void readContent(Members& in, Object& object);

/// Reads an object with all below it, or a pair, and has it created by `owned`.
template <class Object, class Owner, class Entry>
void readChild(Source& source, Owner& owner, const Entry& owned) {
    if constexpr (HasFields<Object>) {
        Members in(source);
        std::string name;
        in.take(kNameKey<Object>, name);
        Object* const child = owned.create(owner, name);
        if (child == nullptr)
            throw refusalOf<Object>(name);
        readContent(in, *child);
        in.end();
    } else {
        const auto texts = source.pair(&Source::text);
        const std::string name(texts.first);
        if (owned.create(owner, name, std::string(texts.second)) == nullptr)
            throw refusalOf<Object>(name);
    }
}

/// Reads all but the name into a fresh object.
template <class Object>
void readContent(Members& in, Object& object) {
    auto& fields = HABMObjectAccess::fieldsOf(object);
    forEachField<Object>([&](const auto& field) { in.take(field, fields); });
    const auto readEach = [&](const auto& owned, const auto& store) {
        using Child = typename std::remove_cvref_t<decltype(store)>::Element;
        in.takeArray(owned.key, [&](Source& source) { readChild<Child>(source, object, owned); });
    };
    forEachStore(readEach, object);
}

std::unique_ptr<HABMBlock> readFile(Source& source) {
    Members file(source);
    std::string format;
    file.take("format", format);
    if (format != kFormat)
        throw Fault("it isn't a block model file");
    unsigned version = 0;
    file.take("version", version);
    if (version != kVersion)
        throw Fault("it is of version " + std::to_string(version) + ", and only version " +
                    std::to_string(kVersion) + " can be read");
    std::unique_ptr<HABMBlock> top;
    file.takeIf("block", [&] {
        Members members(source);
        top = HABMBlock::createTopBlock("");
        readContent(members, *top);
        members.end();
    });
    if (top == nullptr)
        throw Fault("it holds no block");
    file.end();
    source.expectEnd();
    return top;
}

} // namespace

std::unique_ptr<HABMBlock> fromText(std::string& text) {
    // The parser takes a NUL byte for the end of the text.
    if (text.find('\0') != std::string::npos)
        throw Fault("it holds a NUL byte");
    Source source(text);
    try {
        return readFile(source);
    } catch (const Fault& fault) {
        throw Fault(fault.reason(), source.position());
    }
}

} // namespace habm::bmj
