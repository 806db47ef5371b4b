// What is left for the developers when the program crashes: a small dump with the threads and their stacks.
#pragma once

namespace tw {

// From now on an exception that nobody handles writes tidewriter_YYYYMMDD_HHMMSS.dmp (local time) into the
// folder, whatever that is by then, and Windows shows its box as it would without. A folder that takes no
// file changes nothing. The text stays where it is until the process ends. Once, GUI thread.
void WriteDumpOnCrash(const wchar_t* folder);

}  // namespace tw
