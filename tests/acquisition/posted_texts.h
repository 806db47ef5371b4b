// The texts that the worker posted to the status bar, in place of a user interface.
#pragma once

#include <string>
#include <vector>

#include "app/state/posts.h"

namespace tw::test {

struct PostedText {
  StatusPart part;
  std::wstring text;
};

// What was posted since the last call, oldest first. Any thread.
[[nodiscard]] std::vector<PostedText> TakePostedTexts();

}  // namespace tw::test
