// The commands of a run step by step: the complete order of what happens, for each family; every setting that
// can be changed; and every way in which the line can fail at each command.
#include <gtest/gtest.h>

#include <algorithm>
#include <sstream>

#include "app/settings/control_states.h"
#include "app/window/commands.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/thread.h"
#include "platform/virtual/faults.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

using sim::DeviceFamily;

enum class Sabotage : uint8_t { none, noReply, refused, hangUp };

// Notes how the program opens and closes the line.
class NotedPeer : public SimulatorPeer {
 public:
  NotedPeer(sim::VirtualInstrument& instrument, const char* name) : SimulatorPeer(instrument), name_(name) {}

  bool Open(const char* mode) override {
    Ui().Note("open" + name_ + " " + mode);
    return SimulatorPeer::Open(mode);
  }
  void Close() override {
    Ui().Note("close" + name_);
    SimulatorPeer::Close();
  }

 private:
  std::string name_;
};

// Stands between the program and the device: sees each line that the program sends, and spoils one of them.
class Saboteur final : public NotedPeer {
 public:
  explicit Saboteur(sim::VirtualInstrument& device) : NotedPeer(device, "") {}

  void Spoil(Sabotage sabotage, int command) {
    sabotage_ = sabotage;
    target_ = command;
    count_ = 0;
    hungUp_ = false;
  }
  [[nodiscard]] int Count() const { return count_; }

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) {
      line_.push_back(byte);
      if (byte != '\r' && !(byte == ' ' && line_.size() == 1)) continue;
      const std::vector<uint8_t> line = std::exchange(line_, {});
      Log(line);
      const Sabotage sabotage = ++count_ == target_ ? sabotage_ : Sabotage::none;
      if (sabotage == Sabotage::none) SimulatorPeer::Receive(line, now_us);
      if (sabotage == Sabotage::refused) SimulatorPeer::Receive(kNonsense, now_us);
      if (sabotage == Sabotage::hangUp) hungUp_ = true;
    }
  }
  bool HungUp(int64_t now_us) override { return hungUp_ || SimulatorPeer::HungUp(now_us); }

 private:
  static constexpr uint8_t kNonsense[] = {'?', '\r'};

  static void Log(const std::vector<uint8_t>& line) {
    std::string text(line.begin(), line.end());
    if (text.ends_with('\r')) text.pop_back();
    if (text.starts_with("#time ")) text = "#time ...";
    Ui().Note(text.empty() ? "send <return>" : text == " " ? "send <stop key>" : "send " + text);
  }

  Sabotage sabotage_ = Sabotage::none;
  int target_ = 0;
  int count_ = 0;
  bool hungUp_ = false;
  std::vector<uint8_t> line_;
};

class Sequence : public RunControlTest {
 protected:
  void Connect(DeviceFamily family, bool dual = false) {
    sim::SounderOptions options = QuickSounder();
    options.family = family;
    if (family == DeviceFamily::second) options.identity = "42";
    options.dual = dual;
    sounder_ = std::make_unique<sim::VirtualEchosounder>(options);
    saboteur_ = std::make_unique<Saboteur>(*sounder_);
    AttachPeer(kDeviceLine, saboteur_.get());
  }
  ~Sequence() override {
    StopRun(*state_);
    DetachSerialLines();
  }

  [[nodiscard]] bool IsRunning() const {
    return LoadShared(state_->devicePort) != Handle::invalid && state_->acquisitionThread != Handle::null;
  }

  // Whatever has happened: the program is whole, has told of it in its own words, and can be started.
  void ExpectSound(const std::string& what) {
    EXPECT_TRUE(Ui().PointerIsArrow()) << what;
    static const std::wstring kTexts[] = {L"Echosounder is not connected",
                                          L"Unable to read settings form the Echosounder",
                                          L"Connection lost!"};
    std::erase_if(Ui().boxes, [](const Box& box) { return box.buttons == BoxButtons::okCancel; });
    for (const Box& box : Ui().boxes) {
      EXPECT_NE(std::find(std::begin(kTexts), std::end(kTexts), box.text), std::end(kTexts)) << what;
    }
    if (IsRunning()) {
      EXPECT_EQ(StateOfProgram(*state_), ProgramState::running) << what;
      EXPECT_TRUE(Ui().timers.contains(ID_TIMER_LINK)) << what;
      EXPECT_FALSE(Ui().controls[ID_START].enabled) << what;
    } else {
      EXPECT_FALSE(Ui().boxes.empty() && Ui().systemErrors.empty())
          << what << ": the operator was told nothing";
      ExpectIdle();
    }
    Ui().boxes.clear();
    Ui().systemErrors.clear();
  }

  // The line and the device as good as new.
  void Repair() {
    saboteur_->Spoil(Sabotage::none, 0);
    ClearFaults();
  }

  std::unique_ptr<Saboteur> saboteur_;
  sim::VirtualGps receiver_{sim::GpsOptions{}};
  NotedPeer receiverPeer_{receiver_, " gps"};
};

class EachFamily : public Sequence, public testing::WithParamInterface<DeviceFamily> {};

constexpr struct {
  Sabotage sabotage;
  const char* name;
} kSabotages[] = {
    {Sabotage::noReply, "no reply"}, {Sabotage::refused, "refused"}, {Sabotage::hangUp, "hang-up"}};

constexpr struct {
  const char* name;
  void (*run)(AppState& state);
} kSequences[] = {
    {"Start",
     [](AppState& state) {
       StopRun(state);
       StartRun(state);
     }},
    {"Apply", ApplySettings},
    {"Default Setting", RestoreDefaults},
    {"speed", [](AppState& state) { ChangeSpeed(state, globals.deviceBaud == 921'600 ? 460'800 : 921'600); }},
};

TEST_P(EachFamily, SurvivesAFailureAtEachCommand) {
  Connect(GetParam());
  for (const auto& sequence : kSequences) {
    int commands = 1;  // until the first go, without a failure, has told how many there are
    for (const auto& [sabotage, sabotageName] : kSabotages) {
      for (int command = 0; command <= commands; ++command) {
        const std::string what =
            std::string(sequence.name) + ", " + sabotageName + " at line " + std::to_string(command);
        if (!IsRunning()) {
          // The speed that the device has now, as an operator would find it.
          globals.deviceBaud = sounder_->LineSpeed();
          Ui().Choose(ID_DEVICE_SPEED, std::to_wstring(sounder_->LineSpeed()));
          StartRun(*state_);
        }
        ASSERT_TRUE(IsRunning()) << "usable before " << what;
        state_->settings.soundSpeed_mps = 1'480.0f + static_cast<float>(command % 7);
        saboteur_->Spoil(command == 0 ? Sabotage::none : sabotage, command);
        sequence.run(*state_);
        if (command == 0) commands = saboteur_->Count();
        ExpectSound(what);
        Repair();
      }
    }
    EXPECT_GT(commands, 5) << sequence.name;
  }
}

TEST_P(EachFamily, ALineThatTakesNoBytesIsGivenUpAfterTenSecondsIfThatIsWanted) {
  Connect(GetParam());
  state_->options.giveUpWriting = 1;
  for (const auto& sequence : kSequences) {
    StartRun(*state_);
    ASSERT_TRUE(IsRunning());
    BlockLine(kDeviceLine);
    const uint32_t begin_ms = MillisecondClock();
    sequence.run(*state_);
    const uint32_t took_ms = MillisecondClock() - begin_ms;
    EXPECT_GE(took_ms, 10'000u) << sequence.name;
    EXPECT_LE(took_ms, 16'000u) << sequence.name;
    EXPECT_FALSE(IsRunning()) << sequence.name << ": a failed write";
    ExpectSound(sequence.name);
    Repair();
  }
  state_->options.giveUpWriting = 0;
  StartRun(*state_);
  BlockLine(kDeviceLine);
  const auto mend = [](void*) {
    SleepMilliseconds(20'000);
    RestoreLine(kDeviceLine);
  };
  const Handle mending = StartThread(mend, nullptr);
  ApplySettings(*state_);
  EXPECT_TRUE(IsRunning()) << "it waits for as long as the line likes";
  EXPECT_EQ(WaitForThread(mending, 0), ThreadWait::ended);
  CloseThread(mending);
}

INSTANTIATE_TEST_SUITE_P(Families, EachFamily,
                         testing::Values(DeviceFamily::first, DeviceFamily::second, DeviceFamily::third),
                         [](const auto& family) { return std::to_string(static_cast<int>(family.param)); });

// The commands in their order, "{ms}" being a wait.
constexpr char kFirstReads[] =
    "##maxrangel|#rangeh|#auto|#preset|##maxrangeh|##maxlengthh|##maxlengthl|#swversion|#getfreq|#rangel|"
    "#rangeh|#interval|#output|#thresholdl|#thresholdh|#offsetl|#offseth|#deadzonel|#deadzoneh|#txlengthl|"
    "#txlengthh|#gainlow|#gainhigh|#tvgsprdl|#tvgsprdh|#tvgabslow|#tvgabshigh|##freql|##freqh|#tvgmode|#iden|"
    "#sound|#txpower|#samplfreq|#attnl|#attnh|##vfreql|##vfreqh|##getsimul|#smooth|#outrate|#medianflt|"
    "#movavgflt";
constexpr char kSecondReads[] =
    "#iden|#range|#auto|#preset|#interval|#output|#threshold|#offset|#deadzone|#txlength|#gain|#tvgmode|"
    "#tvgsprd|#tvgabs|#sound|#getfreq|#samplfreq|#medianflt|#movavgflt|#swversion";
constexpr char kThirdReads[] = "#info|{2000}|#info";
constexpr char kSingleStart[] =
    "#time ...|#tvgmode 1|#pingonce 0|#nmeadpzero 1|#nmeadbt 1|#nmeadpt 0|#nmeamtw 1|#nmeaema 1|#nmeazda 1|"
    "#nmeaxdr 1|#output 2|#go";
constexpr char kDualStart[] = "#time ...|#nmeadpt 1|#nmeaema 1|#output 2|#range 30000|#go";

using Log = std::vector<std::string>;

Log Sum(std::initializer_list<Log> parts) {
  Log sum;
  for (const Log& part : parts) sum.insert(sum.end(), part.begin(), part.end());
  return sum;
}

Log Sent(const std::string& commands) {
  Log log;
  std::istringstream all(commands);
  for (std::string text; std::getline(all, text, '|');) {
    log.push_back(text[0] == '{' ? "wait " + text.substr(1, text.size() - 2) : "send " + text);
  }
  return log;
}

const Log kInterrupted = Sent("<stop key>|<return>|{20}");

struct OrderCase {
  friend void PrintTo(const OrderCase& each, std::ostream* out) { *out << each.name; }
  const char* name;
  DeviceFamily family;
  bool dual;
  std::string identification;  // all that is sent until the family is known and settled
  const char* reads;           // of its own settings
  const char* start;
  const char* identity;
  const char* pauseOfSpeedChange;
  Log files;
  bool recordsAtNewSpeed;
  std::string changes;  // of all that it has
};

class Order : public Sequence, public testing::WithParamInterface<OrderCase> {
 protected:
  // What is noted while the command runs. The wait for the device's next byte, or for the worker's read to
  // end, depends on the moment and is left out.
  template <typename Command>
  Log LogOf(Command command) {
    Ui().log.clear();
    Ui().Note("begin");
    command(*state_);
    Log log(Ui().log.begin() + 1, Ui().log.end());
    for (size_t i = 0; i + 1 < log.size(); ++i) {
      const bool passing = log[i + 1] == "send <stop key>" || log[i + 1] == "close";
      if (passing && log[i].starts_with("wait ")) log.erase(log.begin() + static_cast<ptrdiff_t>(i));
    }
    return log;
  }
};

TEST_P(Order, OfAllThatHappens) {
  const OrderCase& row = GetParam();
  Connect(row.family, row.dual);
  AttachPeer(kGpsLine, &receiverPeer_);
  ChooseGps();
  Ui().watchedFolder = records_;

  const auto connected = [&](const std::string& speed) -> Log {
    return {"status 0 Device: COM5," + speed + "bps, ID: " + row.identity, "status 1 GPS: COM6,4800bps"};
  };
  const Log started = Sum({{"timer 8 every 1000"}, Sent(row.start)});
  const auto startBehind = [&](const Log& stop) {
    return Sum({{"open baud=921600 parity=N data=8 stop=1"},
                stop,
                {"open gps baud=4800 parity=N data=8 stop=1"},
                Sent(row.identification),
                connected("921600"),
                row.files,
                started});
  };
  const Log stopped{"close", "close gps", "status 0 Device: Disconnected", "status 1 GPS: Disconnected"};
  EXPECT_EQ(LogOf(StartRun), startBehind(Sent("{4000}|<return>|{2120}")));
  Run(1);
  EXPECT_EQ(LogOf(StopRun), stopped);
  EXPECT_EQ(LogOf(StartRun), startBehind(kInterrupted)) << "the device streams on";

  Run(1);
  state_->settings.soundSpeed_mps = 1480.0f;
  EXPECT_EQ(LogOf(ApplySettings),
            Sum({kInterrupted, Sent("#sound 1480.000"), Sent(row.reads), row.files, started}));
  Run(1);
  EXPECT_EQ(LogOf(RestoreDefaults), Sum({{"box Change to default setting?"},
                                         kInterrupted,
                                         Sent("#default"),
                                         Sent(row.reads),
                                         row.files,
                                         started}));
  Run(1);
  EXPECT_EQ(LogOf([](AppState& state) { ChangeSpeed(state, 3'000'000); }),
            Sum({Sent("<stop key>|<return>"),
                 {row.pauseOfSpeedChange},
                 Sent("#speed 3000000|{100}|#reset"),
                 {"close", "wait 100", "open baud=3000000 parity=N data=8 stop=1 octs=on rts=on"},
                 row.recordsAtNewSpeed ? row.files : Log{},
                 connected("3000000"),
                 started}));
  Run(1);
  EXPECT_EQ(LogOf(StopRun), stopped);
}

// All that an operator can set with such a device, each to another value than its own.
void ChangeAll(DeviceSettings& s, DeviceFamily family) {
  s.outputMode = 4;
  s.pingInterval_ms = 250;
  s.rangeLow_mm = 25'000, s.rangeHigh_mm = 35'000;
  s.thresholdLow_percent = 31, s.thresholdHigh_percent = 32;
  s.offsetLow_mm = -12, s.offsetHigh_mm = 13;
  s.deadZoneLow_mm = 321, s.deadZoneHigh_mm = 322;
  s.txLengthLow = 33, s.txLengthHigh = 34;
  s.gainLow = -3.5f, s.gainHigh = 4.25f;
  s.soundSpeed_mps = 1'487.0f;
  if (family == DeviceFamily::third) return;
  s.tvgSpreadingLow = 22.5f, s.tvgSpreadingHigh = 23.5f;
  s.tvgAbsorptionLow = 0.125f, s.tvgAbsorptionHigh = 0.25f;
  s.txPower = 55.5f;
  s.attenuationLow = 7, s.attenuationHigh = 8;
  s.tvgMode = 3;
  s.medianFilter = 5;
  s.movingAverageFilter = 7;
  s.outputRate = 12.5f;
}

TEST_P(Order, EverySettingReachesTheDevice) {
  const OrderCase& row = GetParam();
  Connect(row.family, row.dual);
  StartRun(*state_);
  Run(1);
  ChangeAll(state_->settings, row.family);
  const Log expected = Sum({kInterrupted, Sent(row.changes), Sent(row.reads)});
  Log log = LogOf(ApplySettings);
  ASSERT_GE(log.size(), expected.size());
  log.resize(expected.size());
  EXPECT_EQ(log, expected);
  for (const sim::ReceivedCommand& command : sounder_->Commands().Entries()) {
    EXPECT_FALSE(command.refused && row.changes.find(command.line) != std::string::npos) << command.line;
  }
}

constexpr char kFirstChanges[] =
    "#output 4|#interval 0.25|#rangel 25000|#rangeh 35000|#thresholdl 31|#thresholdh 32|#offsetl -12|"
    "#offseth 13|#deadzonel 321|#deadzoneh 322|#txlengthl 33|#txlengthh 34|#gainlow -3.500|"
    "#gainhigh 4.250|#tvgsprdl 22.500|#tvgsprdh 23.500|#tvgabslow 0.125|#tvgabshigh 0.250|"
    "#txpower 55.500|#sound 1487.000|#attnl 7|#attnh 8|#tvgmode 3|#medianflt 5|#movavgflt 7|"
    "#outrate 12.50";

const OrderCase kOrders[] = {
    {.name = "First",
     .family = DeviceFamily::first,
     .dual = false,
     .identification = std::string(kFirstReads) + "|#reset|#info|{1110}",
     .reads = kFirstReads,
     .start = kSingleStart,
     .identity = "VIRTUAL-0001",
     .pauseOfSpeedChange = "wait 20",
     .files = {"file _Dual_450kHz_id_VIRTUAL-0001_txt10.log"},
     .recordsAtNewSpeed = true,
     .changes = kFirstChanges},
    {.name = "Dual",
     .family = DeviceFamily::first,
     .dual = true,
     .identification = std::string(kFirstReads) + "|#reset|#info|{1110}",
     .reads = kFirstReads,
     .start = kDualStart,
     .identity = "VIRTUAL-0001",
     .pauseOfSpeedChange = "wait 20",
     .files = {"file _Dual_200kHz_id_VIRTUAL-0001_txt10.log", "file _Dual_450kHz_id_VIRTUAL-0001_txt10.log"},
     .recordsAtNewSpeed = true,
     .changes = kFirstChanges},
    {.name = "Second",
     .family = DeviceFamily::second,
     .dual = false,
     .identification = std::string("##maxrangel|") + kSecondReads + "|#reset",
     .reads = kSecondReads,
     .start = kSingleStart,
     .identity = "0042",
     .pauseOfSpeedChange = "wait 20",
     .files = {"file _Single_450kHz_id_42_Echosounder.log"},
     .recordsAtNewSpeed = false,
     .changes =
         "#output 4|#interval 0.25|#range 35000|#threshold 32|#offset 13|#deadzone 322|#txlength 34|"
         "#gain 4.250|#tvgsprd 23.500|#tvgabs 0.250|#sound 1487.000|#tvgmode 3|#medianflt 5|#movavgflt 7"},
    {.name = "Third",
     .family = DeviceFamily::third,
     .dual = false,
     .identification = std::string("##maxrangel|#iden|") + kThirdReads,
     .reads = kThirdReads,
     .start = kSingleStart,
     .identity = "0042",
     .pauseOfSpeedChange = "wait 10",
     .files = {"file _Single_450kHz_id_42_Echosounder.log"},
     .recordsAtNewSpeed = false,
     .changes = "#output 4|#interval 0.25|#range 35000|#threshold 32|#offset 13|#deadzone 322|#txlength 34|"
                "#gain 4.250|#sound 1487.000"},
};
INSTANTIATE_TEST_SUITE_P(Families, Order, testing::ValuesIn(kOrders),
                         [](const auto& row) { return std::string(row.param.name); });

// kept: a speed change looks for the output's text among the first family's and names as that family does; so
// a mode of another name is recorded no further, as the orders of the families 2 and 0 show.
TEST_F(Sequence, ANewSpeedNamesFilesAsTheFirstFamilyDoes) {
  Connect(DeviceFamily::second);
  StartRun(*state_);
  state_->settings.outputMode = 3;
  ApplySettings(*state_);
  Run(1);
  Ui().watchedFolder = records_;
  Ui().log.clear();
  ChangeSpeed(*state_, 115'200);
  EXPECT_EQ(std::count(Ui().log.begin(), Ui().log.end(), "file _Dual_450kHz_id__nmea.log"), 1);
  EXPECT_NE(state_->recordFileA, Handle::invalid);
  EXPECT_TRUE(IsRunning());
}

}  // namespace
}  // namespace tw::test
