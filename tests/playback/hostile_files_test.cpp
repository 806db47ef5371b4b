// Files that are cut, damaged, strange, growing or gone, and disks that are full: through the reader, both
// conversions, the window's playback and echotool. Each has a result that can be told beforehand.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <map>
#include <random>
#include <utility>

#include "base/bytes.h"
#include "platform/file.h"
#include "platform/virtual/faults.h"
#include "playback/converter.h"
#include "simulator/sent_ping.h"
#include "tests/app/run/playback_fixture.h"
#include "tests/playback/echotool_call.h"
#include "tests/playback/info_text.h"
#include "tests/playback/sample_recordings.h"

namespace tw::test {
namespace {

using echotool::Task;

constexpr size_t kLineEnd = 2;
constexpr Task kOutputTasks[] = {Task::segy,   Task::text,    Task::csv, Task::kml,  Task::netcdf,
                                 Task::gpx,    Task::geojson, Task::xyz, Task::nmea, Task::png,
                                 Task::report, Task::repair,  Task::cut, Task::join};
const SampleKind kFrames{"Frames", sim::DeviceFamily::first, 100};
const SampleKind kFramesWithoutInfo{"FramesAlone", sim::DeviceFamily::first, 100, false};

// The same bytes with another value, little-endian, at a place.
std::string Altered(std::string bytes, size_t at, uint32_t value) {
  StoreLe(reinterpret_cast<uint8_t*>(bytes.data()) + at, value);
  return bytes;
}

// A ping of three years before the others, which they can be joined to.
std::string Earlier() {
  std::string bytes = SampleRecording(kFrames, 1);
  const size_t frame = bytes.find("TR57");
  for (const size_t time : {8, 16}) bytes = Altered(std::move(bytes), frame + time, 1'600'000'000);
  return bytes;
}

// What a reader makes of a file: of each ping what identifies it, and the pings' SEG-Y and text.
struct Outcome {
  RecordingFault fault = RecordingFault::none;
  std::vector<std::string> pings;
  std::vector<size_t> begins;  // of the pings
  std::vector<size_t> ends;    // of the pings, with the sentences and line ends behind them
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

class HostileFiles : public Playback {
 protected:
  // What the reader and both converters make of the file, which holds these bytes, when they are given.
  Outcome Read() {
    Outcome outcome;
    const auto recording = OpenRecording(file_.c_str(), outcome.fault);
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
      outcome.begins.push_back(ping.begin);
      outcome.ends.push_back(recording->Position());
      EXPECT_TRUE(segy.Append(ping));
      EXPECT_TRUE(text.Append(ping));
      EXPECT_LE(recording->Position(), recording->Size());
    }
    outcome.skipped = recording->Skipped();
    EXPECT_LE(outcome.skipped, recording->Size());
    EXPECT_FALSE(outcome.pings.empty());
    EXPECT_TRUE(segyOutput.Flush() && textOutput.Flush());
    CloseFile(segyFile);
    CloseFile(textFile);
    outcome.segy = ReadWhole(folder_ / "out.sgy");
    outcome.text = ReadWhole(folder_ / "out.txt");
    return outcome;
  }
  Outcome Read(std::string_view bytes) {
    WriteWhole(file_, bytes);
    return Read();
  }

  // A cut recording gives all the pings before the cut and nothing else. The last line's end may be missing.
  void ExpectFirstPings(const Outcome& whole, const Outcome& cut, size_t size) {
    SCOPED_TRACE("cut at " + std::to_string(size));
    const auto before = [&](size_t end) {
      return std::upper_bound(whole.ends.begin(), whole.ends.end(), end) - whole.ends.begin();
    };
    EXPECT_GE(std::ssize(cut.pings), before(size));
    EXPECT_LE(std::ssize(cut.pings), before(size + kLineEnd));
    EXPECT_NE(cut.fault, RecordingFault::notOpened);
    if (cut.fault != RecordingFault::none) return;
    EXPECT_TRUE(Begins(whole.pings, cut.pings));
    EXPECT_EQ(whole.skipped, 0u) << "nothing of a sound recording is damage";
    EXPECT_EQ(cut.skipped, size - std::min(size, whole.ends[cut.pings.size() - 1]));
    EXPECT_TRUE(Begins(whole.segy, cut.segy));
    EXPECT_TRUE(Begins(whole.text, cut.text));
  }

  // Plays to the end, or says why not; idle afterwards either way. Returns whether it was played.
  bool Plays() {
    Play({file_});
    const std::vector<Box> boxes = std::exchange(Ui().boxes, {});
    if (boxes.empty()) {
      PlayToTheEnd();
    } else {
      EXPECT_TRUE(boxes[0].text == L"Invalid file format." ||
                  boxes[0].text == L"This file Cannot be playback");
      EXPECT_EQ(boxes.size(), 1u);
    }
    StopRun(*state_);
    EXPECT_EQ(state_->inputFileA, Handle::invalid);
    EXPECT_EQ(state_->fileWorkerA, Handle::null);
    EXPECT_EQ(StateOfProgram(*state_), ProgramState::idle);
    return boxes.empty();
  }

  // echotool's work; an output is there exactly when it says so.
  bool Works(Task task) {
    const fs::path outputs = folder_ / "outputs";
    fs::remove_all(outputs);
    fs::create_directory(outputs);
    echotool::Options options;
    options.task = task;
    const bool writes = task != Task::info && task != Task::check;
    if (writes) options.folder = outputs.string();
    if (task == Task::cut) options.selection.pings = {1, UINT32_MAX};
    if (task == Task::join) {
      const fs::path other = folder_ / "earlier.log";
      WriteWhole(other, Earlier());
      options.files = {other.string(), fs::path(file_).string()};
    }
    echotool::Batch batch;
    const echotool::Result result = echotool::WorkOn(fs::path(file_).string(), options, interrupted_, batch);
    const auto files = std::distance(fs::directory_iterator(outputs), fs::directory_iterator());
    const bool two = fs::exists(outputs / "hostile_ch2.nc") && fs::exists(outputs / "hostile_ch1.nc");
    EXPECT_EQ(files, result.done && writes ? (two ? 2 : 1) : 0) << result.text;
    return result.done;
  }
  void ThroughAll() {
    for (const Task task : {Task::info, Task::check}) static_cast<void>(Works(task));
    for (const Task task : kOutputTasks) static_cast<void>(Works(task));
    static_cast<void>(Plays());
    for (void (*const command)(AppState&) : {ConvertToSegy, ConvertToText}) {
      const std::wstring said = Convert(file_, command);
      EXPECT_TRUE(said == L"Convert completed" || said == L"Cannot convert this file(s)");
    }
  }

  const std::wstring file_ = (folder_ / "hostile.log").wstring();
  std::atomic<bool> interrupted_ = false;
};

class HostileKind : public HostileFiles, public testing::WithParamInterface<SampleKind> {};

INSTANTIATE_TEST_SUITE_P(Kinds, HostileKind, testing::ValuesIn(SampleKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(HostileKind, CutAtEveryLengthGivesThePingsBeforeTheCut) {
  const std::string bytes = SampleRecording(GetParam(), 3);
  const Outcome whole = Read(bytes);
  ASSERT_EQ(whole.pings.size(), 3u);
  for (size_t size = bytes.size(); size-- != 0;) {
    fs::resize_file(file_, size);
    ExpectFirstPings(whole, Read(), size);
    if (size % 97 == 0) ThroughAll();
  }
}

TEST_P(HostileKind, DamageAnywhereLeavesTheOtherPings) {
  const std::string sound = SampleRecording(GetParam(), 6);
  const Outcome whole = Read(sound);
  // A text block or an epoch that has lost its end goes on in the next.
  const bool hasEnd = GetParam().outputMode >= 2 && GetParam().outputMode <= 4;
  // Behind the first pings and what tells the kind, so that it is still known.
  const size_t head = GetParam().hasInfo ? InfoText(1, GetParam().outputMode).size() : 0;
  std::mt19937 random(7);
  for (int i = 0; i < 60; ++i) {
    std::string damaged = sound;
    const size_t at = head + (sound.size() - head) / 3 + random() % ((sound.size() - head) / 2);
    const size_t end = std::min(at + 1 + random() % 8, damaged.size());
    for (size_t byte = at; byte < end; ++byte) damaged[byte] = static_cast<char>(random());
    const Outcome outcome = Read(damaged);
    EXPECT_LE(outcome.pings.size(), whole.pings.size()) << "damaged at " << at;
    int lost = 0;
    for (size_t ping = 0; ping < whole.pings.size(); ++ping) {
      const bool isTouched = whole.begins[ping] < end + kLineEnd && whole.ends[ping] > at;
      if (!isTouched)
        lost += std::count(outcome.begins.begin(), outcome.begins.end(), whole.begins[ping]) != 1;
    }
    EXPECT_LE(lost, hasEnd ? 1 : 0) << "damaged at " << at;
    if (i % 20 == 0) ThroughAll();
  }
}

TEST_F(HostileFiles, TooShortToBeAnything) {
  for (const size_t size : {0, 1, 2'047}) {
    for (const char fill : {'\0', 'x', '#', '\xFF'}) {
      ClearFaults();
      EXPECT_EQ(Read(std::string(size, fill)).fault, RecordingFault::unknown) << size;
      EXPECT_EQ(CallCount(FaultPoint::readFile), 1u) << "nobody writes it: there is nothing to wait for";
      ThroughAll();
    }
  }
}

// A hundred million bytes without a ping are read once, whatever their start claims to be.
TEST_F(HostileFiles, GarbageWithoutEndIsReadToItsEnd) {
  std::string garbage(100'000'000, '\0');  // NOLINT(bugprone-string-constructor): so long on purpose
  std::mt19937_64 random(13);
  for (size_t i = 0; i + 8 <= garbage.size(); i += 8) {
    const uint64_t value = random();
    std::memcpy(garbage.data() + i, &value, sizeof value);
  }
  WriteWhole(file_, garbage);
  for (const std::string& start :
       {std::string(), std::string("TIDEWRITEC"), std::string("TR57"), InfoText(1, 1),
        InfoText(1, 2) + "#DeviceID", InfoText(1, 3), InfoText(1, 100), InfoText(2, 2)}) {
    std::fstream(fs::path(file_), std::ios::binary | std::ios::in | std::ios::out) << start;
    EXPECT_NE(Read().fault, RecordingFault::none) << start;
  }
  EXPECT_FALSE(Works(Task::csv));
  EXPECT_FALSE(Plays());
}

// Values at and behind the ends of what a field can hold, 32 bits each.
constexpr uint32_t kExtremes[] = {0,          1,          35,         36,         4'096,      4'097,
                                  50'000,     100'000,    100'001,    0x7FFFFFFF, 0x80000000, 0xFFFFFFFE,
                                  0xFFFFFFFF, 0x7F800000, 0xFF800000, 0x7FC00000, 0x7F7FFFFF, 0xFF7FFFFF};

// Of three pings with a strange value in the second, which makes it longer by some bytes.
void ExpectPings(const Outcome& outcome, const Outcome& sound, size_t count, size_t longer = 0) {
  EXPECT_EQ(outcome.pings.size(), count);
  ASSERT_FALSE(outcome.pings.empty());
  EXPECT_EQ(outcome.pings[0], sound.pings[0]);
  if (count > 1) {
    EXPECT_EQ(outcome.begins.back(), sound.begins[2] + longer);
  }
}

TEST_F(HostileFiles, FrameFieldsAtTheirExtremes) {
  const struct {
    SampleKind kind;
    const char* magic;
    size_t fields[2];  // of a frame's header, the bytes from and to
    size_t fieldStep;
    // Where a value is, or is part of, a length, a count or a form: how many pings there are with each of the
    // extremes. 2: it is refused; 1: it is possible, and the frame takes in the third. Else there are 3.
    std::map<size_t, const char*> pings;
  } rows[] = {
      {kFrames, "TR57", {4, 88}, 4, {{4, "222312222222222222"}, {32, "333311111222222222"}}},
      {{"Blocks", sim::DeviceFamily::first, 100, false, sim::BinaryForm::block},
       "TIDEWRITEC",
       {10, 62},
       2,
       {{10, "222211111222222222"},
        {12, "312222222232233322"},
        {40, "333333333222222222"},
        {42, "332222222222222222"},
        {44, "322222222222222222"},
        {46, "333322222222222222"},
        {48, "322222222232233322"}}},
  };
  for (const auto& row : rows) {
    const std::string bytes = SampleRecording(row.kind, 3);
    const Outcome sound = Read(bytes);
    ASSERT_EQ(sound.pings.size(), 3u);
    const size_t second = bytes.find(row.magic, bytes.find(row.magic) + 1);
    ASSERT_NE(second, std::string::npos);
    for (size_t field = row.fields[0]; field + 4 <= row.fields[1]; field += row.fieldStep) {
      for (size_t i = 0; i < std::size(kExtremes); ++i) {
        const uint32_t value = kExtremes[i];
        SCOPED_TRACE(std::to_string(field) + " = " + std::to_string(value));
        const auto told = row.pings.find(field);
        const size_t count = told == row.pings.end() ? 3 : static_cast<size_t>(told->second[i] - '0');
        ExpectPings(Read(Altered(bytes, second + field, value)), sound, count);
        if (value == 0 || value == 0xFFFFFFFF || value == 0x7FC00000) ThroughAll();
      }
    }
  }
}

// The first frame's own header decides the replication factor, the SEG-Y interval and the lengths.
TEST_F(HostileFiles, FirstFrameWithoutSamplesFrequencyOrTime) {
  const std::string bytes = SampleRecording(kFramesWithoutInfo, 2);
  const std::string empty = Altered(bytes.substr(0, 88), 32, 0);
  const struct {
    const char* what;
    std::string bytes;
    size_t segySize;
  } rows[] = {
      {"sampling frequency 0: no trace of it", Altered(bytes, 24, 0), 3'600 + 240 + 200},
      {"the year 2106", Altered(bytes, 16, 0xFFFFFFFF), 3'600 + 2 * (240 + 200)},
      {"2038", Altered(bytes, 16, 0x80000000), 3'600 + 2 * (240 + 200)},
      {"1970", Altered(bytes, 16, 0), 3'600 + 2 * (240 + 200)},
      {"0 samples: the header alone is the frame", empty + empty, 3'600 + 2 * 240},
  };
  for (const auto& row : rows) {
    const Outcome outcome = Read(row.bytes);
    EXPECT_EQ(outcome.pings.size(), 2u) << row.what;
    EXPECT_EQ(outcome.segy.size(), row.segySize) << row.what;
    ThroughAll();
  }
}

TEST_F(HostileFiles, TextValuesAtTheirExtremes) {
  const std::string bytes = SampleRecording({"", sim::DeviceFamily::first, 2}, 3);
  const Outcome sound = Read(bytes);
  const size_t second = bytes.find("#DeviceID", bytes.find("#DeviceID") + 1);
  ASSERT_NE(second, std::string::npos);
  for (const std::string key : {"#TimeWork ", "#Ping ", "#Altitude ", "#Temperature ", "#NSamples ",
                                "#Pitch,deg ", "#Sampling_Frequency,Hz ", "#Tx_Frequency,Hz "}) {
    const size_t at = bytes.find(key, second);
    ASSERT_NE(at, std::string::npos) << key;
    const std::string before = bytes.substr(0, at + key.size());
    const std::string behind = bytes.substr(bytes.find("\r\n", at));
    for (const std::string value :
         {"", "0", "-1", "-2208988800", "2147483648", "4294967295.999", "50001", "4294967296", "nan", "-inf",
          "1e999", "99999999999999999999", "string", "100000", "1e-320"}) {
      SCOPED_TRACE(key + value);
      const std::string altered = before + value + behind;
      ExpectPings(Read(altered), sound, 3, altered.size() - bytes.size());
      if (value == "-1") ThroughAll();
    }
  }
}

// A start that tells nothing is looked at six times, in case the file is still being written.
TEST_F(HostileFiles, AChosenFileIsJudgedOnce) {
  const struct {
    void (*command)(AppState&);
    const wchar_t* box;
  } rows[] = {{PlayFiles, L"Invalid file format."}, {ConvertToSegy, L"Cannot convert this file(s)"}};
  WriteWhole(file_, std::string(3'000, 'x'));
  for (const auto& row : rows) {
    ClearFaults();
    Ui().chosenFiles = {file_};
    row.command(*state_);
    ExpectBox(row.box, L"Error", BoxIcon::error);
    EXPECT_EQ(CallCount(FaultPoint::readFile), 6u);
  }
}

// It goes on as what it was judged to be, with what stands in it by then.
TEST_F(HostileFiles, AFileThatChangesBeforeItsWorkerBegins) {
  const std::string whole = SampleRecording(kFramesWithoutInfo, 3);
  const struct {
    std::string bytes;
    std::wstring box;
    std::wstring said;
  } rows[] = {{"", L"", L"The file cannot be read!"},
              {std::string(10'000, 'x'), L"", L"The file cannot be read!"},
              {whole.substr(0, whole.size() / 2), L"Convert completed", L""},
              {whole + whole, L"Convert completed", L""}};
  for (const auto& row : rows) {
    auto& said = Ui().status[static_cast<size_t>(StatusPart::position)];
    for (void (*const command)(AppState&) : {PlayFiles, ConvertToSegy}) {
      WriteWhole(file_, whole);
      Ui().chosenFiles = {file_};
      command(*state_);
      fs::resize_file(file_, 0);
      std::ofstream(fs::path(file_), std::ios::binary | std::ios::app) << row.bytes;
      if (command == PlayFiles) {
        while (LoadShared(globals.playbackEnded) == kPlaybackGoesOn) SleepMilliseconds(20);
        HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
        EXPECT_EQ(state_->playbackAtEnd, row.said.empty() ? 1 : 0);
        EXPECT_EQ(state_->playbackActive, row.said.empty() ? 1 : 0);
      } else {
        FinishConversion();
        EXPECT_EQ(Ui().boxes.empty() ? L"" : std::exchange(Ui().boxes, {})[0].text, row.box);
      }
      if (!row.said.empty()) {
        EXPECT_EQ(said, row.said);
      }
      StopRun(*state_);
    }
  }
}

TEST_F(HostileFiles, WhatIsAppendedDuringAPlaybackIsPlayedToo) {
  const std::string bytes = SampleRecording(kFramesWithoutInfo, 60);
  const size_t half = bytes.size() / 2 + 40;  // within a frame
  WriteWhole(file_, bytes.substr(0, half));
  Play({file_});
  ASSERT_TRUE(Ui().boxes.empty());
  SleepMilliseconds(200);
  std::ofstream(fs::path(file_), std::ios::binary | std::ios::app) << bytes.substr(half);
  PlayToTheEnd();
  StopRun(*state_);
  EXPECT_EQ(LoadShared(globals.pingCounter), ReadPings(file_).back().header.ping);
}

// The disk or the network share is gone. Playback and conversion end there, the program is idle and says why,
// but not that anything is complete; echotool leaves nothing.
TEST_F(HostileFiles, FailingReadsAreNotTheEndOfTheFile) {
  WriteWhole(file_, SampleRecording(kFrames, 1'000, 500));
  const auto failFrom = [](uint64_t call) {
    ClearFaults();
    InjectFault({.point = FaultPoint::readFile, .call = call, .repeat = kEveryCall});
  };
  const std::wstring kSaid = L"The file cannot be read!";
  const auto said = [] { return std::exchange(Ui().status[static_cast<size_t>(StatusPart::position)], L""); };
  // So many reads the whole file takes, the one at its end included.
  ClearFaults();
  ASSERT_TRUE(Works(Task::segy));
  const uint64_t reads = CallCount(FaultPoint::readFile);
  for (uint64_t call = 1; call <= reads; ++call) {
    failFrom(call);
    EXPECT_FALSE(Works(Task::segy)) << call;
    failFrom(call);
    EXPECT_FALSE(Works(Task::info)) << call;
    failFrom(call);
    const std::wstring box = Convert(file_, ConvertToSegy);
    EXPECT_TRUE(box == L"Cannot convert this file(s)" || (box.empty() && said() == kSaid)) << call;
    failFrom(call);
    Play({file_});
    for (int i = 0; i < 100'000 && StateOfProgram(*state_) != ProgramState::idle; ++i) {
      SleepMilliseconds(20);
      HandleTimer(*state_, ID_TIMER_PLAYBACK_END);
    }
    EXPECT_EQ(state_->playbackActive, 0) << call;
    EXPECT_EQ(state_->inputFileA, Handle::invalid) << call;
    EXPECT_EQ(state_->fileWorkerA, Handle::null) << call;
    EXPECT_TRUE(!std::exchange(Ui().boxes, {}).empty() || said() == kSaid) << call;
  }
}

TEST_F(HostileFiles, NoPermissionToWrite) {
  WriteWhole(file_, SampleRecording(kFrames, 3));
  EXPECT_TRUE(Works(Task::join));
  InjectFault({.point = FaultPoint::createFile, .repeat = kEveryCall, .code = EACCES});
  EXPECT_EQ(Convert(file_, ConvertToSegy), L"Unable to open file.");
  EXPECT_EQ(Convert(file_, ConvertToText), L"Unable to open file.");
  for (const Task task : kOutputTasks) EXPECT_FALSE(Works(task));
  for (const FaultPoint last : {FaultPoint::flushFile, FaultPoint::renameFile}) {
    ClearFaults();
    InjectFault({.point = last, .repeat = kEveryCall, .code = EACCES});
    for (const Task task : kOutputTasks) EXPECT_FALSE(Works(task));
  }
}

// The window leaves what went onto the disk and reads on; echotool leaves nothing.
TEST_F(HostileFiles, FullDisk) {
  WriteWhole(file_, SampleRecording(kFrames, 20));
  ASSERT_EQ(Convert(file_, ConvertToSegy), L"Convert completed");
  const std::string whole = Content("hostile.sgy");
  ASSERT_EQ(whole.size(), 3'600u + 20 * (240 + 200));
  for (const size_t room : {0, 1, 3'199, 3'200, 3'600, 3'700, 3'839, 3'840, 4'041, 4'800}) {
    LimitDiskSpace(room);
    EXPECT_EQ(Convert(file_, ConvertToSegy), L"Convert completed");
    EXPECT_EQ(Content("hostile.sgy"), whole.substr(0, room));
    for (const Task task : kOutputTasks) {
      const bool isLarge =
          task == Task::segy || task == Task::text || task == Task::netcdf || task == Task::report;
      LimitDiskSpace(isLarge ? room : std::min<size_t>(room, 40));
      EXPECT_FALSE(Works(task)) << room;
    }
    ClearFaults();
  }
}

}  // namespace
}  // namespace tw::test
