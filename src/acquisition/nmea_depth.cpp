#include "acquisition/nmea_depth.h"

#include <algorithm>
#include <cinttypes>

#include "acquisition/epoch_reader.h"
#include "base/text_format.h"
#include "base/text_scan.h"

namespace tw {
namespace {

constexpr size_t kFrequencyLineSize = 32;
constexpr std::string_view kLineEnd = "\r\n";
constexpr std::string_view kDateTime = "$SDZDA,";
constexpr std::string_view kFrequencyMark = "#F ";

// Cuts the next sentence with this address out of `rest`, which then begins behind it: from behind the
// address's comma to its CR LF, which is left out. False: there is none, or it has no end.
bool NextSentence(std::string_view& rest, std::string_view address, std::string_view& fields) {
  const size_t begin = rest.find(address);
  if (begin == rest.npos) return false;
  const size_t end = rest.find(kLineEnd, begin);
  if (end == rest.npos) return false;
  fields = rest.substr(begin + address.size(), end - begin - address.size());
  rest.remove_prefix(end + kLineEnd.size());
  return true;
}

// The first sentence with this address that also holds `sign`.
bool FindTransducer(std::string_view epoch, std::string_view address, std::string_view sign,
                    std::string_view& fields) {
  while (NextSentence(epoch, address, fields)) {
    if (fields.find(sign) != fields.npos) return true;
  }
  return false;
}

bool ScanDepths(std::string_view fields, bool withFathoms, float& metres) {
  float feet = 0;
  float fathoms = 0;
  return ScanFloat(fields, feet) && ScanLiteral(fields, ",f,") && ScanFloat(fields, metres) &&
         ScanLiteral(fields, ",M,") &&
         (withFathoms ? ScanFloat(fields, fathoms) && ScanLiteral(fields, ",F*") : ScanLiteral(fields, ",*"));
}

bool ScanDateTime(std::string_view fields, CalendarTime& time, int32_t& hundredths) {
  return ScanIntWidth(fields, 2, time.hour) && ScanIntWidth(fields, 2, time.minute) &&
         ScanIntWidth(fields, 2, time.second) && ScanLiteral(fields, ".") &&
         ScanIntWidth(fields, 2, hundredths) && ScanLiteral(fields, ",") && ScanInt(fields, time.day) &&
         ScanLiteral(fields, ",") && ScanInt(fields, time.month) && ScanLiteral(fields, ",") &&
         ScanInt(fields, time.year) && ScanLiteral(fields, ",00,00,*");
}

bool IsWithin(int32_t value, int32_t least, int32_t most) {
  return value >= least && value <= most;
}

bool IsMoment(const CalendarTime& time, int32_t hundredths) {
  if (!IsWithin(time.month, 1, 12) || !IsWithin(time.day, 1, 31) || !IsWithin(time.year, 1970, 2105)) {
    return false;
  }
  return IsWithin(time.hour, 0, 23) && IsWithin(time.minute, 0, 59) && IsWithin(time.second, 0, 59) &&
         IsWithin(hundredths, 0, 99);
}

template <const EpochForm& form>
std::unique_ptr<StreamReader> MakeReader() {
  return NewReader<EpochReader>(form);
}

// An epoch goes by its frequency line; one without belongs to the first channel.
template <const NmeaForms& forms>
bool ParseEpoch(std::string_view epoch, const LiveContext& context, LivePing& ping) {
  PingHeader& header = ping.header;
  int32_t frequency_hz = 0;
  const bool reported = ParseFrequencyLine(epoch, frequency_hz);
  ping.secondChannel = reported && context.IsSecondChannel(frequency_hz);
  ping.channelFrequency_hz = context.ChannelFrequency_hz(ping.secondChannel);
  header.txFrequency_hz = reported ? frequency_hz : ping.channelFrequency_hz;
  // A sentence that is missing leaves its value as it was.
  static_cast<void>(ParseDepth(epoch, forms, header.altitude_m));
  static_cast<void>(ParsePitchRoll(epoch, forms, header.pitch_deg, header.roll_deg));
  static_cast<void>(ParseWaterTemperature(epoch, forms, header.temperature_c));
  DeviceTime time{};
  ping.hasDeviceTime = ParseDeviceTime(epoch, time) == SentenceResult::value;
  ping.deviceSeconds = time.unix_s;
  ping.deviceMilliseconds = time.milliseconds;
  return true;
}

size_t LayOutRecord(std::string_view epoch, const LivePing& ping, std::string_view sentences,
                    std::span<char, kMaxRecordSize> record) {
  const size_t line = FormatText(std::span(record).first<kFrequencyLineSize>(), "#F %" PRId32 " Hz\r\n",
                                 ping.channelFrequency_hz);
  auto out = record.begin() + static_cast<std::ptrdiff_t>(line);
  out = std::copy(epoch.begin(), epoch.end(), out);
  out = std::copy(sentences.begin(), sentences.end(), out);
  return static_cast<size_t>(out - record.begin());
}

template <const EpochForm& form, const NmeaForms& forms>
constexpr StreamForm EpochStream(const char* name) {
  return {.name = name,
          .makeReader = MakeReader<form>,
          .parse = ParseEpoch<forms>,
          .layOutRecord = LayOutRecord,
          .echo = EchoSource::pulse,
          .dualAttitude = true};
}

}  // namespace

const StreamForm kFirstNmeaStream =
    EpochStream<kFirstFamilyEpoch, kFirstFamilyNmea>("NMEA epochs, first family");
const StreamForm kSecondNmeaStream =
    EpochStream<kSecondFamilyEpoch, kSecondFamilyNmea>("NMEA epochs, second family");

SentenceResult ParseDepth(std::string_view epoch, const NmeaForms& forms, float& depth_m) {
  std::string_view fields;
  if (!NextSentence(epoch, forms.depth, fields)) return SentenceResult::missing;
  // The comma behind the address may be the first of the two.
  if (forms.fathoms && (fields.starts_with(',') || fields.find(",,") != fields.npos)) {
    depth_m = 0;
    return SentenceResult::noBottom;
  }
  float metres = 0;
  if (!ScanDepths(fields, forms.fathoms, metres)) return SentenceResult::missing;
  depth_m = metres;
  return SentenceResult::value;
}

SentenceResult ParsePitchRoll(std::string_view epoch, const NmeaForms& forms, float& pitch_deg,
                              float& roll_deg) {
  std::string_view fields;
  if (!FindTransducer(epoch, forms.transducer, ",ROLL*", fields)) return SentenceResult::missing;
  float pitch = 0;
  float roll = 0;
  if (!ScanLiteral(fields, "A,") || !ScanFloat(fields, pitch) || !ScanLiteral(fields, ",D,PTCH,A,") ||
      !ScanFloat(fields, roll) || !ScanLiteral(fields, ",D,ROLL*")) {
    return SentenceResult::missing;
  }
  pitch_deg = pitch;
  roll_deg = roll;
  return SentenceResult::value;
}

SentenceResult ParseWaterTemperature(std::string_view epoch, const NmeaForms& forms, float& temperature_c) {
  std::string_view fields;
  float temperature = 0;
  if (!NextSentence(epoch, forms.temperature, fields) || !ScanFloat(fields, temperature) ||
      !ScanLiteral(fields, ",*")) {
    return SentenceResult::missing;
  }
  temperature_c = temperature;
  return SentenceResult::value;
}

SentenceResult ParseEma(std::string_view epoch, float& reading) {
  std::string_view fields;
  float value = 0;
  if (!FindTransducer(epoch, kFirstFamilyNmea.transducer, ",EMA*", fields) || !ScanLiteral(fields, "A,") ||
      !ScanFloat(fields, value) || !ScanLiteral(fields, ",P,EMA*")) {
    return SentenceResult::missing;
  }
  reading = value;
  return SentenceResult::value;
}

SentenceResult ParseDeviceTime(std::string_view epoch, DeviceTime& time) {
  std::string_view fields;
  CalendarTime read{};
  int32_t hundredths = 0;
  if (!NextSentence(epoch, kDateTime, fields) || !ScanDateTime(fields, read, hundredths) ||
      !IsMoment(read, hundredths)) {
    return SentenceResult::missing;
  }
  read.millisecond = hundredths * 10;
  const int64_t seconds = UnixSecondsFromCalendar(read);
  const CalendarTime same = CalendarFromUnixSeconds(seconds);
  if (same.day != read.day) return SentenceResult::missing;  // 31 June is no day
  time = {static_cast<uint32_t>(seconds), read, static_cast<uint32_t>(read.millisecond)};
  return SentenceResult::value;
}

bool ParseFrequencyLine(std::string_view epoch, int32_t& frequency_hz) {
  return ScanLiteral(epoch, kFrequencyMark) && ScanInt(epoch, frequency_hz);
}

}  // namespace tw
