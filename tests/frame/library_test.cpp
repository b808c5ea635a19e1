// SPDX-License-Identifier: MIT
// The kernel library as the dynamic linker sees it: what it takes, what it gives, and that nothing runs when it is
// loaded.
#include <algorithm>
#include <filesystem>
#include <fstream>
#include <map>
#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "frame/elf_file.h"
#include "support/process.h"

namespace ork::test {
namespace {

const ElfFile& library()
{
    static const ElfFile file(ORK_LIB_DIR "/libork_nx2.so");
    return file;
}

std::vector<std::string> lines_of(const std::filesystem::path& path)
{
    std::ifstream file(path);
    std::vector<std::string> lines;
    for (std::string line; std::getline(file, line);) lines.push_back(line);
    EXPECT_FALSE(lines.empty()) << path;
    return lines;
}

// The names in the IMPORT(...) lines.
std::vector<std::string> declared_imports()
{
    std::vector<std::string> names;
    for (const auto& line : lines_of(ORK_SOURCE_DIR "/nx2/frame/core_imports.h"))
        if (line.starts_with("IMPORT(")) names.push_back(line.substr(7, line.find(')') - 7));
    std::sort(names.begin(), names.end());
    return names;
}

TEST(Imports, AreExactlyTheDeclaredOnes)
{
    std::vector<std::string> undefined;
    for (const auto& symbol : library().symbols)
        if (!symbol.defined() && symbol.name.starts_with("ork_")) undefined.push_back(symbol.name);
    std::sort(undefined.begin(), undefined.end());
    EXPECT_EQ(undefined, declared_imports());
}

TEST(Imports, AreBoundThroughOneJumpSlotEachAndNothingElse)
{
    std::map<std::string, int> slots;
    for (const auto& name : declared_imports()) slots[name] = 0;
    for (const auto& relocation : library().relocations) {
        const auto slot = slots.find(relocation.symbol);
        if (slot == slots.end()) continue;
        if (relocation.type == R_X86_64_JUMP_SLOT)
            ++slot->second;
        else
            ADD_FAILURE() << "relocation of type " << relocation.type << " against " << relocation.symbol
                          << " would be resolved when the library is loaded: is its address taken?";
    }
    for (const auto& [name, count] : slots) EXPECT_EQ(count, 1) << name;
}

TEST(Imports, BindLazily)
{
    EXPECT_EQ(library().dynamic(DT_FLAGS) & DF_BIND_NOW, 0u);
    EXPECT_EQ(library().dynamic(DT_FLAGS_1) & DF_1_NOW, 0u);
    EXPECT_EQ(library().dynamic(DT_BIND_NOW, 7), 7u) << "DT_BIND_NOW is there";
    EXPECT_EQ(library().dynamic(DT_SYMBOLIC, 7), 7u) << "DT_SYMBOLIC is there";
    EXPECT_EQ(library().dynamic(DT_FLAGS) & DF_SYMBOLIC, 0u);
}

TEST(Library, DependsOnNothingButLibc)
{
    if (sanitized) GTEST_SKIP() << "sanitizers bring their run-time library";
    EXPECT_THAT(library().needed, testing::IsSubsetOf({"libc.so.6", "ld-linux-x86-64.so.2"}));
    for (const auto& symbol : library().symbols) {
        if (symbol.defined()) continue;
        EXPECT_FALSE(symbol.name.starts_with("_ZSt") || symbol.name.starts_with("_ZNSt") ||
                     symbol.name.starts_with("__cxa_throw") || symbol.name.starts_with("__gxx"))
            << symbol.name;
    }
}

// The compiler's own start-up object has one entry in each of the two tables and a few bytes of data.
TEST(Library, RunsNothingAtLoadAndHoldsNoMutableData)
{
    if (sanitized) GTEST_SKIP() << "sanitizers register globals at load";
    EXPECT_LE(library().dynamic(DT_INIT_ARRAYSZ), 8u);
    EXPECT_LE(library().dynamic(DT_FINI_ARRAYSZ), 8u);
    EXPECT_EQ(library().section(".ctors"), nullptr);
    EXPECT_EQ(library().section(".tdata"), nullptr);
    EXPECT_EQ(library().section(".tbss"), nullptr);
    const std::set<std::string> of_the_linker = {".init_array", ".fini_array",  ".dynamic",          ".got",
                                                 ".got.plt",    ".data.rel.ro", ".data.rel.ro.local"};
    for (const auto& [name, header] : library().sections) {
        if ((header.sh_flags & SHF_WRITE) == 0 || of_the_linker.contains(name)) continue;
        if (name == ".data" || name == ".bss")
            EXPECT_LE(header.sh_size, 16u) << name;
        else
            EXPECT_TRUE(name == "ork_forward_slots" && header.sh_size == 16 * 8) << name;
    }
}

// The lists in nx2/exports/ are the interface that was promised: a name may be added with its routine, never lost.
TEST(Exports, AreExactlyTheBaseline)
{
    std::set<std::string> exported, promised;
    for (const auto& symbol : library().symbols)
        if (symbol.defined() && symbol.entry.st_shndx != SHN_ABS) exported.insert(symbol.name);

    int files = 0;
    for (const auto& entry : std::filesystem::directory_iterator(ORK_SOURCE_DIR "/nx2/exports")) {
        SCOPED_TRACE(entry.path());
        const std::string domain = entry.path().stem();
        const auto names = lines_of(entry.path());
        EXPECT_TRUE(std::is_sorted(names.begin(), names.end()));
        for (const auto& name : names) {
            EXPECT_TRUE(promised.insert(name).second) << name << " stands twice";
            const bool at_home = domain == "frame"       ? name == "dll_cpu_version"
                                 : domain == "blas_lp64" ? name.starts_with("ork_blas_lp64_")
                                 : domain == "sparse"    ? name.starts_with("ork_sparse_") && name.ends_with("_nx2")
                                                         : name.starts_with("ork_" + domain + "_nx2_");
            EXPECT_TRUE(at_home) << name;
        }
        ++files;
    }
    EXPECT_GE(files, 4);

    std::vector<std::string> lost, unlisted;
    std::set_difference(promised.begin(), promised.end(), exported.begin(), exported.end(), std::back_inserter(lost));
    std::set_difference(exported.begin(), exported.end(), promised.begin(), promised.end(),
                        std::back_inserter(unlisted));
    EXPECT_THAT(lost, testing::IsEmpty());
    EXPECT_THAT(unlisted, testing::IsEmpty()) << "scripts/update-exports adds them";
}

} // namespace
} // namespace ork::test
