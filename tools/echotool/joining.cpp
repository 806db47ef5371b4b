#include "tools/echotool/joining.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "tools/echotool/file_names.h"

namespace tw::echotool {
namespace {

// The device's identity in the name that the program gives: what stands behind "_id_", up to the mode. Empty
// when the name does not tell.
std::string IdentityOfName(const std::string& file) {
  constexpr std::string_view kMark = "_id_";
  const std::string name = ShownName(file);
  const size_t at = name.find(kMark);
  if (at == std::string::npos) return {};
  const size_t begin = at + kMark.size();
  return name.substr(begin, name.find('_', begin) - begin);
}

bool IsSameChannel(const std::optional<InfoLine>& a, const std::optional<InfoLine>& b) {
  if (a.has_value() != b.has_value()) return false;
  return !a || (a->kind == b->kind && a->frequency_hz == b->frequency_hz);
}

// What the first one's settings line tells of all pings behind it.
bool HasSameScale(const std::optional<InfoLine>& a, const std::optional<InfoLine>& b) {
  return !a || !b || (a->range_mm == b->range_mm && a->soundSpeed_mps == b->soundSpeed_mps);
}

std::string Difference(const Part& a, const Part& b) {
  const std::string idA = IdentityOfName(a.file);
  const std::string idB = IdentityOfName(b.file);
  if (a.kind.family != b.kind.family || (!idA.empty() && !idB.empty() && idA != idB))
    return "is of another device than ";
  if (a.kind.name != b.kind.name || a.kind.outputMode != b.kind.outputMode)
    return "is of another output mode than ";
  if (a.kind.channels != b.kind.channels || !IsSameChannel(a.info, b.info) || !IsSameChannel(a.low, b.low))
    return "is of another channel than ";
  if (!HasSameScale(a.info, b.info) || !HasSameScale(a.low, b.low))
    return "has another range or speed of sound than ";
  return {};
}

}  // namespace

Part::Part(std::string name, const PingSource& recording)
    : file(std::move(name)), kind(recording.Kind()), info(recording.Told().info), low(recording.Told().low) {}

void Part::Add(const RecordedPing& ping) {
  const auto time_ms = clock.TimeOf(ping);
  if (!time_ms) return;
  first_ms = std::min(first_ms.value_or(*time_ms), *time_ms);
  last_ms = std::max(last_ms.value_or(*time_ms), *time_ms);
}

bool PutInOrder(std::vector<Part>& parts, std::string& error) {
  for (const Part& part : parts) {
    const std::string difference = Difference(part, parts.front());
    if (!part.first_ms) {
      error = part.file + " tells no times to go by";
    } else if (!difference.empty()) {
      error = part.file + " " + difference + parts.front().file;
    }
    if (!error.empty()) return false;
  }
  std::stable_sort(parts.begin(), parts.end(),
                   [](const Part& a, const Part& b) { return *a.first_ms < *b.first_ms; });
  for (size_t i = 1; i < parts.size(); ++i) {
    if (*parts[i].first_ms >= *parts[i - 1].last_ms && *parts[i].last_ms > *parts[i - 1].first_ms) continue;
    error = parts[i].file + " overlaps in time with " + parts[i - 1].file;
    return false;
  }
  return true;
}

}  // namespace tw::echotool
