// SPDX-License-Identifier: MIT
#include "services/at_fork.h"

#include <pthread.h>

#include "loader/library.h"
#include "services/lock.h"
#include "threads/pool.h"

namespace ork::services {
namespace {

void before()
{
    loader::before_fork();
    threads::before_fork();
}

void in_parent()
{
    threads::after_fork_in_parent();
    loader::after_fork_in_parent();
}

void in_child()
{
    threads::after_fork_in_child();
    loader::after_fork_in_child();
    reset_lock();
}

constinit pthread_once_t once = PTHREAD_ONCE_INIT;

} // namespace

void register_fork_handlers()
{
    pthread_once(&once, [] { pthread_atfork(before, in_parent, in_child); });
}

} // namespace ork::services
