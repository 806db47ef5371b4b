#include "playback/detection.h"

#include <algorithm>

#include "acquisition/altimeter_lines.h"
#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/nmea_depth.h"
#include "acquisition/output_mode.h"
#include "platform/clock.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr uint32_t kPause_ms = 50;
constexpr std::string_view kInfoMark = "INFO:";
constexpr int32_t kUsualTextMode = 4;  // of echo text that tells none

std::string_view AsText(std::span<const uint8_t> bytes) {
  return {reinterpret_cast<const char*>(bytes.data()), bytes.size()};
}

bool Holds(std::string_view text, std::string_view mark) {
  return text.find(mark) != std::string_view::npos;
}

// In the order in which they are looked for. kept: the mark of mode 1 comes before that of 10, which it
// matches as well.
struct ParameterMark {
  std::string_view mark;
  int32_t outputMode;
};

constexpr ParameterMark kParameterMarks[] = {
    {"#OutputMode    2", 2}, {"#OutputMode    4", 4},   {"#OutputMode    5", 5}, {"#OutputMode    6", 6},
    {"#OutputMode    1", 1}, {"#OutputMode    3", 3},   {"#OutputMode    7", 7}, {"#OutputMode    8", 8},
    {"#OutputMode    9", 9}, {"#OutputMode    10", 10},
};

struct FormMark {
  std::string_view mark;
  const StreamForm* form;
  DeviceFamily family;
  int32_t outputMode;
  bool atStart;
};

constexpr FormMark kFormMarks[] = {
    {"TR57", &kFrameStream, DeviceFamily::first, kPlayedBinary, false},
    {"DUAL", &kDualFrameStream, DeviceFamily::first, kPlayedBinary, false},
    {"TIDEWRITEC", &kBlockStream, DeviceFamily::first, kPlayedBinary, true},
    {"#DeviceID", &kFirstTextStream, DeviceFamily::first, 4, false},
    {" m", &kDesoStream, DeviceFamily::first, 6, false},
    {"$SDDBT", &kFirstNmeaStream, DeviceFamily::first, 3, false},
    {"$SDZDA", &kFirstNmeaStream, DeviceFamily::first, 3, false},
    {"$GPDBT", &kSecondNmeaStream, DeviceFamily::second, 3, false},
    {"$PGZDA", &kSecondNmeaStream, DeviceFamily::second, 3, false},
    {"Alt", &kReportingStream, DeviceFamily::first, 1, false},
    {"Dual", &kDualStream, DeviceFamily::first, 7, false},
    {"DA", &kDesoStream, DeviceFamily::first, 6, false},
    {"DB", &kDesoStream, DeviceFamily::first, 6, false},
};

// The line ends of the settings lines; a line that is cut short is none.
struct InfoLines {
  int32_t count = 0;
  size_t second = 0;  // place of the second one
  size_t size = 0;    // up to and with the last one
};

InfoLines FindInfoLines(std::string_view text) {
  InfoLines lines;
  for (size_t at = text.find(kInfoMark); at != std::string_view::npos; at = text.find(kInfoMark, at + 1)) {
    const size_t end = text.find("\r\n", at);
    if (end == std::string_view::npos) break;
    if (++lines.count == 2) lines.second = at;
    lines.size = end + 2;
  }
  return lines;
}

std::optional<Detected> DetectByInfo(std::string_view text) {
  InfoLine info{};
  if (!ParseInfoLine(text, info)) return std::nullopt;
  const InfoLines lines = FindInfoLines(text);
  const DeviceFamily family =
      info.kind == 1 || info.kind == 2 ? DeviceFamily{info.kind} : DeviceFamily::third;
  const OutputModeRow& mode = PlayedMode(family, info.outputMode);
  InfoLine second{};
  std::optional<InfoLine> low;
  if (lines.count > 1 && ParseInfoLine(text.substr(lines.second), second)) low = second;
  return Detected{&mode.recorded, family, mode.Played(), low ? 2 : 1, info, low, lines.size, true};
}

Detected ByMark(const StreamForm* form, DeviceFamily family, int32_t outputMode) {
  const int32_t channels = family == DeviceFamily::first && form->SharesFile() ? 2 : 1;
  return {form, family, outputMode, channels, std::nullopt, std::nullopt, 0, false};
}

// Gives each kind that the text's marks stand for to `take`, in their order, until it returns true.
template <typename Take>
void ForEachMark(std::string_view text, Take take) {
  if (Holds(text, "Parameters")) {
    for (const ParameterMark& each : kParameterMarks) {
      if (Holds(text, each.mark) && take(ByMark(&PlayedMode(DeviceFamily::second, each.outputMode).recorded,
                                                DeviceFamily::second, each.outputMode)))
        return;
    }
    return;
  }
  for (const FormMark& each : kFormMarks) {
    const bool found = each.atStart ? text.starts_with(each.mark) : Holds(text, each.mark);
    if (found && take(ByMark(each.form, each.family, each.outputMode))) return;
  }
}

std::optional<Detected> DetectByMark(std::string_view text) {
  std::optional<Detected> first;
  ForEachMark(text, [&](const Detected& way) {
    first = way;
    return true;
  });
  return first;
}

void Add(Candidates& candidates, const Detected& way) {
  const auto end = candidates.ways.begin() + static_cast<ptrdiff_t>(candidates.count);
  const bool isKnown =
      std::any_of(candidates.ways.begin(), end, [&](const Detected& each) { return each.form == way.form; });
  if (!isKnown && candidates.count < candidates.ways.size()) candidates.ways[candidates.count++] = way;
}

constexpr const StreamForm* kBinaryForms[] = {&kFrameStream, &kDualFrameStream, &kBlockStream};

void AddByInfo(Candidates& candidates, Detected way) {
  Add(candidates, way);
  if (way.form->isText) return;
  for (const StreamForm* const form : kBinaryForms) {
    way.form = form;
    Add(candidates, way);
  }
}

// A way told by a mark behind an INFO line: the line still tells the channels' settings.
Detected Behind(const std::optional<Detected>& info, Detected way) {
  if (!info) return way;
  way.channels = std::max(way.channels, info->channels);
  way.info = info->info;
  way.low = info->low;
  way.infoSize = info->infoSize;
  return way;
}

// The mark of echo text stands for both sides; the other one's family and mode are what is usual there.
std::optional<Detected> OtherKeys(Detected way) {
  if (way.form == &kFirstTextStream) {
    way.form = &kSecondTextStream;
    way.family = DeviceFamily::second;
    return way;
  }
  if (way.form != &kSecondTextStream) return std::nullopt;
  way.form = &kFirstTextStream;
  way.family = DeviceFamily::first;
  way.outputMode = kUsualTextMode;
  return way;
}

}  // namespace

std::optional<Detected> DetectRecording(std::span<const uint8_t> start) {
  const std::string_view text = AsText(start.first(std::min(start.size(), kStartSize)));
  const auto told = DetectByInfo(text);
  return told ? told : DetectByMark(text);
}

Candidates CandidatesOf(std::span<const uint8_t> start) {
  const std::string_view text = AsText(start.first(std::min(start.size(), kStartSize)));
  Candidates candidates{};
  const auto info = DetectByInfo(text);
  if (info) AddByInfo(candidates, *info);
  ForEachMark(text.substr(info ? info->infoSize : 0), [&](const Detected& way) {
    Add(candidates, Behind(info, way));
    if (const auto other = OtherKeys(way)) Add(candidates, Behind(info, *other));
    return false;
  });
  return candidates;
}

size_t ReadStart(Handle file, std::span<uint8_t, kStartSize> start, int retries) {
  uint32_t size = 0;
  for (int tries = 0; tries <= retries; ++tries) {
    if (tries != 0) SleepMilliseconds(kPause_ms);
    if (!SeekFile(file, 0) || !ReadFileBytes(file, start.data(), static_cast<uint32_t>(kStartSize), size))
      size = 0;
    if (DetectRecording(start.first(size))) break;
  }
  return SeekFile(file, 0) ? size : 0;
}

Candidates CandidatesOf(Handle file, int retries) {
  uint8_t start[kStartSize];
  return CandidatesOf(std::span<const uint8_t>(start, ReadStart(file, start, retries)));
}

}  // namespace tw
