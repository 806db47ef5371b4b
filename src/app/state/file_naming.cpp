#include "app/state/file_naming.h"

#include <algorithm>
#include <cinttypes>
#include <cstring>

#include "base/text_format.h"
#include "platform/file.h"

namespace tw {
namespace {

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
  const int32_t kHz = NameKHz(channelFrequency_hz);
  FormatText(name.record, "%s_Dual_%" PRId32 "kHz_id_%s_%s.log", stamp, kHz, identity, facts.modeWord);
  if (facts.segyCompanions && facts.hasSamples) {
    FormatText(name.segy, "%s_Dual_%" PRId32 "kHz_id_%s_%s.sgy", stamp, kHz, identity, facts.modeWord);
  }
  return name;
}

RecordFileNames NameFirstFamily(const NamingFacts& facts, const char* stamp) {
  const CleanIdentity identity = CleanForFileName(facts.identity);
  RecordFileNames names{};
  if (!facts.dual) {
    names.a = NameChannel(facts, stamp, identity.text, SingleChannelFrequency(facts));
  } else if (facts.sharesOneFile) {
    names.a.channelFrequency_hz = facts.measuredHigh_hz;
    FormatText(names.a.record, "%s_Dual_%" PRId32 "kHz_%" PRId32 "kHz_id_%s_%s.log", stamp,
               NameKHz(facts.measuredHigh_hz), NameKHz(facts.measuredLow_hz), identity.text, facts.modeWord);
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
  const bool fixed = facts.family == DeviceFamily::third && facts.moment == NamingMoment::start;
  FormatText(names.a.record, "%s_Single_%" PRId32 "kHz_id_%" PRId32 "_%s.log", stamp,
             fixed ? 450 : NameKHz(facts.measuredHigh_hz), facts.identifierWord, facts.modeWord);
  return names;
}

}  // namespace

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
  return facts.family == DeviceFamily::first ? NameFirstFamily(facts, stamp)
                                             : NameOtherFamilies(facts, stamp);
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
