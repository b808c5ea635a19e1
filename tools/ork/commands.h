// SPDX-License-Identifier: MIT
// The subcommands of `ork`. Each adds itself to the parser; its work runs from the callback and its result becomes the
// exit status of the program.
#pragma once

#include <CLI/CLI.hpp>

namespace ork::tool {

void add_info(CLI::App& app, int& status);
void add_check(CLI::App& app, int& status);
void add_demo(CLI::App& app, int& status);
void add_bench(CLI::App& app, int& status);
void add_sparse(CLI::App& app, int& status);

} // namespace ork::tool
