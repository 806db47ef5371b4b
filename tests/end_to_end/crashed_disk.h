// What a disk holds when the machine stops between two calls, or in the midst of one.
#pragma once

#include <cstdint>
#include <map>
#include <random>
#include <string>
#include <vector>

#include "platform/virtual/disk_calls.h"

namespace tw::test {

// What becomes of what was not flushed.
enum class Loss : uint8_t {
  none,   // the process alone is gone: the call under way has done a part of its work, nothing is lost
  whole,  // all of it is lost, new names too
  torn,   // some calls have reached the disk, in their order, the last of them to a part
  pages,  // files are as long as they were, but some of their pages were never written
};

class CrashedDisk {
 public:
  using Files = std::map<std::string, std::string>;  // content by name

  void Take(const DiskCall& call);

  // The files that are found, had the machine stopped while this call was under way.
  [[nodiscard]] Files Crash(Loss loss, const DiskCall& underWay, std::mt19937& random) const;

 private:
  static constexpr size_t kNever = SIZE_MAX;

  struct File {
    std::string name;
    size_t created;  // by which call
    size_t removed = kNever;
    std::string flushed{};
    std::string content{};
    std::vector<DiskCall> waiting{};  // that lead from the one to the other
  };

  [[nodiscard]] File* Find(const std::string& name);
  // A disk keeps changes of names in their order, and a flush of any file takes those before it along.
  [[nodiscard]] Files Found(size_t calls, std::string (*content)(const File&, std::mt19937&),
                            std::mt19937& random) const;
  static std::string Torn(const File& file, std::mt19937& random);
  static std::string Pages(const File& file, std::mt19937& random);

  std::vector<File> files_;
  size_t calls_ = 0;
  size_t flushedCalls_ = 0;
};

}  // namespace tw::test
