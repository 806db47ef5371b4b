#include "app/settings/persistent_settings.h"

#include <gtest/gtest.h>

#include <bit>
#include <filesystem>
#include <memory>
#include <string>

#include "app/settings/option_form.h"
#include "app/settings/recent_recordings.h"
#include "app/settings/stored_options.h"
#include "app/window/depth_outputs.h"
#include "platform/registry.h"
#include "platform/virtual/documents_folder.h"
#include "platform/virtual/faults.h"
#include "tests/app/stored_values.h"
#include "tests/app/test_folder.h"

namespace tw::test {
namespace {

using Writes = std::vector<std::wstring>;

class PersistentSettings : public testing::Test {
 protected:
  static inline const std::wstring kNames[] = {L"DeviceCOMPort", L"DeviceCOMSpeed", L"GPSCOMPort",
                                               L"GPSCOMSpeed"};
  static std::vector<uint32_t> StoredNumbers() {
    std::vector<uint32_t> numbers;
    for (const std::wstring& name : kNames) numbers.push_back(StoredNumber(name.c_str()));
    return numbers;
  }

  PersistentSettings() {
    ClearRegistry();
    ClearFaults();
    SetDocumentsFolder(folder_.Path().c_str());
  }
  ~PersistentSettings() override {
    SetDocumentsFolder(nullptr);
    ClearFaults();
    ClearRegistry();
  }

  const TestFolder folder_;
  const std::filesystem::path default_ = folder_.Path() / "TIDEWRITERR57_DATA";
  std::unique_ptr<AppState> state_ = std::make_unique<AppState>();
};

TEST_F(PersistentSettings, OneMissingValueMakesAllFourTheDefaults) {
  for (const std::wstring& missing : kNames) {
    ClearRegistry();
    for (const std::wstring& name : kNames) {
      if (name != missing) PutNumber(name.c_str(), 7);
    }
    const CommunicationSettings read = LoadCommunicationSettings();
    EXPECT_EQ((std::vector{read.devicePort, read.deviceSpeed_bps, read.gpsPort, read.gpsSpeed_bps}),
              (std::vector{1, 115'200, -1, 4'800}));
    EXPECT_EQ(StoredNumbers(), (std::vector<uint32_t>{1, 115'200, 0xFFFFFFFF, 4'800}));
  }
}

TEST_F(PersistentSettings, WritingGoesInItsOrderAndStopsAtTheFirstFailure) {
  SaveCommunicationSettings({1, 2, 3, 4});
  EXPECT_EQ(RegistryWrites(), Writes(std::begin(kNames), std::end(kNames)));
  ClearRegistry();
  InjectFault({.point = FaultPoint::writeRegistry, .subject = L"GPSCOMPort"});
  SaveCommunicationSettings({4, 9'600, 5, 19'200});
  EXPECT_EQ(StoredNumbers(), (std::vector<uint32_t>{4, 9'600, kNoNumber, kNoNumber}));
}

TEST_F(PersistentSettings, RecordingIsOnUnlessItWasSwitchedOff) {
  EXPECT_TRUE(LoadRecordingFlag());
  EXPECT_EQ(StoredNumber(L"Recording"), 1u);
  SaveRecordingFlag(false);
  EXPECT_FALSE(LoadRecordingFlag());
  EXPECT_EQ(StoredNumber(L"Recording"), 0u);
  PutNumber(L"Recording", 2);
  EXPECT_TRUE(LoadRecordingFlag());
}

TEST_F(PersistentSettings, AStoredFolderStaysUpTo129CharactersAlthoughItIsAbsent) {
  const std::wstring longest(129, L'f');
  PutText(L"WorkingFolder", longest);
  LoadWorkingFolder(*state_);
  EXPECT_EQ(state_->workingFolder, longest);
  EXPECT_EQ(RegistryWrites(), Writes{});

  PutText(L"WorkingFolder", longest + L'f');
  LoadWorkingFolder(*state_);
  EXPECT_EQ(state_->workingFolder, default_.wstring());
  EXPECT_EQ(StoredText(L"WorkingFolder"), default_.wstring());
}

// Also where the registry takes nothing.
TEST_F(PersistentSettings, FirstStartMakesAFolderInTheDocuments) {
  for (const bool stores : {false, true}) {
    if (!stores) InjectFault({.point = FaultPoint::writeRegistry, .repeat = kEveryCall});
    LoadWorkingFolder(*state_);
    EXPECT_EQ(state_->workingFolder, default_.wstring());
    EXPECT_EQ(StoredText(L"WorkingFolder"), stores ? default_.wstring() : L"(none)");
    EXPECT_TRUE(std::filesystem::remove(default_));
    ClearFaults();
  }
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

TEST_F(PersistentSettings, OptionsOutOfTheirBoundsAreTheStandardOnes) {
  for (const OptionRow& row : OptionRows()) {
    if (row.address != nullptr) continue;
    for (const uint32_t stored :
         {static_cast<uint32_t>(row.least), static_cast<uint32_t>(row.most),
          static_cast<uint32_t>(row.least) - 1, static_cast<uint32_t>(row.most) + 1}) {
      RegistryValue value;
      value.number = stored;
      PutRegistryValue(kOptionsKey, row.name, value);
      const auto number = std::bit_cast<int32_t>(stored);
      const bool fits = number >= row.least && number <= row.most;
      EXPECT_EQ(LoadOptions().*row.value, fits ? number : row.standard) << row.text;
    }
    Options changed = StandardOptions();
    changed.*row.value = row.most;
    SaveOptions(changed);
    EXPECT_EQ(LoadOptions().*row.value, row.most) << row.text;
    ResetPage(row.page, changed);
    EXPECT_EQ(changed.*row.value, row.standard) << row.text;
  }
}

TEST_F(PersistentSettings, AnAddressThatIsNoneIsThisComputer) {
  for (const OptionRow& row : OptionRows()) {
    if (row.address == nullptr) continue;
    for (const std::wstring stored :
         {L"192.168.1.255", L"192.168.1.256", L"host", L"", L"1.2.3.4.5.6.7.8.9.10"}) {
      RegistryValue value;
      value.type = RegistryType::text;
      value.text = stored;
      PutRegistryValue(kOptionsKey, row.name, value);
      EXPECT_EQ((LoadOptions().*row.address).text, stored == L"192.168.1.255" ? stored : L"127.0.0.1");
    }
    Options changed = LoadOptions();
    wchar_t error[kOptionErrorSize] = L"";
    EXPECT_FALSE(ReadOption(row, L"1.2.3", changed, error));
    EXPECT_TRUE(ReadOption(row, L"10.0.0.7", changed, error));
    SaveOptions(changed);
    EXPECT_STREQ((LoadOptions().*row.address).text, L"10.0.0.7");
  }
}

TEST_F(PersistentSettings, OutputsAreWhatTheOptionsSay) {
  Options options = StandardOptions();
  OutputOptions outputs = OutputsOf(options);
  EXPECT_FALSE(outputs.serial || outputs.udp || outputs.tcp);
  EXPECT_EQ(outputs.sentences, uint32_t{kDbt});
  options.sendUdp = options.sendDpt = options.sendRmc = 1;
  options.transducerOffset_cm = -50;
  options.serialPort = 12;
  outputs = OutputsOf(options);
  EXPECT_TRUE(outputs.udp && IsBounded(outputs));
  EXPECT_EQ(outputs.sentences, uint32_t{kDbt | kDpt | kRmc});
  EXPECT_FLOAT_EQ(outputs.transducerOffset_m, -0.5f);
  EXPECT_STREQ(outputs.line, L"\\\\.\\COM12");
}

TEST_F(PersistentSettings, RecentRecordingsAreBounded) {
  const auto name = [](int number) { return L"/a/" + std::to_wstring(number) + L".log"; };
  for (int i = 0; i < 10; ++i) NoteRecent({name(i)});
  NoteRecent({name(5)});
  NoteRecent({std::wstring(1'100, L'x')});
  NoteRecent({});
  std::vector<RecordingPaths> recent = LoadRecent();
  ASSERT_EQ(recent.size(), 8u);
  EXPECT_EQ(recent[0], RecordingPaths{name(5)});
  EXPECT_EQ(recent[7], RecordingPaths{name(2)});
  for (const wchar_t* const hostile : {L"|", L"a|", L"a|b|c", L"/a/9.log", L""}) {
    static_cast<void>(WriteRegistryText(
        L"Software\\Brin Ultrasonics\\EchoSounderControlProgram\\Settings\\Recent", L"8", hostile));
    EXPECT_EQ(LoadRecent().size(), 7u) << hostile;
  }
  EXPECT_EQ(MenuTextOf({L"/a/R&D\t1.log", L"/a/2.log"}, 0), L"&1  R&&D 1.log");
  EXPECT_EQ(MenuTextOf({std::wstring(500, L'x')}, 7).size(), 84u);
}

}  // namespace
}  // namespace tw::test
