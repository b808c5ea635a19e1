// SPDX-License-Identifier: MIT
// Programs written and built for FFTW run on the drop-ins.
#include <fstream>
#include <regex>
#include <set>
#include <sstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "support/process.h"

namespace ork::test {

namespace {

const std::string on_ork = "LD_LIBRARY_PATH=" ORK_LIB_DIR;

std::set<std::string> exports(const std::string& library)
{
    const auto run = run_program({"nm", "-D", "--defined-only", "--format=posix", library});
    EXPECT_TRUE(run.ok()) << run.describe();
    std::set<std::string> names;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) names.insert(line.substr(0, line.find(' ')));
    return names;
}

// Whatever FFTW's header declares is there, in both precisions, and nothing that is no name of FFTW's.
TEST(Fftw, ExportsTheWholeInterface)
{
    std::set<std::string> declared;
#ifdef ORK_FFTW_HEADER
    std::ifstream header(ORK_FFTW_HEADER);
    const std::string text(std::istreambuf_iterator<char>(header), {});
    const std::regex declaration(R"(FFTW_CDECL\s*X\((\w+)\)|extern const char X\((\w+)\))");
    for (std::sregex_iterator i(text.begin(), text.end(), declaration), end; i != end; ++i)
        declared.insert((*i)[1].matched ? (*i)[1] : (*i)[2]);
    EXPECT_GT(declared.size(), 70u);
#endif
    for (const std::string letter : {"", "f"}) {
        const auto names = exports(ORK_LIB_DIR "/libfftw3" + letter + ".so.3");
        EXPECT_GT(names.size(), 70u);
        for (const std::string& name : declared) EXPECT_EQ(names.count("fftw" + letter + "_" + name), 1u) << name;
        for (const std::string& name : names) {
            const std::string stem = letter.empty() ? "fftw_" : "fftwf_",
                              fortran = letter.empty() ? "dfftw_" : "sfftw_";
            EXPECT_TRUE(name.starts_with(stem) || name.starts_with(fortran)) << name;
        }
    }
}

#ifdef ORK_FFTW_HEADER
TEST(Fftw, ProgramsRunUnchanged)
{
    if (sanitized) GTEST_SKIP() << "the programs do not start with a sanitizer's run-time";
    for (const char* name : {"/ork_fftw_program", "/ork_fftwf_program"}) {
        const auto run = run_program({std::string(ORK_BIN_DIR) + name}, {on_ork});
        EXPECT_TRUE(run.ok()) << run.describe();
        EXPECT_THAT(run.out, testing::HasSubstr("(ork ")) << "ran on another library";
    }
}
#endif

#ifdef ORK_FORTRAN_PROGRAM
TEST(Fftw, FortranProgramsRun)
{
    if (sanitized) GTEST_SKIP() << "the program does not start with a sanitizer's run-time";
    const auto run = run_program({ORK_BIN_DIR "/ork_fftw_fortran"}, {on_ork});
    EXPECT_TRUE(run.ok()) << run.describe();
}
#endif

TEST(Fftw, Octave)
{
    if (sanitized) GTEST_SKIP() << "the program does not start with a sanitizer's run-time";
    const std::string octave = "/usr/bin/octave-cli";
    if (!run_program({octave, "--version"}).ok()) GTEST_SKIP() << "not installed";
    const char* script = R"(
        x = sin((1:100)'.^2); m = exp(-2i * pi * (0:99)' * (0:99) / 100);
        assert(fft(x), m * x, 1e-11); assert(ifft(fft(x)), x, 1e-13);
        assert(fft(single(x)), single(m * x), 1e-4);
        y = reshape(x, 4, 25); assert(ifft2(fft2(y)), y, 1e-13);
        assert(fft(y, [], 2), (m(1:4:100, 1:25) * y.').', 1e-11);
        z = reshape(x + 1i * cos(x), 5, 4, 5); assert(ifftn(fftn(z)), z, 1e-13);
        printf('%s\n', version('-fftw')))";
    const auto run = run_program({octave, "--norc", "--no-gui", "--eval", script}, {on_ork});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_THAT(run.out, testing::HasSubstr("(ork ")) << "ran on another library";
}

} // namespace

} // namespace ork::test
