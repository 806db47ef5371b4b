// Files that are cut, damaged, strange, growing or gone, and disks that are full: through the reader, both
// conversions, the window's playback and echotool. Each has a result that can be told beforehand.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <random>

#include "app/control_states.h"
#include "app/playback_control.h"
#include "app/run_control.h"
#include "base/bytes.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/host/faults.h"
#include "playback/converter.h"
#include "playback/ping_source.h"
#include "simulator/sent_ping.h"
#include "tests/app/run_control_fixture.h"
#include "tests/playback/sample_recordings.h"
#include "tools/echotool/work.h"

namespace tw::test {
namespace {

namespace fs = std::filesystem;
using echotool::Task;

std::string Contents(const fs::path& path) {
  std::ifstream file(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(file), {}};
}

void Write(const fs::path& path, std::string_view bytes) {
  std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// What a reader makes of a file: of each ping what identifies it, and the pings' SEG-Y and text.
struct Outcome {
  RecordingFault fault = RecordingFault::none;
  std::vector<std::string> pings;
  std::vector<size_t> ends;  // of the pings
  uint64_t skipped = 0;
  std::string segy;
  std::string text;
};

std::string Identity(const RecordedPing& ping) {
  const auto* const samples = reinterpret_cast<const uint8_t*>(ping.samples.data());
  return std::to_string(ping.header.ping) + ' ' + std::to_string(ping.header.altitude_m) + ' ' +
         std::to_string(ping.header.timeOfWork_s) + ' ' + std::to_string(ping.begin) + ' ' +
         std::to_string(sim::HashOf({samples, ping.samples.size_bytes()}));
}

// True when `part` is what the whole begins with.
template <typename Sequence>
bool Begins(const Sequence& whole, const Sequence& part) {
  return part.size() <= whole.size() && std::equal(part.begin(), part.end(), whole.begin());
}

class HostileFiles : public RunControlTest {
 protected:
  Outcome Read(const fs::path& path) {
    Outcome outcome;
    const auto recording = OpenRecording(path.wstring().c_str(), outcome.fault);
    EXPECT_EQ(recording != nullptr, outcome.fault == RecordingFault::none);
    if (recording == nullptr) return outcome;
    const Handle segyFile = CreateFileAnew((folder_ / "out.sgy").wstring().c_str());
    const Handle textFile = CreateFileAnew((folder_ / "out.txt").wstring().c_str());
    OutputFile segyOutput(segyFile);
    OutputFile textOutput(textFile);
    static const std::array<uint8_t, kSegyTextHeaderSize> kBlankCards{};
    SegyConverter segy(segyOutput, kBlankCards, recording->Kind().soundSpeed_mps);
    TextConverter text(textOutput);
    for (RecordedPing ping{}; recording->Next(ping);) {
      outcome.pings.push_back(Identity(ping));
      outcome.ends.push_back(recording->Position());
      EXPECT_TRUE(segy.Append(ping.header, ping.samples));
      EXPECT_TRUE(text.Append(ping.header, ping.samples));
      EXPECT_LE(recording->Position(), recording->Size());
    }
    outcome.skipped = recording->Skipped();
    EXPECT_LE(outcome.skipped, recording->Size());
    EXPECT_FALSE(outcome.pings.empty());
    EXPECT_TRUE(segyOutput.Flush() && textOutput.Flush());
    CloseFile(segyFile);
    CloseFile(textFile);
    outcome.segy = Contents(folder_ / "out.sgy");
    outcome.text = Contents(folder_ / "out.txt");
    return outcome;
  }

  // A cut recording gives the pings before the cut and nothing else.
  void ExpectFirstPings(const Outcome& whole, const Outcome& cut, size_t size) {
    if (cut.fault == RecordingFault::none) {
      EXPECT_TRUE(Begins(whole.pings, cut.pings)) << "cut at " << size;
      EXPECT_EQ(whole.skipped, 0u) << "nothing of a sound recording is damage";
      EXPECT_EQ(cut.skipped, size - std::min(size, whole.ends[cut.pings.size() - 1])) << "cut at " << size;
      EXPECT_TRUE(Begins(whole.segy, cut.segy)) << "cut at " << size;
      EXPECT_TRUE(Begins(whole.text, cut.text)) << "cut at " << size;
    } else {
      EXPECT_NE(cut.fault, RecordingFault::notOpened) << "cut at " << size;
    }
  }

  // Plays to the end, or says why not; idle afterwards either way. Returns whether it was played.
  bool Plays(const fs::path& path) {
    Ui().boxes.clear();
    Ui().chosenFiles = {path.wstring()};
    PlayFiles(*state_);
    const bool played = Ui().boxes.empty();
    if (played) {
      WaitForEnd();
    } else {
      EXPECT_TRUE(Ui().boxes[0].text == L"Invalid file format." ||
                  Ui().boxes[0].text == L"This file Cannot be playback");
      EXPECT_EQ(Ui().boxes.size(), 1u);
    }
    StopRun(*state_);
    EXPECT_EQ(state_->inputFileA, Handle::invalid);
    EXPECT_EQ(state_->fileWorkerA, Handle::null);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
    return played;
  }
  void WaitForEnd() {
    for (int i = 0; i < 60'000 && state_->playbackAtEnd == 0; ++i) {
      SleepMilliseconds(20);
      HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    }
    EXPECT_EQ(state_->playbackAtEnd, 1);
  }

  // A conversion by the window's command; returns its last message.
  std::wstring Converts(const fs::path& path, void (*command)(AppState&)) {
    Ui().boxes.clear();
    Ui().conversionEnds.clear();
    Ui().chosenFiles = {path.wstring()};
    command(*state_);
    for (int i = 0; i < 60'000 && LoadShared(state_->conversionKind) != 0; ++i) SleepMilliseconds(10);
    SleepMilliseconds(10);
    for (const bool exhausted : Ui().conversionEnds) HandleConversionEnd(*state_, exhausted);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
    EXPECT_EQ(state_->segyCompanionA, Handle::invalid);
    EXPECT_EQ(state_->inputFileA, Handle::invalid);
    return Ui().boxes.empty() ? L"" : Ui().boxes.back().text;
  }

  // echotool's work; an output is there exactly when it says so.
  bool Works(Task task, const fs::path& path) {
    const fs::path outputs = folder_ / "outputs";
    fs::remove_all(outputs);
    fs::create_directory(outputs);
    echotool::Options options;
    options.task = task;
    if (task != Task::info) options.folder = outputs.string();
    echotool::Outputs made;
    const echotool::Result result = echotool::WorkOn(path.string(), options, interrupted_, made);
    const auto files = std::distance(fs::directory_iterator(outputs), fs::directory_iterator());
    EXPECT_EQ(files, result.done && task != Task::info ? 1 : 0) << result.text;
    return result.done;
  }
  void ThroughAll(const fs::path& path) {
    for (const Task task : {Task::info, Task::segy, Task::text, Task::csv, Task::kml})
      static_cast<void>(Works(task, path));
    static_cast<void>(Plays(path));
    for (void (*const command)(AppState&) : {ConvertToSegy, ConvertToText}) {
      const std::wstring said = Converts(path, command);
      EXPECT_TRUE(said == L"Convert completed" || said == L"Cannot convert this file(s)");
    }
  }

  [[nodiscard]] fs::path File(const char* name = "hostile.log") const { return folder_ / name; }
  [[nodiscard]] fs::path Records() const { return folder_ / "TIDEWRITERR57_DATA"; }

  std::atomic<bool> interrupted_ = false;
};

class HostileKind : public HostileFiles, public testing::WithParamInterface<SampleKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, HostileKind, testing::ValuesIn(SampleKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(HostileKind, CutAtEveryLengthGivesThePingsBeforeTheCut) {
  Write(File(), SampleRecording(GetParam(), 3));
  const Outcome whole = Read(File());
  ASSERT_GE(whole.pings.size(), 2u);
  for (size_t size = fs::file_size(File()); size-- != 0;) {
    fs::resize_file(File(), size);
    const Outcome cut = Read(File());
    ExpectFirstPings(whole, cut, size);
    if (size % 97 == 0) ThroughAll(File());
  }
}

TEST_P(HostileKind, DamageAnywhereLeavesTheOtherPings) {
  const std::string sound = SampleRecording(GetParam(), 6);
  Write(File(), sound);
  const size_t pings = Read(File()).pings.size();
  std::mt19937 random(7);
  for (int i = 0; i < 60; ++i) {
    std::string damaged = sound;
    // Behind the first pings and what tells the kind, so that it is still known.
    const size_t head = GetParam().hasInfo ? SampleInfo(1, GetParam().outputMode).size() : 0;
    const size_t at = head + (sound.size() - head) / 3 + random() % ((sound.size() - head) / 2);
    for (size_t byte = at; byte < std::min(at + 1 + random() % 8, damaged.size()); ++byte)
      damaged[byte] = static_cast<char>(random());
    Write(File(), damaged);
    EXPECT_GE(Read(File()).pings.size() + 3, pings) << "damaged at " << at;
    if (i % 20 == 0) ThroughAll(File());
  }
}

TEST_F(HostileFiles, LongRecordingsCutAtRandomLengths) {
  std::mt19937 random(11);
  for (const char* const name : {"Frames", "FirstText", "Blocks"}) {
    const auto kind = std::find_if(SampleKinds().begin(), SampleKinds().end(), [&](const SampleKind& each) {
      return std::string_view(each.name) == name;
    });
    const std::string bytes = SampleRecording(*kind, 50);
    Write(File(), bytes);
    const Outcome whole = Read(File());
    ASSERT_GE(whole.pings.size(), 49u);
    std::vector<size_t> sizes(1'000);
    for (size_t& size : sizes) size = random() % bytes.size();
    std::sort(sizes.rbegin(), sizes.rend());
    for (const size_t size : sizes) {
      fs::resize_file(File(), size);
      ExpectFirstPings(whole, Read(File()), size);
    }
  }
}

TEST_F(HostileFiles, TooShortToBeAnything) {
  for (const size_t size : {size_t{0}, size_t{1}, size_t{2'047}}) {
    for (const char fill : {'\0', 'x', '#', '\xFF'}) {
      Write(File(), std::string(size, fill));
      EXPECT_EQ(Read(File()).fault, RecordingFault::unknown) << size;
      ThroughAll(File());
    }
  }
}

// A hundred million bytes without a ping are read once, whatever their start claims to be.
TEST_F(HostileFiles, GarbageWithoutEndIsReadToItsEnd) {
  std::string garbage(100'000'000, '\0');
  std::mt19937_64 random(13);
  for (size_t i = 0; i + 8 <= garbage.size(); i += 8) {
    const uint64_t value = random();
    std::memcpy(garbage.data() + i, &value, sizeof value);
  }
  const std::string starts[] = {"",
                                "TIDEWRITEC",
                                "TR57",
                                SampleInfo(1, 1),
                                SampleInfo(1, 2) + "#DeviceID",
                                SampleInfo(1, 3),
                                SampleInfo(1, 100),
                                SampleInfo(2, 2)};
  Write(File(), garbage);
  for (const std::string& start : starts) {
    std::fstream file(File(), std::ios::binary | std::ios::in | std::ios::out);
    file.write(start.data(), static_cast<std::streamsize>(start.size()));
    file.close();
    const bool plays = Read(File()).fault == RecordingFault::none;
    EXPECT_FALSE(plays) << start;
  }
  EXPECT_FALSE(Works(Task::csv, File()));
  EXPECT_FALSE(Plays(File()));
}

// Values at and behind the ends of what a field can hold, 32 bits each.
constexpr uint32_t kExtremes[] = {0,          1,          35,         36,         4'096,      4'097,
                                  50'000,     100'000,    100'001,    0x7FFFFFFF, 0x80000000, 0xFFFFFFFE,
                                  0xFFFFFFFF, 0x7F800000, 0xFF800000, 0x7FC00000, 0x7F7FFFFF, 0xFF7FFFFF};

void ExpectFirstPingStands(const Outcome& outcome, const Outcome& sound) {
  ASSERT_FALSE(outcome.pings.empty());
  EXPECT_EQ(outcome.pings[0], sound.pings[0]);
}

TEST_F(HostileFiles, FrameFieldsAtTheirExtremes) {
  const struct {
    SampleKind kind;
    size_t fields[2];  // of a frame's header, the bytes from and to
    size_t fieldStep;
  } rows[] = {{{"Frames", sim::DeviceFamily::first, 100}, {4, 88}, 4},
              {{"Blocks", sim::DeviceFamily::first, 100, false, sim::BinaryForm::block}, {10, 62}, 2}};
  for (const auto& row : rows) {
    const std::string bytes = SampleRecording(row.kind, 3);
    Write(File(), bytes);
    const Outcome sound = Read(File());
    ASSERT_EQ(sound.pings.size(), 3u);
    const std::string magic = row.kind.hasInfo ? "TR57" : "TIDEWRITEC";
    const size_t second = bytes.find(magic, bytes.find(magic) + 1);
    ASSERT_NE(second, std::string::npos);
    for (size_t field = row.fields[0]; field + 4 <= row.fields[1]; field += row.fieldStep) {
      for (const uint32_t value : kExtremes) {
        std::string strange = bytes;
        StoreLe(reinterpret_cast<uint8_t*>(strange.data()) + second + field, value);
        Write(File(), strange);
        SCOPED_TRACE(std::to_string(field) + " = " + std::to_string(value));
        ExpectFirstPingStands(Read(File()), sound);
        if (value == 0 || value == 0xFFFFFFFF || value == 0x7FC00000) ThroughAll(File());
      }
    }
  }
}

// The first frame's own header decides the replication factor, the SEG-Y interval and the lengths.
TEST_F(HostileFiles, FirstFrameWithoutSamplesFrequencyOrTime) {
  const std::string bytes = SampleRecording({"", sim::DeviceFamily::first, 100, false}, 2);
  const struct {
    size_t field;
    uint32_t value;
    size_t pings;
    size_t traces;
  } rows[] = {
      {24, 0, 2, 1},           // sampling frequency 0: no trace of it
      {16, 0xFFFFFFFF, 2, 2},  // the year 2106
      {16, 0x80000000, 2, 2},  // 2038
      {16, 0, 2, 2},           // 1970
  };
  for (const auto& row : rows) {
    std::string strange = bytes;
    StoreLe(reinterpret_cast<uint8_t*>(strange.data()) + row.field, row.value);
    Write(File(), strange);
    const Outcome outcome = Read(File());
    EXPECT_EQ(outcome.pings.size(), row.pings) << row.field;
    EXPECT_EQ(outcome.segy.size(), 3'600 + row.traces * (240 + 200)) << row.field;
    ThroughAll(File());
  }
  // 0 samples: the header alone is the frame.
  std::string empty = bytes.substr(0, 88);
  StoreLe(reinterpret_cast<uint8_t*>(empty.data()) + 32, uint32_t{0});
  Write(File(), empty + empty);
  const Outcome outcome = Read(File());
  EXPECT_EQ(outcome.pings.size(), 2u);
  EXPECT_EQ(outcome.segy.size(), 3'600u + 2 * 240);
  ThroughAll(File());
}

TEST_F(HostileFiles, TextValuesAtTheirExtremes) {
  const SampleKind kind{"", sim::DeviceFamily::first, 2};
  const std::string bytes = SampleRecording(kind, 3);
  Write(File(), bytes);
  const Outcome sound = Read(File());
  const size_t second = bytes.find("#DeviceID", bytes.find("#DeviceID") + 1);
  ASSERT_NE(second, std::string::npos);
  const char* const keys[] = {"#TimeWork ",
                              "#Ping ",
                              "#Altitude ",
                              "#Temperature ",
                              "#NSamples ",
                              "#Pitch,deg ",
                              "#Sampling_Frequency,Hz ",
                              "#Tx_Frequency,Hz "};
  const char* const values[] = {
      "",    "0",    "-1",    "-2208988800",          "2147483648", "4294967295.999", "50001", "4294967296",
      "nan", "-inf", "1e999", "99999999999999999999", "string",     "100000",         "1e-320"};
  for (const char* const key : keys) {
    const size_t at = bytes.find(key, second);
    ASSERT_NE(at, std::string::npos) << key;
    const size_t value = at + std::strlen(key);
    const size_t end = bytes.find("\r\n", value);
    for (const char* const text : values) {
      Write(File(), bytes.substr(0, value) + text + bytes.substr(end));
      SCOPED_TRACE(std::string(key) + text);
      ExpectFirstPingStands(Read(File()), sound);
      if (std::string_view(text) == "-1") ThroughAll(File());
    }
  }
}

TEST_F(HostileFiles, WhatIsAppendedDuringAPlaybackIsPlayedToo) {
  const SampleKind kind{"", sim::DeviceFamily::first, 100, false};
  const std::string bytes = SampleRecording(kind, 60);
  const size_t half = bytes.size() / 2 + 40;  // within a frame
  Write(File(), bytes.substr(0, half));
  Ui().chosenFiles = {File().wstring()};
  PlayFiles(*state_);
  ASSERT_TRUE(Ui().boxes.empty());
  SleepMilliseconds(200);
  std::ofstream(File(), std::ios::binary | std::ios::app) << bytes.substr(half);
  WaitForEnd();
  StopRun(*state_);
  RecordingFault fault{};
  uint32_t last = 0;
  const auto recording = OpenRecording(File().wstring().c_str(), fault);
  ASSERT_NE(recording, nullptr);
  for (RecordedPing ping{}; recording->Next(ping);) last = ping.header.ping;
  EXPECT_EQ(LoadShared(globals.pingCounter), last);
}

// The disk or the network share is gone. A playback ends there; a conversion ends too, but does not say that
// it is complete; echotool leaves nothing.
TEST_F(HostileFiles, FailingReadsAreNotTheEndOfTheFile) {
  const SampleKind kind{"", sim::DeviceFamily::first, 100};
  Write(File(), SampleRecording(kind, 1'000, 500));
  const auto failFrom = [](uint64_t call) {
    ClearFaults();
    InjectFault({.point = FaultPoint::readFile, .call = call, .repeat = kEveryCall});
  };
  // So many reads the whole file takes, the one at its end included.
  ClearFaults();
  ASSERT_TRUE(Works(Task::segy, File()));
  const uint64_t reads = CallCount(FaultPoint::readFile);
  for (uint64_t call = 1; call <= reads; ++call) {
    failFrom(call);
    EXPECT_FALSE(Works(Task::segy, File())) << call;
    failFrom(call);
    EXPECT_FALSE(Works(Task::info, File())) << call;
    failFrom(call);
    EXPECT_NE(Converts(File(), ConvertToSegy), L"Convert completed") << call;
    failFrom(call);
    static_cast<void>(Plays(File()));
  }
  ClearFaults();
}

TEST_F(HostileFiles, NoPermissionToWrite) {
  const SampleKind kind{"", sim::DeviceFamily::first, 100};
  Write(File(), SampleRecording(kind, 3));
  InjectFault({.point = FaultPoint::createFile, .repeat = kEveryCall, .code = EACCES});
  EXPECT_EQ(Converts(File(), ConvertToSegy), L"Unable to open file.");
  EXPECT_EQ(Converts(File(), ConvertToText), L"Unable to open file.");
  for (const Task task : {Task::segy, Task::text, Task::csv, Task::kml}) EXPECT_FALSE(Works(task, File()));
  ClearFaults();
  InjectFault({.point = FaultPoint::renameFile, .repeat = kEveryCall, .code = EACCES});
  for (const Task task : {Task::segy, Task::text, Task::csv, Task::kml}) EXPECT_FALSE(Works(task, File()));
}

// The window leaves what went onto the disk and reads on; echotool leaves nothing.
TEST_F(HostileFiles, FullDisk) {
  const SampleKind kind{"", sim::DeviceFamily::first, 100};
  Write(File(), SampleRecording(kind, 20));
  ASSERT_EQ(Converts(File(), ConvertToSegy), L"Convert completed");
  const std::string whole = Contents(Records() / "hostile.sgy");
  ASSERT_EQ(whole.size(), 3'600u + 20 * (240 + 200));
  for (const size_t room : {0, 1, 3'199, 3'200, 3'600, 3'700, 3'839, 3'840, 4'041, 4'800}) {
    LimitDiskSpace(room);
    EXPECT_EQ(Converts(File(), ConvertToSegy), L"Convert completed");
    EXPECT_EQ(Contents(Records() / "hostile.sgy"), whole.substr(0, room));
    for (const Task task : {Task::segy, Task::text, Task::csv, Task::kml}) {
      LimitDiskSpace(task == Task::csv || task == Task::kml ? std::min<size_t>(room, 50) : room);
      EXPECT_FALSE(Works(task, File())) << room;
    }
    ClearFaults();
  }
}

}  // namespace
}  // namespace tw::test
