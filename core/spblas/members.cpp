// SPDX-License-Identifier: MIT
#include "spblas/members.h"

#include <atomic>
#include <cstdio>
#include <cstdlib>

#include "loader/kernel.h"

namespace ork::spblas {
namespace {

// A page of addresses for each format, routine, precision and width that is in use; all members would take 130 KB.
using Entry = std::atomic<void*>;
constexpr int tables = 6 * 4 * 4 * 2, entries = 512;
constinit std::atomic<Entry*> table[tables] = {};

[[gnu::destructor]] void unload()
{
    for (auto& t : table) std::free(t.exchange(nullptr));
}

int table_of(const Call& call)
{
    return ((static_cast<int>(call.a->format) * 4 + static_cast<int>(call.routine)) * 4 +
            static_cast<int>(call.precision)) *
               2 +
           (call.wide ? 1 : 0);
}

// Letters without a choice may be anything in the kind, so they may fill two entries with one address.
int entry_of(const Call& call)
{
    const ork_spblas_kind& k = call.kind;
    return ((k.base & 1) | (k.uplo & 1) << 1 | (k.diag & 1) << 2 | (call.layout & 1) << 3 |
            ((call.op - ORK_SPBLAS_NO_TRANS) & 3) << 4 | (k.type & 7) << 6);
}

// Null when there is no memory for a new one.
Entry* find_table(const Call& call)
{
    auto& place = table[table_of(call)];
    Entry* known = place.load(std::memory_order_acquire);
    if (known != nullptr) [[likely]]
        return known;
    auto* fresh = static_cast<Entry*>(std::calloc(entries, sizeof(Entry)));
    if (fresh == nullptr) return nullptr;
    if (place.compare_exchange_strong(known, fresh, std::memory_order_acq_rel)) return fresh;
    std::free(fresh);
    return known;
}

[[gnu::cold, gnu::noinline]] void* look_up(const Call& call, Shape s)
{
    static constexpr const char* formats[] = {"csr", "coo", "bsr", "bsc", "dia", "sky"};
    static constexpr const char* routines[] = {"mvout", "mmout", "svout", "smout"};
    char member[40];
    std::snprintf(member, sizeof member, "%c%s%c%c%c%c%c%c__%s_%s", "sdcz"[static_cast<int>(call.precision)],
                  formats[static_cast<int>(call.a->format)], s.base, s.op, s.type, s.uplo, s.diag, s.layout,
                  routines[static_cast<int>(call.routine)], is_parallel(call.routine, s) ? "par" : "seq");
    return loader::find_kernel(call.wide ? "spblas" : "spblas_lp64", member);
}

} // namespace

Shape shape_of(const Call& call)
{
    const ork_spblas_kind& k = call.kind;
    Shape s;
    s.base = k.base == ORK_SPBLAS_BASE_0 ? '0' : '1';
    s.op = "ntcs"[call.op - ORK_SPBLAS_NO_TRANS];
    s.type = "gshtad"[k.type];
    s.uplo = s.type == 'g' || s.type == 'd' ? '_' : k.uplo == ORK_SPBLAS_LOWER ? 'l' : 'u';
    s.diag = s.type == 'g' || s.type == 'a' ? '_' : k.diag == ORK_SPBLAS_UNIT ? 'u' : 'n';
    s.layout = (call.vectors() ? s.base == '0' : call.row_major()) ? 'c' : 'f';
    if (!is_complex(call.precision)) s.op = transposes(s.op) ? 't' : 'n';
    if (s.type == 'd') s.op = conjugates(s.op) && s.diag == 'n' ? 'c' : 'n';
    return s;
}

void* kernel_for(const Call& call, Shape shape)
{
    Entry* const known = find_table(call);
    if (known == nullptr) return look_up(call, shape);
    Entry& entry = known[entry_of(call)];
    void* kernel = entry.load(std::memory_order_acquire);
    if (kernel == nullptr) [[unlikely]] {
        kernel = look_up(call, shape);
        entry.store(kernel, std::memory_order_release);
    }
    return kernel;
}

} // namespace ork::spblas
