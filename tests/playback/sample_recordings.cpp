#include "tests/playback/sample_recordings.h"

#include "tests/playback/info_text.h"
#include "tests/simulator/recorded_stream.h"

namespace tw::test {
const std::vector<SampleKind>& SampleKinds() {
  using sim::BinaryForm;
  constexpr auto kFirst = sim::DeviceFamily::first;
  constexpr auto kSecond = sim::DeviceFamily::second;
  constexpr auto kThird = sim::DeviceFamily::third;
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
      {"ThirdText", kThird, 2},
      {"ThirdNmea", kThird, 3},
      {"ThirdFrames", kThird, 100},
  };
  return kinds;
}

std::string SampleRecording(const SampleKind& kind, size_t messages, int32_t samples) {
  constexpr int64_t kPing_us = 20'000;
  const sim::RecordedStream stream({.family = kind.family,
                                    .outputMode = kind.outputMode,
                                    .pingsPerSecond = 50,
                                    .sampleCount = samples,
                                    .depth_m = 1.5,  // within the few samples
                                    .relief_m = 0.3,
                                    .binaryForm = kind.binaryForm},
                                   (static_cast<int64_t>(messages) + 1) * kPing_us);
  const sim::SentPing& last = stream.Ping(messages - 1);
  return (kind.hasInfo ? InfoText(static_cast<int32_t>(kind.family), kind.outputMode) : "") +
         stream.bytes.substr(0, last.offset + last.size);
}

}  // namespace tw::test
