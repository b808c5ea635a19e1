// SPDX-License-Identifier: MIT
// What the pool knows about each thread that calls it.
//
// One word under a pthread key, made at the first store and deleted at unload. thread_local would cost more: in a
// library that is opened late its block comes from malloc, which reserves 64 MiB of address space for each new worker.
#pragma once

namespace ork::threads {

struct ThreadWord {
    int local_limit; // 0: none of its own
    bool in_part;    // works on a part of a call, so calls from here run serial
};

ThreadWord thread_word();
void set_thread_word(ThreadWord word);

} // namespace ork::threads
