#include "app/state/file_naming.h"

#include <algorithm>
#include <cinttypes>
#include <cstring>

#include "base/text_format.h"
#include "platform/file.h"

namespace tw {
namespace {

// The words of each family and moment. kept: the two moments differ in capitalisation and in modes 5, 100
// and 101; archives are searched by these words.
struct ModeNameRow {
  int32_t mode;
  const char* family1Start;
  const char* family1Switched;
  const char* family2Start;
  const char* family0Start;
  const char* othersSwitched;
};

constexpr ModeNameRow kModeNames[] = {
    {1, "simple", "simple", "simple", "simple", "simple"},
    {2, "txt10", "txt10", "Echosounder", "Echosounder", "Echosounder"},
    {4, "txt12", "txt12", "EchoSounder(200)", "EchoSounder(200)", "EchoSounder(200)"},
    {5, "deso_M", "nmea", "EchoSounder(500)", "EchoSounder(500)", "EchoSounder(500)"},
    {6, "deso_M", "deso_M", "EchoSounder(1000)", "EchoSounder(1000)", "EchoSounder(1000)"},
    {7, "Dual", "dual", "PSA-916", "PSA-916", "PSA-916"},
    {8, "DFX", "dfx", "AltiTemp", "AltiTemp", "AltiTemp"},
    {9, "OLD", "old", "DFX", "DFX", "DFX"},
    {10, "nmea", "nmea", "OLD", "OLD", "OLD"},
    {100, "bin12", "bin12", "bin10", "nmea", "bin10"},
    {101, "bin8", "bin8", "bin8", "nmea", "bin8"},
};
constexpr char kOtherModeName[] = "nmea";

static_assert(std::adjacent_find(std::begin(kModeNames), std::end(kModeNames), [](auto& left, auto& right) {
                return left.mode >= right.mode;
              }) == std::end(kModeNames));

// A device names itself as it likes; in a file name only printable ASCII that no file system reserves may
// stand.
struct CleanIdentity {
  char text[kRecordNameSize / 2];
};

CleanIdentity CleanForFileName(std::string_view identity) {
  CleanIdentity clean{};
  const size_t length = std::min(identity.size(), sizeof clean.text - 1);
  for (size_t i = 0; i < length; ++i) {
    const char c = identity[i];
    const bool usable = c >= ' ' && c <= '~' && std::strchr("\\/:*?\"<>|", c) == nullptr;
    clean.text[i] = usable ? c : '_';
  }
  return clean;
}

// One file for both channels, in the modes whose lines carry both.
bool SharesOneFile(const NamingFacts& facts) {
  const int32_t mode = facts.outputMode;
  return mode == 6 || mode == 7 || mode == 8 || (mode == 5 && facts.moment == NamingMoment::recordSwitchedOn);
}

bool CarriesEchoSamples(int32_t mode) {
  return mode == 2 || mode == 4 || mode == 100 || mode == 101;
}

// The channel that a single run of family 1 records. The two moments ask mirrored questions, which differ
// only when the frequency in use is neither of the two.
int32_t SingleChannelFrequency(const NamingFacts& facts) {
  const bool high = facts.moment == NamingMoment::start ? facts.frequencyInUse_hz == facts.highFrequency_hz
                                                        : facts.frequencyInUse_hz != facts.lowFrequency_hz;
  return high ? facts.measuredHigh_hz : facts.measuredLow_hz;
}

// kept: "_Dual_" stands in each name of this family, also for a single run.
RecordFileName NameChannel(const NamingFacts& facts, const char* stamp, const char* identity,
                           int32_t channelFrequency_hz) {
  RecordFileName name{.record = {}, .segy = {}, .channelFrequency_hz = channelFrequency_hz};
  const char* mode = ModeName(facts.moment, facts.family, facts.outputMode);
  const int32_t kHz = NameKHz(channelFrequency_hz);
  FormatText(name.record, "%s_Dual_%" PRId32 "kHz_id_%s_%s.log", stamp, kHz, identity, mode);
  if (facts.segyCompanions && CarriesEchoSamples(facts.outputMode)) {
    FormatText(name.segy, "%s_Dual_%" PRId32 "kHz_id_%s_%s.sgy", stamp, kHz, identity, mode);
  }
  return name;
}

RecordFileNames NameFirstFamily(const NamingFacts& facts, const char* stamp) {
  const CleanIdentity identity = CleanForFileName(facts.identity);
  RecordFileNames names{};
  if (!facts.dual) {
    names.a = NameChannel(facts, stamp, identity.text, SingleChannelFrequency(facts));
  } else if (SharesOneFile(facts)) {
    names.a.channelFrequency_hz = facts.measuredHigh_hz;
    FormatText(names.a.record, "%s_Dual_%" PRId32 "kHz_%" PRId32 "kHz_id_%s_%s.log", stamp,
               NameKHz(facts.measuredHigh_hz), NameKHz(facts.measuredLow_hz), identity.text,
               ModeName(facts.moment, facts.family, facts.outputMode));
  } else {
    names.a = NameChannel(facts, stamp, identity.text, facts.measuredHigh_hz);
    names.b = NameChannel(facts, stamp, identity.text, facts.measuredLow_hz);
  }
  return names;
}

RecordFileNames NameOtherFamilies(const NamingFacts& facts, const char* stamp) {
  RecordFileNames names{};
  names.a.channelFrequency_hz = facts.measuredHigh_hz;
  // kept: at Start this family's frequency stands in the text itself.
  const bool fixed = facts.family == 0 && facts.moment == NamingMoment::start;
  FormatText(names.a.record, "%s_Single_%" PRId32 "kHz_id_%" PRId32 "_%s.log", stamp,
             fixed ? 450 : NameKHz(facts.measuredHigh_hz), facts.identifierWord,
             ModeName(facts.moment, facts.family, facts.outputMode));
  return names;
}

}  // namespace

const char* ModeName(NamingMoment moment, int32_t family, int32_t outputMode) {
  const auto* row = std::find_if(std::begin(kModeNames), std::end(kModeNames),
                                 [&](const ModeNameRow& each) { return each.mode == outputMode; });
  if (row == std::end(kModeNames)) return kOtherModeName;
  const bool start = moment == NamingMoment::start;
  if (family == 1) return start ? row->family1Start : row->family1Switched;
  if (!start) return row->othersSwitched;
  return family == 2 ? row->family2Start : row->family0Start;
}

int32_t NameKHz(int32_t frequency_hz) {
  return static_cast<int32_t>(static_cast<float>(frequency_hz) / 10000.0f + 0.5f) * 10;
}

void FormatTimeStamp(std::span<char> out, const CalendarTime& localTime) {
  FormatText(out, "%04d%02d%02d_%02d%02d%02d", localTime.year, localTime.month, localTime.day, localTime.hour,
             localTime.minute, localTime.second);
}

RecordFileNames NameRecordFiles(const NamingFacts& facts) {
  char stamp[32];
  FormatTimeStamp(stamp, facts.localTime);
  return facts.family == 1 ? NameFirstFamily(facts, stamp) : NameOtherFamilies(facts, stamp);
}

void FormatRecordTitle(std::span<char> out, const char* nameA, const char* nameB) {
  if (nameB[0] == '\0') {
    FormatText(out, "%s%50s%s", kProgramTitle, "", nameA);
  } else {
    FormatText(out, "%s%10s%s / %s", kProgramTitle, "", nameA, nameB);
  }
}

void NameConversion(std::span<wchar_t> out, std::wstring_view inputPath, Conversion conversion) {
  const size_t separator = inputPath.find_last_of(L"\\/:");
  std::wstring_view name = separator == inputPath.npos ? inputPath : inputPath.substr(separator + 1);
  name.remove_prefix(std::min(name.find_first_not_of(L'.'), name.size()));
  name = name.substr(0, name.find(L'.'));
  const std::wstring_view ending = conversion == Conversion::segy ? L".sgy" : L"_txt.log";
  if (out.size() <= ending.size()) {
    CopyWide(out, L"");
    return;
  }
  const size_t length = CopyWide(out.first(out.size() - ending.size()), name);
  CopyWide(out.subspan(length), ending);
}

bool JoinPath(std::span<wchar_t> out, std::wstring_view folder, std::wstring_view name) {
  if (folder.size() + 1 + name.size() >= out.size()) {
    CopyWide(out, L"");
    return false;
  }
  const size_t length = CopyWide(out, folder);
  out[length] = kPathSeparator;
  CopyWide(out.subspan(length + 1), name);
  return true;
}

Handle CreateInFolder(const wchar_t* folder, const wchar_t* name) {
  if (!IsFolder(folder) && !CreateFolder(folder)) return Handle::invalid;
  wchar_t path[kPathSize];
  return JoinPath(path, folder, name) ? CreateFileAnew(path) : Handle::invalid;
}

}  // namespace tw
