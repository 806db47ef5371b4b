// Depth on a serial line, at the pace of the line: a ping is written when the line has sent what it got
// before, and then it is the newest one. So nothing waits in buffers of the system until it is stale. The
// thread of this output writes, and may be held up by a line that takes nothing; Put is for another thread.
#pragma once

#include "outputs/depth_message.h"
#include "outputs/sink_count.h"
#include "platform/handle.h"
#include "platform/sync.h"

namespace tw {

class SerialOutput {
 public:
  SerialOutput(const OutputOptions& options, SinkCount& count);
  SerialOutput(const SerialOutput&) = delete;
  SerialOutput& operator=(const SerialOutput&) = delete;
  ~SerialOutput();

  // False when the system has no events to give.
  [[nodiscard]] bool Make();

  // Leaves the message for the line; one that is still there is dropped. Never waits.
  void Put(const DepthMessage& message);

  // Writes what is put until it is told to end.
  void Run();
  // Any thread. A write or an opening that is under way is not waited for.
  void End();

 private:
  [[nodiscard]] bool Take(DepthMessage& message);
  void Write(const DepthMessage& message);
  [[nodiscard]] bool IsOpen(uint32_t now_ms);
  [[nodiscard]] bool WriteWhole(const DepthMessage& message);
  void NoteWritten(uint32_t size);
  // Milliseconds until the line has sent what it got.
  [[nodiscard]] uint32_t BusyFor_ms() const;

  const OutputOptions options_;
  SinkCount& count_;
  Lock lock_{};
  DepthMessage put_;     // lock_
  bool hasPut_ = false;  // lock_
  Event something_{};    // automatic: a message, or the end
  Event end_{};          // manual
  Handle line_ = Handle::invalid;
  bool tried_ = false;
  uint32_t tried_ms_ = 0;
  uint32_t free_ms_;  // when the line has sent what it got
};

}  // namespace tw
