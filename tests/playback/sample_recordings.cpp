#include "tests/playback/sample_recordings.h"

#include "simulator/virtual_echosounder.h"
#include "tests/playback/info_text.h"
#include "tests/sent_account.h"

namespace tw::test {
const std::vector<SampleKind>& SampleKinds() {
  using sim::BinaryForm;
  constexpr auto kFirst = sim::DeviceFamily::first;
  constexpr auto kSecond = sim::DeviceFamily::second;
  static const std::vector<SampleKind> kinds = {
      {"FirstSimple", kFirst, 1},
      {"FirstText", kFirst, 2},
      {"FirstNmea", kFirst, 3},
      {"FirstOtherText", kFirst, 4},
      {"Deso", kFirst, 6},
      {"DualLines", kFirst, 7},
      {"FirstDfx", kFirst, 8},
      {"FirstOld", kFirst, 9},
      {"Frames", kFirst, 100},
      {"Blocks", kFirst, 100, false, BinaryForm::block},
      {"DualFrames", kFirst, 100, false, BinaryForm::dualFrame},
      {"SecondSimple", kSecond, 1},
      {"SecondText", kSecond, 2},
      {"SecondNmea", kSecond, 3},
      {"SecondTextWithoutInfo", kSecond, 4, false},
      {"Psa916", kSecond, 7},
      {"AltiTemp", kSecond, 8},
      {"SecondDfx", kSecond, 9},
      {"SecondOld", kSecond, 10},
      {"SecondFrames", kSecond, 100},
  };
  return kinds;
}

std::string SampleRecording(const SampleKind& kind, size_t messages, int32_t samples) {
  SentAccount account;
  sim::VirtualEchosounder sounder({.family = kind.family,
                                   .baud = 12'000'000,
                                   .delivery_us = 1'000,
                                   .outputMode = kind.outputMode,
                                   .pingsPerSecond = 50,
                                   .sampleCount = samples,
                                   .depth_m = 1.5,  // within the few samples
                                   .relief_m = 0.3,
                                   .binaryForm = kind.binaryForm,
                                   .streaming = true},
                                  &account);
  const auto isComplete = [&] {
    return account.messages.size() >= messages && account.messages[messages - 1].sent.whole;
  };
  std::string stream;
  constexpr int64_t kLongest_us = 600'000'000;
  for (int64_t now_us = 0; !isComplete() && now_us < kLongest_us; now_us += 1'000) {
    uint8_t bytes[4096];
    for (size_t size = sizeof bytes; size == sizeof bytes;) {
      size = sounder.Send(bytes, now_us);
      stream.append(reinterpret_cast<const char*>(bytes), size);
    }
  }
  const sim::SentPing& last = account.messages[messages - 1].sent;
  stream.resize(last.offset + last.size);
  return (kind.hasInfo ? InfoText(static_cast<int32_t>(kind.family), kind.outputMode) : "") + stream;
}

}  // namespace tw::test
