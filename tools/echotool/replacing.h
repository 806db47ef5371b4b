// Which files an output may replace: never a recording of the same call, nor what the call has made of
// another one; another recording only when it is asked for, or when all that it holds is in the output too,
// as in a text that is made again. One thread.
#pragma once

#include <string>

#include "platform/handle.h"
#include "tools/echotool/work.h"

namespace tw::echotool {

// Where an output goes, and what stands there.
struct Place {
  std::wstring path;
  bool taken = false;
  bool mustHold = false;  // only by an output that holds all of it
};

// Looks at the place of the output of a recording. False with the reason when none may be written there.
[[nodiscard]] bool LookAt(Place& place, const Input& input, const Call& call, std::string& error);

// True when `output` may stand in the place: it begins with all that the older file holds, where it must.
[[nodiscard]] bool MayReplace(const Place& place, Handle output);

// Why not, otherwise.
[[nodiscard]] std::string IsRecordingText(const Place& place);

}  // namespace tw::echotool
