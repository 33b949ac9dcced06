// Blocks in files.

#include <new>
#include <string_view>
#include <utility>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "base/FileReplacement.h"
#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMBmj.h"
#include "diagnostics/SourceText.h"
#include "input/InputFile.h"

namespace {

void complain(const std::string& path, const std::string& reason) {
    ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", 0x20000000, "@92-1@%s%s", path, reason);
}

std::string contentOf(const std::string& path) {
    base::FileContent content = input::readPlainFile(path);
    if (!content.isWhole())
        throw habm::bmj::Fault(content.reason);
    return std::move(content.text);
}

} // namespace

std::unique_ptr<HABMBlock> HABMBlock::readTopBlock(const HUTFile& file) {
    if (!file.exists())
        return nullptr;
    const std::string path = file.getFullPath();
    try {
        std::string content = contentOf(path);
        return habm::bmj::fromText(content);
    } catch (const habm::bmj::Fault& fault) {
        complain(path, fault.what());
    } catch (const std::bad_alloc&) {
        complain(path, "it is too large for the memory");
        throw; // the caller must not take it for a file that is damaged for good
    }
    return nullptr;
}

std::unique_ptr<HABMBlock> HABMBlock::readTopBlock(const HUTFile& file,
                                                   const tq::DiagnosticSink& sink) {
    const std::string path = file.getFullPath();
    const base::FileContent content = input::readPlainFile(path);
    const auto report = [&](tq::Place place, const std::string& reason) {
        if (sink)
            sink(tq::makeDiagnostic(tq::Severity::Error, "unusable-block-file", std::move(place),
                                    reason));
    };
    if (!content.isWhole()) {
        if (content.outcome != base::ReadOutcome::Missing)
            report(tq::placeOfFile(path), "can't be read: " + content.reason);
        return nullptr;
    }
    try {
        std::string text = content.text; // which the reading overwrites
        return habm::bmj::fromText(text);
    } catch (const habm::bmj::Fault& fault) {
        report(tq::SourceText(path, content.text).placeOf(fault.offset()), fault.reason());
    }
    return nullptr;
}

bool HABMBlock::writeTopBlock(const HUTFile& file, const HABMBlock& block, const bool& flag) {
    try {
        // The paths in a file begin at its top block.
        const std::unique_ptr<HABMBlock> asTop =
            block.getParent() == nullptr ? nullptr : cloneTopBlock(block);
        const HABMBlock& top = asTop == nullptr ? block : *asTop;
        using base::FileReplacement;
        FileReplacement target(file.getFullPath(), FileReplacement::Special::Refuse,
                               flag ? FileReplacement::Existing::Replace
                                    : FileReplacement::Existing::Keep);
        return target.isGood() &&
               habm::bmj::write(top, [&](std::string_view piece) { return target.write(piece); }) &&
               target.commit();
    } catch (const std::bad_alloc&) {
        return false;
    }
}
