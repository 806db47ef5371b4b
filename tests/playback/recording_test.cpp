// Recordings read from any place of theirs, and their times.
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "acquisition/altimeter_lines.h"
#include "acquisition/device_block.h"
#include "acquisition/echo_frame.h"
#include "acquisition/echo_text_stream.h"
#include "acquisition/nmea_depth.h"
#include "playback/ping_source.h"
#include "playback/time_search.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/gps/parser_fixture.h"
#include "tests/playback/info_text.h"

namespace tw::test {
namespace {

constexpr char kSentences[] =
    "$GPGGA,123519.00,4807.0380,N,01131.0000,E,1,08,0.9,545.4,M,46.9,M,,*42\r\n"
    "$GPRMC,123519.00,A,4807.0380,N,01131.0000,E,022.4,084.4,230394,003.1,W,A*1B\r\n";

// One ping of a text recording.
struct Piece {
  std::string text;
  float altitude_m;
};

struct Sample {
  const char* what;
  std::string start;
  std::vector<Piece> pings;  // with both sentences behind each
};

class Recordings : public testing::Test {
 protected:
  std::unique_ptr<PingSource> Open(const std::string& content, int32_t sampling_hz = kUsualSampling_hz) {
    const auto path = folder_.Path() / "recording.log";
    WriteWhole(path, content);
    RecordingFault fault{};
    auto recording = OpenRecording(path.wstring().c_str(), fault, sampling_hz);
    EXPECT_NE(recording, nullptr);
    return recording;
  }

 private:
  TestFolder folder_;
};

// The first numbers of these lines begin so that a line cut anywhere still looks like one.
TEST_F(Recordings, FromAnyPlaceTheNextWholePingComes) {
  const auto block = [](const char* altitude) {
    return std::string("#DeviceID KT\r\n#NSamples 2\r\n#Sampling_Frequency,Hz 25000\r\n#Altitude ") +
           altitude + "\r\n##DataStart\r\n12\r\n13\r\n\r\n\r\n";
  };
  const Sample samples[] = {
      {"DFX",
       InfoText(1, 8),
       {{"1 11.11 1.11 1.0 11.0 1\r\n", 11.11f},
        {"1 12.5 1.11 1.0 11.0 1\r\n", 12.5f},
        {"1 111.75 1.11 1.0 11.0 1\r\n", 111.75f}}},
      {"depth and temperature",
       InfoText(2, 8),
       {{"12.250,   11.40\r\n", 12.25f}, {"112.500,   11.40\r\n", 112.5f}, {"1.250,   11.40\r\n", 1.25f}}},
      {"OLD", InfoText(1, 9), {{"1 11.5 0 0 0 12.10 0 0\r\n", 11.5f}, {"1 1.25 0 0 0 2.10 0 0\r\n", 1.25f}}},
      {"simple", InfoText(1, 1), {{"Alt : 11.5\r\n", 11.5f}, {"Alt : 12.25\r\n", 12.25f}}},
      {"PSA-916", InfoText(2, 7), {{"R11.5\r\n", 11.5f}, {"R12.25\r\n", 12.25f}}},
      {"echo text", InfoText(1, 4), {{block("11.5"), 11.5f}, {block("12.25"), 12.25f}}},
  };
  for (const Sample& sample : samples) {
    std::string content = sample.start;
    std::vector<size_t> begins;
    for (const Piece& ping : sample.pings) {
      begins.push_back(content.size());
      content += ping.text + kSentences;
    }
    SCOPED_TRACE(sample.what);
    const auto recording = Open(content);
    for (size_t place = 0; place <= content.size(); ++place) {
      size_t expected = 0;
      while (expected < begins.size() && begins[expected] < place) ++expected;
      ASSERT_TRUE(recording->Seek(place));
      RecordedPing ping{};
      ASSERT_EQ(recording->Next(ping), expected < begins.size()) << place;
      if (expected == begins.size()) continue;
      EXPECT_EQ(ping.begin, begins[expected]) << place;
      EXPECT_EQ(ping.header.altitude_m, sample.pings[expected].altitude_m) << place;
    }
  }
}

TEST_F(Recordings, PositionAndTimeComeFromTheSentencesOrTheConvertedText) {
  const auto gga = [](int quality) {
    return Sentence("GPGGA,123519.07,3351.1234,S,05812.4321,W," + std::to_string(quality) +
                    ",08,2.5,545.4,M,46.9,M,,");
  };
  const auto rmc = [](const char* fraction) {
    return Sentence("GPRMC,123519." + std::string(fraction) +
                    ",A,3351.1234,S,05812.4321,W,5,84,230394,3.1,W");
  };
  const auto converted = [](const char* valid) {
    return InfoText(1, 4) +
           "#DeviceID KT\r\n#NSamples 1\r\n#gpsLatitude,radian -0.5908\r\n#gpsLongitude,radian -1.0159\r\n"
           "#gpsAltitude,m 545.4\r\n#gpsPDOP 2.5\r\n#gpsvalid " +
           std::string(valid) + "\r\n##DataStart\r\n12\r\n\r\n\r\n";
  };
  constexpr int64_t kNone = -1;
  constexpr int64_t kSecond_ms = 764'426'119'000;  // 1994-03-23 12:35:19
  const std::string line = InfoText(1, 1) + "Alt : 1.5\r\n";
  const struct {
    const char* what;
    std::string content;
    bool hasPosition;
    int64_t time_ms;
  } rows[] = {
      {"both", line + gga(1) + rmc("25"), true, kSecond_ms + 250},
      {"no fix", line + gga(0) + rmc("25"), false, kSecond_ms + 250},
      {"hundredths", line + gga(1) + rmc("99"), true, kSecond_ms + 990},
      // The digits as they stand: below 100 they are hundredths.
      {"three digits are milliseconds", line + gga(1) + rmc("100"), true, kSecond_ms + 100},
      {"many milliseconds", line + gga(1) + rmc("800"), true, kSecond_ms + 800},
      {"no date", line + gga(1), true, kNone},
      {"converted", converted("1"), true, 0},
      {"converted, no fix", converted("0"), false, 0},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const auto recording = Open(row.content);
    RecordedPing ping{};
    ASSERT_TRUE(recording != nullptr && recording->Next(ping));
    EXPECT_EQ(ping.hasPosition, row.hasPosition);
    EXPECT_EQ(ping.header.gpsValid, row.hasPosition ? 1u : 0u);
    EXPECT_NEAR(ping.header.gpsLatitude_rad, -0.5908, 1e-4);
    EXPECT_NEAR(ping.header.gpsLongitude_rad, -1.0159, 1e-4);
    EXPECT_EQ(ping.header.gpsAltitude_m, 545.4f);
    EXPECT_EQ(ping.header.gpsPdop, 2.5f);
    EXPECT_EQ(ping.hasTime ? ping.time_ms : kNone, row.time_ms);
  }
}

// A block of the second family; `lines` come in front of its samples.
std::string SecondBlock(const std::string& lines) {
  return "#DeviceID 42\r\n#NSamples 2\r\n#Altitude,m 3.5\r\n" + lines + "##DataStart\r\n12\r\n13\r\n\r\n\r\n";
}

// How a recording is read that tells it in part, with 20,000 Hz for what it does not tell.
TEST_F(Recordings, SamplingComesFromTheFileWhereItCan) {
  const std::string covers = SecondBlock("#Resolution,mm 15.0\r\n");
  const std::string mute = SecondBlock("");
  const struct {
    const char* what;
    std::string content;
    std::vector<uint32_t> sampling_hz;
    bool assumed;
  } rows[] = {
      {"speed and resolution", InfoText(2, 2, "1490.5") + covers, {50'000}, false},
      {"no speed", covers, {20'000}, true},
      {"no resolution", InfoText(2, 2) + mute, {20'000}, true},
      {"lost in one block", InfoText(2, 2) + covers + mute, {50'000, 50'000}, false},
      {"another one later",
       InfoText(2, 2) + covers + SecondBlock("#Resolution,mm 7.5f\r\n"),
       {50'000, 100'000},
       false},
      {"none at first", InfoText(0, 2) + mute + covers, {20'000, 50'000}, true},
      {"the first family tells it",
       InfoText(1, 4) + "#DeviceID a\r\n#Sampling_Frequency,Hz 25000\r\n\r\n\r\n",
       {25'000},
       false},
      {"or has lost it", InfoText(1, 4) + "#DeviceID a\r\n\r\n\r\n", {20'000}, true},
  };
  for (const auto& row : rows) {
    const auto recording = Open(row.content, 20'000);
    std::vector<uint32_t> read;
    for (RecordedPing ping{}; recording->Next(ping);) read.push_back(ping.header.samplingFrequency_hz);
    EXPECT_EQ(read, row.sampling_hz) << row.what;
    EXPECT_EQ(recording->IsSamplingAssumed(), row.assumed) << row.what;
  }
}

// The first way that finds a ping is taken, whatever stands at the front.
// What a block does not tell is what the one before told: of the first one nothing, not even the second time.
TEST_F(Recordings, FromTheBeginningThePingsAreTheSameAgain) {
  const auto recording =
      Open(InfoText(1, 4) + "#DeviceID KT\r\n##DataStart\r\n12\r\n\r\n\r\n" +
           "#DeviceID KT\r\n#Altitude 4.5\r\n#NSamples 2\r\n##DataStart\r\n12\r\n13\r\n\r\n\r\n");
  ASSERT_NE(recording, nullptr);
  for (const char* const turn : {"opened", "again"}) {
    for (const float altitude_m : {0.0f, 4.5f}) {
      RecordedPing ping{};
      ASSERT_TRUE(recording->Next(ping)) << turn;
      EXPECT_EQ(ping.header.altitude_m, altitude_m) << turn;
      EXPECT_EQ(ping.samples.size(), altitude_m > 0.0f ? 2u : 0u) << turn;
    }
    EXPECT_TRUE(recording->Rewind());
  }
}

TEST_F(Recordings, EachWayIsTriedInItsTurn) {
  const std::string frame = [](std::string magic) {
    return magic + std::string("\x58\0\0\0", 4) + std::string(80, '\0');
  }("DUAL");
  const std::string block = "TIDEWRITEC" + std::string("\x3E\0\0\0", 4) + std::string(48, '\0');
  const std::string first = "#DeviceID a\r\n#NSamples 1\r\n#Altitude 3.5\r\n";
  const std::string data = "##DataStart\r\n12\r\n\r\n\r\n";
  const struct {
    const char* what;
    std::string content;
    const StreamForm& form;
    int32_t family;
    int32_t mode;
    float altitude_m;
    uint16_t factor;
  } rows[] = {
      {"frames of one channel behind an INFO line", InfoText(1, 100) + frame, kDualFrameStream, 1, 102, 0.0f,
       1},
      {"device blocks behind one", InfoText(2, 101) + block, kBlockStream, 2, 102, 0.0f, 1},
      {"lines where the INFO line tells NMEA", InfoText(1, 3) + "Alt : 3.5\r\n", kReportingStream, 1, 1, 3.5f,
       0},
      {"Sonarmite OLD, whose mark holds that of mode 1",
       "#---Parameters---\r\n#OutputMode    10\r\n1 3.5 0 0 0 12.1 0 0\r\n", kOldStream, 2, 10, 3.5f, 0},
      {"a device that is named as frames are", "#DeviceID TR57\r\n" + first.substr(13) + data,
       kFirstTextStream, 1, 4, 3.5f, 1},
      {"ten bits", first + "#OutputMode 2\r\n" + data, kFirstTextStream, 1, 2, 3.5f, 4},
      {"twelve", first + "#OutputMode 4\r\n" + data, kFirstTextStream, 1, 4, 3.5f, 1},
      {"a mode that is no text", first + "#OutputMode 9\r\n" + data, kFirstTextStream, 1, 4, 3.5f, 1},
      {"an INFO line goes before the block", InfoText(1, 4) + first + "#OutputMode 2\r\n" + data,
       kFirstTextStream, 1, 4, 3.5f, 1},
      {"keys of the second family", SecondBlock("#OutputMode 5\r\n"), kSecondTextStream, 2, 5, 3.5f, 1},
      {"the same in ten bits", SecondBlock("#OutputMode 2\r\n"), kSecondTextStream, 2, 2, 3.5f, 4},
      {"its mark, but keys of the first", "#-Parameters-\r\n#OutputMode    5\r\n" + first + data,
       kFirstTextStream, 1, 4, 3.5f, 1},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.what);
    const auto recording = Open(row.content);
    ASSERT_NE(recording, nullptr);
    EXPECT_EQ(recording->Told().form, &row.form);
    EXPECT_EQ(recording->Kind().family, DeviceFamily{row.family});
    EXPECT_EQ(recording->Kind().outputMode, row.mode);
    RecordedPing ping{};
    ASSERT_TRUE(recording->Next(ping));
    EXPECT_EQ(ping.header.altitude_m, row.altitude_m);
    EXPECT_EQ(ping.factor, row.factor);
    EXPECT_FALSE(recording->Next(ping));
  }
}

TEST_F(Recordings, AReceiverWithoutAFixIsNoPosition) {
  const struct {
    const char* sentence;
    bool hasPosition;
  } rows[] = {
      {"$GPGGA,123519.00,0000.0000,N,00000.0000,E,1,00,0.0,0.0,M,0.0,M,,*51\r\n", false},
      {"$GPGGA,123519.00,0000.0000,N,00000.0000,E,1,00,0.0,0.1,M,0.0,M,,*50\r\n", true},
      {"$GPGGA,123519.00,0000.0001,N,00000.0000,E,1,00,0.0,0.0,M,0.0,M,,*50\r\n", true},
      {"$GPGGA,123519.00,0000.0000,N,00000.0001,W,1,00,0.0,0.0,M,0.0,M,,*42\r\n", true},
  };
  for (const auto& row : rows) {
    const auto recording = Open(InfoText(1, 1) + "Alt : 1.5\r\n" + row.sentence);
    RecordedPing ping{};
    ASSERT_TRUE(recording->Next(ping));
    EXPECT_EQ(ping.hasPosition, row.hasPosition) << row.sentence;
    EXPECT_EQ(ping.header.gpsValid, row.hasPosition ? 1 : 0) << row.sentence;
  }
}

TEST_F(Recordings, AnInterruptionEndsNothing) {
  std::string content = InfoText(1, 1) + "Alt : 1.5\r\n" + std::string(2'000'000, '.') + "Alt : 2.5\r\n";
  const auto recording = Open(content);
  RecordedPing ping{};
  ASSERT_TRUE(recording->Next(ping));
  int asked = 0;
  recording->SetInterruption({[](void* count) { return ++*static_cast<int*>(count) == 3; }, &asked});
  EXPECT_FALSE(recording->Next(ping));
  EXPECT_EQ(asked, 3);
  EXPECT_TRUE(recording->Next(ping)) << "it goes on where it was";
  EXPECT_EQ(ping.header.altitude_m, 2.5f);
  EXPECT_EQ(recording->Skipped(), 2'000'000u);
}

// Blocks of 10 to 300 samples, the i-th at 1,000 + 7 i seconds; or `alike` blocks share their time.
std::string TimedBlocks(int count, int alike = 1) {
  std::string content = InfoText(1, 4);
  for (int i = 0; i < count; ++i) {
    const int samples = 10 + i * 37 % 290;
    content += "#DeviceID KT\r\n#TimeWork " + std::to_string(1'000 + 7 * (i / alike)) + ".250\r\n#NSamples " +
               std::to_string(samples) + "\r\n#Sampling_Frequency,Hz 25000\r\n#Ping " + std::to_string(i) +
               "\r\n##DataStart\r\n";
    for (int sample = 0; sample < samples; ++sample) content += "100\r\n";
    content += "\r\n\r\n";
  }
  return content;
}

TEST_F(Recordings, ATimeIsFoundWithFewReads) {
  constexpr int kBlocks = 3'000;
  const auto recording = Open(TimedBlocks(kBlocks));
  ASSERT_GT(recording->Size(), 2'000'000u);
  const struct {
    const char* what;
    int64_t time_ms;
    int ping;  // the first at or after that time
  } rows[] = {
      {"ahead of the first", 0, 0},
      {"the first", 1'000'250, 0},
      {"just behind it", 1'000'251, 1},
      {"the middle", (1'000 + 7 * 1'500) * 1'000 + 250, 1'500},
      {"between two", 8'000'000, 1'000},
      {"the last", (1'000 + 7 * 2'999) * 1'000 + 250, 2'999},
      {"behind the last", 30'000'000, kBlocks},
  };
  for (const auto& row : rows) {
    ASSERT_TRUE(SeekToTime(*recording, row.time_ms)) << row.what;
    RecordedPing ping{};
    int read = 0;
    bool found = false;
    while (!found && recording->Next(ping)) {
      ++read;
      found = ping.time_ms >= row.time_ms;
    }
    EXPECT_LT(read, 200) << row.what;
    ASSERT_EQ(found, row.ping < kBlocks) << row.what;
    if (found) {
      EXPECT_EQ(ping.header.ping, static_cast<uint32_t>(row.ping)) << row.what;
    }
  }
}

TEST_F(Recordings, OfPingsOfOneTimeTheFirstIsFound) {
  const auto recording = Open(TimedBlocks(3'000, 500));
  for (const int place : {1, 3, 5}) {
    ASSERT_TRUE(SeekToTime(*recording, (1'000 + 7 * place) * 1'000 + 250));
    RecordedPing ping{};
    ASSERT_TRUE(recording->Next(ping));
    EXPECT_LE(ping.header.ping, 500u * static_cast<uint32_t>(place));
  }
}

// A receiver tells the time once a second, and the device pings 50 times.
TEST_F(Recordings, ATimeIsFoundAmongPingsWithoutOne) {
  std::string content = InfoText(1, 1);
  for (int second = 0; second < 60; ++second) {
    char rmc[80];
    std::snprintf(rmc, sizeof rmc, "GPRMC,1235%02d,A,4807.038,N,01131,E,5,84,230394,3.1,W", second);
    content += "Alt : " + std::to_string(second) + ".5\r\n" + Sentence(rmc);
    for (int ping = 1; ping < 50; ++ping) content += "Alt : 77.5\r\n" + std::string(200, '.') + "\r\n";
  }
  const auto recording = Open(content);
  for (const int second : {7, 19, 28, 40, 53}) {
    ASSERT_TRUE(SeekToTime(*recording, (764'426'100 + second) * int64_t{1'000}));
    const float altitude_m = static_cast<float>(second) + 0.5f;
    RecordedPing ping{};
    int read = 0;
    while (recording->Next(ping) && ping.header.altitude_m != altitude_m) ++read;
    EXPECT_EQ(ping.header.altitude_m, altitude_m);
    EXPECT_LT(read, 400) << "64 kB ahead of it at most";
  }
}

TEST_F(Recordings, WithoutTimesNoTimeIsFound) {
  const auto recording = Open(InfoText(1, 1) + "Alt : 1.5\r\nAlt : 2.5\r\n");
  EXPECT_FALSE(SeekToTime(*recording, 1'000));
}

// The reader begins behind the line that is recorded ahead of each epoch.
TEST_F(Recordings, AFrequencyLineIsNoDamage) {
  const std::string ping =
      std::string("#F 450000 Hz\r\n$GPDBT,40.16,f,12.240,M,,*58\r\n$GPMTW,15.08,*7B\r\n$GPEMA,1.92*66\r\n") +
      kSentences;
  const struct {
    const char* what;
    const char* between;
    uint64_t skipped;
  } rows[] = {{"whole", "", 0}, {"noise", "noise\r\n", 7 + 14}, {"two lines", "#F 450000 Hz\r\n", 14}};
  for (const auto& row : rows) {
    const auto recording = Open(InfoText(2, 3) + ping + row.between + ping);
    RecordedPing read{};
    int pings = 0;
    while (recording->Next(read)) ++pings;
    EXPECT_EQ(pings, 2) << row.what;
    EXPECT_EQ(recording->Skipped(), row.skipped) << row.what;
  }
}

}  // namespace
}  // namespace tw::test
