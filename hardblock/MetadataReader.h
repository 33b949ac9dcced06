// Reads hard block metadata, a JSON text, into the data model.
#pragma once

#include <istream>
#include <memory>
#include <string>
#include <vector>

#include "HUTFile.h"
#include "diagnostics/Diagnostic.h"
#include "hardblock/HardBlockData.h"

namespace hardblock {

using HardBlocks = std::vector<std::unique_ptr<HardBlockData>>;

/// Appends the hard blocks of a file, stored plain or protected. False where the file can't be read
/// whole; "@90-4@%s" with its full path is then the last message sent. What an exception interrupts
/// keeps what was read until then.
///
/// A sink receives all that `checkMetadata` finds, in the file that `name` names, and why a file
/// can't be read ("unreadable-file", "malformed-json", errors both).
bool readMetadataFile(const HUTFile& file, HardBlocks& hardBlocks, const std::string& name = {},
                      const tq::DiagnosticSink& sink = {});

/// Appends the hard blocks of a JSON text. Malformed JSON sends "@90-2@%s" and adds nothing, and so
/// does a text beyond the limit of all readers. A stream that fails on its way to the end, as that
/// of a damaged protected file does, adds nothing either, without a message.
///
/// A value of an unsuitable type is skipped at any level (a hard block, interface or pin without an
/// object for its body stays empty), with the message "@90-8@%s%s" of its type and key (the root's
/// key is empty), and the reading goes on.
bool parseMetadataStream(std::istream& stream, HardBlocks& hardBlocks, const std::string& name = {},
                         const tq::DiagnosticSink& sink = {});

} // namespace hardblock
