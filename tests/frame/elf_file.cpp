// SPDX-License-Identifier: MIT
#include "frame/elf_file.h"

#include <cstring>
#include <fstream>
#include <iterator>
#include <stdexcept>

namespace ork::test {

template <class T>
std::vector<T> ElfFile::read(const Elf64_Shdr& section) const
{
    if (section.sh_offset + section.sh_size > bytes_.size())
        throw std::runtime_error("ELF section past the end of file");
    std::vector<T> entries(section.sh_size / sizeof(T));
    std::memcpy(entries.data(), bytes_.data() + section.sh_offset, entries.size() * sizeof(T));
    return entries;
}

ElfFile::ElfFile(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    bytes_.assign(std::istreambuf_iterator<char>(file), {});
    Elf64_Ehdr header;
    if (bytes_.size() < sizeof header || std::memcmp(bytes_.data(), ELFMAG, SELFMAG) != 0)
        throw std::runtime_error("no ELF file: " + path);
    std::memcpy(&header, bytes_.data(), sizeof header);

    Elf64_Shdr table{};
    table.sh_offset = header.e_shoff;
    table.sh_size = header.e_shnum * sizeof(Elf64_Shdr);
    const auto headers = read<Elf64_Shdr>(table);
    const auto names = read<char>(headers.at(header.e_shstrndx));
    for (const auto& h : headers) sections.push_back({&names.at(h.sh_name), h});

    for (const auto& [name, h] : sections) {
        if (h.sh_type == SHT_DYNSYM) {
            const auto strings = read<char>(headers.at(h.sh_link));
            for (const auto& entry : read<Elf64_Sym>(h)) symbols.push_back({&strings.at(entry.st_name), entry});
        }
        if (h.sh_type == SHT_DYNAMIC) {
            const auto strings = read<char>(headers.at(h.sh_link));
            for (const auto& entry : read<Elf64_Dyn>(h)) {
                if (entry.d_tag == DT_NULL) break;
                dynamic_.push_back(entry);
                if (entry.d_tag == DT_NEEDED) needed.emplace_back(&strings.at(entry.d_un.d_val));
            }
        }
    }
    for (const auto& [name, h] : sections)
        if (h.sh_type == SHT_RELA && (h.sh_flags & SHF_ALLOC) != 0)
            for (const auto& entry : read<Elf64_Rela>(h))
                relocations.push_back({symbols.at(ELF64_R_SYM(entry.r_info)).name,
                                       static_cast<unsigned>(ELF64_R_TYPE(entry.r_info)), entry.r_offset});
}

std::uint64_t ElfFile::dynamic(std::int64_t tag, std::uint64_t absent) const
{
    for (const auto& entry : dynamic_)
        if (entry.d_tag == tag) return entry.d_un.d_val;
    return absent;
}

const ElfFile::Section* ElfFile::section(const std::string& name) const
{
    for (const auto& s : sections)
        if (s.name == name) return &s;
    return nullptr;
}

} // namespace ork::test
