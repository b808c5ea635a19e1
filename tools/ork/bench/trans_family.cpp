// SPDX-License-Identifier: MIT
// Matrices copied, transposed and added. Rates count every byte read and every byte written once; the limit is memcpy.
#include <algorithm>
#include <fmt/format.h>

#include "bench/family.h"
#include "ork/ork.h"
#include "peers/trans.h"

namespace ork::tool::bench {
namespace {

struct Form {
    const char *routine, *letters;
    double alpha;
    bool quick;
};
constexpr Form usual_forms[] = {
    {"domatcopy", "T", 1, true},  {"domatcopy", "N", 1, true},  {"domatcopy", "T", 2, false},
    {"somatcopy", "T", 1, true},  {"comatcopy", "T", 1, false}, {"zomatcopy", "T", 1, true},
    {"dimatcopy", "T", 1, true},  {"simatcopy", "T", 1, false}, {"zimatcopy", "T", 1, false},
    {"dimatcopy", "T", 2, false}, {"domatadd", "NN", 2, false}, {"domatadd", "NT", 2, true},
    {"domatadd", "TN", 2, false}, {"domatadd", "TT", 2, false},
};
const std::vector<std::string> quick_sizes = {"16", "256", "257", "1000", "1024", "8x1000", "200x333"};
const std::vector<std::string> usual_sizes = {"16",      "64",      "100",     "255",       "256",      "512",
                                              "1000",    "1024",    "2048",    "2056",      "4096",     "4104",
                                              "8x10000", "10000x8", "64x8192", "1000x3000", "3000x1000"};
const std::vector<std::string> every_size = {
    "16",   "64",      "100",     "255",     "256",     "257",      "512",       "1000",     "1016", "1024",
    "1032", "2040",    "2048",    "2056",    "4000",    "4088",     "4096",      "4104",     "8184", "8192",
    "8200", "8x10000", "10000x8", "64x8192", "8192x64", "997x1009", "1000x3000", "3000x1000"};

// FFTW is no peer of the dense families otherwise.
const std::vector<peers::Library>& transform_libraries()
{
    static const std::vector<peers::Library> all = [] {
        std::vector<std::string> notes;
        return peers::find_transform_peers(notes);
    }();
    return all;
}

std::vector<peers::Library> with_loops(const std::vector<peers::Library>& libraries, const peers::TransCase& c)
{
    // There OpenBLAS 0.3.21 writes past a buffer of lda x ldb elements.
    const bool breaks_openblas =
        c.routine.ends_with("imatcopy") && c.rows != c.cols && c.letters.find_first_of("NR") != std::string::npos;
    std::vector<peers::Library> result;
    for (peers::Library library : libraries) {
        if (breaks_openblas && library.name.starts_with("OB-")) continue;
        if (library.name == "Eigen") {
            if (c.letters.find_first_of("CR") != std::string::npos) continue; // its functions don't conjugate
            library.find = [](const char* symbol) { return peers::eigen_trans_symbol(symbol); };
        }
        result.push_back(library);
    }
    const auto add = [&](const char* name, void* (*find)(const std::string&)) {
        result.push_back({name, "", peers::Kind::peer, [find](const char* symbol) { return find(symbol); }, {}});
    };
    add("tiles", peers::tiled_trans_symbol);
    add("plain", peers::plain_trans_symbol);
    return result;
}

Contest prepare(const peers::TransCase& c, const std::vector<peers::Library>& libraries)
{
    auto owned = peers::make_trans(c);
    peers::TransProblem& problem = *owned;
    Contest result = contest(std::move(owned), with_loops(libraries, c));
    const auto& subject = libraries.front(); // ork comes first in every measurement
    if (void* routine = subject.find(problem.symbol().c_str()); routine != nullptr)
        result.two_threads = [&problem, routine](long calls) {
            const int before = ork_set_num_threads_local(2);
            problem.run(routine, calls);
            ork_set_num_threads_local(before);
        };
    for (const peers::Library& library : transform_libraries())
        if (const peers::Entrant plan = problem.planned(library))
            result.contenders.push_back({library.name, library.kind, plan, problem.check(plan)});
    // Beside ork itself, so that a table with one wide contender shows another.
    if (const peers::Entrant copy = problem.out_of_place(subject))
        result.contenders.insert(result.contenders.begin() + !result.contenders.empty(),
                                 {"ork-omatcopy", peers::Kind::wide, copy, ""});
    return result;
}

} // namespace

std::vector<Case> trans_cases(const Selection& selection)
{
    std::vector<std::string> sizes =
        selection.sizes.empty() ? selection.quick ? quick_sizes : usual_sizes : selection.sizes;
    if (std::find(sizes.begin(), sizes.end(), "all") != sizes.end()) sizes = every_size;
    const auto wanted = [](const std::vector<std::string>& list, const std::string& name) {
        return list.empty() || std::find(list.begin(), list.end(), name) != list.end();
    };
    std::vector<peers::TransCase> forms;
    for (const Form& form : usual_forms)
        if (wanted(selection.routines, form.routine) && wanted(selection.trans, form.letters) &&
            (form.quick || !selection.quick || !selection.routines.empty()))
            forms.push_back({form.routine, form.letters, 1, 1, form.alpha});
    // Others that are asked for by name.
    for (const std::string& routine : selection.routines)
        for (const std::string& letters :
             selection.trans.empty() ? std::vector<std::string>{"T", "NT"} : selection.trans) {
            const peers::TransCase c{routine, letters, 1, 1, 1};
            const auto same = [&](const auto& form) { return form.routine == routine && form.letters == letters; };
            if (peers::is_case(c) && std::none_of(forms.begin(), forms.end(), same)) forms.push_back(c);
        }
    std::vector<Case> cases;
    for (peers::TransCase c : forms)
        for (const Shape& shape : shapes_of(sizes)) {
            if (shape.k != 0 && !shape.square()) continue;
            c.rows = shape.m, c.cols = shape.n;
            cases.push_back({c.routine, fmt::format("{} alpha={}", c.letters, c.alpha), shape.label(),
                             shape.square() ? static_cast<double>(shape.n) : 0.0,
                             [c](const auto& libraries) { return prepare(c, libraries); }});
        }
    return cases;
}

} // namespace ork::tool::bench
