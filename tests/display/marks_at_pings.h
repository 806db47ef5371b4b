// Whether the time marks of a panel stand at the pings that they name.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "acquisition/ping_record.h"
#include "base/calendar.h"
#include "base/text_format.h"
#include "display/marks_overlay.h"
#include "display/panel.h"

namespace tw::test {

// The numbers of the marks shown, newest first; each text's time is that of a ping that the image shows in
// the text's column or the next one to either side.
inline std::vector<int32_t> NumbersAtTheirPings(AppState& state, PanelPlace place, MarkList& marks) {
  const PanelLayout layout = LayOutPanel(0, 1'728, 500, 96);
  const int32_t width = layout.image.Width();
  const PanelSource source = DescribePanel(state, place);
  const ShownMarks shown = FindShownMarks(marks, layout, source.scale, source.ringTime);
  std::vector<int32_t> numbers;
  for (size_t i = 0; i < shown.count; ++i) {
    const std::string text = shown.marks[i].text;
    const int32_t column = shown.marks[i].at.x - layout.image.left;
    bool found = false;
    for (int32_t x = std::max(column - 1, 0); x <= std::min(column + 1, width); ++x) {
      const int32_t slot = SlotOfColumn(x, width, source.scale.newest, source.scale.timeScale_s);
      const CalendarTime time =
          CalendarFromUnixSeconds(LoadPingHeader(SlotAt(*source.ring, slot)).timeOfWork_s);
      char shownTime[12];
      FormatText(shownTime, "%02d:%02d:%02d", time.hour, time.minute, time.second);
      found = found || text.ends_with(shownTime);
    }
    EXPECT_TRUE(found) << text << " in column " << column;
    numbers.push_back(std::stoi(text));
  }
  return numbers;
}

}  // namespace tw::test
