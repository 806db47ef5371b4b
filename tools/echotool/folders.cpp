#include "tools/echotool/folders.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>
#include <utility>

#include "platform/owned_file.h"
#include "platform/system_error.h"
#include "tools/echotool/file_names.h"

namespace tw::echotool {
namespace {

constexpr size_t kPathSize = 4'096;

using Names = std::unordered_set<std::wstring>;

// A file or folder on the way.
struct Item {
  std::wstring path;
  std::wstring below;  // its folder, from where the search began
  bool isFolder;
  bool isNamed;  // where the search began
};

std::wstring PathOf(const std::wstring& folder) {
  wchar_t full[kPathSize];
  return PathOfFolder(folder.c_str(), full) ? full : L"";
}

// In the order of their bytes as UTF-8, which is the same on all systems.
void SortByName(std::vector<FolderEntry>& entries) {
  std::vector<std::pair<std::string, FolderEntry>> named;
  named.reserve(entries.size());
  for (FolderEntry& entry : entries) named.emplace_back(NarrowName(entry.name), std::move(entry));
  std::sort(named.begin(), named.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
  entries.clear();
  for (auto& [name, entry] : named) entries.push_back(std::move(entry));
}

bool IsMadeOf(const std::wstring& name, const Names& originals) {
  const std::vector<std::wstring> stems = OriginalStems(name);
  return std::any_of(stems.begin(), stems.end(),
                     [&](const std::wstring& stem) { return originals.contains(stem); });
}

class Search {
 public:
  Search(const Options& options, const std::atomic<bool>& interrupted, Inputs& inputs)
      : interrupted_(interrupted),
        outputs_(WideName(options.folder)),
        outputsPath_(outputs_.empty() ? L"" : PathOf(outputs_)),
        inputs_(inputs) {}

  void AddNamed(const std::string& file) { Add({.file = file, .folder = outputs_}); }

  // Depth first, without a stack of calls: folders are as deep as a path is long.
  void AddFolder(const std::wstring& folder) {
    std::vector<Item> waiting = {{folder, L"", true, true}};
    while (!waiting.empty() && !interrupted_.load()) {
      const Item item = std::move(waiting.back());
      waiting.pop_back();
      if (!item.isFolder) {
        Add({.file = NarrowName(item.path), .folder = FolderFor(item), .isFound = true});
      } else if (item.isNamed || outputsPath_.empty() || PathOf(item.path) != outputsPath_) {
        List(item, waiting);
      }
    }
  }

  // Behind all: what may have been made of one that lies elsewhere.
  void NoteAlike() {
    for (Input& input : inputs_.list)
      input.isAlike = input.isFound && IsMadeOf(LastOfPath(WideName(input.file)), stems_);
  }

 private:
  // The tree below the folder searched is that of the outputs too.
  [[nodiscard]] std::wstring FolderFor(const Item& item) const {
    if (outputs_.empty() || item.below.empty()) return outputs_;
    return PathIn(outputs_, item.below);
  }

  void List(const Item& folder, std::vector<Item>& waiting) {
    std::vector<FolderEntry> entries;
    const bool listed = ListFolder(folder.path.c_str(), entries);
    if (!listed)
      Add({.file = NarrowName(folder.path),
           .isFound = true,
           .fault = "cannot be searched: " + ReasonText(LastSystemError())});
    SortByName(entries);
    Names originals;
    for (const FolderEntry& entry : entries) {
      if (entry.kind == PathKind::file && !entry.isHidden && !IsNameOfOutput(entry.name))
        originals.insert(StemOf(entry.name));
    }
    const std::wstring below = folder.isNamed ? L"" : PathIn(folder.below, LastOfPath(folder.path));
    std::vector<Item> taken;
    for (const FolderEntry& entry : entries) {
      if (!entry.isHidden && IsWanted(entry, originals))
        taken.push_back({PathIn(folder.path, entry.name), below, entry.kind == PathKind::folder, false});
    }
    stems_.merge(originals);
    waiting.insert(waiting.end(), std::make_move_iterator(taken.rbegin()),
                   std::make_move_iterator(taken.rend()));
  }

  [[nodiscard]] bool IsWanted(const FolderEntry& entry, const Names& originals) {
    switch (entry.kind) {
      case PathKind::nothing:  // it has just been removed
        return false;
      case PathKind::folder:
        return !entry.isLink;
      case PathKind::other:
        break;
      case PathKind::file:
        if (IsMadeOf(entry.name, originals)) {
          ++inputs_.made;
          return false;
        }
        if (!entry.name.ends_with(L".part")) return true;
        break;
    }
    ++inputs_.others;
    return false;
  }

  void Add(Input input) {
    const OwnedFile file(input.fault.empty()
                             ? OpenFileForReading(WideName(input.file).c_str(), WriteSharing::allowed)
                             : Handle::invalid);
    wchar_t full[kPathSize];
    if (file.Get() != Handle::invalid) {
      if (PathOfFile(file.Get(), full)) input.full = full;
      static_cast<void>(FileSize(file.Get(), input.size));
    }
    // Who names a file twice gets it twice.
    if (!input.full.empty()) {
      const auto [there, isNew] = found_.try_emplace(input.full, input.isFound);
      if (!isNew && (input.isFound || there->second)) return;
    }
    inputs_.list.push_back(std::move(input));
  }

  const std::atomic<bool>& interrupted_;
  const std::wstring outputs_;
  const std::wstring outputsPath_;
  Inputs& inputs_;
  std::unordered_map<std::wstring, bool> found_;  // what is there, and whether it was found
  Names stems_;                                   // of all that may be originals
};

}  // namespace

Inputs FindInputs(const Options& options, const std::atomic<bool>& interrupted) {
  Inputs inputs;
  Search search(options, interrupted, inputs);
  for (const std::string& file : options.files) {
    if (interrupted.load()) break;
    const std::wstring path = WideName(file);
    if (options.recursive && IsFolder(path.c_str())) {
      search.AddFolder(path);
    } else {
      search.AddNamed(file);
    }
  }
  search.NoteAlike();
  return inputs;
}

bool MakeFolders(const std::wstring& folder, uint32_t& error) {
  std::vector<std::wstring> missing;
  for (std::wstring path = folder; !path.empty() && !IsFolder(path.c_str()); path = FolderOfPath(path)) {
    path.resize(path.find_last_not_of(L"/\\") + 1);
    missing.push_back(path);
  }
  for (; !missing.empty(); missing.pop_back()) {
    const std::wstring& path = missing.back();
    if (CreateFolder(path.c_str())) continue;
    error = LastSystemError();
    if (!IsFolder(path.c_str())) return false;
  }
  return true;
}

}  // namespace tw::echotool
