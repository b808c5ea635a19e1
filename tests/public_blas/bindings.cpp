// SPDX-License-Identifier: MIT
#include "bindings.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>

#include "blas/rows.h"

namespace ork::test {

namespace {

using namespace ork::blas;

template <class Enum>
Enum enumerator(char letter)
{
    struct {
        char letter;
        int value;
    } constexpr trans[] = {{'N', 111}, {'T', 112}, {'C', 113}}, uplo[] = {{'U', 121}, {'L', 122}},
                diag[] = {{'N', 131}, {'U', 132}}, side[] = {{'L', 141}, {'R', 142}};
    const auto find = [&](const auto& list) {
        for (const auto& entry : list)
            if (entry.letter == letter) return static_cast<Enum>(entry.value);
        return static_cast<Enum>(letter == 0 ? 0 : 1000 + letter);
    };
    if constexpr (std::is_same_v<Enum, CBLAS_TRANSPOSE>)
        return find(trans);
    else if constexpr (std::is_same_v<Enum, CBLAS_UPLO>)
        return find(uplo);
    else if constexpr (std::is_same_v<Enum, CBLAS_DIAG>)
        return find(diag);
    else
        return find(side);
}

template <class Arguments, std::size_t i>
auto values(Call& call)
{
    return reinterpret_cast<typename Arguments::template Value<i>*>(call.elements[i].data());
}

template <class Arguments, class Result, class Int, std::size_t... i>
auto call_fortran(void* symbol, Call& call, std::index_sequence<i...>)
{
    Int integers[Arguments::count];
    std::vector<Int> positions(call.positions.begin(), call.positions.end());
    for (std::size_t j = 0; j < Arguments::count; ++j) integers[j] = static_cast<Int>(call.integers[j]);
    const auto argument = [&]<std::size_t j>() -> FortranType<Arguments, Int, j> {
        constexpr Argument a = Arguments::arguments[j];
        if constexpr (a.is_option())
            return &call.letters[j];
        else if constexpr (a.is_integer())
            return &integers[j];
        else if constexpr (a.role == Role::indices)
            return positions.data();
        else
            return values<Arguments, j>(call);
    };
    using Function = FortranResultOf<Result, Int> (*)(FortranType<Arguments, Int, i>...);
    return reinterpret_cast<Function>(symbol)(argument.template operator()<i>()...);
}

template <class Arguments, class Result, class Int, std::size_t... i>
auto call_c(void* symbol, Call& call, std::index_sequence<i...>)
{
    std::vector<Int> positions;
    for (const std::int64_t p : call.positions) positions.push_back(static_cast<Int>(p - 1));
    const auto argument = [&]<std::size_t j>() -> CblasType<Arguments, Int, j> {
        using Type = CblasType<Arguments, Int, j>;
        constexpr Argument a = Arguments::arguments[j];
        if constexpr (a.is_option())
            return enumerator<Type>(call.letters[j]);
        else if constexpr (a.is_integer())
            return static_cast<Int>(call.integers[j]);
        else if constexpr (a.role == Role::indices)
            return positions.data();
        else if constexpr (std::is_pointer_v<Type>)
            return values<Arguments, j>(call);
        else
            return *values<Arguments, j>(call);
    };
    if constexpr (Arguments::is_checked()) {
        reinterpret_cast<void (*)(CBLAS_LAYOUT, CblasType<Arguments, Int, i>...)>(symbol)(
            call.layout, argument.template operator()<i>()...);
    } else if constexpr (blas::is_complex<Result>) {
        Result result;
        reinterpret_cast<void (*)(CblasType<Arguments, Int, i>..., void*)>(symbol)(argument.template operator()<i>()...,
                                                                                   &result);
        return result;
    } else {
        return reinterpret_cast<CblasResultOf<Result> (*)(CblasType<Arguments, Int, i>...)>(symbol)(
            argument.template operator()<i>()...);
    }
}

template <class Arguments, class Result, class Int>
std::complex<double> invoke_width(void* symbol, bool c, Call& call)
{
    constexpr auto all = std::make_index_sequence<Arguments::count>();
    if constexpr (std::is_void_v<Result>) {
        if (c)
            call_c<Arguments, Result, Int>(symbol, call, all);
        else
            call_fortran<Arguments, Result, Int>(symbol, call, all);
        return {};
    } else if (c) {
        const auto r = call_c<Arguments, Result, Int>(symbol, call, all);
        // C has no way to say that there is no such element: 0 is also the first one.
        if constexpr (std::is_same_v<Result, std::int64_t>)
            return static_cast<double>(r) + (call.integer("n") > 0);
        else
            return std::complex<double>(r);
    } else {
        return std::complex<double>(call_fortran<Arguments, Result, Int>(symbol, call, all));
    }
}

template <class Arguments, class Result>
std::complex<double> invoke_any(void* symbol, bool c, bool wide, Call& call)
{
    return wide ? invoke_width<Arguments, Result, std::int64_t>(symbol, c, call)
                : invoke_width<Arguments, Result, std::int32_t>(symbol, c, call);
}

template <class T>
constexpr int type_number()
{
    constexpr bool same[] = {std::is_same_v<T, float>,
                             std::is_same_v<T, double>,
                             std::is_same_v<T, std::complex<float>>,
                             std::is_same_v<T, std::complex<double>>,
                             std::is_same_v<T, std::int8_t>,
                             std::is_same_v<T, std::uint8_t>,
                             std::is_same_v<T, std::int16_t>,
                             std::is_same_v<T, std::uint16_t>,
                             std::is_same_v<T, std::int32_t>};
    int i = 0;
    while (!same[i]) ++i;
    return i;
}

template <class Arguments>
void visit_values(std::size_t argument, void* values, void* visitor, void (*apply)(void*, int, void*))
{
    [&]<std::size_t... i>(std::index_sequence<i...>)
    {
        constexpr int types[] = {type_number<typename Arguments::template Value<i>>()...};
        apply(visitor, types[argument], values);
    }
    (std::make_index_sequence<Arguments::count>());
}

template <class Row>
TableRow describe()
{
    using Arguments = typename Row::Arguments;
    return {.name = Row::name,
            .in_c = Row::names == Names::everywhere,
            .in_fortran = Row::names != Names::nowhere,
            .arguments = Row::arguments,
            .visit = visit_values<Arguments>,
            .invoke = invoke_any<Arguments, typename Row::Result>,
            .is_checked = Row::is_checked(),
            .is_sub = blas::is_complex<typename Row::Result>};
}

} // namespace

std::span<const TableRow> table()
{
    static const TableRow rows[] = {
#define ROUTINE(n, routine, ...) describe<blas::rows::routine>(),
#define FUNCTION ROUTINE
#define COMPLEX_FUNCTION ROUTINE
#define ORDERED_ROUTINE ROUTINE
#define FORTRAN_ROUTINE ROUTINE
#define OWN_ROUTINE ROUTINE
#define BATCH_ROUTINE(...)
#define EXTENSION_FUNCTION ROUTINE
#define EXTENSION_COMPLEX_FUNCTION ROUTINE
#include "blas/routines.inc"
    };
    return rows;
}

const TableRow& row(std::string_view name)
{
    for (const TableRow& r : table())
        if (r.name == name) return r;
    throw std::invalid_argument(std::string(name));
}

std::string Binding::symbol(const TableRow& row) const
{
    return std::string(prefix) + row.name + (c && row.is_sub ? "_sub" : "") + suffix;
}

void* Binding::find(const TableRow& row) const
{
    void* handle = library == nullptr ? RTLD_DEFAULT : dlopen(library, RTLD_NOW | RTLD_LOCAL);
    void* address = handle == nullptr && library != nullptr ? nullptr : dlsym(handle, symbol(row).c_str());
    EXPECT_NE(address, nullptr) << symbol(row) << " in " << (library ? library : "the core");
    return address;
}

std::ostream& operator<<(std::ostream& out, const Binding& b)
{
    return out << b.prefix << "*" << b.suffix << " " << (b.library ? b.library : "core");
}

std::vector<Binding> bindings_of(const TableRow& row)
{
    if (!row.in_fortran)
        return {{nullptr, false, false, "ork_blas_lp64_", ""}, {nullptr, false, true, "ork_blas_", ""}};
    std::vector<Binding> fortran = {
        {nullptr, false, false, "", "_"},
        {nullptr, false, true, "", "_64_"},
        {ORK_LIB_DIR "/libblas.so.3", false, false, "", "_"},
        {ORK_LIB_DIR "/libblas64.so.3", false, true, "", "_"},
    };
    if (row.in_c)
        fortran.insert(fortran.end(), {{nullptr, true, false, "cblas_", ""},
                                       {nullptr, true, true, "cblas_", "64_"},
                                       {nullptr, true, true, "cblas_", "_64"},
                                       {ORK_LIB_DIR "/libblas.so.3", true, false, "cblas_", ""},
                                       {ORK_LIB_DIR "/libblas64.so.3", true, true, "cblas_", ""}});
    return fortran;
}

Call::Call(const TableRow& row, std::int64_t room)
    : row(&row), room(room), letters(row.arguments.size()), integers(row.arguments.size()),
      elements(row.arguments.size())
{
    for (std::size_t i = 0; i < row.arguments.size(); ++i) {
        if (row.arguments[i].is_option()) letters[i] = row.arguments[i].legal[0];
        visit(i, [&]<class T>(T*) { elements[i].resize((capacity(i) * sizeof(T) + sizeof(Wide) - 1) / sizeof(Wide)); });
    }
}

std::int64_t Call::capacity(std::size_t i) const
{
    constexpr std::int64_t longest_vector = 10000;
    const Argument& a = row->arguments[i];
    if (a.is_option() || a.is_integer()) return 0;
    return a.role == Role::scalar ? 1 : row->is_matrix(i) ? room : std::min(room, longest_vector);
}

bool Call::same_elements(const Call& other) const
{
    for (std::size_t i = 0; i < elements.size(); ++i)
        if (!elements[i].empty() &&
            std::memcmp(elements[i].data(), other.elements[i].data(), elements[i].size() * sizeof(Wide)) != 0)
            return false;
    return true;
}

void Call::fill(Random& random, bool exact)
{
    for (std::size_t i = 0; i < elements.size(); ++i)
        visit(i, [&]<class T>(T* values) {
            for (std::int64_t j = 0; j < capacity(i); ++j) {
                if constexpr (std::is_integral_v<T>)
                    values[j] = static_cast<T>(random.integer(std::is_signed_v<T> ? -3 : 0, 3));
                else if (!exact)
                    values[j] = random.uniform<T>();
                else if constexpr (blas::is_complex<T>)
                    values[j] = {static_cast<Real<T>>(random.integer(-2, 2)),
                                 static_cast<Real<T>>(random.integer(-2, 2))};
                else
                    values[j] = static_cast<T>(random.integer(-2, 2));
            }
        });
}

std::complex<double> invoke(const Binding& binding, Call& call)
{
    void* const symbol = binding.find(*call.row);
    return symbol == nullptr ? NAN : call.row->invoke(symbol, binding.c, binding.wide, call);
}

std::complex<double> invoke_kernel(Call& call)
{
    static void* const library = (ork_initialize(), dlopen(ork_kernel_library(), RTLD_NOW));
    void* symbol = nullptr;
    for (const char* prefix : {"ork_blas_nx2_x", "ork_blas_nx2_"})
        if (symbol == nullptr) symbol = dlsym(library, (std::string(prefix) + call.row->name).c_str());
    EXPECT_NE(symbol, nullptr) << "no kernel " << call.row->name;
    return symbol == nullptr ? NAN : call.row->invoke(symbol, false, true, call);
}

} // namespace ork::test
