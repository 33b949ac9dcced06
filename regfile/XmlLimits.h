// Bounds on the parts of a register description file, so that no small file takes minutes or
// gigabytes.
#pragma once

#include <xercesc/sax/InputSource.hpp>

#include <cstddef>

namespace hbs::regfile {

/// A real description has ten levels, a handful of attributes and entities, some fifty names and
/// a few hundred thousand elements. The time of Xerces' DOM grows with the square of the attributes
/// of an element, of the names and of the entities; its memory with the elements and the levels.
/// The figures are what a file at the limit costs. Xerces looks names up in hash tables, and names
/// are easily made whose hashes are equal: each element then costs as much as there are names.
namespace limits {
inline constexpr std::size_t kLevels = 262'144;               ///< 160 MB
inline constexpr std::size_t kElements = 8'388'608;           ///< 1.8 GB
inline constexpr std::size_t kAttributes = 1'024;             ///< of one element
inline constexpr std::size_t kNames = 2'048;                  ///< of elements and attributes
inline constexpr std::size_t kDeclarations = 4'096;           ///< in the document type
inline constexpr std::size_t kDocumentTypeBytes = 131'072;    ///< give or take a block of reading
inline constexpr std::size_t kEntityCharacters = 65'536;      ///< of one entity
inline constexpr std::size_t kExpansions = 1'000;             ///< nested ones stop within 10 ms
inline constexpr std::size_t kExpandedCharacters = 4'194'304; ///< by all expansions together
} // namespace limits

/// Reads the document of `bytes` bytes once, keeping nothing of it, in time linear in its size.
/// Raises `Fault` with line and column where it passes a limit, has attribute lists or parameter
/// entities (which expand entities uncounted), or isn't well-formed.
void checkLimits(const xercesc::InputSource& source, std::size_t bytes);

} // namespace hbs::regfile
