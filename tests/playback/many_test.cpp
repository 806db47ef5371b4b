// Many recordings in one call of echotool: found in folders, worked on side by side, told in order.
#include <gtest/gtest.h>

#include <map>

#include "platform/virtual/faults.h"
#include "tests/app/test_files.h"
#include "tests/app/test_folder.h"
#include "tests/playback/info_text.h"
#include "tests/playback/sample_recordings.h"
#include "tools/echotool/batch.h"
#include "tools/echotool/gathering.h"

namespace tw::echotool {
namespace {

namespace fs = std::filesystem;
using test::ReadWhole;
using test::SampleKinds;
using test::WriteWhole;

class Many : public testing::Test, public Listener {
 protected:
  void SetUp() override { fs::current_path(folder_); }
  void TearDown() override {
    ClearFaults();
    fs::current_path("/");
  }

  void Hear(Result result) override {
    heard_.push_back(result);
    gathering_.Add(std::move(result));
    if (heard_.size() == interruptAfter_) interrupted_ = true;
  }

  // What is told, a line each, of the whole call.
  std::string Run(Task task, const std::vector<std::string>& files, uint32_t jobs = 4) {
    options_.task = task;
    options_.files = files;
    options_.jobs = jobs;
    const Inputs inputs = FindInputs(options_, interrupted_);
    if (vanishing_ != "") fs::remove(vanishing_);
    Claims claims(inputs.list);
    Progress progress(inputs.list.size(), 0, true);
    const Call call{options_, inputs.list, interrupted_, claims, progress};
    heard_.clear();
    gathering_ = {};
    RunBatch(call, *this);
    if (!interrupted_.load()) heard_.push_back(gathering_.End(call, inputs));
    std::string told;
    for (const Result& result : heard_) {
      told += result.text + (result.text.empty() || result.text.ends_with('\n') ? "" : "\n");
      for (const std::string& note : result.notes) told += "(" + note + ")\n";
    }
    return told;
  }
  // The files that a search finds, by their names.
  std::string Found(const std::vector<std::string>& files) {
    options_.files = files;
    std::string names;
    for (const Input& input : FindInputs(options_, interrupted_).list)
      names += input.file + (input.fault.empty() ? " " : ": " + input.fault + " ");
    return names;
  }
  void Write(const fs::path& file, const std::string& kind = "Frames", size_t pings = 3) {
    const auto& kinds = SampleKinds();
    const auto row =
        std::find_if(kinds.begin(), kinds.end(), [&](const auto& each) { return each.name == kind; });
    if (file.has_parent_path()) fs::create_directories(file.parent_path());
    WriteWhole(file, SampleRecording(*row, pings));
  }
  // Everything below the folder, without the time of its making.
  static std::map<std::string, std::string> Tree(const fs::path& folder) {
    std::map<std::string, std::string> tree;
    for (const auto& entry : fs::recursive_directory_iterator(folder)) {
      std::string& bytes = tree[fs::relative(entry, folder).string()];
      if (!entry.is_directory()) bytes = ReadWhole(entry);
      const size_t made = bytes.find("Z echotool ");  // behind the time in NetCDF's history
      if (made != std::string::npos) bytes.erase(made - 19, 19);
    }
    return tree;
  }

  const test::TestFolder testFolder_;
  const fs::path folder_ = testFolder_.Path();
  std::atomic<bool> interrupted_ = false;
  Options options_;
  std::vector<Result> heard_;
  Gathering gathering_;
  size_t interruptAfter_ = 0;
  fs::path vanishing_;
};

// The longest come first, so that side by side the others are done before them.
TEST_F(Many, WhatIsToldAndWrittenDoesNotDependOnTheNumberOfJobs) {
  size_t pings = 1'000;
  for (const test::SampleKind& kind : SampleKinds()) {
    Write(std::string(pings % 3 == 0 ? "in/a/" : "in/b/") + kind.name + ".log", kind.name, pings);
    pings = pings / 2 + 1;
  }
  WriteWhole("in/a/note.txt", "no recording");
  options_.recursive = true;
  for (const Task task : {Task::info, Task::check, Task::segy, Task::netcdf, Task::report, Task::repair}) {
    std::string told[2];
    std::map<std::string, std::string> trees[2];
    for (const bool several : {false, true}) {
      options_.folder = task == Task::info || task == Task::check ? "" : "out";
      told[several] = Run(task, {"in"}, several ? 4 : 1);
      fs::create_directory("out");
      trees[several] = Tree("out");
      fs::remove_all("out");
    }
    EXPECT_EQ(told[0], told[1]);
    EXPECT_TRUE(trees[0] == trees[1]) << static_cast<int>(task);
    EXPECT_EQ(trees[0].empty(), options_.folder.empty()) << static_cast<int>(task);
  }
}

// The first in order has the name, whatever comes to its end first; of one that failed the next one has it.
TEST_F(Many, AnOutputIsThatOfTheFirstWhoseNameItIs) {
  Write("a/x.log", "Frames", 2'000);
  Write("b/x.log", "SecondText");
  Write("b/X_ch1.log");
  Write("b/x_ch1.log");
  std::string low = test::InfoText(1, 6);
  low.replace(low.find("450000"), 6, "200000");
  WriteWhole("b/x.bin", test::InfoText(1, 6) + low + "DA1.5 m*\r\nDB2.5 m*\r\n");
  Write("d/y.log", "FirstSimple");
  Write("d/y.bin", "Frames");
  const struct {
    Task task;
    std::vector<std::string> files;
    const char* told;
  } rows[] = {
      {Task::csv,
       {"a/x.log", "b/x.log", "a/x.log"},
       "b/x.log: o/x.csv has just been made of another recording\n"
       "a/x.log: o/x.csv has just been made of another recording\n"},
      {Task::csv, {"b/x.log", "a/x.log"}, "a/x.log: o/x.csv has just been made of another recording\n"},
      {Task::netcdf,
       {"b/x.bin", "a/x.log", "b/x_ch1.log", "b/X_ch1.log"},
       "b/x_ch1.log: o/x_ch1.nc has just been made of another recording\n"},
      {Task::netcdf,
       {"b/x_ch1.log", "b/x.bin"},
       "b/x.bin: o/x_ch1.nc has just been made of another recording\n"},
      {Task::segy, {"d/y.log", "d/y.bin"}, "d/y.log: holds no echoes to convert\n"},
      {Task::csv,
       {"a/x.log", "a/absent", "d/y.log"},
       "a/absent: cannot be opened: No such file or directory\n"},
  };
  options_.folder = "o";
  for (const auto& row : rows) {
    fs::create_directory("o");
    EXPECT_EQ(Run(row.task, row.files), row.told);
    fs::remove_all("o");
  }
}

TEST_F(Many, WhatAFolderHas) {
  for (const char* const file :
       {"in/b.log", "in/B.log", "in/b_txt.log", "in/b.nmea", "in/b_cut.log", "in/c_repaired.log", "in/d.sgy",
        "in/.hidden.log", "in/e.log.part", "in/a/b.log", "in/a-b.log", "in/.git/f.log", "in/out/b_cut.log",
        "elsewhere/g.log"})
    Write(file);
  fs::create_directory_symlink("../..", "in/a/loop");
  fs::create_symlink("../../elsewhere/g.log", "in/a/g.log");
  fs::create_symlink("b.log", "in/a/h.log");
  fs::create_symlink("nowhere", "in/broken.log");
  const struct {
    std::vector<std::string> files;
    const char* folder;
    const char* found;
  } rows[] = {
      {{"in"},
       "in/a/../out",
       "in/B.log in/a/b.log in/a/g.log in/a-b.log in/b.log in/c_repaired.log in/d.sgy "},
      {{"in/out", "in/a/"}, "in/out", "in/out/b_cut.log in/a/b.log in/a/g.log "},
      {{"in/a", "./in/a/b.log", "in/b.log", "in/b.log", "in/a"},
       "",
       "in/a/b.log in/a/g.log in/b.log in/b.log "},
      {{"in/b_txt.log", "in/.hidden.log", "absent"}, "", "in/b_txt.log in/.hidden.log absent "},
  };
  options_.recursive = true;
  for (const auto& row : rows) {
    options_.folder = row.folder;
    EXPECT_EQ(Found(row.files), row.found);
  }
  InjectFault({.point = FaultPoint::listFolder, .code = EACCES, .subject = L"in/a"});
  EXPECT_EQ(Found({"in/a", "in/out"}), "in/a: cannot be searched: Permission denied in/out/b_cut.log ");
}

TEST_F(Many, FilesThatAreNoRecordingsAreCounted) {
  Write("in/a.log");
  Write("in/gone.log");
  Write("in/deep/er/a_cut.log");
  WriteWhole("in/note.txt", "no recording");
  WriteWhole("in/two.txt", "DA1.5 m*\r\nDA1.5 m*\r\n");
  WriteWhole("in/empty.log", ReadWhole("in/a.log").substr(0, ReadWhole("in/a.log").find('\n') + 1));
  WriteWhole("in/index.html", "older");
  options_.recursive = true;
  vanishing_ = "in/gone.log";
  EXPECT_EQ(Run(Task::report, {"in"}),
            "in/empty.log: holds no ping\nin/gone.log: cannot be opened: No such file or directory\n"
            "(in/index.html has been replaced)\n(3 other files left out)\n"
            "(warning: 1 recording taken that may be made of others elsewhere, the first "
            "in/deep/er/a_cut.log)\n");
  EXPECT_NE(ReadWhole("in/index.html").find("<a href=\"deep/er/a_cut.html\">deep/er/a_cut.log</a>"),
            std::string::npos);
  EXPECT_EQ(ReadWhole("in/deep/er/index.html").find("a.html\">"), std::string::npos);
  EXPECT_EQ(Run(Task::csv, {"in/deep", "in/note.txt"}),
            "in/note.txt: is no recording of a known kind\n(1 other file left out)\n"
            "(1 file left out as made of recordings beside them)\n");
  fs::create_directory("none");
  WriteWhole("none/note.txt", "no recording");
  EXPECT_EQ(Run(Task::check, {"none"}), "no recording found among 1 file\n(1 other file left out)\n");
  EXPECT_FALSE(heard_.back().done);
}

// It tells what then happens.
TEST_F(Many, ADryRunWritesNothing) {
  Write("in/a/x.log");
  Write("in/b/x.log", "DualLines");
  Write("x.log", "Frames", 5);
  WriteWhole("x.csv", "older");
  WriteWhole("in/b/x.txt", "no recording");
  const struct {
    Task task;
    std::vector<std::string> files;
    const char* folder;
    const char* told;
  } rows[] = {
      {Task::csv,
       {"in", "x.log"},
       "",
       "in/a/x.log: would write in/a/x.csv\nin/b/x.log: would write in/b/x.csv\n"
       "x.log: would replace x.csv\n(1 other file left out)\n"},
      {Task::netcdf,
       {"in", "x.log"},
       "new",
       "in/a/x.log: would write new/a/x.nc\nin/b/x.log: would write new/b/x.nc\n"
       "x.log: new/x.nc cannot be made: its folder is not there\n(1 other file left out)\n"},
      {Task::report,
       {"in/a", "x.log"},
       "in",
       "in/a/x.log: would write in/x.html\nx.log: in/x.html would have been made of another recording\n"
       "would write in/index.html\n"},
      {Task::segy, {"in/b"}, "", "in/b/x.log: holds no echoes to convert\n(1 other file left out)\n"},
  };
  options_.recursive = options_.dryRun = true;
  for (const auto& row : rows) {
    const auto before = Tree(".");
    options_.folder = row.folder;
    EXPECT_EQ(Run(row.task, row.files), row.told);
    EXPECT_TRUE(Tree(".") == before);
  }
}

TEST_F(Many, AnInterruptionEndsAllAndLeavesNothingHalf) {
  for (char name = 'a'; name <= 'p'; ++name) Write(std::string("in/") + name + ".log", "Frames", 500);
  options_.recursive = true;
  for (const uint32_t jobs : {1u, 4u}) {
    interrupted_ = false;
    interruptAfter_ = 3;
    Run(Task::csv, {"in"}, jobs);
    size_t done = 0;
    for (const Result& result : heard_) {
      done += result.done ? 1 : 0;
      EXPECT_TRUE(result.done || result.text.ends_with("log: interrupted")) << result.text;
    }
    EXPECT_GE(done, 3u);
    EXPECT_EQ(Tree("in").size(), 16 + done);
    for (const auto& [name, bytes] : Tree("in")) {
      if (name.ends_with("csv")) fs::remove(fs::path("in") / name);
    }
  }
}

// Whatever the system has to give of threads.
TEST_F(Many, WithoutThreadsTheCallGoesOn) {
  for (const char* const file : {"a.log", "b.log", "c.log"}) Write(file);
  const std::vector<std::string> files = {"a.log", "b.log", "c.log"};
  const std::string told = Run(Task::info, files, 1);
  for (const uint64_t call : {uint64_t{1}, uint64_t{2}}) {
    InjectFault({.point = FaultPoint::startThread, .call = call, .repeat = kEveryCall});
    EXPECT_EQ(Run(Task::info, files), told);
    ClearFaults();
  }
}

}  // namespace
}  // namespace tw::echotool
