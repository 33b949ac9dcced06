#include "handoff/HBSGenerateService.h"

#include "handoff/HWHGenerator.h"

void HBSGenerateService::generateHWH(std::map<std::string, std::string>& designParams,
                                     std::map<std::string, std::string>& systemInfo,
                                     const std::string& connectivityFile,
                                     const std::string& outputFile) {
    std::vector<std::pair<std::string, std::string>> extraPairs;
    generateHWH(designParams, extraPairs, systemInfo, connectivityFile, outputFile);
}

void HBSGenerateService::generateHWH(std::map<std::string, std::string>& designParams,
                                     std::vector<std::pair<std::string, std::string>>&,
                                     std::map<std::string, std::string>& systemInfo,
                                     const std::string& connectivityFile,
                                     const std::string& outputFile) {
    HWHGenerator(designParams, systemInfo).generate(connectivityFile, outputFile);
}
