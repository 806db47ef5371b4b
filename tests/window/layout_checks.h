// What holds for the controls of every window: none overlaps another, none is too small for its text, at any
// resolution of the screen.
#pragma once

#include <string>
#include <vector>

#include "tests/window/program.h"

namespace tw {

// A length given for 96 dots per inch, in the pixels of this screen.
[[nodiscard]] int Scaled(int length);

void ExpectNoIntersections(const std::vector<ControlPlace>& controls);

// The text has room in the control, beside what the control needs for itself.
void ExpectTextFits(const ControlPlace& control, const std::wstring& text);

// For messages: id, text and place.
[[nodiscard]] std::string Name(const ControlPlace& control);

}  // namespace tw
