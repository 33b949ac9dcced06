// Checks hard block metadata for values that are ignored or are probably mistakes.
#pragma once

#include "base/JsonTape.h"
#include "diagnostics/Diagnostic.h"
#include "diagnostics/SourceText.h"

namespace hardblock {

/// Goes through the metadata once, in the order of the file, and warns of
///
/// - "wrong-type": a value that is passed over
/// - "unknown-key", "duplicate-key" (of which the first counts), "duplicate-name" (of hard blocks,
///   interfaces, pins and parameters)
/// - "unknown-text": a type or direction that counts as the default
/// - "unreadable-number", "number-overflow" (beyond 32 bits)
/// - "unreadable-range", "ascending-range" (which no bit is in), "range-width" (the two sides have
///   different widths), "overlapping-ranges" (of one port)
///
/// `source` is the text from which the tape was made.
void checkMetadata(const base::JsonTape& tape, const tq::SourceText& source,
                   const tq::DiagnosticSink& sink);

} // namespace hardblock
