// The virtual clock. While it runs, the platform layer of the threads that belong to it (the one that started
// it, number 0, and all that StartThread starts from then on, numbered in order) takes its time from here: a
// wait takes no real time, and a run is the same every time.
//
// One of these threads runs at a time, until it waits (a sleep, an event, a thread's end, a serial read with
// nothing there, a held lock). When all wait, the time jumps to the earliest deadline, ties by thread number.
// Calls that would take no time (asking a clock, looking at an event or a thread, BytesWaiting, an empty or a
// failing read) cost 1 us, so a loop that spins ends, and others get their turn. Reading what waits, writing,
// files and free locks cost nothing. When all wait without limit, the program aborts and says who waits for
// what.
//
// Other threads must not use the platform layer meanwhile. Serial lines that are terminals cannot be opened
// under this clock.
#pragma once

#include <cstdint>

#include "platform/posix/monitor.h"

namespace tw {

// Starts the clock at this moment of the wall clock, and MillisecondClock() at `firstMillisecond`.
void StartVirtualClock(int64_t unix_ms, uint32_t firstMillisecond = 1'000'000);

// Lets the other threads run until they have ended (at most one virtual hour, else the program aborts), then
// goes back to the real clock. Called by thread 0.
void StopVirtualClock();

// True when the calling thread belongs to a running virtual clock.
[[nodiscard]] bool IsClockVirtual();

// Microseconds since the start. Costs nothing.
[[nodiscard]] int64_t VirtualNow_us();

// The machine is suspended for so long: the time goes on, and nobody runs meanwhile. Every wait that would
// have ended by then ends at once. Called by a thread of the clock.
void SuspendMachine(int64_t duration_us);

// What LocalNow() adds to UtcNow() under the virtual clock; 0 after each start.
void SetVirtualUtcOffset(int32_t offset_s);

// Runs the virtual clock for a scope.
class VirtualClock {
 public:
  explicit VirtualClock(int64_t unix_ms, uint32_t firstMillisecond = 1'000'000) {
    StartVirtualClock(unix_ms, firstMillisecond);
  }
  ~VirtualClock() { StopVirtualClock(); }
  VirtualClock(const VirtualClock&) = delete;
  VirtualClock& operator=(const VirtualClock&) = delete;
};

}  // namespace tw
