// Threads that are plain functions with one pointer.
#pragma once

#include <cstdint>

#include "platform/handle.h"

namespace tw {

using ThreadBody = void (*)(void* argument);

// Starts a thread. Handle::null when the system has none to give.
[[nodiscard]] Handle StartThread(ThreadBody body, void* argument);

enum class ThreadWait : uint8_t { ended, timedOut, failed };

// Waits until the thread has ended. `failed` when the handle is none (closed already).
[[nodiscard]] ThreadWait WaitForThread(Handle thread, uint32_t timeout_ms);

// How many threads this process can run at the same time: at least 1.
[[nodiscard]] uint32_t ProcessorCount();

// The calling thread stands back behind the others from now on, as far as the system does that.
void StandBack();

// Gives the handle back; the thread itself goes on. Handle::null is ignored.
void CloseThread(Handle thread);

}  // namespace tw
