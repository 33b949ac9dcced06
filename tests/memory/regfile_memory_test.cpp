// Register description files while memory runs out.

#include <gtest/gtest.h>

#include "memory/trial.h"
#include "regfile/register_texts.h"

namespace {

using namespace register_texts;

std::string content() {
    return inRegisters(
        reg("Ctrl", element("description", "Starts the core, or stops it, as the bits say") +
                        element("addressOffset", "0x10") + element("access", "read-only") +
                        element("dim", "4")) +
        reg("A_register_of_a_longer_name", element("description", "caf\xC3\xA9")));
}

/// Errors are reported on the standard error stream and by a null pointer.
std::optional<std::string> parseFile(const memory::Attempt& attempt, const std::string& path) {
    const auto map = attempt([&] { return hbs::HBSRegFileParser::parseFile(path); });
    if (map == nullptr)
        return std::nullopt;
    std::string text;
    for (const char* const name : {"Ctrl", "A_register_of_a_longer_name"}) {
        const hbs::HBSRegister* const found = map->getRegister(name);
        text += found == nullptr ? std::string("missing ")
                                 : found->getName() + found->getDesc() + found->getOffset() + " ";
    }
    return text;
}

TEST(RegisterFile, IsReadWholeOrNotAtAll) {
    const support::TempDir folder;
    const std::string path = folder.write("registers.xml", content());
    memory::run(
        {.operation = [&](const memory::Attempt& attempt) { return parseFile(attempt, path); },
         .keeps = memory::Trial::Keeps::Results});
}

TEST(RegisterFile, IsReadWholeOrNotAtAllWhenItIsProtected) {
    const support::TempDir folder;
    const std::string path = folder.write("registers.xml", support::gzip(content()));
    memory::run(
        {.operation = [&](const memory::Attempt& attempt) { return parseFile(attempt, path); },
         .keeps = memory::Trial::Keeps::Results});
}

/// Xerces can't be started twice: where that failed, each later call says so.
TEST(RegisterFile, IsReadWholeOrNotAtAllAtTheFirstUse) {
    const support::TempDir folder;
    const std::string path = folder.write("registers.xml", content());
    memory::run({.operation = [&](const memory::Attempt& attempt) -> std::optional<std::string> {
                     try {
                         return parseFile(attempt, path);
                     } catch (const std::bad_alloc&) {
                         if (memory::hasFailed())
                             throw;
                         return attempt.right();
                     }
                 },
                 .fresh = true,
                 .step = 31});
}

} // namespace
