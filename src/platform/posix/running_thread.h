// Threads: what both this side and the test gear start.
#pragma once

#include <memory>

#include "platform/posix/monitor.h"
#include "platform/thread.h"

namespace tw::posix {

struct RunningThread {
  ThreadBody body = nullptr;
  void* argument = nullptr;
  Monitor monitor;
  bool ended = false;  // under the monitor

  // What the thread does: its body; then whoever waits for it is told.
  void Run();
};

// Starts a thread that does `run(thread)`. Handle::null, with the system error set, when there is none to
// give.
[[nodiscard]] Handle Start(const std::shared_ptr<RunningThread>& thread, void (*run)(RunningThread& thread));

}  // namespace tw::posix
