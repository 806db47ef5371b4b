// What the operator can switch on beyond the device's own settings: everything off, the program does what it
// always did. GUI thread; a worker gets a copy of what it needs with its start.
#pragma once

#include <cstdint>

namespace tw {

// Four decimal numbers with points between them.
struct OptionAddress {
  wchar_t text[16];
};

enum ColourScheme : int32_t { kStandardColours, kBlueToYellow, kVioletToYellow, kGreyOnBlack, kBlackOnWhite };
enum DepthUnit : int32_t { kMetres, kFeet };
enum TimeLabels : int32_t { kSecondsAgo, kClockUtc, kClockLocal };

// Switches are 0 or 1.
struct Options {
  // Link
  int32_t keepRunGoing;  // a lost link is tried again, the run and its files go on
  int32_t silence_s;     // without data for so long the link is lost
  int32_t beepWhenLost;
  int32_t receiverSilence_s;   // without a byte for so long the receiver is silent
  int32_t dropSilentPosition;  // no position from a silent receiver
  int32_t startByItself;       // at program start, once the stored ports are there
  int32_t giveUpWriting;       // a write that the line does not take in 10 s fails

  // Recording
  int32_t splitByTime;
  int32_t splitPeriod_min;  // at full multiples of the clock
  int32_t splitBySize;
  int32_t splitSize_MB;
  int32_t neverReplace;      // a name that exists waits for the next second
  int32_t flushPeriod_s;     // to the disk itself; 0 leaves it to the system
  int32_t recordAgain;       // in a new file, once a full disk has space again
  int32_t askBeforeClosing;  // while it records
  int32_t beepWhenEnded;     // by a full disk
  int32_t eventLog;

  // Outputs: depth for other programs
  int32_t sendSerial;
  int32_t serialPort;  // COM number
  int32_t serialSpeed_bps;
  int32_t sendUdp;
  OptionAddress udpAddress;
  int32_t udpPort;
  int32_t sendTcp;
  OptionAddress tcpAddress;
  int32_t tcpPort;
  int32_t sendDbt;
  int32_t sendDpt;
  int32_t transducerOffset_cm;  // above 0 from the water line, below 0 from the keel
  int32_t sendMtw;
  int32_t sendXdr;
  int32_t sendGga;
  int32_t sendRmc;
  int32_t outputRate;  // pings a second, at most
  int32_t sendLowChannel;

  // Display
  int32_t noDataOverEchogram;
  int32_t colours;                // a ColourScheme
  int32_t contrastLower_percent;  // of the full scale: what is weaker is black, or the scheme's background
  int32_t contrastUpper_percent;  // what is stronger has the strongest colour
  int32_t depthUnit;              // a DepthUnit: of what is shown, never of what is stored or sent
  int32_t timeLabels;             // a TimeLabels
  int32_t depthTrace;             // the altitude as a line over the echogram
  int32_t gapLines;               // a line and the clock where a run begins or goes on
  int32_t gapsBlack;              // no ping stands for more than 2 s
  int32_t readOutInShots;         // screenshots show the read-out under the cursor

  // Depth
  int32_t depthWindow;   // the depth in large figures
  int32_t alarmShallow;  // switches
  int32_t shallow_cm;    // the alarm sounds above this depth
  int32_t alarmDeep;
  int32_t deep_cm;  // and below this one
  int32_t alarmBeep;

  // Playback
  int32_t playbackBar;
  int32_t skipGaps;  // of more than 5 s, in a playback
};

}  // namespace tw
