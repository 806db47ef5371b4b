// The application state record and the process-wide values beside it.
//
// One AppState exists, zero-filled, from the main window's creation to the end of the process; it is never
// freed, because workers may outlive the message loop. Each worker gets its address as only parameter. The
// fields say who writes them; "shared" fields go through LoadShared / StoreShared.
#pragma once

#include <cstdint>

#include "app/state/conversion.h"
#include "app/state/device_family.h"
#include "app/state/device_settings.h"
#include "app/state/display_palette.h"
#include "app/state/event_marks.h"
#include "app/state/gps_fix.h"
#include "app/state/options.h"
#include "app/state/port_entry.h"
#include "app/state/replay_state.h"
#include "app/state/run_watch_state.h"
#include "base/shared_value.h"
#include "platform/handle.h"
#include "platform/sync.h"

namespace tw {

struct DeviceLink;
class PingSink;
struct PingRing;
struct LiveStart;
class PingSource;
class RecordWriter;

inline constexpr size_t kWorkingFolderSize = 260;
inline constexpr size_t kFilePathSize = 1'024;
inline constexpr size_t kMostListedRanges = 32;
inline constexpr size_t kRangeTextSize = 16;
inline constexpr int32_t kNoGpsPort = -1;
inline constexpr uint32_t kPlaybackPace_ms = 16;
inline constexpr int32_t kPlaybackSpan = 320;

// Opens a serial port by its name; Handle::invalid on failure.
using OpenPort = Handle (*)(const wchar_t* name, int32_t speed_bps);

// What is stored as "MainWindowPosition".
struct WindowPlacement {
  uint32_t style;
  uint32_t extendedStyle;
  int32_t fullScreen;
  int32_t maximised;
  int32_t left;
  int32_t top;
  int32_t right;
  int32_t bottom;
};
static_assert(sizeof(WindowPlacement) == 32);

inline constexpr uint64_t kUnknownSpace = UINT64_MAX;

// Where events are written to; see app/state/event_log.h.
struct EventLog {
  Lock lock;
  int32_t on;                          // shared
  wchar_t folder[kWorkingFolderSize];  // with the lock held
};

// What a run is watched by once a second; see app/run/second_tick.h. GUI thread.
struct EventWatch {
  int32_t linkLossTold;  // of this run
  int32_t awayTold;      // the run goes on and waits for its device
  int32_t receiverLossTold;
  int32_t clocksKnown;
  int64_t utc_ms;     // of the last tick
  uint32_t clock_ms;  // the millisecond clock then
};

// What has become of a playback, told by its workers.
// kPlaybackGrew: it was exhausted, and now its file has more.
enum PlaybackEnd : int32_t {
  kPlaybackGoesOn,
  kPlaybackExhausted,
  kPlaybackUnread,
  kPlaybackWithoutMemory,
  kPlaybackGrew
};

// Why a recording that was asked for does not go into its files.
enum class RecordFault : int32_t { none, diskFull, diskRefuses, folderMissing };

// kStopPlayback: given, unread; stopEvent and stopEventB end the file workers.
enum RunEvent : uint8_t { kStopPlayback, kPause, kBack20, kBack100, kStepSecond, kRunEvents };

struct AppState {
  Handle mainWindow;
  Handle statusBar;
  wchar_t workingFolder[kWorkingFolderSize];
  Handle inputFileA;
  Handle inputFileB;
  Handle fileWorkerA;
  Handle fileWorkerB;
  Event runEvents[kRunEvents];
  Handle recordFileA;  // guarded by recordLock; see acquisition/record_file.h
  Handle recordFileB;
  RecordWriter* recordWriter;  // the same; made with the first file, for the life of the process
  Handle nextRecordA;  // the same; opened, and waits for the worker to change over to it, else invalid
  Handle nextRecordB;
  uint32_t recordFlushPeriod_ms;  // of the disk; 0 leaves it to the system; shared
  Handle segyCompanionA;          // live ones never exist, their closing is given; A: a conversion's output
  Handle segyCompanionB;
  int32_t playbackPace;      // shared: GUI thread writes
  Handle devicePort;         // shared: GUI opens and closes, the acquisition worker reads
  DeviceLink* link;          // GUI thread: the same port for commands, and what they have told of the device
  Handle gpsPort;            // shared: GUI opens and closes, the GPS worker reads and invalidates
  Handle acquisitionThread;  // GUI thread
  Handle gpsThread;          // GUI thread
  Event recordingEvent;
  DeviceSettings settings;         // with choices that wait for Apply; GUI thread, workers read
  DeviceSettings appliedSettings;  // as the device has them; GUI thread
  WindowPlacement windowPlacement;
  int32_t initialised;
  PingRing* ringA;
  PingRing* ringB;
  int32_t ringIndexA;  // ringLockA
  int32_t ringIndexB;  // ringLockB
  int64_t ringTimeA;   // ringLockA: how many slots ringIndexA has come on in all; never goes back
  int64_t ringTimeB;   // ringLockB
  Lock ringLockA;
  Lock gpsLock;
  Event stopEvent;
  Lock ringLockB;
  Event stopEventB;
  DisplayPalette palette;
  int32_t displayRangeUpper;  // mm; GUI thread
  int32_t displayRangeLower;  // mm
  int32_t timeScaleUpper;     // s
  int32_t timeScaleLower;     // s
  int32_t echogramEnabled;    // shared
  Handle sliderWindow;
  int32_t playbackSpan;    // given, unread
  int32_t conversionKind;  // a Conversion, see ConversionUnderWay; shared
  uint64_t seekRequest;    // shared: the slider asks, the file worker takes; see app/state/slider_messages.h

  // Of a playback, of choices that wait to be sent, of the window and of the record files.
  int32_t playbackActive;  // GUI thread
  int32_t playbackPaused;  // GUI thread
  int64_t firstTime_ms;    // newest recorded time of the first file, kNoPingYet until it has shown a ping,
                           // kNoRecordedTime where it tells none and at its end; shared
  int64_t stepTime_ms;     // recorded time to which the second file follows the first; shared
  int32_t stepShare_ppm;   // and how much of the first file lies ahead of that place; shared
  int32_t stepBack;        // the second file's ring goes back too; shared
  int32_t playbackAtEnd;   // the played file is exhausted; GUI thread
  ReplayState replay;
  int32_t fileInRings;        // the rings hold a file's pings, not a device's; GUI thread
  int32_t linkLost;           // shared: workers set it, the GUI clears it before each worker start
  int32_t linkAway;           // shared: an AwayFor; the run waits for its device to come back
  uint32_t linkAwaySince_ms;  // shared: the millisecond clock when it was lost
  int32_t startsByItself;     // 1: a start waits for its ports, 2: it has been tried; GUI thread
  uint32_t startTried_ms;     // the millisecond clock at the last try
  int32_t awayShown;          // the status bar says so; GUI thread
  Lock linkLock;              // the ports and runNumber, where a worker puts a port into the record
  char nextNames[2][256];     // of the files that are offered; GUI thread
  int64_t splitPeriod;        // how many split periods the clock had seen when files were opened; GUI thread
  Event linkRetry;            // the port may be there again: signalled by the GUI thread
  int32_t pendingRange;       // changes of range and output that timer 7 will send; GUI thread
  int32_t pendingOutput;
  int32_t choiceWaits;         // a choice of range or output waits to be sent; GUI thread
  uint32_t choiceSince_ms;     // the millisecond clock at the last one
  uint32_t capturePeriod_ms;   // of live screenshots; 0: none are taken; GUI thread
  uint32_t captureSince_ms;    // the millisecond clock when one was last due
  int32_t fullWindow;          // the controls are hidden; GUI thread
  int32_t fullScreen;          // the window's style is changed; nothing sets it
  Lock recordLock;             // recordFileA, recordFileB and the writer
  uint32_t runNumber;          // shared: raised at each Start and at each Stop; a worker whose number is
                               // stale touches nothing any more
  LiveStart* liveStart;        // shared: for the acquisition worker that begins next; see
                               // acquisition/live_worker.h
  PingSource* recordingA;      // shared: for the file workers that begin next; see
  PingSource* recordingB;      // playback/file_worker.h
  PingSink* outputs;           // shared: gets each live ping, null for nobody; what it points to lives as
                               // long as the process
  uint32_t gpsRunNumber;       // shared: of the GPS worker that begins next; 0 is no run's number
  OpenPort openReceiver;       // null, or how the GPS worker that begins next gets a port back that failed
  uint32_t recordingNumber;    // shared: raised whenever fresh record files are opened
  PortEntry ports[kMaxPorts];  // GUI thread
  // What the operator hears of by lamps and status texts; see app/run/run_watch.h.
  int32_t recordFault;            // a RecordFault of the files that were opened last; shared
  uint32_t recordedPings;         // in them; shared
  uint64_t recordedBytes;         // shared
  uint32_t pingsLost;             // found no room in front of the disk, since files were opened; shared
  uint64_t leftToWrite_bytes;     // what somebody has stopped waiting for, until it is written; shared
  uint32_t lastPing_ms;           // the millisecond clock at the newest ping, or when its worker was started;
                                  // shared
  uint32_t receiverByte_ms;       // at the GPS receiver's last byte, or when its worker was started; shared
  uint32_t receiverSentence_ms;   // at its last whole sentence; shared
  uint32_t receiverFix_ms;        // when the time of its fix last went on; shared
  uint32_t dropPositionAfter_ms;  // of the receiver's silence; 0: never; shared
  uint64_t freeSpace_bytes;       // of the working folder, kUnknownSpace where that is not there; shared
  uint32_t spaceAnswers;          // how many times that was told; shared
  int32_t spaceAsked;             // a thread is asking for it; shared
  RunWatch watch;                 // GUI thread
  int32_t gapsBlack;              // the option; shared
  uint32_t noData_s;              // since the newest ping of a run that has fallen silent, else 0; GUI thread

  uint32_t waitingShown;             // choices that are marked as waiting for Apply, a bit each; GUI thread
  int32_t closingAsked;              // the question before closing is shown; GUI thread
  wchar_t converted[kFilePathSize];  // the output of the conversion begun last; GUI thread
  int32_t conversionCut;             // it ends before its input does; shared
  wchar_t lastFile[kFilePathSize];   // recorded or converted to last; empty: none; GUI thread

  Options options;    // GUI thread
  uint32_t marksSet;  // by the operator, since the program began; GUI thread
  EventLog eventLog;
  EventWatch eventWatch;
  wchar_t devicePortName[kPortNameSize];  // of the run; GUI thread
  wchar_t gpsPortName[kPortNameSize];     // empty: none
  wchar_t rememberedRange[64];            // combo texts at the last Start or Apply, the range in metres
                                          // whatever is shown; GUI thread
  wchar_t rememberedRangeDual[64];        // given, unread
  wchar_t rememberedOutput[64];
  wchar_t rememberedInterval[64];                           // given, unread
  wchar_t listedRanges[kMostListedRanges][kRangeTextSize];  // in metres: of each item of the range's
                                                            // selector; GUI thread
  int32_t listedRangeCount;
};

// "%04d M %04d-%02d-%02d %02d:%02d:%02d" with a number of any length, and its zero.
inline constexpr size_t kMarkTextSize = 33;
inline constexpr size_t kMaxMarks = 1'490;

struct MarkEntry {
  char text[kMarkTextSize];
  bool begins;       // the first ping of its number
  int64_t ringTime;  // of the slot at which its ping was published
};

// The time marks of one channel: one entry per ping while "Timestamp" is ticked, newest first. The entries
// stand in a circle: entry i of the list is entries[(newest + i) % kMaxMarks].
struct MarkList {
  Lock lock;
  MarkEntry entries[kMaxMarks];
  int32_t newest;
  int32_t count;
  int32_t pingsSinceMark;
  int64_t sinceMark_ms;  // recorded time, of a playback
  int32_t markNumber;
  int32_t changed;  // given, unread
};

inline constexpr size_t kMaxTimeLines = 256;

// A moment of a channel's ring.
struct TimeLine {
  int64_t ringTime;
  uint32_t time_s;  // since 1970-01-01 00:00:00 UTC
  uint32_t mark;    // number of the operator's mark; 0: a run begins here, or goes on
  wchar_t word[kMarkWordSize];
};

// Line i of the list, newest first, is lines[(newest + i) % kMaxTimeLines].
struct TimeLineList {
  Lock lock;
  TimeLine lines[kMaxTimeLines];
  int32_t newest;
  int32_t count;
};

inline constexpr size_t kSlotsOfRing = 10'000;

// Process-wide values, one instance. No destructor: workers may outlive main.
struct Globals {
  Handle instance;
  int32_t deviceBaud;
  int32_t deviceFamily;  // a DeviceFamily, see FamilyInUse; shared
  int32_t dualMode;      // shared
  int32_t depthUnit;     // a DepthUnit, see DepthUnitInUse; shared: GUI thread writes
  int32_t devicePortNumber;
  int32_t gpsPortNumber;  // -1 = none
  int32_t gpsBaud;
  int32_t lowKHz;               // given, unread
  int32_t highKHz;              // given, unread
  int32_t screenshotRequested;  // shared
  int32_t playbackEnded;        // a PlaybackEnd; shared
  uint8_t segyTextHeader[3200];
  char titleText[256];  // UTF-8
  wchar_t debugText[256];

  int32_t measuredLowFrequency_hz;  // channel frequencies that name files
  int32_t measuredHighFrequency_hz;

  // Acquisition, read by the echogram view; shared.
  uint32_t pingCounter;
  uint32_t runningPing;  // last number given to a ping of a mode that numbers none; acquisition worker only
  float latestAltitudeHigh_m;
  float latestAltitudeLow_m;
  uint32_t latestPingHigh_ms;  // the millisecond clock at their pings, of a live run
  uint32_t latestPingLow_ms;
  int32_t attitudePresent;
  float pingInterval_ms;          // set interval at Start
  float measuredPingInterval_ms;  // of a run; 0 until two pings have come
  int32_t timestampTicked;        // GUI thread writes
  int32_t autoCaptureTicked;
  int32_t autoCaptureRequested;
  int32_t marksAtStart;  // 30 s in pings of the set interval
  MarkList marksA;
  MarkList marksB;
  TimeLineList linesA;
  TimeLineList linesB;
  uint16_t slotReachA[kSlotsOfRing];  // bytes in use of each slot of the rings; the ring's writer only
  uint16_t slotReachB[kSlotsOfRing];
  int64_t autoCaptureSince_s;   // seconds since 1970 when "Auto Capture" was ticked; given, unread
  int64_t lastCapture_s;        // -1 = none yet; shared
  int32_t playedFrequencyA_hz;  // of played files; 0 = none
  int32_t playedFrequencyB_hz;

  // GPS: the fix and what is derived from it, guarded by gpsLock.
  GpsFix fix;
  int32_t gpsTalkerGn;  // the last sentence applied was a GNRMC
  float gpsLatitude_rad;
  float gpsLongitude_rad;
  int32_t gpsQuality;  // 0 = no position
  int32_t gpsFixType;  // 1 none, 2 2D, 3 3D
  float gpsPdop;
  uint32_t gpsTime_s;
  float gpsLongitudeDdmm;  // given, unread
  uint32_t gpsUpdates;     // number of updates of the fix

  int32_t sliderQuarterWidth;  // a quarter of the client width, in pixels; given, unread
};

extern Globals globals;

// Of the device, or of the file that is played.
[[nodiscard]] inline DeviceFamily FamilyInUse() {
  return DeviceFamily{LoadShared(globals.deviceFamily)};
}

// Of what is shown.
[[nodiscard]] inline DepthUnit DepthUnitInUse() {
  return DepthUnit{LoadShared(globals.depthUnit)};
}

[[nodiscard]] inline Conversion ConversionUnderWay(const AppState& state) {
  return Conversion{LoadShared(state.conversionKind)};
}
inline void SetConversion(AppState& state, Conversion conversion) {
  StoreShared(state.conversionKind, static_cast<int32_t>(conversion));
}

}  // namespace tw
