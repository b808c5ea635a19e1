// SPDX-License-Identifier: MIT
#include <cmath>
#include <filesystem>
#include <fstream>
#include <gmock/gmock.h>
#include <sstream>
#include <unistd.h>

#include "pdett/transform.h"

namespace ork::test {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::Pair;

// A message as this program's catalogue has it: "<number:argument>" a line.
std::string message(int header, const std::vector<std::string>& lines)
{
    std::string text = "\n<396:>\n<" + std::to_string(header) + ":>\n";
    for (const std::string& line : lines) text += "<" + line + ">\n";
    return text + "\n";
}
std::string error(const std::vector<std::string>& lines) { return message(397, lines); }
std::string warning(const std::vector<std::string>& lines) { return message(398, lines); }

// Each test begins with a core that has printed nothing and fails nowhere, in a folder of its own.
class TrigProtocol : public testing::Test {
protected:
    TrigProtocol() : before_(std::filesystem::current_path())
    {
        replaced_core() = {};
        std::string name = (std::filesystem::temp_directory_path() / "ork-trig-XXXXXX").string();
        folder_ = mkdtemp(name.data());
        std::filesystem::current_path(folder_);
    }
    ~TrigProtocol() override
    {
        replaced_core() = {};
        std::filesystem::current_path(before_);
        std::filesystem::remove_all(folder_);
    }
    static std::string printed() { return std::exchange(replaced_core().printed, ""); }
    static std::string logged()
    {
        std::ostringstream text;
        text << std::ifstream("ORK_Trig_Transforms_Log.txt").rdbuf();
        return text.str();
    }

private:
    std::filesystem::path before_, folder_;
};

TEST_F(TrigProtocol, InitWritesTheDefaultsAndNothingElse)
{
    Trig<double> t(10, 9);
    const Int x = 4711;
    EXPECT_THAT(t.ipar, ElementsAre(10, 1, 1, x, x, 9, 0, 1, 1, 1, 0, x, x, x, x, x));
    EXPECT_EQ(t.stat, 0);
    EXPECT_DOUBLE_EQ(t.fpar[0], 1e-11);
    EXPECT_FLOAT_EQ(Trig<float>(10, 0).fpar[0], 1e-4f);
}

// In this order: the status, n, the type; the first that is wrong decides.
TEST_F(TrigProtocol, CommitRefuses)
{
    for (const auto& [status, n, type, want, text] : std::vector<std::tuple<Int, Int, Int, Int, std::string>>{
             {-100, 0, 9, -10000, error({"449:-100", "450:"})},
             {0, 1, 9, -100, error({"451:1", "452:"})},
             {0, -3, 0, -100, error({"451:-3", "452:"})},
             {0, 2, 6, -100, error({"453:6", "454:", "455:", "456:"})},
             {0, 2, -1, -100, error({"453:-1", "454:", "455:", "456:"})}}) {
        Trig<double> t(n, type);
        t.ipar[6] = status;
        if (status == 0) t.handle = reinterpret_cast<ork_dft_descriptor*>(0x10); // that nobody has set
        EXPECT_EQ(t.commit(), want);
        EXPECT_EQ(t.handle, nullptr);
        EXPECT_EQ(printed(), text);
        // A failed stage blocks all others but init.
        EXPECT_EQ(t.commit(), -10000);
        EXPECT_EQ(printed(), error({"449:" + std::to_string(want), "450:"}));
        EXPECT_EQ(t.forward(), -10000);
        EXPECT_EQ(printed(), error({"460:", "461:-10000", "462:", "463:"}));
        EXPECT_EQ(t.backward(), -10000);
        EXPECT_EQ(printed(), error({"460:", "461:-10000", "462:", "463:"}));
        EXPECT_EQ(replaced_core().descriptors, 0);
    }
    EXPECT_EQ(Trig<double>(2, 5).commit(), 0);
}

// Any entry, in single precision, which has less room for what tells: refused, or nothing has come of it.
TEST_F(TrigProtocol, AnyDamageIsRefusedOrHarmless)
{
    for (const Int n : {12, 512, 1 << 12}) {
        Trig<float> t(n, 1);
        ASSERT_EQ(t.commit(), 0);
        const std::vector<float> given = t.f;
        ASSERT_EQ(t.forward(), 0);
        const std::vector<float> want = t.f;
        const std::vector<Int> good = t.ipar;
        for (std::size_t entry = 0; entry < 16; ++entry)
            for (int shift = 0; shift < 63; ++shift)
                for (const Int value : {Int{1} << shift, -(Int{1} << shift), n + (Int{1} << shift), Int{0}}) {
                    t.f = given;
                    t.ipar[entry] = value;
                    if (entry == 1) t.ipar[entry] = 0; // no log file
                    const std::vector<float>& expected = t.forward() == 0 ? want : given;
                    EXPECT_TRUE(entry == 10 || t.f == expected) << entry << ": " << value; // 10: another scale
                    t.ipar = good;
                }
    }
}

TEST_F(TrigProtocol, ComputationRefusesDamagedArrays)
{
    for (const bool forward : {true, false}) {
        Trig<double> t(12, 1);
        replaced_core().printed.clear();
        const auto refused = [&](std::size_t entry, Int value, Int want, const std::string& text) {
            const std::vector<Int> good = t.ipar;
            const std::vector<double> f = t.f;
            t.ipar[entry] = value;
            EXPECT_EQ(forward ? t.forward() : t.backward(), want) << entry << ": " << value;
            EXPECT_EQ(printed(), text);
            EXPECT_EQ(t.f, f);
            Int back = !forward, one = 1, zero = 0, before = t.ipar[6] = good[6];
            EXPECT_EQ(t.call.lines(&back, t.f.data(), &one, &one, &zero, &t.handle, t.ipar.data(), t.fpar.data()),
                      want);
            EXPECT_EQ(printed(), "");
            EXPECT_EQ(t.ipar[6], before);
            t.ipar = good;
        };
        const auto state = [](const std::string& status) { return error({"460:", "461:" + status, "462:", "463:"}); };
        refused(0, 12, -10000, state("0")); // not committed
        ASSERT_EQ(t.commit(), 0);
        refused(5, 6, -100, error({"453:6", "454:", "455:", "456:"}));
        refused(0, 0, -10000, error({"464:", "465:0", "466:"}));
        refused(0, -5, -10000, error({"464:", "465:-5", "466:"}));
        refused(0, 13, -10000, state("0")); // would reach beyond f
        refused(5, 0, -10000, state("0"));  // its tables are another's
        EXPECT_EQ(forward ? t.forward() : t.backward(), 0);
    }
}

TEST_F(TrigProtocol, WarningsNeverFail)
{
    struct Row {
        Int type;
        std::string text;
    };
    for (const auto& [type, text] :
         {Row{0, warning({"472:0.25", "473:8e-12", "474:"}) + warning({"475:-0.5", "476:8e-12", "477:"})},
          {1, ""},
          {2, warning({"478:-0.5", "479:8e-12", "480:"})},
          {3, warning({"484:0.25", "485:8e-12", "486:"})},
          {4, ""},
          {5, ""}})
        for (const double large : {1.0, 0.0, std::nan("")}) // NaN does not exceed
            for (const Int unscaled : {0, 1}) {
                Trig<double> t(8, type);
                t.ipar[10] = unscaled;
                t.f.front() = 0.25 * large, t.f.back() = -0.5 * large;
                EXPECT_EQ(t.commit(), 0);
                EXPECT_EQ(printed(), unscaled == 0 && large == 1 ? text : "") << type;
            }
    Trig<float> t(8, 1);
    t.fpar[0] = -2;
    t.ipar[9] = -7;
    t.ipar[8] = 0; // the other set
    EXPECT_EQ(t.commit(), 0);
    EXPECT_EQ(printed(),
              warning({"428:-2", "429:", "430:", "431:", "432:8e-12"}) + warning({"442:-7", "443:", "444:1"}));
    EXPECT_FLOAT_EQ(t.fpar[0], 8e-5f);
    EXPECT_EQ(t.ipar[9], 1);
}

TEST_F(TrigProtocol, SwitchesChooseBetweenSilenceOutputAndFile)
{
    const auto commit_badly = [](Int errors, Int warnings) {
        Trig<double> t(1, 0);
        t.ipar[1] = errors, t.ipar[2] = warnings;
        EXPECT_EQ(t.commit(), -100);
    };
    const auto warn = [](Int errors, Int warnings) {
        Trig<double> t(4, 1);
        t.ipar[1] = errors, t.ipar[2] = warnings, t.ipar[9] = -1;
        EXPECT_EQ(t.commit(), 0);
    };
    const std::string refusal = error({"451:1", "452:"}), threads = warning({"481:-1", "482:", "483:1"});
    commit_badly(0, 5);
    warn(5, 0);
    EXPECT_EQ(printed(), "");
    EXPECT_FALSE(std::filesystem::exists("ORK_Trig_Transforms_Log.txt"));
    commit_badly(7, -1);
    warn(-1, 7);
    EXPECT_EQ(printed(), refusal + threads);
    commit_badly(-7, 1);
    warn(1, -7);
    EXPECT_EQ(printed(), "");
    EXPECT_EQ(logged(), refusal + threads);
    std::filesystem::remove("ORK_Trig_Transforms_Log.txt");
    std::filesystem::create_directory("ORK_Trig_Transforms_Log.txt"); // can't be opened as a file, not even by root
    commit_badly(-1, 0);
    EXPECT_EQ(printed(), "<408:ORK_Trig_Transforms_Log.txt>\n<409:>\n");
}

TEST_F(TrigProtocol, SetsUpThePackedRealTransform)
{
    Trig<double> t(12, 2);
    ASSERT_EQ(t.commit(), 0);
    EXPECT_EQ(replaced_core().lengths, 12);
    EXPECT_THAT(replaced_core().settings, ElementsAre(Pair(21, 56), Pair(10, 40)));
    Trig<float> threads(12, 4);
    threads.ipar[9] = 2;
    ASSERT_EQ(threads.commit(), 0);
    EXPECT_THAT(replaced_core().settings, ElementsAre(Pair(21, 56), Pair(10, 40), Pair(26, 2)));
    // Tables anew, the descriptor kept.
    const auto alive = replaced_core().descriptors;
    t.fpar.assign(t.fpar.size(), 0);
    t.ipar[7] = 0;
    ASSERT_EQ(t.commit(), 0);
    EXPECT_EQ(replaced_core().descriptors, alive);
    EXPECT_EQ(t.forward(), 0);
}

TEST_F(TrigProtocol, FailuresOfTheFourierTransformAreReported)
{
    for (const std::string call : {"create", "set 21", "set 10", "set 26", "commit"}) {
        Trig<double> t(16, 0);
        t.ipar[9] = 3;
        replaced_core().failing = call;
        replaced_core().failing_status = 1;
        EXPECT_EQ(t.commit(), -1000) << call;
        EXPECT_EQ(printed(), error({"487:no memory"}));
        EXPECT_EQ(replaced_core().descriptors, 0) << call;
        replaced_core().failing.clear();
        EXPECT_EQ(t.forward(), -10000);
        printed();
    }
    for (Int type = 0; type < 6; ++type)
        for (const Int n : {16, 17}) {
            Trig<double> t(n, type);
            ASSERT_EQ(t.commit(), 0);
            replaced_core().failing = "compute";
            EXPECT_EQ(t.forward(), -1000);
            t.ipar[6] = 0;
            EXPECT_EQ(t.backward(), -1000);
            EXPECT_EQ(printed(), "");
            replaced_core().failing.clear();
        }
    Trig<double> t(100000, 1);
    ASSERT_EQ(t.commit(), 0);
    replaced_core().no_memory = true;
    EXPECT_EQ(t.forward(), -1000);
    replaced_core().no_memory = false;

    replaced_core().failing = "free";
    replaced_core().failing_status = 4711;
    EXPECT_EQ(t.free(), -1000);
    EXPECT_THAT(printed(), HasSubstr("<487:unknown failure>"));
    replaced_core().failing.clear();
    EXPECT_EQ(t.free(), 0);
    EXPECT_EQ(t.handle, nullptr);
    EXPECT_EQ(t.free(), -1000); // there is nothing to free
    EXPECT_THAT(printed(), HasSubstr("no descriptor, a freed one"));
    EXPECT_EQ(t.forward(), -10000);
}

TEST_F(TrigProtocol, FormsWithTwoUnderscoresAreTheSame)
{
    Trig<double> plain(20, 3), forwarded(20, 3, "_");
    ASSERT_EQ(plain.commit(), 0);
    ASSERT_EQ(forwarded.commit(), 0);
    EXPECT_EQ(plain.forward(), 0);
    EXPECT_EQ(forwarded.forward(), 0);
    EXPECT_EQ(plain.f, forwarded.f);
    EXPECT_EQ(plain.backward(), 0);
    EXPECT_EQ(forwarded.backward(), 0);
    EXPECT_EQ(plain.f, forwarded.f);
    EXPECT_EQ(forwarded.free(), 0);
    Trig<float> single(20, 3, "_");
    EXPECT_EQ(single.commit() + single.forward() + single.backward() + single.free(), 0);
}

} // namespace
} // namespace ork::test
