// What the program finds in the registry when it starts, set and read back by the tests; and a folder of the
// test's own for recordings.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace tw {

// As on a machine on which the program has never run.
void ForgetStoredChoices();

void StoreChoice(const wchar_t* name, uint32_t value);
void StoreChoice(const wchar_t* name, const std::wstring& text);

void StoreOption(const wchar_t* name, uint32_t value);

[[nodiscard]] std::optional<uint32_t> StoredNumber(const wchar_t* name);
[[nodiscard]] std::wstring StoredText(const wchar_t* name);           // empty when there is none
[[nodiscard]] std::optional<size_t> StoredSize(const wchar_t* name);  // of a value of any kind, in bytes

// Stores ports, speeds and working folder for a run with the instruments on COM5 and COM6.
void StoreRunChoices(const std::wstring& workingFolder);

// An empty folder; what is in it goes with the test.
class OwnFolder {
 public:
  OwnFolder();
  ~OwnFolder();
  OwnFolder(const OwnFolder&) = delete;
  OwnFolder& operator=(const OwnFolder&) = delete;

  [[nodiscard]] const std::wstring& Path() const { return path_; }
  [[nodiscard]] std::vector<std::wstring> Files() const;  // full paths

 private:
  std::wstring path_;
};

}  // namespace tw
