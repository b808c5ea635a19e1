// SPDX-License-Identifier: MIT
// What the dynamic linker will read in a shared library: its dynamic section, symbols, relocations and sections.
#pragma once

#include <elf.h>

#include <cstdint>
#include <string>
#include <vector>

namespace ork::test {

class ElfFile {
public:
    explicit ElfFile(const std::string& path);

    struct Section {
        std::string name;
        Elf64_Shdr header;
    };
    struct Symbol {
        std::string name;
        Elf64_Sym entry;
        bool defined() const { return entry.st_shndx != SHN_UNDEF; }
    };
    struct Relocation {
        std::string symbol; // empty when it is against none
        unsigned type;
        std::uint64_t address; // of what is relocated
    };

    std::vector<Section> sections;
    std::vector<Symbol> symbols; // dynamic ones
    std::vector<Relocation> relocations;
    std::vector<std::string> needed; // DT_NEEDED

    // Value of a dynamic entry, or `absent`.
    std::uint64_t dynamic(std::int64_t tag, std::uint64_t absent = 0) const;
    const Section* section(const std::string& name) const;

private:
    template <class T>
    std::vector<T> read(const Elf64_Shdr& section) const;

    std::vector<char> bytes_;
    std::vector<Elf64_Dyn> dynamic_;
};

} // namespace ork::test
