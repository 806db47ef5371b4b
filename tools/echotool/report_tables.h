// The tables of a report's page, as HTML. Pure; one thread.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "app/state/event_marks.h"
#include "playback/ping_source.h"
#include "tools/echotool/recording_figures.h"

namespace tw::echotool {

[[nodiscard]] std::string SettingsTable(const PingSource& recording, const RecordingFigures& figures);
[[nodiscard]] std::string PingsTable(const PingSource& recording, const RecordingFigures& figures);
// `stood`: pings at a position that had not changed for more than ten seconds.
[[nodiscard]] std::string PositionTable(const RecordingFigures& figures, uint64_t stood);
// Empty without marks.
[[nodiscard]] std::string MarksTable(const std::vector<EventMark>& marks);

}  // namespace tw::echotool
