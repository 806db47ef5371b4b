// What file workers tell the playback slider, and what it tells them. A worker posts WM_USER with a
// ProgressBlock of its own to each receiver, the slider and the main window (PostProgress in
// app/state/posts.h does both); each receiver deletes what it gets, and the sender deletes what could not be
// posted. The same message with the plain number kProgressSpan instead of a pointer carries a file position
// alone in its second parameter, so that number is looked for before a pointer is taken. Any window can post
// any number: only blocks that are known to be on their way are taken for one.
//
// The way back is one 64-bit field of the state record: the position that the operator has dragged the slider
// to. Any thread; neither half can be torn.
#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "base/shared_value.h"
#include "platform/handle.h"

namespace tw {

inline constexpr int32_t kProgressSpan = 320;

// How far a played or converted file has been read. Values as they come from the file's reader: the slider
// bounds them.
struct ProgressBlock {
  Handle inputFile;      // given, unread
  int32_t span;          // kProgressSpan
  int32_t sampleCount;   // of the ping read last; 0: no file is loaded
  int32_t sampleWeight;  // 1; given, unread
  uint64_t position;     // bytes from the file's start
  uint64_t fileSize;     // bytes
};

// A copy on its way to one receiver: the first parameter of WM_USER. 0 when there is no memory for it, or
// when hundreds wait already. Whoever cannot post it takes it back with ReceiveProgress. Any thread.
[[nodiscard]] uintptr_t SendProgress(const ProgressBlock& progress);

// Takes over the block that the first parameter of WM_USER means; null when it is the plain number or any
// other that means no block on its way. Any thread; one caller alone gets it.
[[nodiscard]] std::unique_ptr<ProgressBlock> ReceiveProgress(uintptr_t parameter);

// `request` is AppState::seekRequest: 0 is none, so that a zero-filled record asks for nothing; else one more
// than the position.
inline void RequestSeek(uint64_t& request, uint64_t position) {
  StoreShared(request, position + 1);
}

// The position asked for since the last call; one caller alone gets it.
[[nodiscard]] inline std::optional<uint64_t> TakeSeekRequest(uint64_t& request) {
  const uint64_t taken = ExchangeShared(request, 0);
  if (taken == 0) return std::nullopt;
  return taken - 1;
}

}  // namespace tw
