// What a live worker tells the operator: the size of the recording or, without one, the ping line, at most
// once a second; losses of input go to the debug output. Acquisition worker only.
#pragma once

#include <cstdint>

#include "acquisition/ping_record.h"
#include "app/state/app_state.h"
#include "app/state/posts.h"

namespace tw {

class LiveReport {
 public:
  explicit LiveReport(AppState& state) : state_(state) {}

  // After each ping; `size` is the number of bytes that the present recording has. A dual run's line tells
  // the latest altitude of both channels.
  void Show(const PingHeader& ping, bool dual, uint64_t size, uint32_t now_ms);

  // The line's losses of input so far.
  void NoteOverruns(uint32_t overruns);

 private:
  [[nodiscard]] bool IsDue(uint32_t now_ms);

  AppState& state_;
  uint32_t last_ms_ = 0;
  bool begun_ = false;
  uint32_t overruns_ = 0;
};

}  // namespace tw
