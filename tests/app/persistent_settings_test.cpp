#include "app/persistent_settings.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <memory>
#include <string>

#include "platform/host/documents_folder.h"
#include "platform/host/faults.h"
#include "platform/host/memory_registry.h"
#include "tests/app/test_folder.h"

namespace tw {
namespace {

using Writes = std::vector<std::wstring>;

class PersistentSettings : public testing::Test {
 protected:
  PersistentSettings() {
    ClearRegistry();
    ClearFaults();
    SetDocumentsFolder(documents_.c_str());
  }
  ~PersistentSettings() override {
    SetDocumentsFolder(nullptr);
    ClearFaults();
    ClearRegistry();
  }

  static void PutNumber(const wchar_t* name, uint32_t number) {
    RegistryValue value;
    value.number = number;
    PutRegistryValue(kSettingsKey, name, value);
  }
  static void PutText(const wchar_t* name, const std::wstring& text) {
    RegistryValue value;
    value.type = RegistryType::text;
    value.text = text;
    PutRegistryValue(kSettingsKey, name, value);
  }
  static void PutCommunication() {
    PutNumber(L"DeviceCOMPort", 7);
    PutNumber(L"DeviceCOMSpeed", 3'000'000);
    PutNumber(L"GPSCOMPort", 8);
    PutNumber(L"GPSCOMSpeed", 9'600);
  }
  // 0xDEAD when there is no such number.
  static uint32_t Number(const wchar_t* name) {
    RegistryValue value;
    const bool found = FindRegistryValue(kSettingsKey, name, value) && value.type == RegistryType::number;
    return found ? value.number : 0xDEAD;
  }
  static std::wstring Text(const wchar_t* name) {
    RegistryValue value;
    return FindRegistryValue(kSettingsKey, name, value) ? value.text : L"(none)";
  }

  const test::TestFolder folder_;
  const std::filesystem::path& documents_ = folder_.Path();
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
};

TEST_F(PersistentSettings, StoredCommunicationValuesAreRead) {
  PutCommunication();
  const CommunicationSettings read = LoadCommunicationSettings();
  EXPECT_EQ(read.devicePort, 7);
  EXPECT_EQ(read.deviceSpeed_bps, 3'000'000);
  EXPECT_EQ(read.gpsPort, 8);
  EXPECT_EQ(read.gpsSpeed_bps, 9'600);
  EXPECT_EQ(RegistryWrites(), Writes{});
}

TEST_F(PersistentSettings, OneMissingValueMakesAllFourTheDefaults) {
  for (const wchar_t* missing : {L"DeviceCOMPort", L"DeviceCOMSpeed", L"GPSCOMPort", L"GPSCOMSpeed"}) {
    ClearRegistry();
    PutCommunication();
    RemoveRegistryValue(kSettingsKey, missing);
    const CommunicationSettings read = LoadCommunicationSettings();
    EXPECT_EQ(read.devicePort, 1);
    EXPECT_EQ(read.deviceSpeed_bps, 115'200);
    EXPECT_EQ(read.gpsPort, -1);
    EXPECT_EQ(read.gpsSpeed_bps, 4'800);
    EXPECT_EQ(Number(L"DeviceCOMPort"), 1u);
    EXPECT_EQ(Number(L"DeviceCOMSpeed"), 115'200u);
    EXPECT_EQ(Number(L"GPSCOMPort"), 0xFFFFFFFFu);
    EXPECT_EQ(Number(L"GPSCOMSpeed"), 4'800u);
  }
}

TEST_F(PersistentSettings, WritingGoesInItsOrderAndStopsAtTheFirstFailure) {
  SaveCommunicationSettings({1, 2, 3, 4});
  EXPECT_EQ(RegistryWrites(), (Writes{L"DeviceCOMPort", L"DeviceCOMSpeed", L"GPSCOMPort", L"GPSCOMSpeed"}));
  ClearRegistry();
  InjectFault({.point = FaultPoint::writeRegistry, .subject = L"GPSCOMPort"});
  SaveCommunicationSettings({4, 9'600, 5, 19'200});
  EXPECT_EQ(Number(L"DeviceCOMPort"), 4u);
  EXPECT_EQ(Number(L"DeviceCOMSpeed"), 9'600u);
  EXPECT_EQ(Number(L"GPSCOMPort"), 0xDEADu);
  EXPECT_EQ(Number(L"GPSCOMSpeed"), 0xDEADu);
}

TEST_F(PersistentSettings, RecordingIsOnUnlessItWasSwitchedOff) {
  EXPECT_TRUE(LoadRecordingFlag());
  EXPECT_EQ(Number(L"Recording"), 1u);
  SaveRecordingFlag(false);
  EXPECT_FALSE(LoadRecordingFlag());
  EXPECT_EQ(Number(L"Recording"), 0u);
}

TEST_F(PersistentSettings, FirstStartMakesAFolderInTheDocuments) {
  const std::filesystem::path folder = documents_ / "TIDEWRITERR57_DATA";
  LoadWorkingFolder(*state_);
  EXPECT_EQ(state_->workingFolder, folder.wstring());
  EXPECT_EQ(Text(L"WorkingFolder"), folder.wstring());
  EXPECT_TRUE(std::filesystem::is_directory(folder));
}

TEST_F(PersistentSettings, AStoredFolderStaysAlthoughItIsAbsent) {
  PutText(L"WorkingFolder", L"/nowhere/at/all");
  LoadWorkingFolder(*state_);
  EXPECT_STREQ(state_->workingFolder, L"/nowhere/at/all");
  EXPECT_EQ(RegistryWrites(), Writes{});
}

TEST_F(PersistentSettings, AFolderOf129CharactersPassesAndOneOf130DoesNot) {
  const std::wstring longest(129, L'f');
  PutText(L"WorkingFolder", longest);
  LoadWorkingFolder(*state_);
  EXPECT_EQ(state_->workingFolder, longest);

  PutText(L"WorkingFolder", longest + L'f');
  LoadWorkingFolder(*state_);
  EXPECT_EQ(state_->workingFolder, (documents_ / "TIDEWRITERR57_DATA").wstring());
  EXPECT_EQ(Text(L"WorkingFolder"), (documents_ / "TIDEWRITERR57_DATA").wstring());
}

TEST_F(PersistentSettings, ARegistryThatTakesNothingStillGivesAFolder) {
  InjectFault({.point = FaultPoint::writeRegistry, .repeat = kEveryCall});
  LoadWorkingFolder(*state_);
  EXPECT_EQ(state_->workingFolder, (documents_ / "TIDEWRITERR57_DATA").wstring());
}

TEST_F(PersistentSettings, ThePlacementIsEightLittleEndianWords) {
  SaveWindowPlacement({0x14CF0000, 0x00010100, 0, 1, -8, 20, 1000, 0x01020304});
  RegistryValue value;
  ASSERT_TRUE(FindRegistryValue(kSettingsKey, L"MainWindowPosition", value));
  const std::vector<uint8_t> expected = {0x00, 0x00, 0xCF, 0x14, 0x00, 0x01, 0x01, 0x00, 0,    0,   0,
                                         0,    1,    0,    0,    0,    0xF8, 0xFF, 0xFF, 0xFF, 20,  0,
                                         0,    0,    0xE8, 0x03, 0,    0,    0x04, 0x03, 0x02, 0x01};
  EXPECT_EQ(value.bytes, expected);
}

}  // namespace
}  // namespace tw
