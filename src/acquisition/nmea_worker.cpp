#include "acquisition/nmea_worker.h"

#include <algorithm>
#include <cinttypes>

#include "acquisition/epoch_reader.h"
#include "acquisition/nmea_depth.h"
#include "base/text_format.h"

namespace tw {
namespace {

constexpr size_t kFrequencyLineSize = 32;

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

}  // namespace

const LiveMode kFirstFamilyNmeaMode{MakeReader<kFirstFamilyEpoch>, ParseEpoch<kFirstFamilyNmea>, LayOutRecord,
                                    EchoSource::pulse};
const LiveMode kSecondFamilyNmeaMode{MakeReader<kSecondFamilyEpoch>, ParseEpoch<kSecondFamilyNmea>,
                                     LayOutRecord, EchoSource::pulse};

void FirstFamilyNmeaWorker(void* state) {
  RunLiveWorker(*static_cast<AppState*>(state), kFirstFamilyNmeaMode);
}

void SecondFamilyNmeaWorker(void* state) {
  RunLiveWorker(*static_cast<AppState*>(state), kSecondFamilyNmeaMode);
}

}  // namespace tw
