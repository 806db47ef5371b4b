#include "platform/thread.h"

#include "platform/posix/running_thread.h"

namespace tw {

Handle StartThread(ThreadBody body, void* argument) {
  const auto thread = std::make_shared<posix::RunningThread>();
  thread->body = body;
  thread->argument = argument;
  return posix::Start(thread, [](posix::RunningThread& running) { running.Run(); });
}

}  // namespace tw
