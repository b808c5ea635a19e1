// SPDX-License-Identifier: MIT
// The one place that starts threads. A parallel call is a number of parts; the caller works on them itself and idle
// workers help, so a call always finishes, with or without workers.
#pragma once

namespace ork::threads {

// Most threads that a call from this thread may use now, itself included; 1 inside a part of another call.
int limit();

// Runs body(context, part) for part = 0 .. parts - 1, at most limit() at a time, and returns when all are done. Which
// thread runs which part is left open; the parts must not wait for each other, nor return in the child of a fork. Every
// part runs in the caller's rounding mode, and exception flags that it raises are raised in the caller.
void run(int parts, void (*body)(void* context, int part), void* context);

// The same for a callable.
template <class Body>
void run(int parts, Body&& body)
{
    run(
        parts, [](void* context, int part) { (*static_cast<Body*>(context))(part); }, &body);
}

// exit(), also from inside a part.
[[noreturn]] void leave_process(int code);

// A fork waits until the pool is at rest; the child has no workers and starts its own.
void before_fork();
void after_fork_in_parent();
void after_fork_in_child();

} // namespace ork::threads
