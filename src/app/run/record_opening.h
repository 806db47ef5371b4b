// Opening and closing of record files. GUI thread; the handles are shared with the acquisition worker by the
// protocol of acquisition/record_file.h.
#pragma once

#include "app/state/app_state.h"
#include "app/state/file_naming.h"

namespace tw {

// Opens the record file of the run, or the pair of a dual run, in the working folder under a fresh time
// stamp, writes the settings line(s) and puts the names into the title text. Files that are still open are
// closed first. A folder or file that cannot be created is no failure: that handle stays invalid and
// nothing is recorded into it.
void OpenRecordFiles(AppState& state, NamingMoment moment);

// The same with the names that another family's files would have.
void OpenRecordFiles(AppState& state, NamingMoment moment, DeviceFamily namingFamily);

// Opens the file or pair with which a recording goes on, under the present second, and offers it to the
// worker. False: a file of that name exists, or none can be created.
[[nodiscard]] bool SplitRecordFiles(AppState& state);

// Deletes what was offered and has not been taken.
void TakeBackOffers(AppState& state);

// Closes both record files and both SEG-Y companions.
void CloseRecordFiles(AppState& state);

}  // namespace tw
