// SPDX-License-Identifier: MIT
// The list of stages under construction, and the rules by which loops become passes.
#pragma once

#include <initializer_list>

#include "dft/node/stages.h"

namespace ork::dft {

// The stages of both directions with all their records, one block of memory that the head owns.
class StageList {
public:
    explicit StageList(ork_dft_node& head) : head_(head), most_(head.rank + 3)
    {
        struct Slot {
            ork_dft_stage stage;
            Stage record;
            Pass pass;
        };
        stages_ = reinterpret_cast<ork_dft_stage*>(new_cleared<Slot>(2 * most_));
        if (stages_ == nullptr) return;
        records_ = reinterpret_cast<Stage*>(stages_ + 2 * most_);
        passes_ = reinterpret_cast<Pass*>(records_ + 2 * most_);
        head.stage[0] = stages_, head.stage[1] = stages_ + most_;
    }
    bool allocated() const { return stages_ != nullptr; }

    void begin(Direction direction) { direction_ = static_cast<int>(direction); }
    void add(std::int64_t units, decltype(ork_dft_stage::run) run, std::initializer_list<std::int64_t> arguments)
    {
        ork_dft_stage& stage = head_.stage[direction_][head_.stages[direction_]++];
        stage.units = units, stage.run = run;
        int i = 0;
        for (const std::int64_t argument : arguments) stage.argument[i++] = argument;
    }
    Stage& new_record() { return *records_++; }
    Pass& new_pass() { return *passes_++; }
    const Pass* next_pass() const { return passes_; }
    void shared(std::size_t bytes)
    {
        const auto size = static_cast<std::int64_t>(bytes);
        if (size > head_.shared_bytes) head_.shared_bytes = size;
    }
    const ork_dft_node& head() const { return head_; }

private:
    ork_dft_node& head_;
    int most_; // stages of a direction, passes too
    int direction_ = 0;
    ork_dft_stage* stages_;
    Stage* records_ = nullptr;
    Pass* passes_ = nullptr;
};

// Loops with the dimensions that they run over; null: a loop that nothing is transformed along.
struct Dimensions {
    Loops loops;
    const ork_dft_node* node[most_loops];

    void push(Loop loop, const ork_dft_node* dimension)
    {
        node[loops.size] = dimension;
        loops.push(loop);
    }
};

// Which part of a transform the passes are.
struct Part {
    bool first = true, last = true; // reads the input; writes the output and scales
    bool real_last = false;         // the real dimension comes after all others
    Space middle = output;
};

template <class R>
void divide_passes(const Dimensions& dimensions, const Part& part, StageList& list);

template <class R>
void divide_four_step(const ork_dft_node& head, StageList& list);

} // namespace ork::dft
