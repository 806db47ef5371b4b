// Any bytes as a stream of NMEA epochs: epoch reader and every sentence parser of both families. The first
// byte chooses the family and the pieces in which the rest arrives; the epochs must be the same as in one
// piece. The stream as a whole goes to the parsers too.
#include <cmath>
#include <string>
#include <vector>

#include "acquisition/epoch_reader.h"
#include "acquisition/nmea_depth.h"
#include "fuzz/pieces.h"

namespace tw {
namespace {

// What a parser says must agree with what it did to its target.
void RequireKept(SentenceResult result, float value, float before) {
  Require(std::isfinite(value));
  if (result == SentenceResult::missing) Require(value == before);
  if (result == SentenceResult::noBottom) Require(value == 0);
}

void Parse(std::string_view text, const NmeaForms& forms) {
  // Without the zero behind it, so that a read behind the end shows.
  const std::vector<char> bytes(text.begin(), text.end());
  const std::string_view epoch(bytes.data(), bytes.size());
  constexpr float kBefore = 1234.5f;
  float first = kBefore;
  float second = kBefore;
  RequireKept(ParseDepth(epoch, forms, first), first, kBefore);
  first = kBefore;
  const SentenceResult attitude = ParsePitchRoll(epoch, forms, first, second);
  RequireKept(attitude, first, kBefore);
  RequireKept(attitude, second, kBefore);
  first = kBefore;
  RequireKept(ParseWaterTemperature(epoch, forms, first), first, kBefore);
  first = kBefore;
  RequireKept(ParseEma(epoch, first), first, kBefore);
  DeviceTime time{};
  if (ParseDeviceTime(epoch, time) == SentenceResult::value) {
    const CalendarTime same = CalendarFromUnixSeconds(time.unix_s);
    Require(same.day == time.calendar.day && same.hour == time.calendar.hour && time.milliseconds < 1'000);
  }
  int32_t frequency_hz = 0;
  static_cast<void>(ParseFrequencyLine(epoch, frequency_hz));
}

}  // namespace
}  // namespace tw

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  if (size == 0) return 0;
  const bool second = bytes[0] % 2 != 0;
  const tw::EpochForm& form = second ? tw::kSecondFamilyEpoch : tw::kFirstFamilyEpoch;
  const tw::NmeaForms& forms = second ? tw::kSecondFamilyNmea : tw::kFirstFamilyNmea;
  const std::span<const uint8_t> stream(bytes + 1, size - 1);
  const auto epochs =
      tw::BlocksOf([&] { return tw::EpochReader(form); }, stream, size_t{1} + bytes[0] / 2,
                   [&](std::string_view epoch) {
                     tw::Require(epoch.size() < tw::kEpochBufferSize && epoch.find(form.end) != epoch.npos);
                   });
  for (const std::string& epoch : epochs) tw::Parse(epoch, forms);
  tw::Parse({reinterpret_cast<const char*>(stream.data()), stream.size()}, forms);
  return 0;
}
