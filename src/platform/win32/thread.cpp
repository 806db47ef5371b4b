#include "platform/thread.h"

#include <process.h>

#include <algorithm>
#include <memory>
#include <new>

#include "platform/win32/handle_win32.h"

namespace tw {
namespace {

struct Start {
  ThreadBody body;
  void* argument;
};

unsigned __stdcall Run(void* parameter) {
  std::unique_ptr<Start> owned(static_cast<Start*>(parameter));
  const Start start = *owned;
  owned.reset();
  start.body(start.argument);
  return 0;
}

}  // namespace

Handle StartThread(ThreadBody body, void* argument) {
  std::unique_ptr<Start> start(new (std::nothrow) Start{body, argument});
  if (start == nullptr) return Handle::null;
  const uintptr_t thread = _beginthreadex(nullptr, 0, Run, start.get(), 0, nullptr);
  if (thread == 0) return Handle::null;
  (void)start.release();  // the thread frees it
  return Handle{thread};
}

ThreadWait WaitForThread(Handle thread, uint32_t timeout_ms) {
  // The invalid value would stand for the process itself here.
  if (thread == Handle::null || thread == Handle::invalid) return ThreadWait::failed;
  switch (WaitForSingleObject(ToSystem(thread), timeout_ms)) {
    case WAIT_OBJECT_0:
      return ThreadWait::ended;
    case WAIT_TIMEOUT:
      return ThreadWait::timedOut;
    default:
      return ThreadWait::failed;
  }
}

uint32_t ProcessorCount() {
  SYSTEM_INFO system;
  GetSystemInfo(&system);
  return std::max<uint32_t>(system.dwNumberOfProcessors, 1);
}

void StandBack() {
  SetThreadPriority(GetCurrentThread(), THREAD_PRIORITY_LOWEST);
}

void CloseThread(Handle thread) {
  CloseIfOpen(thread);
}

}  // namespace tw
