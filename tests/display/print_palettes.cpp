// Prints each scheme's name and its colours, RRGGBB a line, from the weakest echo to the strongest, as the
// program makes them: what the figures of docs/palettes.md are computed from.
#include <cinttypes>
#include <cstdio>
#include <iterator>

#include "base/bytes.h"
#include "display/palette.h"

int main() {
  constexpr const char* kNames[] = {"Standard", "Blue to yellow", "Violet to yellow", "Grey on black",
                                    "Black on white"};
  static_assert(std::size(kNames) == tw::kBlackOnWhite + 1);
  for (int32_t scheme = 0; scheme <= tw::kBlackOnWhite; ++scheme) {
    static tw::DisplayPalette palette;
    tw::BuildPalette(palette, {.scheme = tw::ColourScheme{scheme}});
    std::puts(kNames[scheme]);
    for (const auto& entry : palette.entries) std::printf("%06" PRIX32 "\n", tw::LoadLe<uint32_t>(entry));
  }
  return 0;
}
