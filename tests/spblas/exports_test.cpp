// SPDX-License-Identifier: MIT
// The sparse names that the library exports: the members of the grammar and the few without one, of both widths.
#include <algorithm>
#include <iterator>
#include <set>

#include <gmock/gmock.h>

#include "frame/elf_file.h"
#include "spblas/member.h"

namespace ork::test {
namespace {

using Names = std::set<std::string>;

Names exported_members(const std::string& prefix)
{
    const void* address = dlsym(RTLD_DEFAULT, (prefix + "dcsr0ng__c__mvout_par").c_str());
    Dl_info library{};
    Names members;
    if (dladdr(address, &library) == 0) return members;
    for (const auto& symbol : ElfFile(library.dli_fname).symbols)
        if (symbol.defined() && symbol.name.starts_with(prefix)) members.insert(symbol.name.substr(prefix.size()));
    return members;
}

TEST(SparseExports, AreTheMembers)
{
    Names members = {"dcsrsymmvs"};
    for (const char* precision : {"s", "d", "c", "z"}) {
        const auto insert = [&](const std::string& name) { members.insert(precision + name); };
        for_each_member(precision[0] == 'c' || precision[0] == 'z',
                        [&](auto format, auto routine, auto s) { insert(name_of(format, routine, s)); });
        for (const char* name : {"csrmultd_ker", "csrmultd_ker_t", "csr1ng__f__gemvout_par"}) insert(name);
        for (const char* name : {"gauss_seq", "invdiag_par", "sortrow_par", "split_par"})
            for (const char* base : {"0", "1"}) insert(std::string("csr") + base + name);
    }
    for (const char* prefix : {"ork_spblas_nx2_", "ork_spblas_lp64_nx2_"}) {
        SCOPED_TRACE(prefix);
        const Names exported = exported_members(prefix);
        Names missing, stray;
        std::ranges::set_difference(members, exported, std::inserter(missing, missing.end()));
        std::ranges::set_difference(exported, members, std::inserter(stray, stray.end()));
        EXPECT_THAT(missing, testing::IsEmpty());
        EXPECT_THAT(stray, testing::IsEmpty());
    }
}

} // namespace
} // namespace ork::test
