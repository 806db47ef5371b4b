// echotool's check, repair, cut and join, on recordings of every kind with the sentences recorded behind each
// ping.
#include <gtest/gtest.h>

#include <cstdlib>
#include <map>
#include <random>
#include <sstream>

#include "base/text_format.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/playback/echotool_call.h"
#include "tests/playback/info_text.h"
#include "tests/playback/sample_recordings.h"

namespace tw::echotool {
namespace {

namespace fs = std::filesystem;
using test::ReadWhole;
using test::SampleKind;
using test::WriteWhole;

constexpr size_t kPings = 12;

std::string Sentence(const std::string& body) {
  uint8_t sum = 0;
  for (const char c : body) sum = static_cast<uint8_t>(sum ^ c);
  char end[8];
  return "$" + body + std::string(end, FormatText(end, "*%02X\r\n", sum));
}

// A ping a second from 12:35:00 on, the boat going north.
std::string Sentences(size_t ping, int minutes = 4830) {
  char text[256];
  const auto time = static_cast<int>(ping);
  const auto place = 30 * time;
  const std::string gga(
      text, FormatText(text, "GPGGA,1235%02d.00,%d.%04d,N,01130.0000,E,1,08,0.9,545.4,M,46.9,M,,", time,
                       minutes, place));
  const std::string rmc(
      text, FormatText(text, "GPRMC,1235%02d.00,A,%d.%04d,N,01130.0000,E,022.4,084.4,230394,003.1,W", time,
                       minutes, place));
  return Sentence(gga) + Sentence(rmc);
}

// What a recording's reader gives of each ping: its bytes with all that was recorded with it.
std::vector<std::string> PingsOf(const fs::path& file) {
  std::vector<std::string> pings;
  const std::string bytes = ReadWhole(file);
  RecordingFault fault{};
  const auto recording = OpenRecording(file.wstring().c_str(), fault);
  for (RecordedPing ping{}; recording != nullptr && recording->Next(ping);)
    pings.push_back(bytes.substr(ping.recordBegin, recording->Position() - ping.recordBegin));
  return pings;
}

// A line end may be kept of what lay between two lines.
std::vector<std::string> WithoutEnds(std::vector<std::string> pings) {
  for (std::string& ping : pings) ping.resize(ping.find_last_not_of("\r\n") + 1);
  return pings;
}

class Mending : public testing::TestWithParam<SampleKind> {
 protected:
  Result Do(Task task, const fs::path& file, const Selection& selection = {}) {
    options_.task = task;
    options_.force = true;
    options_.selection = selection;
    Batch batch;
    return WorkOn(file.string(), options_, interrupted_, batch);
  }
  fs::path Write(const char* name, const std::string& bytes) {
    WriteWhole(folder_ / name, bytes);
    return folder_ / name;
  }

  // The messages of a recording of this kind, as the program records them; its settings are the first.
  std::vector<std::string> Recorded() {
    const std::string bare = SampleRecording(GetParam(), kPings);
    const size_t head = GetParam().hasInfo ? bare.find("\r\n") + 2 : 0;
    std::vector<std::string> pieces = {bare.substr(0, head)};
    const bool isEpoch = GetParam().family != sim::DeviceFamily::first && GetParam().outputMode == 3;
    for (const std::string& message : PingsOf(Write("bare.log", bare))) {
      const bool isText = GetParam().outputMode < 100;
      pieces.push_back((isEpoch ? "#F 450000 Hz\r\n" : "") + message +
                       (isText ? Sentences(pieces.size()) : ""));
      if (message.ends_with("\r\n\r\n")) pieces.back() += "\r\n\r\n";
    }
    EXPECT_EQ(pieces.size(), kPings + 1);
    return pieces;
  }
  static std::string Joined(const std::vector<std::string>& pieces, size_t first, size_t end) {
    std::string bytes = pieces[0];
    for (size_t i = first; i < end; ++i) bytes += pieces[i];
    return bytes;
  }

  static bool HasEchoes() {
    const int32_t mode = GetParam().outputMode;
    return mode == 2 || mode == 4 || mode >= 100;
  }
  // From the third ping to the seventh.
  fs::path CutOf(const fs::path& file) {
    RecordingFault fault{};
    RecordedPing third{};
    const auto recording = OpenRecording(file.wstring().c_str(), fault);
    EXPECT_TRUE(recording->Next(third) && recording->Next(third) && recording->Next(third));
    const uint32_t number = third.header.ping;
    const Result cut = Do(Task::cut, file, {.pings = NumberRange{number, number + 4}});
    EXPECT_TRUE(cut.done) << cut.text;
    return folder_ / "a_cut.log";
  }

  // What the task makes of the recording, line by line; ping numbers, which some recordings do not tell, left
  // out.
  std::vector<std::string> Rows(const fs::path& recording) {
    EXPECT_TRUE(Do(Task::csv, recording).done);
    std::istringstream csv(ReadWhole(fs::path(recording).replace_extension(".csv")));
    std::vector<std::string> rows;
    for (std::string row; std::getline(csv, row);) {
      const size_t number = row.find(',') + 1;
      rows.push_back(row.erase(number, row.find(',', number) - number));
    }
    return rows;
  }
  // SEG-Y traces, which are numbered from 1 on, without that number; ahead of each the headers of the file.
  // Nothing of a recording without echoes.
  std::vector<std::string> Traces(const fs::path& recording) {
    std::vector<std::string> traces;
    if (!Do(Task::segy, recording).done) return traces;
    const std::string segy = ReadWhole(fs::path(recording).replace_extension(".sgy"));
    constexpr size_t kHead = 240;
    for (size_t at = 3'600; at < segy.size();) {
      const std::string number = {'\0', '\0', '\0', static_cast<char>(traces.size() + 1)};
      EXPECT_EQ(segy.substr(at + 4, 4), number);
      const size_t samples =
          static_cast<uint8_t>(segy[at + 114]) * 256u + static_cast<uint8_t>(segy[at + 115]);
      traces.push_back(segy.substr(0, 3'600) + segy.substr(at, 4) +
                       segy.substr(at + 8, kHead - 8 + 2 * samples));
      at += kHead + 2 * samples;
    }
    return traces;
  }

  // What is told of a recording, by its names.
  std::map<std::string, std::string> InfoOf(const fs::path& recording) {
    const Result result = Do(Task::info, recording);
    EXPECT_TRUE(result.done) << result.text;
    std::istringstream lines(result.text.substr(result.text.find('\n') + 1));
    std::map<std::string, std::string> told;
    for (std::string line; std::getline(lines, line);)
      told[line.substr(2, line.find("  ", 2) - 2)] = line.substr(std::min<size_t>(16, line.size()));
    return told;
  }
  // Of a cut: the settings are those of the whole, all else that of its rows.
  static void ExpectInfo(std::map<std::string, std::string> whole, std::map<std::string, std::string> cut,
                         const std::vector<std::string>& rows) {
    for (const char* const name : {"kind", "device family", "output mode", "channels", "frequency",
                                   "sampling", "sound speed", "gain", "range"})
      EXPECT_EQ(cut[name], whole[name]) << name;
    EXPECT_TRUE(cut["pings"].starts_with("5, ")) << cut["pings"];
    double low = 1e9;
    double high = 0;
    size_t positions = 0;
    for (size_t i = 1; i < rows.size(); ++i) {
      std::vector<std::string> cells;
      std::istringstream row(rows[i]);
      for (std::string cell; std::getline(row, cell, ',');) cells.push_back(cell);
      low = std::min(low, std::stod(cells.at(4)));
      high = std::max(high, std::stod(cells[4]));
      positions += cells[2].empty() ? 0 : 1;
    }
    char text[64];
    EXPECT_EQ(cut["depth"], std::string(text, FormatText(text, "%.3f to %.3f m", low, high)));
    EXPECT_TRUE(cut["positions"].starts_with(std::to_string(positions) + " pings"));
  }

  const test::TestFolder testFolder_;
  const fs::path folder_ = testFolder_.Path();
  std::atomic<bool> interrupted_ = false;
  Options options_;
};

INSTANTIATE_TEST_SUITE_P(Kinds, Mending, testing::ValuesIn(test::SampleKinds()),
                         [](const auto& kind) { return std::string(kind.param.name); });

TEST_P(Mending, ASoundRecordingIsLeftAsItIsAndCutByteForByte) {
  const std::vector<std::string> pieces = Recorded();
  const fs::path file = Write("a.log", Joined(pieces, 1, pieces.size()));
  const Result checked = Do(Task::check, file);
  EXPECT_TRUE(checked.done && checked.sound && checked.text.empty()) << checked.text;
  ASSERT_TRUE(Do(Task::repair, file).done);
  EXPECT_EQ(ReadWhole(folder_ / "a_repaired.log"), ReadWhole(file));
  EXPECT_EQ(ReadWhole(CutOf(file)), Joined(pieces, 3, 8));
}

// Of one channel, of the low one of a pair, and of both in one file.
TEST_P(Mending, WhatIsMadeOfACutIsThatOfItsPings) {
  std::vector<std::string> pieces = Recorded();
  std::vector<std::string> heads = {pieces[0]};
  if (GetParam().hasInfo) {
    std::string low = heads[0];
    heads.push_back(low.replace(low.find("450000"), 6, "200000"));
    const bool shares = GetParam().family == sim::DeviceFamily::first && GetParam().outputMode >= 6;
    if (shares && GetParam().outputMode <= 8) heads.push_back(heads[0] + heads[1]);
  }
  for (const std::string& head : heads) {
    SCOPED_TRACE(head);
    pieces[0] = head;
    const fs::path file = Write("a.log", Joined(pieces, 1, pieces.size()));
    const fs::path cut = CutOf(file);
    const auto rows = Rows(file);
    const auto cutRows = Rows(cut);
    ASSERT_EQ(cutRows.size(), 6u);
    EXPECT_TRUE(std::equal(cutRows.begin() + 1, cutRows.end(), rows.begin() + 3));
    ExpectInfo(InfoOf(file), InfoOf(cut), cutRows);
    const auto traces = Traces(file);
    const auto cutTraces = Traces(cut);
    ASSERT_EQ(traces.size(), HasEchoes() ? kPings : 0);
    ASSERT_EQ(cutTraces.size(), HasEchoes() ? 5u : 0u);
    EXPECT_TRUE(std::equal(cutTraces.begin(), cutTraces.end(), traces.begin() + 2));
    ASSERT_EQ(Do(Task::text, cut).done, Do(Task::text, file).done);
    if (GetParam().outputMode < 100) continue;
    const std::string text = ReadWhole(folder_ / "a_cut_txt.log");
    EXPECT_GT(text.size(), 5 * 100u);
    EXPECT_NE(ReadWhole(folder_ / "a_txt.log").find(text.substr(text.find('#'))), std::string::npos);
  }
}

TEST_P(Mending, EveryTaskMakesWhatTheKindHolds) {
  const std::vector<std::string> pieces = Recorded();
  const fs::path file = Write("a.log", Joined(pieces, 1, pieces.size()));
  const fs::path out = folder_ / "out";
  const bool placed = GetParam().outputMode < 100;  // by the sentences behind each ping
  const struct {
    Task task;
    bool done;
  } rows[] = {{Task::info, true},   {Task::check, true},  {Task::csv, true},         {Task::kml, true},
              {Task::gpx, true},    {Task::nmea, true},   {Task::netcdf, true},      {Task::geojson, true},
              {Task::report, true}, {Task::repair, true}, {Task::segy, HasEchoes()}, {Task::png, HasEchoes()},
              {Task::xyz, placed},  {Task::text, !placed}};
  for (const auto& row : rows) {
    const bool writes = row.task != Task::info && row.task != Task::check;
    fs::remove_all(out);
    fs::create_directory(out);
    options_.folder = writes ? out.string() : "";
    const Result result = Do(row.task, file);
    EXPECT_EQ(result.done, row.done) << static_cast<int>(row.task) << result.text;
    const auto files = std::distance(fs::directory_iterator(out), fs::directory_iterator());
    EXPECT_EQ(files, writes && row.done ? 1 : 0) << static_cast<int>(row.task);
  }
}

// Bytes changed, left out, put in and doubled, the file cut: whatever the reader still finds is in the
// repaired recording, and that is sound.
TEST_P(Mending, NoPingOfADamagedRecordingIsLost) {
  const std::vector<std::string> pieces = Recorded();
  const std::string sound = Joined(pieces, 1, pieces.size());
  const int rounds = std::getenv("TW_FULL") != nullptr ? 500 : 5;
  std::mt19937 random(15);
  for (int i = 0; i < rounds; ++i) {
    std::string bytes = sound;
    for (size_t damage = 0; damage <= random() % 4; ++damage) {
      const size_t at = random() % bytes.size();
      const size_t size = 1 + random() % (random() % 3 == 0 ? 400 : 12);
      std::string noise(size, '\0');
      for (char& c : noise) c = static_cast<char>(random() % 3 == 0 ? "\r\n$#ADI"[random() % 7] : random());
      switch (random() % 5) {
        case 0:
          bytes.replace(at, size, noise);
          break;
        case 1:
          bytes.erase(at, size);
          break;
        case 2:
          bytes.insert(at, noise);
          break;
        case 3:
          bytes.insert(random() % bytes.size(), bytes.substr(at, size));
          break;
        default:
          if (bytes.size() > sound.size() / 2) bytes.resize(bytes.size() - size);
      }
    }
    SCOPED_TRACE(i);
    const fs::path file = Write("a.log", bytes);
    const auto found = PingsOf(file);
    const Result repaired = Do(Task::repair, file);
    const bool refused = found.empty() || repaired.text.find("is no recording") != std::string::npos;
    ASSERT_EQ(repaired.done, !refused) << repaired.text;
    if (refused) continue;
    const auto kept = PingsOf(folder_ / "a_repaired.log");
    ASSERT_EQ(WithoutEnds(kept), WithoutEnds(found));
    ASSERT_TRUE(Do(Task::repair, folder_ / "a_repaired.log").done);
    EXPECT_EQ(WithoutEnds(PingsOf(folder_ / "a_repaired_repaired.log")), WithoutEnds(found));
  }
}

// Of a recording of ten pings that begins at 12:35:01.
class LineRecording : public Mending {
 protected:
  static std::string Line(size_t ping) { return "Alt : 1.5\r\n" + Sentences(ping); }
  static std::string Lines(size_t first, size_t last) {
    std::string bytes = test::InfoText(1, 1);
    for (size_t ping = first; ping <= last; ++ping) bytes += Line(ping);
    return bytes;
  }
};
INSTANTIATE_TEST_SUITE_P(One, LineRecording, testing::Values(test::SampleKinds().front()));

TEST_P(LineRecording, PingsAreChosenByTimeNumberAndPlace) {
  const fs::path file = Write("a.log", Lines(1, 10));
  const struct {
    std::vector<std::string> words;
    size_t first, last;  // 0: none
  } rows[] = {
      {{"--from", "1994-03-23T12:35:03"}, 3, 10},
      {{"--from", "1994-03-23 12:35:02.5Z", "--to", "1994-03-23T12:35:06"}, 3, 5},
      {{"--from", "2", "--to", "4.001"}, 3, 5},
      {{"--to", "0"}, 0, 0},
      {{"--pings", "9-4000000000"}, 9, 10},
      {{"--area", "11,48.5,12,48.50011"}, 1, 2},
      {{"--area", "170,48.5,12,48.50016", "--pings", "2-9"}, 2, 3},
      {{"--area", "12,48.5,11,49"}, 0, 0},
  };
  for (const auto& row : rows) {
    std::vector<std::string> words = {"cut", file.string()};
    words.insert(words.end(), row.words.begin(), row.words.end());
    std::string error;
    ASSERT_TRUE(ParseOptions(words, options_, error)) << error;
    const Result result = Do(Task::cut, file, options_.selection);
    EXPECT_EQ(result.done, row.first != 0) << result.text;
    if (!result.done) continue;
    EXPECT_EQ(ReadWhole(folder_ / "a_cut.log"), Lines(row.first, row.last)) << row.words[1];
  }
}

// A frequency line that noise has torn off its altitude belongs to the noise.
TEST_P(LineRecording, ATornPingIsTheLineThatTellsIt) {
  const std::string lead = "Hz\r\n 450000.0\r\n";
  const fs::path file = Write("a.log", Lines(1, 1) + lead + Line(2) + lead + "~~~" + Line(3));
  EXPECT_EQ(Do(Task::check, file).text.find(": damaged: 18 of "), file.string().size());
  ASSERT_TRUE(Do(Task::repair, file).done);
  EXPECT_EQ(ReadWhole(folder_ / "a_repaired.log"), Lines(1, 1) + lead + Line(2) + Line(3));
}

// Both channels in one file: both settings lines, and the pings that were chosen of either.
TEST_P(LineRecording, BothSettingsLinesStandAheadOfACut) {
  std::string head = test::InfoText(1, 6) + test::InfoText(1, 6);
  head.replace(head.rfind("450000"), 6, "200000");
  const auto both = [](size_t ping) {
    return "DA1.5 m*\r\n" + Sentences(ping) + "DB2.5 m*\r\n" + Sentences(ping);
  };
  const fs::path file = Write("a.log", head + both(1) + both(2) + both(3));
  const Result cut = Do(Task::cut, file, {.from = Moment{1'000, true}, .to = Moment{2'000, true}});
  ASSERT_TRUE(cut.done) << cut.text;
  EXPECT_EQ(ReadWhole(folder_ / "a_cut.log"), head + both(2));
  EXPECT_EQ(Rows(folder_ / "a_cut.log").size(), 3u);
}

TEST_P(LineRecording, PartsAreJoinedInOrderOfTime) {
  const std::string other = Lines(11, 12);
  const std::string noise(20, '~');
  const struct {
    std::string second;
    const char* says;  // empty: joined
  } rows[] = {
      {other, ""},
      {Lines(10, 12), ""},  // a time in whole seconds may be that of both
      {other + noise, ""},
      {Lines(9, 12), "b.log overlaps in time with "},
      {Lines(1, 10), "a.log overlaps in time with "},
      {test::InfoText(1, 6) + "DA1.5 m*\r\n" + Sentences(11), "a.log is of another output mode than "},
      {test::InfoText(1, 1, "1480.0") + Line(11), "has another range or speed of sound than "},
      {test::InfoText(1, 1) + "Alt : 1.5\r\n", "b.log tells no times to go by"},
      {noise, "b.log: is no recording of a known kind"},
  };
  const fs::path first = Write("a.log", Lines(1, 10));
  for (const auto& row : rows) {
    const fs::path second = Write("b.log", row.second);
    options_.files = {second.string(), first.string()};
    const Result result = Do(Task::join, second);
    EXPECT_EQ(result.done, *row.says == '\0') << result.text;
    EXPECT_NE(result.text.find(row.says), std::string::npos) << result.text;
    if (!result.done) continue;
    const std::string told = result.notes.empty() ? "" : result.notes[0];
    const std::string wanted = "dropped: of " + second.string() + " 20 of ";
    EXPECT_EQ(told.find(wanted) != told.npos, row.second.ends_with('~')) << told;
    const std::string pings = row.second.substr(0, row.second.find('~'));
    EXPECT_EQ(ReadWhole(folder_ / "a_joined.log"), Lines(1, 10) + pings.substr(pings.find("Alt")));
  }
  options_.files = {Write("1_id_K1_alt.log", Lines(1, 10)).string(),
                    Write("2_id_K2_alt.log", other).string()};
  EXPECT_NE(Do(Task::join, first).text.find("2_id_K2_alt.log is of another device than "), std::string::npos);
}

// Each row is the whole of what is told; a name stands ahead of it.
TEST_P(LineRecording, FaultsAreTold) {
  const auto numbered = [](std::vector<uint32_t> numbers) {
    std::string bytes = test::InfoText(1, 4);
    for (const uint32_t number : numbers)
      bytes += "#DeviceID 1\r\n#TimeWork 1700000000.0\r\n#Ping " + std::to_string(number) +
               "\r\n##DataStart\r\n1\r\n\r\n\r\n";
    return bytes;
  };
  const auto far = [](int minutes) { return "Alt : 1.5\r\n" + Sentences(5, minutes); };
  const struct {
    std::string bytes;
    const char* says;
  } rows[] = {
      {Lines(1, 10), ""},
      {Lines(1, 5) + "~~~" + Line(6), "damaged: 3 of 1013 bytes skipped (0.3 %)\n"},
      {Lines(1, 10) + Line(8), "time: goes back 1 times, first by 2.000 s at ping 11\n"},
      {Lines(1, 4) + far(4831) + Line(6), "position: jumps 2 times, first by 1859 m at ping 5\n"},
      {Lines(1, 4) + far(4831) + Line(25), "position: jumps 1 times, first by 1859 m at ping 5\n"},
      {numbered({4'294'967'294, 4'294'967'295, 0, 1, 2}), ""},
      {numbered({65'534, 65'535, 0, 1, 500, 501, 1}),
       "missing: 498 pings of channel 1 in 1 gaps, first ahead of ping 500\n"},
      {numbered({1, 3, 5, 7}), ""},
      {numbered({1, 3, 5, 9}), "missing: 1 pings of channel 1 in 1 gaps, first ahead of ping 9\n"},
      {numbered({1, 2, 4, 6}), "missing: 2 pings of channel 1 in 2 gaps, first ahead of ping 4\n"},
      {numbered({7}), ""},
  };
  for (const auto& row : rows) {
    const fs::path file = Write("a.log", row.bytes);
    const Result result = Do(Task::check, file);
    EXPECT_TRUE(result.done) << result.text;
    EXPECT_EQ(result.sound, *row.says == '\0');
    EXPECT_EQ(result.text, *row.says == '\0' ? "" : file.string() + ": " + row.says);
  }
}

}  // namespace
}  // namespace tw::echotool
