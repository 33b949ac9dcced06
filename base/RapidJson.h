// The one door to RapidJSON. Values are never compared with == or != (in C++20 that recurses
// without end, and nothing warns): ask with Is…() and Get…(), and walk with a range-for over
// GetObject() and GetArray().
#pragma once

#include <rapidjson/document.h>
#include <rapidjson/encodings.h>
#include <rapidjson/error/en.h>
#include <rapidjson/istreamwrapper.h>
#include <rapidjson/memorystream.h>
#include <rapidjson/ostreamwrapper.h>
#include <rapidjson/prettywriter.h>
#include <rapidjson/reader.h>
#include <rapidjson/stringbuffer.h>
#include <rapidjson/writer.h>
