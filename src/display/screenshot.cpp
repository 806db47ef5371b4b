#include "display/screenshot.h"

#include "app/state/file_naming.h"
#include "base/text_format.h"
#include "platform/file.h"

namespace tw {

namespace {

constexpr wchar_t kDualFolder[] = L"ScreenShot";

void FormatName(std::span<wchar_t> name, const ShotFacts& facts, const CalendarTime& time, int32_t number) {
  char stamp[32];
  FormatTimeStamp(stamp, time);
  const char* const kind = facts.kind == ShotKind::manual ? "Manual" : "Auto";
  if (facts.isDual) {
    FormatWide(name, "%s_Dual_ScreenShot(%s)_%d.png", stamp, kind, number);
  } else {
    FormatWide(name, "%s_Dual_%dkHz_ScreenShot(%s)_%d.png", stamp, NameKHz(facts.frequency_hz), kind, number);
  }
}

}  // namespace

bool NameScreenshot(std::span<wchar_t> path, const ShotFacts& facts, AutomaticShots& shots) {
  wchar_t folder[kPathSize];
  if (facts.isDual) {
    if (!JoinPath(folder, facts.workingFolder, kDualFolder)) return false;
  } else {
    CopyWide(folder, facts.workingFolder);
  }
  if (!IsFolder(folder) && !CreateFolder(folder)) return false;
  AutomaticShots next = shots;
  if (facts.kind == ShotKind::automatic) {
    if (next.count == 0) next.first = facts.localTime;
    ++next.count;
  }
  const bool isManual = facts.kind == ShotKind::manual;
  wchar_t name[kRecordNameSize];
  FormatName(name, facts, isManual ? facts.localTime : next.first, isManual ? 1 : next.count);
  if (!JoinPath(path, folder, name)) return false;
  shots = next;
  return true;
}

}  // namespace tw
