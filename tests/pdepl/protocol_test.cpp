// SPDX-License-Identifier: MIT
// Stages in every state, bad arguments and damaged arrays, failures below, and the diagnostics that tell of them.
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <limits>
#include <unistd.h>

#include "box.h"

namespace ork::test {
namespace {

class Protocol : public testing::Test {
protected:
    Protocol() { hooks() = {}; }
    ~Protocol() override
    {
        EXPECT_EQ(live_allocations, 0);
        hooks() = {};
    }
    // The numbers of the messages printed since the last time, with their arguments.
    static std::string printed()
    {
        std::string text;
        std::swap(text, hooks().printed);
        std::erase(text, '\n');
        return text;
    }
};

TEST_F(Protocol, StatesThatStagesAccept)
{
    for (const Int state : {0, 1, 9, 90, 99, 900, 909, 990, 999, 2, 10, -100, -1000, -10000, -99999}) {
        SCOPED_TRACE(state);
        const bool commits = state == 0 || (state >= 9 && state < 1000 && state != 10),
                   solves = state == 0 || state == 1;
        Problem<double> p("DDDD", {4, 4}, 0);
        ASSERT_EQ(p.init(), pde::ok);
        p.ipar[0] = state;
        EXPECT_EQ(p.commit(), commits ? pde::ok : pde::bad_state);
        EXPECT_EQ(printed(), commits ? "" : "<10><11><56 " + std::to_string(state) + "><57><58>");
        EXPECT_EQ(p.free(), pde::ok);
        p.ready();
        p.ipar[0] = state;
        const auto before = p.f.values();
        EXPECT_EQ(p.solve(), solves ? pde::ok : pde::bad_state);
        EXPECT_EQ(printed(), solves ? "" : "<10><11><56 " + std::to_string(state) + "><57><58>");
        EXPECT_EQ(p.f.values() == before, !solves);
    }
}

TEST_F(Protocol, StagesInTheWrongOrder)
{
    Problem<double> p("DDDD", {4, 4}, 0);
    p.init();
    ork_dft_descriptor* const nonsense = reinterpret_cast<ork_dft_descriptor*>(0x10);
    p.xhandle = nonsense; // nobody has set it yet
    EXPECT_EQ(p.solve(), pde::bad_state);
    EXPECT_EQ(printed(), "<10><11><81><58>");
    p.init();
    EXPECT_EQ(p.free(), pde::ok);
    EXPECT_EQ(p.xhandle, nonsense);
    EXPECT_EQ(p.commit(), pde::ok);
    EXPECT_EQ(p.commit(), pde::ok);
    EXPECT_EQ(p.solve(), pde::ok);
    EXPECT_EQ(p.free(), pde::ok);
    EXPECT_EQ(p.xhandle, nullptr);
    EXPECT_EQ(p.solve(), pde::bad_state);
    EXPECT_EQ(p.free(), pde::ok);
    p.sides = "DPDD";
    p.init();
    EXPECT_EQ(p.commit(), pde::bad_argument);
    EXPECT_EQ(p.solve(), pde::bad_state);
}

TEST_F(Protocol, CommitRefusesWithADiagnostic)
{
    struct Case {
        const char* sides;
        int entry;
        Int value;
        const char* messages;
    };
    const Case cases[] = {
        {"DDDDDD", 12, 0, "<23 0><24><25><26><27>"},
        {"DDDDDD", 13, -3, "<28 -3><29><30><31><32>"},
        {"DDDDDD", 14, 0, "<33 0><34><35><36><37>"},
        {"xDDDDD", -1, 0, "<44 -1><45>"},
        {"D.DDDD", -1, 0, "<46 -1><47>"},
        {"DD1DDD", -1, 0, "<48 -1><49>"},
        {"DDDQDD", -1, 0, "<50 -1><51>"},
        {"DDDDDD", 10, 3, "<52 3><53>"},
        {"DDDDD ", -1, 0, "<54 -1><55>"},
        {"DPDDDD", -1, 0, "<59 0 2><60>"},
        {"PNDDDD", -1, 0, "<59 2 1><60>"},
        {"DDPDDD", -1, 0, "<61 2 0><62>"},
        {"NNPPNP", -1, 0, "<63 1 2><64>"},
        {"DDDDDD", 12, Int{1} << 40, "<81><58>"},
        {"DDDDDD", 13, std::numeric_limits<Int>::max(), "<81><58>"},
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.messages);
        Problem<float> p(c.sides, {4, 4, 4}, 0);
        ASSERT_EQ(p.init(), pde::ok);
        if (c.entry >= 0) p.ipar[c.entry] = c.value;
        EXPECT_EQ(p.commit(), pde::bad_argument);
        EXPECT_EQ(printed(), std::string("<10><11>") + c.messages);
        EXPECT_EQ(p.xhandle, nullptr);
    }
    const char* lengths[] = {"<38 0><39>", "<40 -2><41>", "<42 nan><43>"};
    const double ends[] = {0, -2, std::numeric_limits<double>::quiet_NaN()};
    for (int d = 0; d < 3; ++d) {
        Problem<double> p("DDDDDD", {4, 4, 4}, 0);
        p.ends[2 * d] = 0, p.ends[2 * d + 1] = ends[d];
        ASSERT_EQ(p.init(), pde::ok);
        EXPECT_EQ(p.commit(), pde::bad_argument);
        EXPECT_EQ(printed(), std::string("<10><11>") + lengths[d]);
    }
    // Sizes that no array has.
    for (const auto& [nx, ny] : {std::pair{Int{1} << 62, Int{4}}, {Int{1} << 30, Int{1} << 30}}) {
        Problem<double> huge("PPDD", {4, 4}, 0);
        huge.n[0] = nx, huge.n[1] = ny;
        ASSERT_EQ(huge.init(), pde::ok);
        EXPECT_EQ(huge.commit(), pde::bad_argument);
        EXPECT_EQ(printed(), "<10><11><82><83>");
    }
    Problem<double> shared("DDDDDD", {4, 4, 4}, 0);
    ASSERT_EQ(shared.init(), pde::ok);
    ork_pdepl_nx2_d_commit_helmholtz_3d(shared.f.data(), nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                        &shared.xhandle, &shared.xhandle, shared.ipar.data(), shared.fpar.data(),
                                        &shared.stat);
    EXPECT_EQ(shared.agreed(), pde::bad_argument);
    EXPECT_EQ(printed(), "<10><11><84><85>");
    Problem<double> narrow("DDDD", {1, 4}, 0); // no transform has one interval
    ASSERT_EQ(narrow.init(), pde::ok);
    narrow.ipar[23] = 0;
    EXPECT_EQ(narrow.commit(), pde::transform_failed);
    EXPECT_TRUE(printed().ends_with("<203><204><259 -100><262><263>"));
    EXPECT_EQ(narrow.free(), pde::ok);
}

TEST_F(Protocol, WarningsDontFail)
{
    Problem<double> p("DDDD", {4, 4}, -1.5);
    p.ready();
    EXPECT_EQ(printed(), "<10><12><194 -1.5><195><196>");
    Problem<double> q("nnPP", {4, 4}, 0);
    q.ready();
    EXPECT_EQ(printed(), "<10><12><190><191>");
    Problem<double> silent("nnPP", {4, 4}, 0);
    silent.init();
    silent.ipar[2] = 0;
    EXPECT_EQ(silent.commit(), pde::ok);
    EXPECT_EQ(printed(), "");
}

TEST_F(Protocol, FailuresBelow)
{
    // A stage; those after it are not called.
    const char* stages_2d[] = {"ft_2d_dn", "lu_2d_nn", "inv_ft_2d_dn"};
    const char* messages_2d[] = {"<71 -2><74><75>", "<72 -2><74><75>", "<73 -2><74><75>"};
    for (int i = 0; i < 3; ++i) {
        Problem<float> p("DNNN", {4, 4}, 0);
        p.ready();
        hooks().stages.clear();
        hooks().failing_stage = stages_2d[i], hooks().failure = -2;
        EXPECT_EQ(p.solve(), pde::bad_argument);
        EXPECT_EQ(hooks().stages, std::vector<std::string>(stages_2d, stages_2d + i + 1));
        EXPECT_EQ(printed(), std::string("<10><11>") + messages_2d[i]);
        EXPECT_EQ(p.solve(), pde::bad_state);
        printed();
    }
    const char* stages_3d[] = {"ft_3d_x_dd",     "ft_3d_y_nd",     "ft_3d_z_pp",
                               "inv_ft_3d_z_pp", "inv_ft_3d_y_nd", "inv_ft_3d_x_dd"};
    for (int i = 0; i < 6; ++i) {
        Problem<double> p("DDNDPP", {4, 4, 3}, 0);
        p.ready();
        hooks().stages.clear();
        hooks().failing_stage = stages_3d[i], hooks().failure = 5; // not only negative ones count
        EXPECT_EQ(p.solve(), pde::bad_argument);
        EXPECT_EQ(hooks().stages, std::vector<std::string>(stages_3d, stages_3d + i + 1));
        EXPECT_EQ(printed().substr(8, 5), i < 2 ? "<71 5" : i < 3 ? "<72 5" : "<73 5");
    }
    // No memory for the work record.
    Problem<double> p("DDDD", {4, 4}, 0);
    p.ready();
    const auto before = p.f.values();
    {
        const FailingAllocation failing(1);
        EXPECT_EQ(p.solve(), pde::bad_argument);
    }
    EXPECT_EQ(latest_alignment, 64u);
    EXPECT_EQ(printed(), "<10><11><76><77>");
    EXPECT_EQ(p.f.values(), before);
    // The Fourier transforms below a commit, one after the other; what was set up before is released.
    hooks() = {};
    for (const char* sides : {"PPDD", "PPPPDD"}) {
        Problem<double> failing(sides, {4, 4, 4}, 0);
        const char* messages[] = {"<66 -1000>", "<68 -1000>", "<79 -1000>", "<79 -1000>"};
        for (int i = 0; i < 2 * (failing.dimensions() - 1); ++i) {
            ASSERT_EQ(failing.init(), pde::ok);
            hooks().fail_commit_at = i + 1;
            EXPECT_EQ(failing.commit(), pde::transform_failed);
            EXPECT_TRUE(printed().ends_with(std::string("<10><11>") + messages[i] + "<69><70>"));
            EXPECT_TRUE(failing.xhandle == nullptr && failing.yhandle == nullptr);
            EXPECT_EQ(failing.solve(), pde::bad_state);
            printed();
        }
        EXPECT_EQ(failing.init(), pde::ok);
        EXPECT_EQ(failing.commit(), pde::ok);
        EXPECT_EQ(failing.solve(), pde::ok);
    }
}

TEST_F(Protocol, PrintersOfBothSets)
{
    Int ipar[128] = {};
    ipar[0] = 7, ipar[1] = ipar[2] = 1, ipar[12] = -4, ipar[13] = std::numeric_limits<Int>::min();
    const double fpar[] = {0, 0, 0, -2.25, 0};
    const float spar[] = {0, 0, 0, -2.25f, 0};
    struct Case {
        Int code;
        const char *c, *f;
    };
    for (const Case& c : {
             Case{0, "<10><11><13 -4><14><15>", "<203><204><206 -4><207><208>"},
             {10000, "<10><11><23 -4><24><25><26><27>", "<203><204><216 -4><217><218><219><220>"},
             {10001, "<10><11><28 -9223372036854775808><29><30><31><32>",
              "<203><204><221 -9223372036854775808><222><223><224><225>"},
             {12, "<10><11><56 7><57><58>", "<203><204><249 7><250><251>"},
             {10024, "<10><11><68 text><69><70>", "<203><204><261 text><262><263>"},
             {10034, "<10><11><79 text><69><70>", "<203><204><272 text><262><263>"},
             {899, "<10><11><22>", "<203><204><215>"},
             {900, "<10><12><22>", "<203><205><215>"},
             {10202, "<10><11><84><85>", "<203><204><277><278>"},
             {10900, "<10><12><190><191>", "<203><205><383><384>"},
             {10903, "<10><12><192><193>", "<203><205><385><386>"},
             {10904, "<10><12><194 -2.25><195><196>", "<203><205><387 -2.25><388><389>"},
         }) {
        SCOPED_TRACE(c.code);
        ork_pdepl_nx2_d_pl_print_diagnostics_c(&c.code, ipar, fpar, "text");
        EXPECT_EQ(printed(), c.c);
        EXPECT_EQ(hooks().print_format, "%.4105s");
        ork_pdepl_nx2_s_pl_print_diagnostics_f(&c.code, ipar, spar, "text");
        EXPECT_EQ(printed(), c.f);
    }
    const Int error = 12, warning = 900;
    ipar[1] = 0;
    ork_pdepl_nx2_d_pl_print_diagnostics_c(&error, ipar, fpar, "");
    EXPECT_EQ(hooks().printed, "");
    ork_pdepl_nx2_d_pl_print_diagnostics_c(&warning, ipar, fpar, "");
    EXPECT_EQ(hooks().printed, "<10>\n<12>\n<22>\n");
    printed();
    // An argument that fills the buffer.
    ipar[1] = 1;
    const Int transform = 23;
    ork_pdepl_nx2_d_pl_print_diagnostics_c(&transform, ipar, fpar, std::string(9000, 'x').c_str());
    EXPECT_LT(printed().size(), 4096u);
}

TEST_F(Protocol, LogFile)
{
    namespace fs = std::filesystem;
    const fs::path before = fs::current_path();
    const fs::path folder = fs::temp_directory_path() / ("ork_pde_log_" + std::to_string(::getpid()));
    fs::create_directory(folder);
    fs::current_path(folder);
    Int ipar[128] = {};
    const Int error = 28, warning = 10900;
    ipar[1] = -1, ipar[2] = -5;
    for (const Int* code : {&error, &warning}) ork_pdepl_nx2_d_pl_print_diagnostics_c(code, ipar, nullptr, "");
    std::ifstream file("ORK_Poisson_Library_Log.txt");
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(file), {}),
              "<10>\n<11>\n<76>\n<77>\n<10>\n<12>\n<190>\n<191>\n");
    EXPECT_EQ(printed(), "");
    // A folder in its place can't be opened for appending.
    fs::remove("ORK_Poisson_Library_Log.txt");
    fs::create_directory("ORK_Poisson_Library_Log.txt");
    ork_pdepl_nx2_d_pl_print_diagnostics_c(&error, ipar, nullptr, "");
    EXPECT_EQ(printed(), "<201 ORK_Poisson_Library_Log.txt><202>");
    ork_pdepl_nx2_d_pl_print_diagnostics_f(&error, ipar, nullptr, "");
    EXPECT_EQ(printed(), "<394 ORK_Poisson_Library_Log.txt><395>");
    fs::current_path(before);
    fs::remove_all(folder);
}

} // namespace
} // namespace ork::test
