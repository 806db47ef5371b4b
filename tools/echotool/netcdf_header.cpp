#include "tools/echotool/netcdf_header.h"

#include <cmath>
#include <iterator>
#include <limits>

#include "base/calendar.h"
#include "base/text_format.h"
#include "platform/clock.h"
#include "tools/echotool/iso_time.h"
#include "tools/echotool/options.h"
#include "tools/echotool/ping_values.h"

namespace tw::echotool {
namespace {

constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
constexpr int32_t kHighestQuality = 8;  // of those that are defined
constexpr char kSinglePrecision[] =
    "recorded in single precision of radians: in steps of up to 1.5 m on the ground";

double If(bool known, double value) {
  return known ? value : kNone;
}

double Frequency(const ChannelPing& each) {
  const bool low = each.channel == 1 && each.ping.bothChannels;
  const double frequency_hz = low ? each.lowFrequency_hz : each.ping.header.txFrequency_hz;
  return If(frequency_hz > 0, frequency_hz);
}

// Empty texts are left out. In the order of a record, ahead of the echo; the times, places and what is
// counted in whole numbers of 32 bits without a sign in double precision.
struct Variable {
  const char* name;
  CdfType type;
  const char* standardName;
  const char* longName;
  const char* units;
  const char* comment;
  double (*value)(const ChannelPing& each);  // not finite: none
};

constexpr Variable kVariables[] = {
    {"time", CdfType::float64, "time", "time of the ping", "seconds since 1970-01-01 00:00:00",
     "UTC; of the recording, not put in order",
     [](const ChannelPing& each) {
       return If(each.time_ms.has_value(), static_cast<double>(each.time_ms.value_or(0)) / 1000.0);
     }},
    {"latitude", CdfType::float64, "latitude", "latitude of the receiver", "degrees_north", "",
     [](const ChannelPing& each) {
       const auto place = PlaceOf(each.ping);
       return place ? place->latitude : kNone;
     }},
    {"longitude", CdfType::float64, "longitude", "longitude of the receiver", "degrees_east", "",
     [](const ChannelPing& each) {
       const auto place = PlaceOf(each.ping);
       return place ? place->longitude : kNone;
     }},
    {"altitude", CdfType::float32, "", "depth of the bottom below the transducer", "m",
     "as the device found it; 0: it found none",
     [](const ChannelPing& each) { return static_cast<double>(AltitudeOf(each.ping, each.channel)); }},
    {"temperature", CdfType::float32, "sea_water_temperature", "water temperature at the transducer",
     "degree_Celsius", "0 as well where the device sends none",
     [](const ChannelPing& each) { return static_cast<double>(each.ping.header.temperature_c); }},
    {"pitch", CdfType::float32, "platform_pitch", "pitch", "degree", "",
     [](const ChannelPing& each) {
       const PingHeader& header = each.ping.header;
       return If(header.pitch_deg < kNoAttitude, static_cast<double>(header.pitch_deg));
     }},
    {"roll", CdfType::float32, "platform_roll", "roll", "degree", "",
     [](const ChannelPing& each) {
       const PingHeader& header = each.ping.header;
       return If(header.pitch_deg < kNoAttitude, static_cast<double>(header.roll_deg));
     }},
    {"ping_number", CdfType::float64, "", "number of the ping", "1", "",
     [](const ChannelPing& each) { return static_cast<double>(each.ping.header.ping); }},
    {"sound_speed", CdfType::float32, "speed_of_sound_in_sea_water", "speed of sound set in the device",
     "m s-1", "",
     [](const ChannelPing& each) {
       return If(each.soundSpeed_mps > 0.0f, static_cast<double>(each.soundSpeed_mps));
     }},
    {"sampling_frequency", CdfType::float64, "", "samples of the echo in a second", "Hz", "",
     [](const ChannelPing& each) {
       const uint32_t sampling_hz = each.ping.header.samplingFrequency_hz;
       return If(sampling_hz != 0, sampling_hz);
     }},
    {"transmit_frequency", CdfType::float64, "", "frequency of the transmitted sound", "Hz", "", Frequency},
    {"gps_quality", CdfType::int32, "", "quality of the position", "",
     "as the receiver told it; 1 where the recording tells no more than that there was a position",
     [](const ChannelPing& each) {
       const int32_t quality = each.ping.gpsQuality;
       return If(quality >= 0 && quality <= kHighestQuality, quality);
     }},
};

constexpr size_t SizeOfValues() {
  size_t size = 0;
  for (const Variable& each : kVariables) size += each.type == CdfType::float64 ? 8 : 4;
  return size;
}
static_assert(SizeOfValues() <= kNetcdfValuesSize);

void Tell(std::vector<CdfAttribute>& attributes, const char* name, std::string_view text) {
  if (!text.empty()) attributes.push_back(TextAttribute(name, text));
}

bool IsPlaceOrTime(const Variable& variable) {
  return &variable - kVariables < 3;
}

// The values of the quality, as CF has them told.
void TellQualities(std::vector<CdfAttribute>& attributes) {
  CdfAttribute values{"flag_values", CdfType::int32, kHighestQuality + 1, ""};
  for (int32_t i = 0; i <= kHighestQuality; ++i)
    values.values += NumberAttribute("", CdfType::int32, i).values;
  attributes.push_back(values);
  Tell(attributes, "flag_meanings",
       "no_position gps differential_gps precise rtk_fixed rtk_float estimated manual simulated");
}

CdfVariable VariableOf(const Variable& row, const NetcdfTold& told) {
  CdfVariable out{row.name, row.type, {0}, {}};
  Tell(out.attributes, "standard_name", row.standardName);
  Tell(out.attributes, "long_name", row.longName);
  Tell(out.attributes, "units", row.units);
  std::string comment = row.comment;
  const std::string_view name = row.name;
  if (name == "time") Tell(out.attributes, "calendar", "standard");
  if ((name == "latitude" || name == "longitude") && !told.recording.Kind().isText)
    comment = kSinglePrecision;
  if (name == "sound_speed" && !told.recording.Kind().hasInfo) comment = "not recorded, assumed";
  if (name == "sampling_frequency" && told.survey.samplingAssumed) comment = "not recorded, assumed";
  if (name == "gps_quality") TellQualities(out.attributes);
  Tell(out.attributes, "comment", comment);
  if (!IsPlaceOrTime(row)) Tell(out.attributes, "coordinates", "time latitude longitude");
  out.attributes.push_back(NumberAttribute("_FillValue", row.type, kNone));
  return out;
}

CdfVariable EchoOf(const ChannelSurvey& survey, bool hasRange) {
  CdfVariable out{"echo", NetcdfSampleType(survey), {0, 1}, {}};
  Tell(out.attributes, "long_name", "strength of the echo as recorded");
  Tell(out.attributes, "units", "1");
  Tell(out.attributes, "comment", "behind the end of a trace stands the fill value");
  Tell(out.attributes, "coordinates", hasRange ? "time latitude longitude range" : "time latitude longitude");
  out.attributes.push_back(NumberAttribute("_FillValue", out.type, kNone));
  return out;
}

CdfVariable Range() {
  CdfVariable out{"range", CdfType::float64, {1}, {}};
  Tell(out.attributes, "long_name", "distance of the sample from the transducer");
  Tell(out.attributes, "units", "m");
  Tell(out.attributes, "comment", "of the speed of sound set in the device");
  return out;
}

// The settings line of the channel, number by number.
void TellSettings(const InfoLine& info, std::vector<CdfAttribute>& attributes) {
  const struct {
    const char* name;
    CdfType type;
    double value;
  } rows[] = {
      {"setting_frequency_hz", CdfType::int32, static_cast<double>(info.frequency_hz)},
      {"setting_range_mm", CdfType::int32, static_cast<double>(info.range_mm)},
      {"setting_interval_s", CdfType::float32, static_cast<double>(info.interval_s)},
      {"setting_tx_length", CdfType::int32, static_cast<double>(info.txLength)},
      {"setting_tx_power", CdfType::float32, static_cast<double>(info.txPower)},
      {"setting_gain", CdfType::float32, static_cast<double>(info.gain)},
      {"setting_tvg_spreading", CdfType::float32, static_cast<double>(info.tvgSpreading)},
      {"setting_tvg_absorption", CdfType::float32, static_cast<double>(info.tvgAbsorption)},
      {"setting_attenuation", CdfType::int32, static_cast<double>(info.attenuation)},
      {"setting_dead_zone_mm", CdfType::int32, static_cast<double>(info.deadZone_mm)},
      {"setting_threshold_percent", CdfType::int32, static_cast<double>(info.threshold_percent)},
      {"setting_offset_mm", CdfType::int32, static_cast<double>(info.offset_mm)},
      {"setting_sound_speed_mps", CdfType::float32, static_cast<double>(info.soundSpeed_mps)},
  };
  for (const auto& row : rows)
    if (std::isfinite(row.value)) attributes.push_back(NumberAttribute(row.name, row.type, row.value));
}

std::string History(const std::string& name) {
  constexpr int64_t kSecond_ms = 1'000;
  const std::string now = IsoTime(UnixSecondsFromCalendar(UtcNow()) * kSecond_ms);
  const std::string_view version = VersionText();
  return now + ' ' + std::string(version.substr(0, version.find('\n'))) + " netcdf " + name;
}

std::vector<CdfAttribute> GlobalAttributes(const NetcdfTold& told) {
  const RecordingKind& kind = told.recording.Kind();
  const Detected& detected = told.recording.Told();
  std::vector<CdfAttribute> out;
  Tell(out, "Conventions", "CF-1.10");
  Tell(out, "title", "echosounder recording " + told.name);
  Tell(out, "source", std::string("echosounder, recorded as ") + kind.name);
  Tell(out, "history", History(told.name));
  Tell(out, "source_file", told.name);
  Tell(out, "source_sha256", told.survey.sha256);
  out.push_back(NumberAttribute("device_family", CdfType::int32, static_cast<int32_t>(kind.family)));
  out.push_back(NumberAttribute("output_mode", CdfType::int32, kind.outputMode));
  out.push_back(NumberAttribute("channel", CdfType::int32, told.channel + 1));
  out.push_back(NumberAttribute("channels", CdfType::int32, kind.channels));
  const auto& info = told.channel == 1 && detected.low ? detected.low : detected.info;
  if (info) TellSettings(*info, out);
  return out;
}

}  // namespace

CdfType NetcdfSampleType(const ChannelSurvey& survey) {
  return survey.large ? CdfType::int32 : CdfType::int16;
}

bool NetcdfHasRange(const ChannelSurvey& survey, float soundSpeed_mps) {
  return survey.longest != 0 && survey.sameSampling && survey.sampling_hz != 0 &&
         std::isfinite(soundSpeed_mps) && soundSpeed_mps > 0.0f;
}

CdfContents NetcdfContents(const NetcdfTold& told) {
  const ChannelSurvey& survey = told.survey.channels[told.channel];
  const bool hasRange = NetcdfHasRange(survey, told.recording.Kind().soundSpeed_mps);
  CdfContents out{survey.pings, {{"ping", 0}}, GlobalAttributes(told), {}};
  for (const Variable& row : kVariables) out.variables.push_back(VariableOf(row, told));
  if (survey.longest == 0) return out;
  out.dimensions.push_back({"sample", survey.longest});
  if (hasRange) out.variables.push_back(Range());
  out.variables.push_back(EchoOf(survey, hasRange));
  return out;
}

size_t StoreNetcdfValues(const ChannelPing& ping, uint8_t* out) {
  size_t size = 0;
  for (const Variable& each : kVariables) size += StoreCdfValue(out + size, each.type, each.value(ping));
  return size;
}

}  // namespace tw::echotool
