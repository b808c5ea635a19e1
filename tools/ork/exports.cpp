// SPDX-License-Identifier: MIT
#include "exports.h"

#include <cstring>
#include <elf.h>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <vector>

namespace ork::tool {
namespace {

// A record at an offset that the file itself names, so it may lie anywhere.
template <class Record>
Record record_at(const std::vector<char>& bytes, size_t offset, const std::string& file)
{
    Record record;
    if (offset > bytes.size() || bytes.size() - offset < sizeof(Record))
        throw std::runtime_error(file + ": the ELF file is cut short");
    std::memcpy(&record, bytes.data() + offset, sizeof(Record));
    return record;
}

} // namespace

size_t count_exports(const std::string& file)
{
    std::ifstream in(file, std::ios::binary);
    if (!in) throw std::runtime_error(file + ": can't be read");
    const std::vector<char> bytes{std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>()};
    const auto header = record_at<Elf64_Ehdr>(bytes, 0, file);
    if (std::memcmp(header.e_ident, ELFMAG, SELFMAG) != 0 || header.e_ident[EI_CLASS] != ELFCLASS64)
        throw std::runtime_error(file + ": no 64-bit ELF file");
    size_t count = 0;
    for (size_t s = 0; s < header.e_shnum; ++s) {
        const auto section = record_at<Elf64_Shdr>(bytes, header.e_shoff + s * header.e_shentsize, file);
        if (section.sh_type != SHT_DYNSYM) continue;
        for (size_t i = 0; i < section.sh_size / sizeof(Elf64_Sym); ++i) {
            const auto symbol = record_at<Elf64_Sym>(bytes, section.sh_offset + i * sizeof(Elf64_Sym), file);
            const int binding = ELF64_ST_BIND(symbol.st_info), type = ELF64_ST_TYPE(symbol.st_info);
            const bool shared = binding == STB_GLOBAL || binding == STB_WEAK;
            const bool code_or_data =
                type == STT_FUNC || type == STT_OBJECT || type == STT_NOTYPE || type == STT_GNU_IFUNC;
            if (shared && code_or_data && symbol.st_shndx != SHN_UNDEF && symbol.st_shndx != SHN_ABS) ++count;
        }
    }
    return count;
}

} // namespace ork::tool
