#include "acquisition/time_lines.h"

#include <algorithm>

namespace tw {

void AddTimeLine(TimeLineList& list, const TimeLine& line) {
  constexpr auto kLines = static_cast<int32_t>(kMaxTimeLines);
  const Locked held(list.lock);
  list.newest = (list.newest + kLines - 1) % kLines;
  list.lines[list.newest] = line;
  list.count = std::min(list.count + 1, kLines);
}

void ClearTimeLines(TimeLineList& list) {
  const Locked held(list.lock);
  list.newest = 0;
  list.count = 0;
}

}  // namespace tw
