#include "device/info_line.h"

#include <cinttypes>

#include "base/text_format.h"
#include "base/text_scan.h"
#include "platform/file.h"

namespace tw {
namespace {

constexpr std::string_view kKeyword = "INFO:";
constexpr int32_t kThirdFamilyFrequency_hz = 450'000;
constexpr float kUnknownPower = 100.0f;
constexpr int32_t kMaxKind = 10;
constexpr float kMaxInterval_s = 3600.0f;

InfoLine LineOf(const DeviceSettings& s, DeviceFamily family, FieldChannel channel, int32_t frequency_hz) {
  return {static_cast<int32_t>(family),
          frequency_hz,
          s.*kRangeOf[channel],
          static_cast<float>(s.pingInterval_ms) / 1000.0f,
          s.*kTxLengthOf[channel],
          s.txPower,
          s.*kGainOf[channel],
          s.*kTvgSpreadingOf[channel],
          s.*kTvgAbsorptionOf[channel],
          s.*kAttenuationOf[channel],
          s.*kDeadZoneOf[channel],
          s.*kThresholdOf[channel],
          s.*kOffsetOf[channel],
          s.soundSpeed_mps,
          s.outputMode};
}

bool WriteLine(Handle file, const InfoLine& info) {
  char text[kInfoLineSize];
  const auto length = static_cast<uint32_t>(FormatInfoLine(text, info));
  uint32_t written = 0;
  return WriteFileBytes(file, text, length, written);
}

// "%d" or "%f", and the comma in front of it unless it is the first field.
template <typename T>
bool Field(std::string_view& text, bool (*scan)(std::string_view&, T&), T& target) {
  return ScanLiteral(text, ",") && scan(text, target);
}

// The fields behind the frequency are the same in both forms.
bool ReadRest(std::string_view text, InfoLine& info) {
  return Field(text, ScanInt, info.range_mm) && Field(text, ScanFloat, info.interval_s) &&
         Field(text, ScanInt, info.txLength) && Field(text, ScanFloat, info.txPower) &&
         Field(text, ScanFloat, info.gain) && Field(text, ScanFloat, info.tvgSpreading) &&
         Field(text, ScanFloat, info.tvgAbsorption) && Field(text, ScanInt, info.attenuation) &&
         Field(text, ScanInt, info.deadZone_mm) && Field(text, ScanInt, info.threshold_percent) &&
         Field(text, ScanInt, info.offset_mm) && Field(text, ScanFloat, info.soundSpeed_mps) &&
         Field(text, ScanInt, info.outputMode) && info.interval_s >= 0.0f &&
         info.interval_s <= kMaxInterval_s;
}

}  // namespace

size_t FormatInfoLine(std::span<char> text, const InfoLine& info) {
  return FormatText(text,
                    "INFO:%" PRId32 ",%" PRId32 ",%" PRId32 ",%.1f,%" PRId32 ",%.1f,%.0f,%.0f,%.2f,%" PRId32
                    ",%" PRId32 ",%" PRId32 ",%" PRId32 ",%.1f,%" PRId32 "\r\n",
                    info.kind, info.frequency_hz, info.range_mm, static_cast<double>(info.interval_s),
                    info.txLength, static_cast<double>(info.txPower), static_cast<double>(info.gain),
                    static_cast<double>(info.tvgSpreading), static_cast<double>(info.tvgAbsorption),
                    info.attenuation, info.deadZone_mm, info.threshold_percent, info.offset_mm,
                    static_cast<double>(info.soundSpeed_mps), info.outputMode);
}

int MakeInfoLines(const DeviceSettings& settings, DeviceFamily family, int32_t channelFrequency_hz,
                  bool bothChannels, InfoLine (&lines)[2]) {
  if (family != DeviceFamily::first) {
    const bool third = family == DeviceFamily::third;
    lines[0] = LineOf(settings, family, FieldChannel::high,
                      third ? kThirdFamilyFrequency_hz : settings.frequencyInUse_hz);
    lines[0].txPower = kUnknownPower;
    return 1;
  }
  const int32_t high_hz = settings.virtualHighFrequency_hz;
  if (bothChannels) {
    lines[0] = LineOf(settings, family, FieldChannel::high, high_hz);
    lines[1] = LineOf(settings, family, FieldChannel::low, settings.virtualLowFrequency_hz);
    return 2;
  }
  const FieldChannel channel = channelFrequency_hz == high_hz ? FieldChannel::high : FieldChannel::low;
  lines[0] = LineOf(settings, family, channel, channelFrequency_hz);
  return 1;
}

void WriteInfoLine(const DeviceSettings& settings, DeviceFamily family, Handle& file,
                   int32_t channelFrequency_hz, bool bothChannels) {
  InfoLine lines[2];
  const int count = MakeInfoLines(settings, family, channelFrequency_hz, bothChannels, lines);
  for (int i = 0; i < count; ++i) {
    if (WriteLine(file, lines[i])) continue;
    CloseFile(file);
    file = Handle::invalid;
    return;
  }
}

bool ParseInfoLine(std::string_view text, InfoLine& info) {
  const size_t at = text.find(kKeyword);
  if (at == text.npos) return false;
  text.remove_prefix(at + kKeyword.size());
  text = text.substr(0, text.find_first_of("\r\n"));
  InfoLine read{};
  if (!ScanInt(text, read.kind)) return false;
  if (read.kind > kMaxKind) {
    read.frequency_hz = read.kind;
    read.kind = 1;
  } else if (!Field(text, ScanInt, read.frequency_hz)) {
    return false;
  }
  if (!ReadRest(text, read)) return false;
  info = read;
  return true;
}

void ApplyInfoLine(const InfoLine& info, FieldChannel channel, DeviceSettings& settings) {
  settings.*kRangeOf[channel] = info.range_mm;
  settings.*kTxLengthOf[channel] = info.txLength;
  settings.*kGainOf[channel] = info.gain;
  settings.*kTvgSpreadingOf[channel] = info.tvgSpreading;
  settings.*kTvgAbsorptionOf[channel] = info.tvgAbsorption;
  settings.*kAttenuationOf[channel] = info.attenuation;
  settings.*kDeadZoneOf[channel] = info.deadZone_mm;
  settings.*kThresholdOf[channel] = info.threshold_percent;
  settings.*kOffsetOf[channel] = info.offset_mm;
  if (channel == FieldChannel::low) {
    settings.lowFrequency_hz = info.frequency_hz;
    return;
  }
  settings.frequencyInUse_hz = info.frequency_hz;
  settings.pingInterval_ms = static_cast<int32_t>(info.interval_s * 1000.0f);
  settings.txPower = info.txPower;
  settings.soundSpeed_mps = info.soundSpeed_mps;
}

}  // namespace tw
