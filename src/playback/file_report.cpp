#include "playback/file_report.h"

#include <algorithm>

#include "base/shared_value.h"
#include "base/text_format.h"
#include "gps/position_text.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr uint32_t kPlaybackProgress_ms = 20;
constexpr uint32_t kConversionProgress_ms = 5;
constexpr uint32_t kNoPositionPeriod_ms = 2'000;
constexpr int64_t kCapturePeriod_s = 135;
constexpr uint32_t kUpdatesOfPositionText = 2;
constexpr int32_t kFix3d = 3;

}  // namespace

void FileReport::NotePosition(const RecordedPing& ping) {
  if (ping.hasPosition) {
    if (++positions_ - shownPositions_ < kUpdatesOfPositionText) return;
    shownPositions_ = positions_;
    wchar_t text[kStatusTextSize];
    FormatPosition(text,
                   {kFix3d, ping.header.gpsLatitude_rad, ping.header.gpsLongitude_rad, ping.header.gpsPdop});
    PostOwnText(state_, StatusPart::position, texts_, text);
    return;
  }
  const uint32_t now_ms = MillisecondClock();
  if (noPositionShown_ && now_ms - noPosition_ms_ < kNoPositionPeriod_ms) return;
  noPositionShown_ = true;
  noPosition_ms_ = now_ms;
  PostStatusText(state_, StatusPart::position, L"Position is not available");
}

void FileReport::NoteTime(int64_t recorded_s) {
  if (LoadShared(globals.autoCaptureTicked) == 0) return;
  const int64_t last_s = LoadShared(globals.lastCapture_s);
  const bool begun = last_s >= 0 && recorded_s >= last_s;  // after a way back it begins again
  if (begun && recorded_s - last_s <= kCapturePeriod_s) return;
  if (begun) StoreShared(globals.autoCaptureRequested, 1);
  StoreShared(globals.lastCapture_s, recorded_s);
}

bool FileReport::IsProgressDue(const RecordedPing& ping) {
  const uint32_t now_ms = MillisecondClock();
  const uint32_t period_ms = conversion_ ? kConversionProgress_ms : kPlaybackProgress_ms;
  if (progressBegun_ && now_ms - progress_ms_ < period_ms) return false;
  progressBegun_ = true;
  progress_ms_ = now_ms;
  samples_ = ping.samples.size();
  return true;
}

void FileReport::PostPlace(Handle input, const PingSource& recording) {
  const auto count = static_cast<int32_t>(std::max<size_t>(samples_, 1));
  PostProgress(state_, {input, kProgressSpan, count, 1, recording.Position(), recording.Size()});
}

void FileReport::ShowSize(uint64_t size) {
  wchar_t text[kStatusTextSize];
  FormatWide(text, "File size: %llu%s", static_cast<unsigned long long>(size), "Bytes");
  PostOwnText(state_, conversion_ ? StatusPart::position : StatusPart::pingLine, texts_, text);
}

}  // namespace tw
