// SPDX-License-Identifier: MIT
// The POSIX mutex, and what its errors are called.
#include "misc/threads/mutex.h"

#include "misc/text/numbers.h"

#include <array>
#include <cerrno>
#include <cstring>
#include <span>
#include <string>

namespace Orvil {

namespace {

struct ErrorText {
    int error;
    const char* message;
};

constexpr const char* invalidMutex = "Mutex: waiting on invalid mutex";
constexpr const char* tooManyLocks =
    "Mutex: the maximum number of recursive locks has been exceeded";

constexpr std::array lockErrors{
    ErrorText{EDEADLK, "Mutex: deadlock detected"},
    ErrorText{EINVAL, invalidMutex},
    ErrorText{EAGAIN, tooManyLocks},
    ErrorText{EPERM, "Mutex: tried"},
};

constexpr std::array unlockErrors{
    ErrorText{EINVAL, invalidMutex},
    ErrorText{EAGAIN, tooManyLocks},
    ErrorText{EPERM, "Mutex: tried to unlock unlocked mutex"},
};

Exception failure(std::span<const ErrorText> table, int error, std::uint32_t line) {
    std::string message =
        "Mutex: unexpected error: " + toString(error, 0, 6) + ": " + std::strerror(error);
    for (const ErrorText& row : table) {
        if (row.error == error) {
            message = row.message;
        }
    }
    return {message, "source/externals/orvil/source/misc/threads/mutex", line, ""};
}

} // namespace

Mutex::Mutex(bool recursive) {
    pthread_mutexattr_t attribute{};
    pthread_mutexattr_init(&attribute);
    pthread_mutexattr_settype(&attribute,
                              recursive ? PTHREAD_MUTEX_RECURSIVE : PTHREAD_MUTEX_NORMAL);
    pthread_mutex_init(&mutex_, &attribute);
    pthread_mutexattr_destroy(&attribute);
}

Mutex::~Mutex() {
    pthread_mutex_destroy(&mutex_);
}

void Mutex::lock() {
    if (const int error = pthread_mutex_lock(&mutex_)) {
        throw lockFailure(error);
    }
}

void Mutex::unlock() {
    if (const int error = pthread_mutex_unlock(&mutex_)) {
        throw unlockFailure(error);
    }
}

Exception Mutex::lockFailure(int error) {
    return failure(lockErrors, error, __LINE__);
}

Exception Mutex::unlockFailure(int error) {
    return failure(unlockErrors, error, __LINE__);
}

} // namespace Orvil
