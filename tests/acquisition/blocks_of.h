// Feeding a stream reader as a port does: in pieces.
#pragma once

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <vector>

#include "acquisition/stream_reader.h"

namespace tw::test {

inline constexpr size_t kWhole = SIZE_MAX / 2;

// All blocks of a stream that arrives in pieces of this size.
inline std::vector<std::string> BlocksOf(StreamReader& reader, std::string_view stream,
                                         size_t pieceSize = kWhole) {
  std::vector<std::string> blocks;
  for (size_t at = 0; at < stream.size(); at += pieceSize) {
    const std::string_view part = stream.substr(at, pieceSize);
    std::span<const uint8_t> piece(reinterpret_cast<const uint8_t*>(part.data()), part.size());
    while (reader.Feed(piece)) blocks.emplace_back(reader.Block());
    EXPECT_TRUE(piece.empty());
  }
  return blocks;
}

}  // namespace tw::test
