#include <gtest/gtest.h>

#include <algorithm>
#include <cwchar>
#include <deque>
#include <filesystem>
#include <string>

#include "base/text_format.h"
#include "platform/clock.h"
#include "platform/file.h"
#include "platform/system_error.h"

namespace tw {
namespace {

// Each test works in a folder of its own below the working folder, with a letter that is not ASCII.
class FileContract : public testing::Test {
 protected:
  void SetUp() override {
    wchar_t name[128];
    FormatWide(name, "contract \xC3\xA9 %s %lld",
               testing::UnitTest::GetInstance()->current_test_info()->name(),
               static_cast<long long>(UnixMilliseconds()));
    folder_ = name;
    ASSERT_TRUE(CreateFolder(name));
  }
  void TearDown() override {
    char8_t name[512];
    NarrowText({reinterpret_cast<char*>(name), sizeof(name)}, folder_);
    std::error_code ignored;
    std::filesystem::remove_all(name, ignored);
  }

  // The path of a file in the test's folder; it lives as long as the test.
  const wchar_t* Path(const wchar_t* name) { return paths_.emplace_back(folder_ + L"\\" + name).c_str(); }

  Handle Create(const wchar_t* path, std::string_view content) {
    const Handle file = CreateFileAnew(path);
    uint32_t written = 0;
    EXPECT_TRUE(WriteFileBytes(file, content.data(), static_cast<uint32_t>(content.size()), written));
    EXPECT_EQ(written, content.size());
    return file;
  }

  static uint64_t PositionOf(Handle file) {
    uint64_t position = 0;
    EXPECT_TRUE(FilePosition(file, position));
    return position;
  }

  static std::string ReadRest(Handle file) {
    std::string text;
    char bytes[7];
    uint32_t got = 0;
    while (ReadFileBytes(file, bytes, sizeof(bytes), got) && got > 0) text.append(bytes, got);
    return text;
  }

  std::string ReadAll(const wchar_t* path) {
    const Handle file = OpenFileForReading(path, WriteSharing::allowed);
    EXPECT_NE(file, Handle::invalid);
    std::string text = ReadRest(file);
    CloseFile(file);
    return text;
  }

 private:
  std::wstring folder_;
  std::deque<std::wstring> paths_;
};

TEST_F(FileContract, WhatIsWrittenIsReadBackFromAnyPosition) {
  const Handle file = Create(Path(L"a.log"), "0123456789");
  EXPECT_EQ(PositionOf(file), 10u);
  EXPECT_EQ(ReadRest(file), "");
  ASSERT_TRUE(SeekFile(file, 3));
  EXPECT_EQ(ReadRest(file), "3456789");
  ASSERT_TRUE(SeekFile(file, 100));
  EXPECT_EQ(ReadRest(file), "");
  uint64_t size = 0;
  ASSERT_TRUE(FileSize(file, size));
  EXPECT_EQ(size, 10u);
  CloseFile(file);
}

TEST_F(FileContract, PositionsBeyondFourGigabytesHold) {
  const Handle file = CreateFileAnew(Path(L"far.log"));
  ASSERT_TRUE(SeekFile(file, 5'000'000'000));
  EXPECT_EQ(PositionOf(file), 5'000'000'000u);
  EXPECT_FALSE(SeekFile(file, UINT64_MAX));
  CloseFile(file);
}

TEST_F(FileContract, TruncatingCutsOrExtendsAndMovesToTheEnd) {
  const wchar_t* path = Path(L"a.log");
  const Handle file = Create(path, "whole ping, torn pi");
  ASSERT_TRUE(TruncateFile(file, 10));
  EXPECT_EQ(PositionOf(file), 10u);
  uint32_t written = 0;
  ASSERT_TRUE(WriteFileBytes(file, "!", 1, written));
  ASSERT_TRUE(TruncateFile(file, 13));
  EXPECT_TRUE(FlushFile(file));
  CloseFile(file);
  EXPECT_EQ(ReadAll(path), std::string("whole ping!\0\0", 13));
}

TEST_F(FileContract, SharingBetweenOneThatWritesAndOthers) {
  const wchar_t* path = Path(L"a.log");
  const Handle writer = Create(path, "abc");
  EXPECT_EQ(OpenFileForReading(path, WriteSharing::denied), Handle::invalid);
  EXPECT_NE(LastSystemError(), 0u);
  EXPECT_EQ(CreateFileAnew(path), Handle::invalid);
  EXPECT_FALSE(RemoveFile(path));
  const Handle reader = OpenFileForReading(path, WriteSharing::allowed);
  EXPECT_EQ(ReadRest(reader), "abc");
  CloseFile(writer);
  CloseFile(reader);
  const Handle alone = OpenFileForReading(path, WriteSharing::denied);
  EXPECT_NE(alone, Handle::invalid);
  EXPECT_EQ(CreateFileAnew(path), Handle::invalid);
  CloseFile(alone);
  EXPECT_TRUE(RemoveFile(path));
  EXPECT_FALSE(RemoveFile(path));
}

TEST_F(FileContract, AppendingGoesOnAtTheEndAndCreates) {
  const wchar_t* path = Path(L"a.log");
  for (const std::string_view line : {"one ", "two ", "three"}) {
    const Handle file = OpenFileForAppending(path);
    const uint64_t begin = PositionOf(file);
    EXPECT_EQ(OpenFileForAppending(path), Handle::invalid) << "one writes at a time";
    uint32_t written = 0;
    EXPECT_TRUE(WriteFileBytes(file, line.data(), static_cast<uint32_t>(line.size()), written));
    EXPECT_EQ(PositionOf(file), begin + line.size());
    CloseFile(file);
  }
  EXPECT_EQ(ReadAll(path), "one two three");
  EXPECT_EQ(OpenFileForAppending(Path(L".")), Handle::invalid);
}

TEST_F(FileContract, CreatingAnewAndRenamingReplace) {
  const wchar_t* from = Path(L"from.log");
  const wchar_t* to = Path(L"to.log");
  CloseFile(Create(from, "old and long"));
  CloseFile(Create(from, "new"));
  CloseFile(Create(to, "another"));
  EXPECT_TRUE(RenameFile(from, to));
  EXPECT_EQ(ReadAll(to), "new");
  EXPECT_FALSE(RenameFile(from, to));
}

TEST_F(FileContract, NewFilesAndNamesTakeNobodysPlace) {
  const wchar_t* first = Path(L"first.log");
  const wchar_t* second = Path(L"second.log");
  EXPECT_EQ(KindOfPath(first), PathKind::nothing);
  for (const wchar_t* path : {first, second}) {
    const Handle file = CreateNewFile(path);
    uint32_t written = 0;
    EXPECT_TRUE(WriteFileBytes(file, path == first ? "1" : "2", 1, written));
    CloseFile(file);
    EXPECT_EQ(CreateNewFile(path), Handle::invalid);
  }
  EXPECT_FALSE(RenameFile(first, second, Existing::kept));
  EXPECT_EQ(ReadAll(first) + ReadAll(second), "12");
  EXPECT_TRUE(RenameFile(first, Path(L"third.log"), Existing::kept));
  EXPECT_EQ(KindOfPath(Path(L"third.log")), PathKind::file);
  EXPECT_EQ(KindOfPath(L"."), PathKind::folder);
}

TEST(FileContractDevices, AreNoFiles) {
#ifdef _WIN32
  const wchar_t* const device = L"NUL";
#else
  const wchar_t* const device = L"/dev/null";
#endif
  EXPECT_EQ(KindOfPath(device), PathKind::other);
  EXPECT_EQ(OpenFileForReading(device, WriteSharing::allowed), Handle::invalid);
}

TEST(FileContractPaths, ComeBackAsTheyWere) {
  for (const std::string_view name : {"a/b.log", "\xC3\xA4 \xE6\xB8\xAC.log", "\xEF\xBF\xBD"
#ifndef _WIN32
                                      ,
                                      "b\\c", "\xFC", "\xED\xB3\xBC", "\xE6\xB8"
#endif
       }) {
    wchar_t wide[32];
    char again[32];
    const std::wstring_view path(wide, WidenPath(wide, name));
    EXPECT_EQ(std::string_view(again, NarrowPath(again, path)), name);
  }
}

TEST_F(FileContract, AnOpenFileTellsItsFullPath) {
  const wchar_t* path = Path(L"named \u00E9.log");
  const Handle file = Create(path, "");
  wchar_t full[1024];
  ASSERT_TRUE(PathOfFile(file, full));
  const std::wstring_view text = full;
  EXPECT_TRUE(text.ends_with(path)) << text.size();
  EXPECT_GT(text.size(), std::wcslen(path));
  EXPECT_FALSE(text.starts_with(L"\\\\?\\"));
  wchar_t small[8];
  EXPECT_FALSE(PathOfFile(file, small));
  CloseFile(file);
}

TEST_F(FileContract, FoldersAndFilesAreToldApart) {
  const wchar_t* file = Path(L"file");
  CloseFile(Create(file, ""));
  EXPECT_FALSE(IsFolder(file));
  EXPECT_TRUE(IsFolder(L"."));
  EXPECT_FALSE(IsFolder(L"no such folder"));
  EXPECT_FALSE(CreateFolder(L"."));
  EXPECT_FALSE(CreateFolder(L"no such folder\\below"));
  EXPECT_EQ(CreateFileAnew(L"no such folder\\file"), Handle::invalid);
  EXPECT_EQ(OpenFileForReading(L"no such file", WriteSharing::allowed), Handle::invalid);
  EXPECT_NE(LastSystemError(), 0u);
}

TEST_F(FileContract, AFolderTellsWhatLiesInIt) {
  CloseFile(Create(Path(L"a \u00E9.log"), ""));
  CloseFile(Create(Path(L".hidden"), ""));
  ASSERT_TRUE(CreateFolder(Path(L"below")) && CreateFolder(Path(L"below\\empty")));
  std::vector<FolderEntry> entries;
  ASSERT_TRUE(ListFolder(Path(L"."), entries) && ListFolder(Path(L"below\\empty"), entries));
  std::sort(entries.begin(), entries.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
  const FolderEntry expected[] = {{L".hidden", PathKind::file, false, true},
                                  {L"a \u00E9.log", PathKind::file, false, false},
                                  {L"below", PathKind::folder, false, false}};
  ASSERT_EQ(entries.size(), 3u);
  for (size_t i = 0; i < 3; ++i) {
    EXPECT_TRUE(entries[i].name == expected[i].name) << i;
    EXPECT_EQ(entries[i].kind, expected[i].kind) << i;
    EXPECT_EQ(entries[i].isLink, expected[i].isLink) << i;
    EXPECT_EQ(entries[i].isHidden, expected[i].isHidden) << i;
  }
  for (const wchar_t* const none : {L"no such folder", Path(L".hidden")}) {
    EXPECT_FALSE(ListFolder(none, entries));
    EXPECT_NE(LastSystemError(), 0u);
  }
  EXPECT_EQ(entries.size(), 3u);
}

TEST_F(FileContract, AFolderTellsItsFullPath) {
  ASSERT_TRUE(CreateFolder(Path(L"below")));
  const Handle file = Create(Path(L"below\\file"), "");
  wchar_t full[1024];
  wchar_t inside[1024];
  ASSERT_TRUE(PathOfFile(file, inside));
  for (const wchar_t* const name : {L"below", L".\\below\\", L"below\\..\\below"}) {
    ASSERT_TRUE(PathOfFolder(Path(name), full));
    EXPECT_TRUE(std::wstring(full) + L"\\file" == inside) << full;
  }
  EXPECT_FALSE(PathOfFolder(Path(L"absent"), full));
  wchar_t small[8];
  EXPECT_FALSE(PathOfFolder(Path(L"below"), small));
  CloseFile(file);
}

TEST_F(FileContract, AFolderTellsItsFreeSpace) {
  uint64_t bytes = 7;
  EXPECT_FALSE(FreeSpace(L"no such folder", bytes));
  EXPECT_EQ(bytes, 7u);
  EXPECT_NE(LastSystemError(), 0u);
  ASSERT_TRUE(FreeSpace(L".", bytes));
  EXPECT_GT(bytes, 1'000u);
  EXPECT_LT(bytes, uint64_t{1} << 60);
}

TEST(FileContractHandles, NoneMeansFailureEverywhere) {
  for (const Handle none : {Handle::null, Handle::invalid}) {
    char byte = 'x';
    uint32_t count = 7;
    uint64_t value = 7;
    wchar_t path[16] = L"kept";
    EXPECT_FALSE(ReadFileBytes(none, &byte, 1, count));
    EXPECT_EQ(count, 0u);
    count = 7;
    EXPECT_FALSE(WriteFileBytes(none, &byte, 1, count));
    EXPECT_EQ(count, 0u);
    EXPECT_FALSE(SeekFile(none, 0));
    EXPECT_FALSE(FilePosition(none, value));
    EXPECT_FALSE(FileSize(none, value));
    EXPECT_FALSE(TruncateFile(none, 0));
    EXPECT_FALSE(FlushFile(none));
    EXPECT_FALSE(PathOfFile(none, path));
    EXPECT_EQ(value, 7u);
    CloseFile(none);
  }
}

TEST(FileContractDocuments, TheFolderFitsOrIsRefused) {
  wchar_t path[1024];
  ASSERT_TRUE(DocumentsFolder(path));
  EXPECT_TRUE(IsFolder(path));
  wchar_t small[2];
  EXPECT_FALSE(DocumentsFolder(small));
}

}  // namespace
}  // namespace tw
