// Writers of JSON texts that raise `std::bad_alloc` where memory runs out.
#pragma once

#include "base/JsonDocument.h"

/// Holds a JSON text while it is written.
using JsonTextBuffer = rapidjson::GenericStringBuffer<rapidjson::UTF8<>, JsonAllocator>;

/// RapidJSON's indenting writer. Its own allocator for the open levels gives a null pointer that
/// RapidJSON then writes through.
template <class Stream>
using JsonPrettyWriter =
    rapidjson::PrettyWriter<Stream, rapidjson::UTF8<>, rapidjson::UTF8<>, JsonAllocator>;
