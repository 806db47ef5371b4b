// A new empty folder for the life of the object; tests that run side by side get different ones.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace tw::test {

class TestFolder {
 public:
  TestFolder() {
    std::string path = (std::filesystem::temp_directory_path() / "tidewriter_XXXXXX").string();
    path_ = mkdtemp(path.data());
  }
  ~TestFolder() { std::filesystem::remove_all(path_); }
  TestFolder(const TestFolder&) = delete;
  TestFolder& operator=(const TestFolder&) = delete;

  [[nodiscard]] const std::filesystem::path& Path() const { return path_; }

 private:
  std::filesystem::path path_;
};

}  // namespace tw::test
