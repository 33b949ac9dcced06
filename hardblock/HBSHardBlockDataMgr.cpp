#include "hardblock/HBSHardBlockDataMgr.h"

#include <algorithm>
#include <iostream>

#include "HUTEnv.h"
#include "HUTFile.h"
#include "hardblock/metadata_reader.h"

HBSHardBlockDataMgr::HBSHardBlockDataMgr() = default;
HBSHardBlockDataMgr::~HBSHardBlockDataMgr() = default;

HBSHardBlockDataMgr* HBSHardBlockDataMgr::getHardBlockDataMgr() {
    static HBSHardBlockDataMgr* instance = nullptr;
    if (instance == nullptr) {
        instance = new HBSHardBlockDataMgr;
        instance->scanMetadataDirectory();
    }
    return instance;
}

void HBSHardBlockDataMgr::scanMetadataDirectory() {
    const std::string area = HUTEnv::getOBLDataDir("sce/hardblocks");
    // Without a data area the path below would be one of the root folder.
    if (area.empty())
        return;
    const std::string separator = HUTFile::getDirSeparator();
    const HUTFile folder(area + separator + "sce" + separator + "hardblocks");
    const std::unique_ptr<HSTFwdIter<std::string>> entries(folder.createFileIter());
    while (entries->isValid()) {
        const std::string path = entries->next();
        if (HUTFile(path).isFile())
            createHardBlocks(path);
    }
}

bool HBSHardBlockDataMgr::createHardBlocks(const std::string& file) {
    const HUTFile metadata(file);
    if (!metadata.exists()) {
        std::cout << "Error : Metadata file " << file << " does not exists\n";
        return false;
    }
    m_metadataFile = file;
    return hardblock::readMetadataFile(metadata, m_hardBlocks);
}

hardblock::HardBlockData* HBSHardBlockDataMgr::getHardBlockByName(const std::string& name) {
    const auto found = std::find_if(m_hardBlocks.begin(), m_hardBlocks.end(),
                                    [&](const auto& block) { return block->getName() == name; });
    if (found != m_hardBlocks.end())
        return found->get();
    std::cout << "Warning : Unable to find Information for Hard Block: " << name << std::endl;
    return nullptr;
}

std::vector<hardblock::HardBlockData*> HBSHardBlockDataMgr::getHardBlocksData() {
    std::vector<hardblock::HardBlockData*> hardBlocks;
    hardBlocks.reserve(m_hardBlocks.size());
    for (const auto& hardBlock : m_hardBlocks)
        hardBlocks.push_back(hardBlock.get());
    return hardBlocks;
}
