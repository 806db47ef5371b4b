// What a live worker tells the operator, at most once a second: the ping line, or the size of a recording
// whose file is closed (of one that goes on its writer tells it); losses of input go to the debug output.
// Acquisition worker only.
#pragma once

#include <cstdint>

#include "acquisition/ping_record.h"
#include "app/state/app_state.h"
#include "app/state/posts.h"

namespace tw {

class LiveReport {
 public:
  explicit LiveReport(AppState& state) : state_(state) {}

  // Asked once a ping: whether something is to be told of it.
  [[nodiscard]] bool IsDue(uint32_t now_ms);

  // A dual run's line tells the latest altitude of both channels.
  void ShowPing(const PingHeader& ping, bool dual);

  // The number of bytes that the present recording has.
  void ShowSize(uint64_t size_bytes);

  // The line's losses of input so far.
  void NoteOverruns(uint32_t overruns);

 private:
  AppState& state_;
  uint32_t last_ms_ = 0;
  bool begun_ = false;
  uint32_t overruns_ = 0;
};

}  // namespace tw
