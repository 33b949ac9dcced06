// Blocks in files.

#include <algorithm>
#include <cstdint>
#include <fstream>
#include <new>

#include "ComMsgMgr.h"
#include "HUTFile.h"
#include "blockmodel/HABMBlock.h"
#include "blockmodel/HABMBmj.h"
#include "blockmodel/HABMFileReplace.h"

namespace {

void complain(const std::string& path, const std::string& reason) {
    ComMsgMgr::sendMsg::eval(2, __FILE__, __LINE__, "hbs", 0x20000000, "@92-1@%s%s", path, reason);
}

std::string contentOf(const HUTFile& file, const std::string& path) {
    if (!file.isFile())
        throw habm::bmj::Fault("it isn't a file");
    std::ifstream stream(path, std::ios::binary);
    std::string content;
    if (stream.seekg(0, std::ios::end)) {
        const auto size = static_cast<std::uint64_t>(std::max<std::streamoff>(stream.tellg(), 0));
        if (size > habm::bmj::kMostBytes)
            throw habm::bmj::Fault("it is too large");
        content.resize(size);
        stream.seekg(0);
        stream.read(content.data(), static_cast<std::streamsize>(content.size()));
    }
    if (!stream)
        throw habm::bmj::Fault("it can't be read");
    return content;
}

} // namespace

std::unique_ptr<HABMBlock> HABMBlock::readTopBlock(const HUTFile& file) {
    if (!file.exists())
        return nullptr;
    const std::string path = file.getFullPath();
    try {
        std::string content = contentOf(file, path);
        return habm::bmj::fromText(content);
    } catch (const habm::bmj::Fault& fault) {
        complain(path, fault.what());
    } catch (const std::bad_alloc&) {
        complain(path, "it is too large for the memory");
    }
    return nullptr;
}

bool HABMBlock::writeTopBlock(const HUTFile& file, const HABMBlock& block, const bool& flag) {
    try {
        // The paths in a file begin at its top block.
        const std::unique_ptr<HABMBlock> asTop =
            block.getParent() == nullptr ? nullptr : cloneTopBlock(block);
        const HABMBlock& top = asTop == nullptr ? block : *asTop;
        return habm::writeWholeFile(file.getFullPath(), flag, [&](const habm::Sink& sink) {
            return habm::bmj::write(top, sink);
        });
    } catch (const std::bad_alloc&) {
        return false;
    }
}
