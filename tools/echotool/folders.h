// The recordings of a call, in their order: those that are named, and what lies in the folders that are to be
// searched, by their names. One thread.
//
// Of what lies in a folder is left out: what is hidden, links to folders, the folder of the outputs, what a
// killed echotool has not completed (".part"), and what by its name was made of a file that lies beside it.
// Whether a file that is left is a recording turns out when it is opened.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "tools/echotool/options.h"

namespace tw::echotool {

// What a job works on.
struct Input {
  std::string file;          // as messages name it
  std::wstring folder = {};  // that its outputs go to; empty: beside it
  bool isFound = false;      // in a folder, not named: it may be anything
  bool isAlike = false;      // found, and by its name made of one in another folder
  std::string fault = {};    // not empty: it is a folder that cannot be searched, and why
  std::wstring full = {};    // its path, however it is named; empty when it cannot be opened
  uint64_t size = 0;         // in bytes; 0 when it cannot be opened
};

struct Inputs {
  std::vector<Input> list;
  size_t others = 0;  // files left out as no recordings
  size_t made = 0;    // left out as made of one beside them
};

// Ends early once `interrupted` is set. What is found twice, or found and named, is there once.
[[nodiscard]] Inputs FindInputs(const Options& options, const std::atomic<bool>& interrupted);

// Makes the folder, with those above it that are missing. False with the system's error when one cannot be
// made. Several threads may make the same.
[[nodiscard]] bool MakeFolders(const std::wstring& folder, uint32_t& error);

}  // namespace tw::echotool
