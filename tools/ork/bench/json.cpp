// SPDX-License-Identifier: MIT
#include <ctime>
#include <fstream>
#include <nlohmann/json.hpp>
#include <stdexcept>

#include "bench/result.h"

namespace ork::tool::bench {

void write_json(const std::string& file, const Machine& machine, const std::vector<peers::Library>& libraries,
                const std::vector<Result>& results)
{
    using nlohmann::json;
    const auto kind = [](peers::Kind k) {
        return k == peers::Kind::subject ? "ork" : k == peers::Kind::peer ? "peer" : "wide";
    };
    json root;
    char date[32];
    const std::time_t now = std::time(nullptr);
    std::strftime(date, sizeof(date), "%Y-%m-%dT%H:%M:%SZ", std::gmtime(&now));
    root["date"] = date;
    root["version"] = ORK_TOOL_VERSION;
    root["machine"] = {{"processor", machine.processor},
                       {"sse_double_gflops", machine.arithmetic_double / 1e9},
                       {"sse_single_gflops", machine.arithmetic_single / 1e9}};
    for (const peers::LevelRates& level : machine.levels)
        root["machine"]["levels"].push_back({{"level", level.level},
                                             {"bytes", level.bytes},
                                             {"load_gbs", level.load / 1e9},
                                             {"copy_gbs", level.copy / 1e9},
                                             {"store_gbs", level.store / 1e9}});
    root["contenders"] = json::array();
    for (const peers::Library& library : libraries)
        root["contenders"].push_back(
            {{"name", library.name}, {"detail", library.detail}, {"kind", kind(library.kind)}});
    root["cases"] = json::array();
    for (const Result& r : results) {
        json entry = {{"family", r.family}, {"routine", r.routine}, {"variant", r.variant}, {"shape", r.shape},
                      {"unit", r.unit},     {"work", r.work},       {"rounds", r.rounds},   {"figures", json::array()}};
        for (const Figure& f : r.figures) {
            json figure = {{"name", f.name}, {"kind", kind(f.kind)}, {"right", f.fault.empty()}};
            if (f.fault.empty())
                figure["median_seconds"] = f.seconds, figure["rate"] = f.rate;
            else
                figure["fault"] = f.fault;
            if (!f.note.empty()) figure["note"] = f.note;
            if (f.analysis > 0) figure["analysis_seconds"] = f.analysis;
            entry["figures"].push_back(figure);
        }
        entry["best_peer"] = r.best_peer.empty() ? json() : json(r.best_peer);
        entry["ratio"] = r.ratio > 0 ? json(r.ratio) : json();
        entry["limit"] = r.limit > 0 ? json(r.limit) : json();
        entry["of_limit"] = r.of_limit > 0 ? json(r.of_limit) : json();
        for (const auto& [name, value] : {std::pair{"traffic_gbs", r.traffic},
                                          {"two_threads", r.two_threads},
                                          {"speed_up", r.speed_up},
                                          {"over_singles", r.over_singles}})
            if (value > 0) entry[name] = value;
        root["cases"].push_back(entry);
    }
    std::ofstream out(file);
    out << root.dump(1) << '\n';
    out.close();
    if (!out) throw std::runtime_error(file + ": can't be written");
}

} // namespace ork::tool::bench
