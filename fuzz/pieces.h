// What the fuzz targets of stream readers share: the stream arrives in pieces.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

#include "acquisition/stream_reader.h"

namespace tw {

inline void Require(bool holds) {
  if (!holds) std::abort();
}

// The blocks of a stream, each looked at by `check`: of one reader that gets it in one piece, and the same of
// another that gets it in pieces of this size.
template <typename Make, typename Check>
std::vector<std::string> BlocksOf(Make makeReader, std::span<const uint8_t> stream, size_t pieceSize,
                                  Check check) {
  std::vector<std::string> blocks[2];
  for (const bool whole : {true, false}) {
    auto reader = makeReader();
    for (auto rest = stream; !rest.empty();) {
      std::span<const uint8_t> piece = rest.first(whole ? rest.size() : std::min(pieceSize, rest.size()));
      rest = rest.subspan(piece.size());
      while (reader.Feed(piece)) {
        check(reader.Block());
        blocks[whole ? 0 : 1].emplace_back(reader.Block());
      }
      Require(piece.empty());
    }
  }
  Require(blocks[0] == blocks[1]);
  return blocks[0];
}

}  // namespace tw
