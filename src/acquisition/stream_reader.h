// What all readers of a device's stream have in common: state machines that take bytes as they come and cut
// them into blocks, one ping or epoch each. No clock, no I/O; one thread at a time.
#pragma once

#include <cstdint>
#include <memory>
#include <new>
#include <span>
#include <string_view>
#include <utility>

namespace tw {

class StreamReader {
 public:
  virtual ~StreamReader() = default;

  // Takes bytes off the front of `input` until a block is complete or the input is used up. True: Block()
  // holds it until the next call; the rest of the input is still to be fed.
  [[nodiscard]] virtual bool Feed(std::span<const uint8_t>& input) = 0;

  // Bytes are missing at this place of the stream, or it is another one of the same device: a block that is
  // not complete is dropped, so that it is not put together with what comes now, and so is the rest of a
  // block that could stand for a whole one.
  virtual void Break() = 0;

  // The last complete block.
  [[nodiscard]] virtual std::string_view Block() const = 0;

  // How many bytes of its end came in one piece: all of them, unless the reader has left out what stood
  // between two parts of it.
  [[nodiscard]] virtual size_t LastPiece() const { return Block().size(); }
};

// A reader with all the memory that it will ever need; null without memory.
template <typename Reader, typename... Arguments>
[[nodiscard]] std::unique_ptr<StreamReader> NewReader(Arguments&&... arguments) {
  return std::unique_ptr<StreamReader>(new (std::nothrow) Reader(std::forward<Arguments>(arguments)...));
}

}  // namespace tw
