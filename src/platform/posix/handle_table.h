// Which handle stands for which object. Handles are numbers that are never used again, so a handle that was
// closed is known to be none. Any thread.
#pragma once

#include <cstdint>
#include <memory>
#include <mutex>
#include <unordered_map>

#include "platform/handle.h"

namespace tw {

// Put into the low bits, so that the handles of different tables differ.
enum class HandleKind : uintptr_t { socket = 0, thread = 1, line = 2, file = 3 };

template <typename T>
class HandleTable {
 public:
  explicit HandleTable(HandleKind kind) : kind_(kind) {}

  [[nodiscard]] Handle Add(std::shared_ptr<T> object) {
    const std::lock_guard held(mutex_);
    const Handle handle{++last_ << 2 | static_cast<uintptr_t>(kind_)};
    objects_.emplace(handle, std::move(object));
    return handle;
  }

  // Null when the handle stands for nothing.
  [[nodiscard]] std::shared_ptr<T> Find(Handle handle) const {
    const std::lock_guard held(mutex_);
    const auto found = objects_.find(handle);
    return found != objects_.end() ? found->second : nullptr;
  }

  // Takes the handle back; null when it stood for nothing. The object lives on while others use it.
  std::shared_ptr<T> Remove(Handle handle) {
    const std::lock_guard held(mutex_);
    const auto node = objects_.extract(handle);
    return node.empty() ? nullptr : node.mapped();
  }

  // Some object for which `test` is true; null when there is none.
  template <typename Test>
  [[nodiscard]] std::shared_ptr<T> FindIf(const Test& test) const {
    const std::lock_guard held(mutex_);
    for (const auto& entry : objects_) {
      if (test(*entry.second)) return entry.second;
    }
    return nullptr;
  }

 private:
  const HandleKind kind_;
  mutable std::mutex mutex_;
  uintptr_t last_ = 0;
  std::unordered_map<Handle, std::shared_ptr<T>> objects_;
};

}  // namespace tw
