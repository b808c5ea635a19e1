// SPDX-License-Identifier: MIT
#include "matrix_market.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <charconv>
#include <cmath>
#include <cstring>
#include <fmt/format.h>
#include <fstream>
#include <stdexcept>

namespace ork::tool {
namespace {

constexpr int64_t most = 2147483646; // rows, columns and entries have 32-bit numbers

struct Entry {
    int row, column; // from 0
    double value;
};

std::vector<std::string_view> words_of(std::string_view line)
{
    std::vector<std::string_view> words;
    constexpr const char* blanks = " \t\r";
    for (size_t at = line.find_first_not_of(blanks); at != std::string_view::npos;) {
        const size_t end = std::min(line.find_first_of(blanks, at), line.size());
        words.push_back(line.substr(at, end - at));
        at = line.find_first_not_of(blanks, end);
    }
    return words;
}

template <class Number>
bool read_number(std::string_view word, Number& number)
{
    if (word.size() > 1 && word[0] == '+' && word[1] != '-') word.remove_prefix(1);
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    return error == std::errc() && end == word.data() + word.size();
}

class Reader {
public:
    explicit Reader(const std::string& file) : file_(file), in_(file)
    {
        if (!in_) throw std::runtime_error(fmt::format("{}: {}", file, std::strerror(errno)));
    }

    peers::CsrMatrix read()
    {
        read_banner();
        read_size();
        while (next_line()) read_entry();
        if (in_.bad()) fail("can't be read further");
        if (count_ < wanted_) {
            ++number_;
            fail(fmt::format("the file ends after {} entries, but {} were announced", count_, wanted_));
        }
        return compressed();
    }

private:
    [[noreturn]] void fail(const std::string& what) const
    {
        throw std::runtime_error(fmt::format("{}:{}: {}", file_, number_, what));
    }

    // The words of the next line that is neither blank nor a comment.
    bool next_line()
    {
        while (std::getline(in_, line_)) {
            ++number_;
            words_ = words_of(line_);
            if (!words_.empty() && words_.front().front() != '%') return true;
        }
        return false;
    }

    void read_banner()
    {
        ++number_;
        if (!std::getline(in_, line_)) fail("no Matrix Market file: it is empty");
        std::string lower = line_;
        std::transform(lower.begin(), lower.end(), lower.begin(),
                       [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
        const auto words = words_of(lower);
        if (words.size() != 5 || words[0] != "%%matrixmarket" || words[1] != "matrix")
            fail(
                "no Matrix Market file: its first line is not \"%%MatrixMarket matrix coordinate <field> <symmetry>\"");
        if (words[2] != "coordinate")
            fail(fmt::format("\"{}\" matrices can't be read, only \"coordinate\" ones", words[2]));
        pattern_ = words[3] == "pattern";
        if (!pattern_ && words[3] != "real" && words[3] != "integer")
            fail(fmt::format("\"{}\" entries can't be read, only \"real\", \"integer\" and \"pattern\"", words[3]));
        symmetric_ = words[4] == "symmetric";
        skew_ = words[4] == "skew-symmetric";
        if (!symmetric_ && !skew_ && words[4] != "general")
            fail(fmt::format("\"{}\" matrices can't be read, only \"general\", \"symmetric\" and \"skew-symmetric\"",
                             words[4]));
    }

    void read_size()
    {
        if (!next_line()) fail("no line with the numbers of rows, columns and entries");
        int64_t size[3];
        bool good = words_.size() == 3;
        for (size_t i = 0; good && i < 3; ++i)
            good = read_number(words_[i], size[i]) && size[i] >= (i < 2 ? 1 : 0) && size[i] <= most;
        if (!good) fail(fmt::format("\"{}\" is not the numbers of rows, columns and entries", line_));
        rows_ = static_cast<int>(size[0]);
        columns_ = static_cast<int>(size[1]);
        wanted_ = size[2];
        if ((symmetric_ || skew_) && rows_ != columns_)
            fail(fmt::format("a symmetric matrix can't have {} rows and {} columns", rows_, columns_));
    }

    int place(std::string_view word, const char* what, int limit) const
    {
        int64_t number = 0;
        if (!read_number(word, number)) fail(fmt::format("{} \"{}\" is not an integer", what, word));
        if (number < 1 || number > limit) fail(fmt::format("{} {} is outside 1 to {}", what, number, limit));
        return static_cast<int>(number - 1);
    }

    void read_entry()
    {
        if (count_ == wanted_) fail(fmt::format("more than the {} entries announced", wanted_));
        const size_t fields = pattern_ ? 2 : 3;
        if (words_.size() != fields)
            fail(fmt::format("{} fields instead of {}: row, column{}", words_.size(), fields,
                             pattern_ ? "" : ", value"));
        Entry e{place(words_[0], "row", rows_), place(words_[1], "column", columns_), 1};
        if (!pattern_ && (!read_number(words_[2], e.value) || !std::isfinite(e.value)))
            fail(fmt::format("value \"{}\" is not a number", words_[2]));
        if ((symmetric_ || skew_) && e.column > e.row)
            fail(fmt::format("entry ({}, {}) is above the diagonal of a matrix that stores its lower triangle",
                             e.row + 1, e.column + 1));
        if (skew_ && e.column == e.row)
            fail(fmt::format("entry ({0}, {0}) is on the diagonal of a skew-symmetric matrix", e.row + 1));
        ++count_;
        entries_.push_back(e);
        if ((symmetric_ || skew_) && e.row != e.column)
            entries_.push_back({e.column, e.row, skew_ ? -e.value : e.value});
    }

    peers::CsrMatrix compressed()
    {
        if (static_cast<int64_t>(entries_.size()) > most) fail("too many entries");
        std::stable_sort(entries_.begin(), entries_.end(), [](const Entry& a, const Entry& b) {
            return a.row != b.row ? a.row < b.row : a.column < b.column;
        });
        peers::CsrMatrix a;
        a.rows = rows_;
        a.columns = columns_;
        a.symmetric = symmetric_;
        a.ptr.assign(static_cast<size_t>(rows_) + 1, 0);
        for (size_t k = 0; k < entries_.size(); ++k) {
            const Entry& e = entries_[k];
            if (k > 0 && entries_[k - 1].row == e.row && entries_[k - 1].column == e.column) {
                a.val.back() += e.value;
                continue;
            }
            a.col.push_back(e.column);
            a.val.push_back(e.value);
            ++a.ptr[static_cast<size_t>(e.row) + 1];
        }
        for (size_t i = 1; i < a.ptr.size(); ++i) a.ptr[i] += a.ptr[i - 1];
        return a;
    }

    std::string file_, line_;
    std::ifstream in_;
    std::vector<std::string_view> words_;
    size_t number_ = 0; // of the line
    bool pattern_ = false, symmetric_ = false, skew_ = false;
    int rows_ = 0, columns_ = 0;
    int64_t wanted_ = 0, count_ = 0;
    std::vector<Entry> entries_;
};

} // namespace

peers::CsrMatrix read_matrix_market(const std::string& file) { return Reader(file).read(); }

} // namespace ork::tool
