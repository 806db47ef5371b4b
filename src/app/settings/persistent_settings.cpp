#include "app/settings/persistent_settings.h"

#include <bit>

#include "app/state/file_naming.h"
#include "base/bytes.h"
#include "base/text_format.h"
#include "platform/file.h"
#include "platform/registry.h"

namespace tw {
namespace {

constexpr CommunicationSettings kDefaults{
    .devicePort = 1, .deviceSpeed_bps = 115200, .gpsPort = kNoGpsPort, .gpsSpeed_bps = 4800};

constexpr wchar_t kWorkingFolder[] = L"WorkingFolder";
constexpr wchar_t kRecording[] = L"Recording";
constexpr wchar_t kDefaultFolderName[] = L"TIDEWRITERR57_DATA";

// kept: the buffer is given in bytes, not characters, so a stored folder of 130 characters or more counts as
// not stored.
constexpr uint32_t kFolderReadSize_bytes = 261;
static_assert((kMaxWorkingFolder + 1) * 2 <= kFolderReadSize_bytes &&  // in UTF-16, with its zero
              (kMaxWorkingFolder + 2) * 2 > kFolderReadSize_bytes);

struct CommunicationValue {
  const wchar_t* name;
  int32_t CommunicationSettings::*field;
};

// In the order in which they are read and written.
constexpr CommunicationValue kCommunicationValues[] = {
    {L"DeviceCOMPort", &CommunicationSettings::devicePort},
    {L"DeviceCOMSpeed", &CommunicationSettings::deviceSpeed_bps},
    {L"GPSCOMPort", &CommunicationSettings::gpsPort},
    {L"GPSCOMSpeed", &CommunicationSettings::gpsSpeed_bps},
};

bool ReadCommunicationSettings(CommunicationSettings& settings) {
  for (const auto& [name, field] : kCommunicationValues) {
    uint32_t value = 0;
    if (!ReadRegistryNumber(kSettingsKey, name, value)) return false;
    settings.*field = std::bit_cast<int32_t>(value);
  }
  return true;
}

// The user's documents joined with the program's own folder, created when it is absent.
bool MakeDefaultFolder(std::span<wchar_t> folder) {
  wchar_t documents[kWorkingFolderSize];
  if (!DocumentsFolder(documents) || !JoinPath(folder, documents, kDefaultFolderName)) return false;
  // A folder that cannot be made now is tried again when a record file is opened.
  if (!IsFolder(folder.data())) static_cast<void>(CreateFolder(folder.data()));
  return true;
}

}  // namespace

CommunicationSettings LoadCommunicationSettings() {
  CommunicationSettings settings{};
  if (ReadCommunicationSettings(settings)) return settings;
  SaveCommunicationSettings(kDefaults);
  return kDefaults;
}

void SaveCommunicationSettings(const CommunicationSettings& settings) {
  for (const auto& [name, field] : kCommunicationValues) {
    if (!WriteRegistryNumber(kSettingsKey, name, std::bit_cast<uint32_t>(settings.*field))) return;
  }
}

bool LoadRecordingFlag() {
  uint32_t recording = 0;
  if (ReadRegistryNumber(kSettingsKey, kRecording, recording)) return recording != 0;
  SaveRecordingFlag(true);
  return true;
}

void SaveRecordingFlag(bool recording) {
  static_cast<void>(WriteRegistryNumber(kSettingsKey, kRecording, recording ? 1 : 0));
}

void LoadWorkingFolder(AppState& state) {
  if (ReadRegistryText(kSettingsKey, kWorkingFolder, state.workingFolder, kFolderReadSize_bytes)) return;
  wchar_t folder[kWorkingFolderSize];
  if (!MakeDefaultFolder(folder)) return;
  SaveWorkingFolder(folder);
  // A registry that takes nothing, or a documents folder with a long name: recording goes on all the same.
  if (!ReadRegistryText(kSettingsKey, kWorkingFolder, state.workingFolder, kFolderReadSize_bytes)) {
    CopyWide(state.workingFolder, folder);
  }
}

void SaveWorkingFolder(const wchar_t* folder) {
  static_cast<void>(WriteRegistryText(kSettingsKey, kWorkingFolder, folder));
}

void SaveWindowPlacement(const WindowPlacement& placement) {
  uint8_t bytes[sizeof placement];
  StoreLe(bytes, placement.style);
  StoreLe(bytes + 4, placement.extendedStyle);
  StoreLe(bytes + 8, placement.fullScreen);
  StoreLe(bytes + 12, placement.maximised);
  StoreLe(bytes + 16, placement.left);
  StoreLe(bytes + 20, placement.top);
  StoreLe(bytes + 24, placement.right);
  StoreLe(bytes + 28, placement.bottom);
  static_cast<void>(WriteRegistryBytes(kSettingsKey, L"MainWindowPosition", bytes));
}

}  // namespace tw
