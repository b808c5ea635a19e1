// SPDX-License-Identifier: MIT
#include <cstdio>
#include <exception>

#include "commands.h"

int main(int argc, char** argv)
{
    CLI::App app{"Numerical kernels for x86-64 with SSE4.2: what is installed, what it can do, and how fast."};
    app.set_version_flag("--version", "ork " ORK_TOOL_VERSION);
    app.require_subcommand(0, 1);
    int status = 0;
    ork::tool::add_info(app, status);
    ork::tool::add_demo(app, status);
    ork::tool::add_bench(app, status);
    ork::tool::add_sparse(app, status);
    ork::tool::add_check(app, status);
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return app.exit(error); // prints help or what was wrong with the options
    } catch (const std::exception& error) {
        std::fflush(stdout);
        std::fprintf(stderr, "ork: %s\n", error.what());
        return 1;
    }
    if (app.get_subcommands().empty()) {
        std::fputs(app.help().c_str(), stderr);
        return 2;
    }
    return status;
}
