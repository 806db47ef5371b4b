#include "playback/text_block.h"

#include <array>
#include <cinttypes>
#include <cmath>
#include <cstring>
#include <string_view>

#include "base/calendar.h"
#include "base/checksum.h"
#include "base/text_format.h"
#include "gps/position_text.h"

namespace tw {
namespace {

constexpr size_t kTailSize = kGllSize + 32;  // room kept for what stands behind the samples
constexpr size_t kWidestLine = 8;            // five digits, CR LF, and room to copy eight bytes at once

// The line of each amplitude of 12 bits: digits and CR LF, the length in the last byte. A formatted print of
// each sample would cost more than all else.
constexpr size_t kTabulated = 4'096;
using SampleLine = std::array<char, kWidestLine>;

constexpr SampleLine MakeSampleLine(size_t value) {
  SampleLine line{};
  size_t digits = 1;
  for (size_t rest = value / 10; rest != 0; rest /= 10) ++digits;
  for (size_t i = digits; i-- != 0; value /= 10) line[i] = static_cast<char>('0' + value % 10);
  line[digits] = '\r';
  line[digits + 1] = '\n';
  line[kWidestLine - 1] = static_cast<char>(digits + 2);
  return line;
}

constexpr auto kSampleLines = [] {
  std::array<SampleLine, kTabulated> lines{};
  for (size_t value = 0; value < kTabulated; ++value) lines[value] = MakeSampleLine(value);
  return lines;
}();

// A block as far as it has grown.
class BlockText {
 public:
  explicit BlockText(std::span<char> room) : room_(room) {}

  template <typename... Values>
  void Line(const char* format, Values... values) {
    size_ += FormatText(room_.subspan(size_), format, values...);
  }
  // Keyword, blank, value with so many decimals: what "%.*f" gives, at a fraction of its cost.
  void Number(std::string_view key, float value, int decimals) {
    Append(key);
    size_ += FormatFixed(room_.subspan(size_), static_cast<double>(value), decimals);
    Append("\r\n");
  }
  void Append(std::string_view text) {
    std::memcpy(room_.data() + size_, text.data(), text.size());
    size_ += text.size();
  }
  // Copies a whole row of the table, of which the next line overwrites what is too much.
  void Sample(uint16_t value) {
    if (value >= kTabulated) return LargeSample(value);
    const SampleLine& line = kSampleLines[value];
    std::memcpy(room_.data() + size_, line.data(), line.size());
    size_ += static_cast<size_t>(line.back());
  }
  // Digits from the end of a small field.
  void LargeSample(uint16_t value) {
    char digits[kWidestLine];
    size_t at = sizeof digits;
    do {
      digits[--at] = static_cast<char>('0' + value % 10);
      value = static_cast<uint16_t>(value / 10);
    } while (value != 0);
    Append({digits + at, sizeof digits - at});
    Append("\r\n");
  }
  [[nodiscard]] size_t Size() const { return size_; }
  [[nodiscard]] size_t Room() const { return room_.size() - size_; }

 private:
  std::span<char> room_;
  size_t size_ = 0;
};

void AppendHeader(const PingHeader& ping, BlockText& out) {
  out.Line("#DeviceID 000\r\n#TimeWork %" PRIu32 "\r\n#Ping %" PRIu32 "\r\n", ping.timeOfWork_s, ping.ping);
  out.Number("#Altitude ", ping.altitude_m, 4);
  out.Number("#Temperature ", ping.temperature_c, 2);
  out.Line("#NSamples %" PRIu32 "\r\n#Sampling_Frequency,Hz %" PRIu32 "\r\n#Tx_Frequency,Hz %" PRId32 "\r\n",
           ping.sampleCount, ping.samplingFrequency_hz, ping.txFrequency_hz);
  out.Number("#Range,m ", ping.range_m, 1);
  out.Append("#OutputMode 4\r\n");
  out.Number("#Pitch,deg ", ping.pitch_deg, 4);
  out.Number("#Roll,deg ", ping.roll_deg, 4);
  out.Number("#gpsLatitude,radian ", ping.gpsLatitude_rad, 9);
  out.Number("#gpsLongitude,radian ", ping.gpsLongitude_rad, 9);
  out.Number("#gpsAltitude,m ", ping.gpsAltitude_m, 6);
  out.Number("#gpsPDOP ", ping.gpsPdop, 6);
  out.Line("#gpsvalid %" PRId32 "\r\n\r\n####DataStart\r\n", ping.gpsValid);
}

// kept: of the samples every second one.
void AppendSamples(std::span<const uint16_t> samples, BlockText& out) {
  for (size_t i = 1; i < samples.size() && out.Room() >= kTailSize + kWidestLine; i += 2) {
    out.Sample(samples[i]);
  }
}

bool HasPosition(const PingHeader& ping) {
  if (!std::isfinite(ping.gpsLatitude_rad) || !std::isfinite(ping.gpsLongitude_rad)) return false;
  return ping.gpsValid > 0 || ping.gpsLatitude_rad > 0.0f;
}

// Degrees and minutes in one number, the letter carrying the sign.
double DegreesAndMinutes(float radians) {
  const double degrees = std::fabs(static_cast<double>(radians) / kRadiansPerDegree);
  const double whole = std::trunc(degrees);
  return whole * 100.0 + (degrees - whole) * 60.0;
}

}  // namespace

size_t BuildGll(const PingHeader& ping, std::span<char, kGllSize> text) {
  const CalendarTime time = CalendarFromUnixSeconds(ping.gpsTime_s);
  const size_t size =
      FormatText(text, "GPGLL,%.7f,%s%.7f,%s%02" PRId32 "%02" PRId32 "%02" PRId32 ".%02d,%sA",
                 DegreesAndMinutes(ping.gpsLatitude_rad), ping.gpsLatitude_rad < 0.0f ? "S," : "N,",
                 DegreesAndMinutes(ping.gpsLongitude_rad), ping.gpsLongitude_rad < 0.0f ? "W," : "E,",
                 time.hour, time.minute, time.second, 0, ping.gpsValid > 0 ? "A," : "V,");
  const unsigned checksum = XorChecksum({text.data(), size});
  return size + FormatText(std::span<char>(text).subspan(size), "*%02X", checksum);
}

size_t LayOutTextBlock(const PingHeader& ping, std::span<const uint16_t> samples,
                       std::span<char, kTextBlockSize> block) {
  BlockText out(block);
  AppendHeader(ping, out);
  AppendSamples(samples, out);
  out.Append("##DataEnd\r\n");
  if (!HasPosition(ping)) {
    out.Append("\r\n\r\n");
    return out.Size();
  }
  char gll[kGllSize];
  const size_t size = BuildGll(ping, gll);
  out.Append("$");
  out.Append({gll, size});
  out.Append("\r\n\r\n\r\n");
  return out.Size();
}

}  // namespace tw
