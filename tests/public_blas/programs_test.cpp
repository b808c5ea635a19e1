// SPDX-License-Identifier: MIT
// Existing programs run on the drop-in libraries without being rebuilt.
#include <csignal>
#include <unistd.h>

#include <algorithm>
#include <set>
#include <sstream>

#include <gtest/gtest.h>

#include "support/process.h"

namespace ork::test {

namespace {

const std::string on_ork = "LD_LIBRARY_PATH=" ORK_LIB_DIR;

std::string program(const char* name) { return std::string(ORK_BIN_DIR "/") + name; }

TEST(DropIn, RunsACProgram)
{
    const auto run = run_program({program("ork_blas_c_program")}, {on_ork});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_EQ(run.err, " ** On entry to DGEMM  parameter number  4 had an illegal value\n");
}

TEST(DropIn, ReportsThroughTheProgramsOwnXerbla)
{
    const auto run = run_program({program("ork_blas_c_program_xerbla")}, {on_ork});
    EXPECT_TRUE(run.ok()) << run.describe();
    EXPECT_EQ(run.err, "");
}

TEST(DropIn, AbortsOnWrongArgumentsIfAskedTo)
{
    const auto run = run_program({program("ork_blas_c_program")}, {on_ork, "ORK_XERBLA=abort"});
    EXPECT_EQ(run.signal, SIGABRT) << run.describe();
}

TEST(DropIn, RunsAFortranProgram)
{
#ifdef ORK_FORTRAN_PROGRAM
    const auto run = run_program({program("ork_blas_fortran_program")}, {on_ork});
    EXPECT_TRUE(run.ok()) << run.describe();
#else
    GTEST_SKIP() << "no Fortran compiler; the C program uses the same conventions";
#endif
}

// Twice: with the libraries found by their own paths, whatever the working directory.
TEST(DropIn, BothWidthsLiveInOneProcessThatLoadsThemLocally)
{
    const auto run =
        run_program({program("ork_blas_loader"), ORK_LIB_DIR "/libblas.so.3", ORK_LIB_DIR "/libblas64.so.3"},
                    {"LD_LIBRARY_PATH"}, 60, [] { (void)!chdir("/"); });
    EXPECT_TRUE(run.ok()) << run.describe();
}

std::set<std::string> exports(const char* library)
{
    const auto run = run_program({"nm", "-D", "--defined-only", "--format=posix", library});
    EXPECT_TRUE(run.ok()) << run.describe();
    std::set<std::string> names;
    std::istringstream lines(run.out);
    for (std::string line; std::getline(lines, line);) names.insert(line.substr(0, line.find(' ')));
    return names;
}

// The names of the reference library, written as its families.
std::set<std::string> reference_names()
{
    std::set<std::string> names = {"RowMajorStrg", "CBLAS_CallFromC", "lsame_",      "xerbla_",
                                   "cblas_xerbla", "xerbla_array_",   "cblas_csrot", "cblas_zdrot"};
    const auto words = [](const std::string& text, auto&& add) {
        std::istringstream list(text);
        for (std::string word; list >> word;) add(word);
    };
    const auto routine = [&](const std::string& name) { names.insert(name + "_"), names.insert("cblas_" + name); };
    const auto function = [&](const std::string& name) { routine(name), names.insert(name + "sub_"); };
    for (const auto& [types, stems] :
         {std::pair{"sdcz", "copy swap axpy scal rotg gemv gbmv trmv tbmv tpmv trsv tbsv tpsv gemm symm syrk syr2k "
                            "trmm trsm"},
          {"sd", "rot rotm rotmg symv sbmv spmv ger syr spr syr2 spr2"},
          {"cz", "geru gerc hemv hbmv hpmv her her2 hpr hpr2 hemm herk her2k"}})
        words(stems, [&](const std::string& stem) {
            for (const char* type = types; *type != 0; ++type) routine(*type + stem);
        });
    words("csscal zdscal csrot zdrot", routine);
    words("sdot ddot dsdot sdsdot snrm2 dnrm2 scnrm2 dznrm2 sasum dasum scasum dzasum isamax idamax icamax izamax "
          "scabs1 dcabs1",
          function);
    words("cdotu cdotc zdotu zdotc", [&](const std::string& name) {
        names.insert({name + "_", name + "sub_", "cblas_" + name + "_sub"});
    });
    return names;
}

TEST(DropIn, ExportsAllOfTheReferenceLibrary)
{
    const auto want = reference_names(), got = exports(ORK_LIB_DIR "/libblas.so.3");
    EXPECT_EQ(want.size(), 324u);
    EXPECT_TRUE(std::includes(got.begin(), got.end(), want.begin(), want.end()));
}

TEST(DropIn, ExportsTheBlasAndNothingElse)
{
    std::set<std::string> want = {"RowMajorStrg", "CBLAS_CallFromC"};
    const auto fortran = [&](std::string name) { want.insert(name + "_"); };
    const auto c = [&](std::string name) { want.insert("cblas_" + name); };
#define ROUTINE(n, routine, ...) fortran(#routine), c(#routine);
#define ORDERED_ROUTINE ROUTINE
#define FORTRAN_ROUTINE(n, routine, ...) fortran(#routine);
#define OWN_ROUTINE(...)
#define BATCH_ROUTINE(routine, ...) fortran(#routine), c(#routine);
#define EXTENSION_FUNCTION ROUTINE
#define FUNCTION(n, routine, ...) fortran(#routine), fortran(#routine "sub"), c(#routine);
#define COMPLEX_FUNCTION(n, routine, ...) fortran(#routine), fortran(#routine "sub"), c(#routine "_sub");
#define EXTENSION_COMPLEX_FUNCTION(n, routine, ...) fortran(#routine), c(#routine "_sub");
#include "blas/routines.inc"
#define ROUTINE(routine) fortran(#routine), c(#routine);
#include "trans/routines.inc"
    for (const char* helper : {"lsame", "xerbla", "xerbla_array"}) fortran(helper);
    c("xerbla");
    EXPECT_EQ(exports(ORK_LIB_DIR "/libblas.so.3"), want);
    EXPECT_EQ(exports(ORK_LIB_DIR "/libblas64.so.3"), want);
}

} // namespace

} // namespace ork::test
