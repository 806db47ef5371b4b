#include "acquisition/ping_record.h"

#include <cstring>

#include "base/bytes.h"

namespace tw {

void StorePingHeader(uint8_t* bytes, const PingHeader& header) {
  std::memset(bytes, 0, frame::kWrittenHeaderLength);
  std::memcpy(bytes, frame::kMagic, frame::kMagicSize);
  StoreLe<uint32_t>(bytes + frame::kHeaderLength, frame::kWrittenHeaderLength);
  StoreLe(bytes + frame::kDeviceSeconds, header.deviceSeconds);
  StoreLe(bytes + frame::kDeviceMilliseconds, header.deviceMilliseconds);
  StoreLe(bytes + frame::kTimeOfWork, header.timeOfWork_s);
  StoreLe(bytes + frame::kPing, header.ping);
  StoreLe(bytes + frame::kSamplingFrequency, header.samplingFrequency_hz);
  StoreLe(bytes + frame::kSampleCount, header.sampleCount);
  StoreLeFloat(bytes + frame::kRange, header.range_m);
  StoreLe(bytes + frame::kTxFrequency, header.txFrequency_hz);
  StoreLeFloat(bytes + frame::kAltitude, header.altitude_m);
  StoreLeFloat(bytes + frame::kTemperature, header.temperature_c);
  StoreLeFloat(bytes + frame::kPitch, header.pitch_deg);
  StoreLeFloat(bytes + frame::kRoll, header.roll_deg);
  StoreLeFloat(bytes + frame::kGpsLatitude, header.gpsLatitude_rad);
  StoreLeFloat(bytes + frame::kGpsLongitude, header.gpsLongitude_rad);
  StoreLeFloat(bytes + frame::kGpsAltitude, header.gpsAltitude_m);
  StoreLe(bytes + frame::kGpsTime, header.gpsTime_s);
  StoreLeFloat(bytes + frame::kGpsPdop, header.gpsPdop);
  StoreLe(bytes + frame::kGpsValid, header.gpsValid);
}

PingHeader LoadPingHeader(const uint8_t* bytes) {
  PingHeader header;
  header.deviceSeconds = LoadLe<uint32_t>(bytes + frame::kDeviceSeconds);
  header.deviceMilliseconds = LoadLe<uint32_t>(bytes + frame::kDeviceMilliseconds);
  header.timeOfWork_s = LoadLe<uint32_t>(bytes + frame::kTimeOfWork);
  header.ping = LoadLe<uint32_t>(bytes + frame::kPing);
  header.samplingFrequency_hz = LoadLe<uint32_t>(bytes + frame::kSamplingFrequency);
  header.sampleCount = LoadLe<uint32_t>(bytes + frame::kSampleCount);
  header.range_m = LoadLeFloat(bytes + frame::kRange);
  header.txFrequency_hz = LoadLe<int32_t>(bytes + frame::kTxFrequency);
  header.altitude_m = LoadLeFloat(bytes + frame::kAltitude);
  header.temperature_c = LoadLeFloat(bytes + frame::kTemperature);
  header.pitch_deg = LoadLeFloat(bytes + frame::kPitch);
  header.roll_deg = LoadLeFloat(bytes + frame::kRoll);
  header.gpsLatitude_rad = LoadLeFloat(bytes + frame::kGpsLatitude);
  header.gpsLongitude_rad = LoadLeFloat(bytes + frame::kGpsLongitude);
  header.gpsAltitude_m = LoadLeFloat(bytes + frame::kGpsAltitude);
  header.gpsTime_s = LoadLe<uint32_t>(bytes + frame::kGpsTime);
  header.gpsPdop = LoadLeFloat(bytes + frame::kGpsPdop);
  header.gpsValid = LoadLe<int32_t>(bytes + frame::kGpsValid);
  return header;
}

}  // namespace tw
