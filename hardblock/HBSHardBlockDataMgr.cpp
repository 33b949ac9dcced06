#include "hardblock/HBSHardBlockDataMgr.h"

#include <iostream>

#include "HUTEnv.h"
#include "HUTFile.h"
#include "hardblock/MetadataReader.h"

HBSHardBlockDataMgr::HBSHardBlockDataMgr() = default;
HBSHardBlockDataMgr::~HBSHardBlockDataMgr() = default;

HBSHardBlockDataMgr* HBSHardBlockDataMgr::getHardBlockDataMgr() {
    static HBSHardBlockDataMgr* instance = nullptr;
    if (instance == nullptr) {
        auto* const made = new HBSHardBlockDataMgr;
        try {
            made->scanMetadataDirectory();
        } catch (...) { // the next call reads the whole data area again
            delete made;
            throw;
        }
        instance = made;
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
    return createHardBlocks(file, {});
}

bool HBSHardBlockDataMgr::createHardBlocks(const std::string& file,
                                           const tq::DiagnosticSink& sink) {
    const HUTFile metadata(file);
    if (!metadata.exists()) {
        std::cout << "Error : Metadata file " << file << " does not exists\n";
        return false;
    }
    m_metadataFile = file;
    return hardblock::readMetadataFile(metadata, m_hardBlocks, file, sink);
}

hardblock::HardBlockData* HBSHardBlockDataMgr::getHardBlockByName(const std::string& name) {
    updateIndex();
    const auto found = m_byName.find(name);
    if (found != m_byName.end())
        return found->second;
    std::cout << "Warning : Unable to find Information for Hard Block: " << name << std::endl;
    return nullptr;
}

/// A hard block may be renamed without the manager knowing: the index is then built anew.
void HBSHardBlockDataMgr::updateIndex() {
    const std::uint64_t renames = hardblock::HardBlockData::s_renames;
    if (renames != m_renames) {
        m_byName.clear();
        m_indexed = 0;
        m_renames = renames;
    }
    for (; m_indexed < m_hardBlocks.size(); ++m_indexed)
        m_byName.emplace(m_hardBlocks[m_indexed]->m_name, m_hardBlocks[m_indexed].get());
}

std::vector<hardblock::HardBlockData*> HBSHardBlockDataMgr::getHardBlocksData() {
    std::vector<hardblock::HardBlockData*> hardBlocks;
    hardBlocks.reserve(m_hardBlocks.size());
    for (const auto& hardBlock : m_hardBlocks)
        hardBlocks.push_back(hardBlock.get());
    return hardBlocks;
}
