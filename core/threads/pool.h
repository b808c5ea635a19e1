// SPDX-License-Identifier: MIT
// The one place that starts threads. A parallel call is a number of parts; the caller works on them itself and idle
// workers help, so a call always finishes, with or without workers.
#pragma once

namespace ork::threads {

// Most threads that a call from this thread may use now, itself included; 1 inside a part of another call.
int limit();

// Runs body(context, part) for part = 0 .. parts - 1, at most limit() at a time, and returns when all are done. Which
// thread runs which part is left open; the parts must not wait for each other.
void run(int parts, void (*body)(void* context, int part), void* context);

// The same for a callable.
template <class Body>
void run(int parts, Body&& body)
{
    run(parts, [](void* context, int part) { (*static_cast<Body*>(context))(part); }, &body);
}

} // namespace ork::threads
