// What a file worker tells beside the pings themselves: position and size texts, how far the file is, and
// when the time has come for an automatic screenshot. File worker only.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"
#include "app/state/posts.h"
#include "playback/ping_source.h"

namespace tw {

class FileReport {
 public:
  FileReport(AppState& state, OwnTexts& texts, bool conversion)
      : state_(state), texts_(texts), conversion_(conversion) {}

  // The position of every other ping that has one; that there is none at most every two seconds.
  void NotePosition(const RecordedPing& ping);

  // Asks for a picture when more than 135 s of recorded time have passed since the last one.
  void NoteTime(int64_t recorded_s);

  // True for the first ping and from then on once per period of the wall clock.
  [[nodiscard]] bool IsProgressDue(const RecordedPing& ping);

  // Posts place and size, with the count of samples of the ping that was due last. A mode without samples
  // counts as one of 1.
  void PostPlace(Handle input, const PingSource& recording);
  void ShowSize(uint64_t size);

 private:
  AppState& state_;
  OwnTexts& texts_;
  const bool conversion_;
  uint32_t positions_ = 0;
  uint32_t shownPositions_ = 0;
  bool noPositionShown_ = false;
  uint32_t noPosition_ms_ = 0;
  bool progressBegun_ = false;
  uint32_t progress_ms_ = 0;
  size_t samples_ = 0;
};

}  // namespace tw
