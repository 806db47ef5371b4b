// The documents folder that tests see.
#pragma once

namespace tw {

// What DocumentsFolder() answers from now on; null goes back to the user's home folder.
void SetDocumentsFolder(const char* path);

}  // namespace tw
