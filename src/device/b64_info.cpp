// The B64INFO block of the third family: binary values in base64 behind "B64INFO[", ended by "]" CR LF, then
// the prompt. Offsets are into the decoded bytes, little-endian.
#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include "base/bytes.h"
#include "base/text_scan.h"
#include "device/base64.h"
#include "device/settings_readers.h"
#include "platform/clock.h"

namespace tw {
namespace {

constexpr size_t kTextLimit = 256;
constexpr uint32_t kIdleLimit_ms = 2000;
constexpr uint32_t kWholeLimit_ms = 10'000;
constexpr uint32_t kPause_ms = 2000;
constexpr size_t kFrequencyReads = 1024;
constexpr std::string_view kBlockStart = "B64INFO[";
constexpr std::string_view kBlockEnd = "]\r\n";
constexpr std::string_view kFrequencyStart = "Tx Frequency";

namespace field {
constexpr size_t kIdentifier = 4;   // int32
constexpr size_t kRange = 8;        // int32
constexpr size_t kTxLength = 12;    // int16
constexpr size_t kInterval = 14;    // float, seconds
constexpr size_t kDeadZone = 18;    // int16
constexpr size_t kOffset = 20;      // int16
constexpr size_t kThreshold = 22;   // int16
constexpr size_t kGain = 24;        // float
constexpr size_t kOutputMode = 34;  // int16
constexpr size_t kSoundSpeed = 36;  // int16
}  // namespace field

[[noreturn]] void EndProgram(const char* what) {
  std::fputs(what, stderr);
  std::abort();
}

// Bytes of one answer, with its limits in time and number.
class Answer {
 public:
  explicit Answer(DeviceLink& link, size_t limit = SIZE_MAX)
      : link_(link), left_(limit), begin_ms_(MillisecondClock()), last_ms_(begin_ms_) {}

  LinkResult Next(char& c) {
    if (left_ == 0) return LinkResult::invalid;
    --left_;
    for (;;) {
      uint8_t byte = 0;
      uint32_t got = 0;
      if (!ReadByte(link_, byte, got)) return LinkResult::portFailed;
      const uint32_t now_ms = MillisecondClock();
      if (now_ms - begin_ms_ > kWholeLimit_ms) return LinkResult::noPrompt;
      if (got != 0) {
        last_ms_ = now_ms;
        c = static_cast<char>(byte);
        atPrompt_ = matcher_.Take(byte);
        prompted_ = prompted_ || atPrompt_;
        return LinkResult::success;
      }
      if (now_ms - last_ms_ > kIdleLimit_ms) return LinkResult::noPrompt;
    }
  }

  // Reads behind the next occurrence of the mark.
  LinkResult Find(std::string_view mark) {
    size_t length = 0;
    return Collect(mark, {}, length);
  }

  // Collects the text before the mark, at most what `text` holds. `length` counts what came, kept or not.
  LinkResult Collect(std::string_view mark, std::span<char> text, size_t& length) {
    size_t matched = 0;
    length = 0;
    while (matched < mark.size()) {
      char c = 0;
      const LinkResult result = Next(c);
      if (result != LinkResult::success) return result;
      if (length < text.size()) text[length] = c;
      ++length;
      matched = c == mark[matched] ? matched + 1 : c == mark[0] ? 1 : 0;
    }
    length -= mark.size();
    return LinkResult::success;
  }

  // Reads to the prompt, which may begin with what has been read already, however many bytes stand before it.
  LinkResult End() {
    left_ = SIZE_MAX;
    LinkResult result = LinkResult::success;
    for (char c = 0; !atPrompt_ && result == LinkResult::success;) result = Next(c);
    return result;
  }

  // No prompt has come at all.
  [[nodiscard]] bool Outstanding() const { return !prompted_; }

 private:
  DeviceLink& link_;
  size_t left_;
  uint32_t begin_ms_;
  uint32_t last_ms_;
  PromptMatcher matcher_;
  bool atPrompt_ = false;  // the byte read last completed one
  bool prompted_ = false;
};

template <typename Wire, typename T>
void Take(std::span<const uint8_t> bytes, size_t offset, T& target) {
  if (offset + sizeof(Wire) <= bytes.size()) target = static_cast<T>(LoadLe<Wire>(bytes.data() + offset));
}

void TakeInterval(std::span<const uint8_t> bytes, DeviceSettings& settings) {
  if (field::kInterval + 4 > bytes.size()) return;
  const float interval_ms = LoadLeFloat(bytes.data() + field::kInterval) * 1000.0f;
  if (interval_ms >= 0.0f && interval_ms <= 3'600'000.0f) {
    settings.pingInterval_ms = static_cast<int32_t>(interval_ms);
  }
}

void TakeGain(std::span<const uint8_t> bytes, DeviceSettings& settings) {
  if (field::kGain + 4 > bytes.size()) return;
  const float gain = LoadLeFloat(bytes.data() + field::kGain);
  if (gain >= -1000.0f && gain <= 1000.0f) settings.gainHigh = gain;
}

LinkResult ReadBlock(DeviceLink& link, DeviceSettings& settings, bool& silent) {
  TellStep(link, LinkStep::asking);
  const LinkResult sent = SendCommandNoValue(link, CommandId::info);
  if (sent != LinkResult::success) return sent;
  Answer answer(link);
  char text[kTextLimit];
  size_t length = 0;
  LinkResult result = answer.Find(kBlockStart);
  if (result == LinkResult::success) result = answer.Collect(kBlockEnd, text, length);
  if (result == LinkResult::success) result = answer.Find(">");
  silent = result == LinkResult::noPrompt && answer.Outstanding();
  if (result != LinkResult::success) return result;
  if (length >= kTextLimit) EndProgram("The device's information block is too long.\n");
  DecodeB64Info({text, length}, settings);
  return LinkResult::success;
}

// Collects what follows kFrequencyStart in its line. The answer is read to its end: what is left of it would
// be taken for the reply to the next command. noPrompt when the answer may yet come.
LinkResult AskFrequencyLine(DeviceLink& link, std::span<char> rest, size_t& length) {
  const LinkResult sent = SendCommandNoValue(link, CommandId::info);
  if (sent != LinkResult::success) return sent;
  Answer answer(link, kFrequencyReads);
  LinkResult result = answer.Find(kFrequencyStart);
  if (result == LinkResult::success) result = answer.Collect("\r\n", rest, length);
  if (result == LinkResult::noPrompt) return answer.Outstanding() ? result : LinkResult::invalid;
  if (result != LinkResult::portFailed) static_cast<void>(answer.End());
  return result;
}

// The frequency is not in the block; without this line the program goes on with what it knows.
void ReadFrequency(DeviceLink& link, DeviceSettings& settings) {
  char line[128] = "Tx Frequency";
  const std::span<char> rest = std::span(line).subspan(kFrequencyStart.size());
  size_t length = 0;
  LinkResult result = AskFrequencyLine(link, rest, length);
  if (result == LinkResult::noPrompt && TakeLateReply(link)) result = AskFrequencyLine(link, rest, length);
  if (result != LinkResult::success) return;
  const size_t whole = std::min(length + kFrequencyStart.size(), sizeof line);
  int32_t frequency_hz = 0;
  if (!ParseTxFrequency({line, whole}, frequency_hz)) return;
  settings.frequencyInUse_hz = frequency_hz;
  settings.highFrequency_hz = frequency_hz;  // the one channel's, as the view names it
  settings.virtualHighFrequency_hz = frequency_hz;
}

}  // namespace

void DecodeB64Info(std::string_view text, DeviceSettings& settings) {
  uint8_t decoded[kTextLimit];
  const std::span<const uint8_t> bytes(decoded, DecodeBase64(text, decoded));
  Take<int32_t>(bytes, field::kIdentifier, settings.identifierWord);
  Take<int32_t>(bytes, field::kRange, settings.rangeHigh_mm);
  Take<int16_t>(bytes, field::kTxLength, settings.txLengthHigh);
  TakeInterval(bytes, settings);
  Take<int16_t>(bytes, field::kDeadZone, settings.deadZoneHigh_mm);
  Take<int16_t>(bytes, field::kOffset, settings.offsetHigh_mm);
  Take<int16_t>(bytes, field::kThreshold, settings.thresholdHigh_percent);
  TakeGain(bytes, settings);
  Take<int16_t>(bytes, field::kOutputMode, settings.outputMode);
  Take<int16_t>(bytes, field::kSoundSpeed, settings.soundSpeed_mps);
  settings.reservedPower = 100.0f;
  settings.smoothing = 0;
}

bool ParseTxFrequency(std::string_view line, int32_t& frequency_hz) {
  int32_t value = 0;
  if (!ScanLiteral(line, kFrequencyStart)) return false;
  SkipWhiteSpace(line);
  if (!ScanIntWidth(line, 7, value)) return false;
  SkipWhiteSpace(line);
  if (!ScanLiteral(line, "Hz")) return false;
  frequency_hz = value;
  return true;
}

bool ReadIdentifierFromB64Info(DeviceLink& link, int32_t& identifier) {
  size_t length = 0;
  if (SendCommandNoValue(link, CommandId::info) != LinkResult::success) return false;
  if (ReadReply(link, length) == LinkResult::portFailed) return false;
  const std::string_view reply(link.reply, length);
  const size_t start = reply.find(kBlockStart);
  if (start == std::string_view::npos) return false;
  const std::string_view behind = reply.substr(start + kBlockStart.size());
  const size_t end = behind.find(kBlockEnd);
  if (end == std::string_view::npos || end >= kTextLimit) return false;
  uint8_t decoded[kTextLimit];
  const std::span<const uint8_t> bytes(decoded, DecodeBase64(behind.substr(0, end), decoded));
  if (field::kIdentifier + sizeof identifier > bytes.size()) return false;
  Take<int32_t>(bytes, field::kIdentifier, identifier);
  return true;
}

LinkResult ReadSettingsFromB64Info(DeviceLink& link, DeviceSettings& settings, bool& silent) {
  DeviceSettings read = settings;
  silent = false;
  const LinkResult result = ReadBlock(link, read, silent);
  if (result != LinkResult::success) return result;
  SleepMilliseconds(kPause_ms);
  ReadFrequency(link, read);
  settings = read;
  return LinkResult::success;
}

}  // namespace tw
