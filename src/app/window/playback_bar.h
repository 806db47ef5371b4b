// What the playback bar offers, without its window: paces, the texts of its times, its geometry and its
// commands. GUI thread; all but the commands are pure.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string_view>

#include "app/state/app_state.h"
#include "app/window/window_layout.h"

namespace tw {

struct PaceRow {
  const wchar_t* text;
  int32_t percent;  // see ReplayState::pace_percent
};

// From slow to fast: as given stands where it belongs for the ten pings a second of most recordings.
[[nodiscard]] std::span<const PaceRow> Paces();
// Where a pace stands among them.
[[nodiscard]] size_t PlaceOfPace(int32_t percent);

// What is known of times in the recording; kNoRecordedTime and kNoPingYet: not known.
struct PlayedTimes {
  int64_t begin_ms;
  int64_t end_ms;
  int64_t now_ms;
};

// Whether they are known and rise, so that a time can be gone to.
[[nodiscard]] bool HasTimes(const PlayedTimes& times);

// "00:12:40 of 03:15:22"; without times how much of the file has been played, "37 % of the file".
inline constexpr size_t kPlayedTextSize = 64;
void FormatPlayed(std::span<wchar_t> text, const PlayedTimes& times, uint64_t position, uint64_t fileSize);

// A time of the recording as it is typed in: hours, minutes and seconds with colons between them, "1:02:03",
// or minutes and seconds, or seconds; a fraction of the seconds behind a point. In ms. Nothing for any other
// text, and for more than 59 of what is not the first number.
[[nodiscard]] std::optional<int64_t> ParseTimeOfRecording(std::wstring_view text);

// Where the bar's parts stand in its client area, in the screen's pixels.
struct BarLayout {
  Box paceLabel;
  Box pace;
  Box skipGaps;
  Box time;
  Box goToLabel;
  Box goTo;
  Box strip;
};
[[nodiscard]] BarLayout LayOutBar(int width, int height, int32_t dpi);

// One of the bar's keys, ID_REPLAY_… of control_ids.h; true when it was one. Without a playback or without
// the bar nothing happens.
bool HandleReplayKey(AppState& state, int id);

// The operator has chosen in the bar.
void ChoosePace(AppState& state, size_t place);
void ChooseSkipGaps(AppState& state, bool skips);
// False when the text is no time or the recording has none. Behind the recording's end counts as its end.
[[nodiscard]] bool GoToTime(AppState& state, std::wstring_view text);

// What the bar shows of the times.
[[nodiscard]] PlayedTimes TimesOf(const AppState& state);

}  // namespace tw
