#include "app/window/playback_bar.h"

#include <algorithm>
#include <cinttypes>
#include <iterator>

#include "app/run/file_run.h"
#include "app/settings/stored_options.h"
#include "app/state/overview.h"
#include "app/window/control_ids.h"
#include "app/window/file_commands.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "display/scaling.h"

namespace tw {
namespace {

constexpr PaceRow kPaces[] = {{L"\u00D7 0.5", 50},
                              {L"\u00D7 1", 100},
                              {L"\u00D7 2", 200},
                              {L"\u00D7 5", 500},
                              {L"As fast as given", kPaceAsGiven},
                              {L"\u00D7 10", 1'000},
                              {L"\u00D7 50", 5'000}};
constexpr int32_t kSmallStep = 20;
constexpr int32_t kLargeStep = 100;

// Pixels at 96 dpi, to be scaled.
constexpr int kGap = 6;
constexpr int kRowTop = 3;
constexpr int kRowHeight = 23;
constexpr int kTextHeight = 16;
constexpr int kStripTop = 30;
constexpr int kStripBottom = 2;

struct Clock {
  int64_t hours;
  int minutes;
  int seconds;
};

Clock ClockOf(int64_t time_ms) {
  const int64_t seconds = std::max<int64_t>(time_ms, 0) / 1'000;
  return {seconds / 3'600, static_cast<int>(seconds / 60 % 60), static_cast<int>(seconds % 60)};
}

bool IsReplay(const AppState& state) {
  return state.playbackActive != 0 && state.options.playbackBar != 0;
}

void HoldOrGoOn(AppState& state) {
  if (state.playbackPaused != 0 || state.playbackAtEnd != 0) {
    ResumePlayback(state);
  } else {
    PausePlayback(state);
  }
}

void ChangePace(AppState& state, int step) {
  const size_t place = PlaceOfPace(LoadShared(state.replay.pace_percent));
  if (step < 0 ? place > 0 : place + 1 < std::size(kPaces))
    ChoosePace(state, step < 0 ? place - 1 : place + 1);
}

// A number of at most nine digits at the front, which is taken off. Below 0: there is none.
int64_t TakeNumber(std::wstring_view& text) {
  constexpr size_t kMostDigits = 9;
  size_t digits = 0;
  int64_t number = 0;
  for (; digits < text.size() && text[digits] >= L'0' && text[digits] <= L'9'; ++digits) {
    if (digits == kMostDigits) return -1;
    number = number * 10 + (text[digits] - L'0');
  }
  text.remove_prefix(digits);
  return digits == 0 ? -1 : number;
}

// Thousandths behind a point at the front; what is finer is left out.
int64_t TakeFraction(std::wstring_view& text) {
  if (!text.starts_with(L'.')) return 0;
  text.remove_prefix(1);
  int64_t fraction_ms = 0;
  for (int64_t unit = 100; !text.empty() && text[0] >= L'0' && text[0] <= L'9'; unit /= 10) {
    fraction_ms += unit * (text[0] - L'0');
    text.remove_prefix(1);
  }
  return fraction_ms;
}

std::wstring_view WithoutBlanks(std::wstring_view text) {
  while (text.starts_with(L' ')) text.remove_prefix(1);
  while (text.ends_with(L' ')) text.remove_suffix(1);
  return text;
}

}  // namespace

std::span<const PaceRow> Paces() {
  return kPaces;
}

size_t PlaceOfPace(int32_t percent) {
  const auto row = std::find_if(std::begin(kPaces), std::end(kPaces),
                                [&](const PaceRow& pace) { return pace.percent == percent; });
  return static_cast<size_t>(row - std::begin(kPaces)) % std::size(kPaces);
}

bool HasTimes(const PlayedTimes& times) {
  return times.begin_ms != kNoRecordedTime && times.end_ms != kNoRecordedTime &&
         times.end_ms > times.begin_ms;
}

void FormatPlayed(std::span<wchar_t> text, const PlayedTimes& times, uint64_t position, uint64_t fileSize) {
  if (!HasTimes(times)) {
    const double share = fileSize == 0 ? 0.0 : static_cast<double>(position) / static_cast<double>(fileSize);
    FormatWide(text, "%d %% of the file", static_cast<int>(100.0 * std::min(share, 1.0)));
    return;
  }
  // The newest ping of a file that grows comes ahead of the overview's look at its end.
  const int64_t now_ms = times.now_ms == kNoPingYet ? times.begin_ms : times.now_ms;
  const Clock now = ClockOf(now_ms - times.begin_ms);
  const Clock end = ClockOf(std::max(times.end_ms, now_ms) - times.begin_ms);
  FormatWide(text, "%02" PRId64 ":%02d:%02d of %02" PRId64 ":%02d:%02d", now.hours, now.minutes, now.seconds,
             end.hours, end.minutes, end.seconds);
}

std::optional<int64_t> ParseTimeOfRecording(std::wstring_view text) {
  constexpr int64_t kMostOfFirst = 1'000'000;
  text = WithoutBlanks(text);
  int64_t seconds = 0;
  for (int part = 0; part < 3; ++part) {
    const int64_t number = TakeNumber(text);
    if (number < 0 || number > (part == 0 ? kMostOfFirst : 59)) return std::nullopt;
    seconds = seconds * 60 + number;
    if (!text.starts_with(L':')) break;
    if (part == 2) return std::nullopt;
    text.remove_prefix(1);
  }
  const int64_t fraction_ms = TakeFraction(text);
  if (!text.empty()) return std::nullopt;
  return seconds * 1'000 + fraction_ms;
}

BarLayout LayOutBar(int width, int height, int32_t dpi) {
  const auto px = [&](int length) { return ScalePixels(length, dpi); };
  const int top = px(kRowTop);
  const int textTop = px(kRowTop + (kRowHeight - kTextHeight) / 2);
  int x = 0;
  const auto next = [&](int length, int y, int rowHeight) {
    const Box box{x, y, px(length), px(rowHeight)};
    x += box.width + px(kGap);
    return box;
  };
  BarLayout layout{};
  layout.paceLabel = next(30, textTop, kTextHeight);
  layout.pace = next(118, top, kRowHeight);
  x += px(kGap);
  layout.skipGaps = next(80, top, kRowHeight);
  x += px(kGap);
  layout.time = next(170, textTop, kTextHeight);
  // At the right edge, unless that is too near.
  layout.goTo = {std::max(x + px(44), width - px(84)), top, px(84), px(kRowHeight)};
  layout.goToLabel = {layout.goTo.x - px(44), textTop, px(40), px(kTextHeight)};
  layout.strip = {0, px(kStripTop), width, std::max(0, height - px(kStripTop + kStripBottom))};
  return layout;
}

bool HandleReplayKey(AppState& state, int id) {
  if (id < ID_REPLAY_HOLD || id > ID_REPLAY_SLOWER) return false;
  if (!IsReplay(state)) return true;
  switch (id) {
    case ID_REPLAY_HOLD:
      HoldOrGoOn(state);
      break;
    case ID_REPLAY_BACK:
    case ID_REPLAY_FAR_BACK:
      StepPlaybackBack(state, id == ID_REPLAY_BACK ? kBack20 : kBack100);
      break;
    case ID_REPLAY_ON:
    case ID_REPLAY_FAR_ON:
      static_cast<void>(StepFileRunOn(state, id == ID_REPLAY_ON ? kSmallStep : kLargeStep));
      break;
    case ID_REPLAY_BEGIN:
      RequestSeek(state.seekRequest, 0);
      break;
    case ID_REPLAY_FASTER:
      ChangePace(state, 1);
      break;
    case ID_REPLAY_SLOWER:
      ChangePace(state, -1);
      break;
    default:
      break;
  }
  return true;
}

void ChoosePace(AppState& state, size_t place) {
  if (place < std::size(kPaces)) StoreShared(state.replay.pace_percent, kPaces[place].percent);
}

void ChooseSkipGaps(AppState& state, bool skips) {
  state.options.skipGaps = skips ? 1 : 0;
  SaveOptions(state.options);
  TakeReplayOptions(state);
}

bool GoToTime(AppState& state, std::wstring_view text) {
  const std::optional<int64_t> time_ms = ParseTimeOfRecording(text);
  const PlayedTimes times = TimesOf(state);
  if (!time_ms || !HasTimes(times) || !IsReplay(state)) return false;
  RequestTime(state.replay.timeRequest, std::min(times.begin_ms + *time_ms, times.end_ms));
  return true;
}

PlayedTimes TimesOf(const AppState& state) {
  PlayedTimes times{kNoRecordedTime, kNoRecordedTime, LoadShared(state.replay.time_ms)};
  Overview* const overview = state.replay.overview;
  if (overview == nullptr) return times;
  const Locked held(overview->lock);
  times.begin_ms = overview->begin_ms;
  times.end_ms = overview->end_ms;
  return times;
}

}  // namespace tw
