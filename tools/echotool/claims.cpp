#include "tools/echotool/claims.h"

#include <algorithm>
#include <numeric>

#include "tools/echotool/file_names.h"

namespace tw::echotool {
namespace {

// The same for all paths that may be the same file, where case does not count either. Of letters beyond ASCII
// it tells only that there are some: what is taken for the same without being it just waits.
std::wstring KeyOf(const std::wstring& path) {
  std::wstring key;
  for (const wchar_t unit : path) {
    if (unit >= 0x80) {
      if (key.empty() || key.back() != L'?') key += L'?';
    } else {
      key += unit == L'/'                   ? L'\\'
             : unit >= L'A' && unit <= L'Z' ? static_cast<wchar_t>(unit - L'A' + L'a')
                                            : unit;
    }
  }
  return key;
}

// Sets of recordings, each told by its first one.
class Sets {
 public:
  explicit Sets(size_t count) : first_(count) { std::iota(first_.begin(), first_.end(), size_t{0}); }

  [[nodiscard]] size_t FirstOf(size_t i) {
    while (first_[i] != i) i = first_[i] = first_[first_[i]];
    return i;
  }
  void Unite(size_t a, size_t b) {
    a = FirstOf(a);
    b = FirstOf(b);
    first_[std::max(a, b)] = std::min(a, b);
  }

 private:
  std::vector<size_t> first_;
};

}  // namespace

Claims::Claims(const std::vector<Input>& inputs) {
  MakeLock(lock_);
  for (const Input& input : inputs) {
    if (!input.full.empty()) inputs_.try_emplace(input.full, &input);
  }
}

const Input* Claims::InputAt(const std::wstring& full) const {
  const auto found = inputs_.find(full);
  return found == inputs_.end() ? nullptr : found->second;
}

void Claims::NoteMade(const std::wstring& full) {
  const Locked held(lock_);
  made_.insert(full);
}

bool Claims::IsMade(const std::wstring& full) {
  const Locked held(lock_);
  return made_.contains(full);
}

std::vector<std::vector<size_t>> UnitsOf(const std::vector<Input>& inputs, Task task) {
  Sets sets(inputs.size());
  std::unordered_map<std::wstring, size_t> owners;
  const auto own = [&](const std::wstring& path, size_t i) {
    sets.Unite(owners.try_emplace(KeyOf(path), i).first->second, i);
  };
  for (size_t i = 0; i < inputs.size(); ++i) {
    const Input& input = inputs[i];
    if (!input.full.empty()) own(input.full, i);
    for (const std::wstring_view part : PartsOf(task))
      own(FullPathToBe(OutputPath(input.file, input.folder, task, std::wstring(part))), i);
  }
  std::vector<std::vector<size_t>> units;
  std::unordered_map<size_t, size_t> places;
  for (size_t i = 0; i < inputs.size(); ++i) {
    const auto [place, isNew] = places.try_emplace(sets.FirstOf(i), units.size());
    if (isNew) units.emplace_back();
    units[place->second].push_back(i);
  }
  return units;
}

}  // namespace tw::echotool
