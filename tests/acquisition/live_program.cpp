#include "tests/acquisition/live_program.h"

#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "acquisition/live_worker.h"
#include "app/state/event_log.h"
#include "base/shared_value.h"
#include "base/text_format.h"
#include "platform/file.h"
#include "platform/memory.h"
#include "platform/serial_line.h"
#include "platform/virtual/faults.h"

namespace tw::test {

LiveProgram::LiveProgram(SerialPeer& device)
    : state_(static_cast<AppState*>(AllocateZeroed(sizeof(AppState)))) {
  globals = Globals{};
  globals.deviceFamily = 1;
  for (Lock* lock :
       {&state_->ringLockA, &state_->ringLockB, &state_->gpsLock, &state_->recordLock, &state_->eventLog.lock,
        &globals.marksA.lock, &globals.marksB.lock, &globals.linesA.lock, &globals.linesB.lock}) {
    MakeLock(*lock);
  }
  EXPECT_TRUE(MakeEvent(state_->stopEvent, ResetMode::automatic));
  EXPECT_TRUE(MakeEvent(state_->recordingEvent, ResetMode::manual));
  state_->ringA = static_cast<PingRing*>(AllocateZeroed(kRingSize));
  state_->ringB = static_cast<PingRing*>(AllocateZeroed(kRingSize));
  state_->recordFileA = state_->recordFileB = Handle::invalid;
  state_->segyCompanionB = Handle::invalid;
  DeviceSettings& settings = state_->settings;
  settings.outputMode = 4;
  settings.samplingFrequency_hz = 50'000;
  settings.frequencyInUse_hz = settings.highFrequency_hz = 200'000;
  settings.lowFrequency_hz = 30'000;
  settings.virtualLowFrequency_hz = 33'000;
  settings.soundSpeed_mps = 1'500;
  settings.rangeHigh_mm = 12'500;
  settings.rangeLow_mm = 40;  // firmware that tells metres
  AttachPeer(kDeviceLine, &device);
  state_->devicePort = OpenSerialLine(kDeviceLine, "baud=115200 parity=N data=8 stop=1", 100);
  state_->runNumber = 1;
}

LiveProgram::~LiveProgram() {
  if (state_->acquisitionThread != Handle::null) StopWorker();
  CloseSerialLine(state_->devicePort);
  CloseBothRecordFiles(*state_);
  FreeRecordWriter(*state_);
  DetachSerialLines();
  ClearFaults();
  static_cast<void>(TakePostedTexts());
  for (Event* event : {&state_->stopEvent, &state_->recordingEvent}) DestroyEvent(*event);
  for (Lock* lock :
       {&state_->ringLockA, &state_->ringLockB, &state_->gpsLock, &state_->recordLock, &state_->eventLog.lock,
        &globals.marksA.lock, &globals.marksB.lock, &globals.linesA.lock, &globals.linesB.lock}) {
    DestroyLock(*lock);
  }
  FreeZeroed(state_->ringA, kRingSize);
  FreeZeroed(state_->ringB, kRingSize);
  FreeZeroed(state_, sizeof *state_);
}

void LiveProgram::StartWorker(const StreamForm& form) {
  EXPECT_TRUE(HandOver(*state_, {.form = &form,
                                 .settings = state_->settings,
                                 .deviceFamily = FamilyInUse(),
                                 .dual = LoadShared(globals.dualMode) != 0,
                                 .port = state_->devicePort,
                                 .runNumber = LoadShared(state_->runNumber)}));
  state_->acquisitionThread = StartThread(AcquisitionWorker, state_);
}

void LiveProgram::StopWorker() {
  Signal(state_->stopEvent);
  WaitForWorker();
}

void LiveProgram::WaitForWorker() {
  EXPECT_EQ(WaitForThread(state_->acquisitionThread, 5'000), ThreadWait::ended);
  CloseThread(state_->acquisitionThread);
  state_->acquisitionThread = Handle::null;
  EXPECT_TRUE(AwaitRecords(*state_, kWritingLimit_ms));
}

void LiveProgram::OpenFile(RecordChannel channel, const wchar_t* name) {
  const Handle file = CreateFileAnew((folder_.Path() / name).wstring().c_str());
  uint32_t written = 0;
  EXPECT_TRUE(WriteFileBytes(file, "INFO\r\n", 6, written));
  PutRecordFile(*state_, channel, file);
}

void LiveProgram::LogEvents() {
  CopyWide(state_->workingFolder, folder_.Path().wstring());
  state_->options.eventLog = 1;
  DirectEventLog(*state_);
}

std::string LiveProgram::FileContent(const wchar_t* name) const {
  std::ifstream file(folder_.Path() / name, std::ios::binary);
  if (!file) return "absent";
  return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

int32_t LiveProgram::IndexA() {
  Locked held(state_->ringLockA);
  return state_->ringIndexA;
}

int32_t LiveProgram::IndexB() {
  Locked held(state_->ringLockB);
  return state_->ringIndexB;
}

std::string EchoBlock(uint32_t ping, int32_t tx_hz) {
  std::string block = "#DeviceID A\r\n#Ping " + std::to_string(ping) +
                      "\r\n#NSamples 1\r\n#Sampling_Frequency,Hz 25000\r\n#Altitude " + std::to_string(ping) +
                      ".5\r\n";
  if (tx_hz != 0) block += "#Tx_Frequency,Hz " + std::to_string(tx_hz) + "\r\n";
  return block + "##DataStart\r\n100\r\n\r\n\r\n";
}

}  // namespace tw::test
