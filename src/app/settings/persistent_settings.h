// The operator's choices that outlive a run, in the current user's registry. GUI thread. All failures are
// silent: what cannot be read has a default, what cannot be written is lost.
#pragma once

#include <cstdint>

#include "app/state/app_state.h"

namespace tw {

inline constexpr wchar_t kSettingsKey[] = L"Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Settings";

struct CommunicationSettings {
  int32_t devicePort;
  int32_t deviceSpeed_bps;
  int32_t gpsPort;  // kNoGpsPort: none
  int32_t gpsSpeed_bps;
};

// The stored values. When any of the four cannot be read, all four are the defaults, which are then stored.
[[nodiscard]] CommunicationSettings LoadCommunicationSettings();

// Stores the four in their order, up to the first that fails.
void SaveCommunicationSettings(const CommunicationSettings& settings);

// The state of "Record Data"; when it was never stored, true, which is then stored.
[[nodiscard]] bool LoadRecordingFlag();
void SaveRecordingFlag(bool recording);

// Characters that a stored folder may have: with more it counts as not stored at the next look.
inline constexpr size_t kMaxWorkingFolder = 129;

// Fills `workingFolder`. Without a stored folder the default (a folder in the user's documents) is created
// and stored. A stored folder that is merely absent on the disk stays.
void LoadWorkingFolder(AppState& state);
void SaveWorkingFolder(const wchar_t* folder);

// Written at each move and at the end, never read back.
void SaveWindowPlacement(const WindowPlacement& placement);

}  // namespace tw
