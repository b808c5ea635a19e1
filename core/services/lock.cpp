// SPDX-License-Identifier: MIT
// The one lock that kernels may take.
#include "services/lock.h"

#include <pthread.h>

#include "export.h"
#include "ork/abi/services.h"

namespace {
constinit pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
}

ORK_EXPORT void ork_serv_lock() { pthread_mutex_lock(&mutex); }
ORK_EXPORT void ork_serv_unlock() { pthread_mutex_unlock(&mutex); }

void ork::services::reset_lock() { mutex = PTHREAD_MUTEX_INITIALIZER; }
