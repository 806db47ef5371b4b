#include "platform/thread.h"

#include "platform/posix/running_thread.h"
#include "platform/virtual/baton.h"
#include "platform/virtual/fault_points.h"

namespace tw {
namespace {

struct SeatedThread : posix::RunningThread {
  baton::Seat* seat = nullptr;  // null on the real clock
};

void Run(posix::RunningThread& running) {
  auto& thread = static_cast<SeatedThread&>(running);
  if (thread.seat != nullptr) baton::SitDown(thread.seat);
  thread.Run();
  if (thread.seat != nullptr) baton::StandUp();
}

}  // namespace

Handle StartThread(ThreadBody body, void* argument) {
  if (FaultAt(FaultPoint::startThread, {})) return Handle::null;
  const auto thread = std::make_shared<SeatedThread>();
  thread->body = body;
  thread->argument = argument;
  if (baton::Held()) thread->seat = baton::AddSeat();
  const Handle handle = posix::Start(thread, Run);
  if (handle == Handle::null && thread->seat != nullptr) baton::DropSeat(thread->seat);
  return handle;
}

}  // namespace tw
