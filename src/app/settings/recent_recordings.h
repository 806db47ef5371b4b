// The recordings that were played last, newest first, in a key of their own in the current user's registry.
// GUI thread. All failures are silent, as with the other stored choices.
#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace tw {

inline constexpr size_t kRecentRecordings = 8;

// The full paths of a file, or of the two of a pair.
using RecordingPaths = std::vector<std::wstring>;

// At most kRecentRecordings, none twice; what is stored otherwise is left out.
[[nodiscard]] std::vector<RecordingPaths> LoadRecent();

// Puts a recording first. One whose paths have more than 1,000 characters together is not kept.
void NoteRecent(const RecordingPaths& paths);
void ForgetRecent(const RecordingPaths& paths);

// "&1  20250314_093005_Dual_450kHz.log": of a pair the first one's name, without its folder, cut to 80
// characters; an ampersand in it is doubled.
[[nodiscard]] std::wstring MenuTextOf(const RecordingPaths& paths, size_t index);

}  // namespace tw
