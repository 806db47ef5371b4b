// Start and Apply step by step: the complete order of what happens, for each family; and every way in which
// the line can fail at each command of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdio>

#include "app/control_states.h"
#include "app/run_control.h"
#include "base/shared_value.h"
#include "platform/clock.h"
#include "platform/host/faults.h"
#include "tests/app/run_control_fixture.h"

namespace tw::test {
namespace {

using sim::DeviceFamily;

enum class Sabotage : uint8_t { none, noReply, refused, hangUp };

// Stands between the program and the device: sees each line that the program sends, and spoils one of them.
class Saboteur final : public SimulatorPeer {
 public:
  explicit Saboteur(sim::VirtualInstrument& device) : SimulatorPeer(device) {}

  void Spoil(Sabotage sabotage, int command) {
    sabotage_ = sabotage;
    target_ = command;
    count_ = 0;
    hungUp_ = false;
    reply_.clear();
  }
  [[nodiscard]] int Count() const { return count_; }

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    for (const uint8_t byte : bytes) {
      line_.push_back(byte);
      if (byte != '\r' && !(byte == ' ' && line_.size() == 1)) continue;
      const std::vector<uint8_t> line = std::exchange(line_, {});
      Log(line, now_us);
      if (++count_ != target_ || sabotage_ == Sabotage::none) {
        SimulatorPeer::Receive(line, now_us);
        continue;
      }
      if (sabotage_ == Sabotage::hangUp) hungUp_ = true;
      if (sabotage_ == Sabotage::refused) reply_ = "\r\nError\r\n\r\n>";
    }
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    if (reply_.empty()) return SimulatorPeer::Send(out, now_us);
    const size_t size = reply_.copy(reinterpret_cast<char*>(out.data()), out.size());
    reply_.erase(0, size);
    return size;
  }
  size_t Waiting(int64_t now_us) override {
    return reply_.empty() ? SimulatorPeer::Waiting(now_us) : reply_.size();
  }
  int64_t NextSend_us(int64_t now_us) override {
    return reply_.empty() ? SimulatorPeer::NextSend_us(now_us) : now_us;
  }
  bool HungUp(int64_t now_us) override { return hungUp_ || SimulatorPeer::HungUp(now_us); }

 private:
  // The date differs from run to run of the program, not of the test; it is left out all the same.
  void Log(const std::vector<uint8_t>& line, int64_t) {
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
  std::string reply_;
};

class Sequence : public RunControlTest {
 protected:
  void Connect(DeviceFamily family, bool streaming = false, bool dual = false) {
    sim::SounderOptions options = QuickSounder();
    options.family = family;
    if (family == DeviceFamily::second) options.identity = "42";
    options.streaming = streaming;
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
};

struct FamilyCase {
  const char* name;
  DeviceFamily family;
};

class EachFamily : public Sequence, public testing::WithParamInterface<FamilyCase> {};

constexpr Sabotage kSabotages[] = {Sabotage::noReply, Sabotage::refused, Sabotage::hangUp};

std::string Named(const char* sequence, Sabotage sabotage, int command) {
  constexpr const char* kNames[] = {"nothing", "no reply", "refused", "hang-up"};
  return std::string(sequence) + ", " + kNames[static_cast<int>(sabotage)] + " at line " +
         std::to_string(command);
}

TEST_P(EachFamily, StartSurvivesAFailureAtEachCommand) {
  Connect(GetParam().family);
  StartRun(*state_);
  ASSERT_TRUE(IsRunning());
  const int commands = saboteur_->Count();
  ASSERT_GT(commands, 5);
  StopRun(*state_);
  for (const Sabotage sabotage : kSabotages) {
    for (int command = 1; command <= commands; ++command) {
      saboteur_->Spoil(sabotage, command);
      StartRun(*state_);
      ExpectSound(Named("Start", sabotage, command));
      StopRun(*state_);
      Repair();
    }
    StartRun(*state_);
    EXPECT_TRUE(IsRunning()) << "usable afterwards";
    StopRun(*state_);
  }
}

TEST_P(EachFamily, ApplySurvivesAFailureAtEachCommand) {
  Connect(GetParam().family);
  using Command = void (*)(AppState&);
  const struct {
    const char* name;
    Command run;
  } sequences[] = {{"Apply", ApplySettings},
                   {"Default Setting", RestoreDefaults},
                   {"speed", [](AppState& state) {
                      ChangeSpeed(state, globals.deviceBaud == 921'600 ? 460'800 : 921'600);
                    }}};
  for (const auto& sequence : sequences) {
    int commands = 1;
    for (const Sabotage sabotage : kSabotages) {
      for (int command = 0; command <= commands; ++command) {
        if (!IsRunning()) {
          // The speed that the device has now, as an operator would find it.
          globals.deviceBaud = sounder_->LineSpeed();
          Ui().Choose(ID_DEVICE_SPEED, std::to_wstring(sounder_->LineSpeed()));
          StartRun(*state_);
        }
        ASSERT_TRUE(IsRunning()) << Named(sequence.name, sabotage, command - 1);
        state_->settings.soundSpeed_mps = 1'480.0f + static_cast<float>(command % 7);
        saboteur_->Spoil(command == 0 ? Sabotage::none : sabotage, command);
        sequence.run(*state_);
        if (command == 0) commands = saboteur_->Count();
        ExpectSound(Named(sequence.name, sabotage, command));
        Repair();
      }
    }
  }
}

TEST_P(EachFamily, CallsOnThePortMayFail) {
  Connect(GetParam().family);
  StartRun(*state_);
  const uint64_t writes = CallCount(FaultPoint::writeLine);
  StopRun(*state_);
  ASSERT_GT(writes, 10u);
  for (const FaultPoint point : {FaultPoint::writeLine, FaultPoint::readLine}) {
    for (uint64_t call = 1; call <= writes; ++call) {
      InjectFault({.point = point, .call = call, .repeat = kEveryCall, .subject = L"COM5"});
      StartRun(*state_);
      // A worker that finds its line dead ends the run a second later.
      Run(2);
      ExpectSound("call " + std::to_string(call));
      StopRun(*state_);
      Repair();
    }
  }
  StartRun(*state_);
  EXPECT_TRUE(IsRunning());
}

INSTANTIATE_TEST_SUITE_P(Families, EachFamily,
                         testing::Values(FamilyCase{"First", DeviceFamily::first},
                                         FamilyCase{"Second", DeviceFamily::second},
                                         FamilyCase{"Third", DeviceFamily::third}),
                         [](const auto& family) { return std::string(family.param.name); });

// The commands in their order, "{ms}" being a wait.
constexpr char kFirstReads[] =
    "##maxrangel #rangeh #auto #preset ##maxrangeh ##maxlengthh ##maxlengthl #swversion #getfreq "
    "#rangel #rangeh #interval #output #thresholdl #thresholdh #offsetl #offseth #deadzonel "
    "#deadzoneh #txlengthl #txlengthh #gainlow #gainhigh #tvgsprdl #tvgsprdh #tvgabslow "
    "#tvgabshigh ##freql ##freqh #tvgmode #iden #sound #txpower #samplfreq #attnl #attnh ##vfreql "
    "##vfreqh ##getsimul #smooth #outrate #medianflt #movavgflt";
constexpr char kSecondReads[] =
    "#iden #range #auto #preset #interval #output #threshold #offset #deadzone #txlength #gain "
    "#tvgmode #tvgsprd #tvgabs #sound #getfreq #samplfreq #medianflt #movavgflt #swversion";
constexpr char kThirdReads[] = "#info {2000} #info";
constexpr char kStartCommands[] =
    "#time ...|#tvgmode 1|#pingonce 0|#nmeadpzero 1|#nmeadbt 1|#nmeadpt 0|#nmeamtw 1|#nmeaema 1|#nmeazda 1|"
    "#nmeaxdr 1|#output 2|#go";

struct OrderCase {
  const char* name;
  DeviceFamily family;
  std::string identification;  // all that is sent until the family is known and settled
  const char* reads;           // of its own settings
  const char* identity;
  std::string afterSettling;
  std::string pauseOfSpeedChange;
};

class Order : public Sequence, public testing::WithParamInterface<OrderCase> {
 protected:
  static void Add(std::vector<std::string>& log, const std::string& texts, char separator) {
    std::string text;
    const auto end = [&] {
      if (text.empty()) return;
      log.push_back(text[0] == '{' ? "wait " + text.substr(1, text.size() - 2) : "send " + text);
      text.clear();
    };
    for (const char c : texts) {
      if (c == separator) {
        end();
      } else {
        text += c;
      }
    }
    end();
  }
  static void AddConnected(std::vector<std::string>& log, const char* speed, const char* identity) {
    log.push_back(std::string("status 0 Device: COM5,") + speed + "bps, ID: " + identity);
    log.emplace_back("status 1 GPS: Disconnected");
  }
  static void AddRun(std::vector<std::string>& log) {
    log.emplace_back("timer 8 every 1000");
    Add(log, kStartCommands, '|');
  }
  // What is noted while the command runs, from an entry of our own on.
  template <typename Command>
  std::vector<std::string> LogOf(Command command) {
    Ui().log.clear();
    Ui().Note("begin");
    command();
    return Ui().log;
  }
};

TEST_P(Order, OfStartApplySpeedChangeAndStop) {
  const OrderCase& row = GetParam();
  Connect(row.family);
  std::vector<std::string> expected{"begin", "wait 4100", "send <return>", "wait 2120"};
  Add(expected, row.identification, ' ');
  if (!row.afterSettling.empty()) expected.push_back(row.afterSettling);
  AddConnected(expected, "921600", row.identity);
  AddRun(expected);
  EXPECT_EQ(LogOf([&] { StartRun(*state_); }), expected);

  Run(1);
  state_->settings.soundSpeed_mps = 1480.0f;
  expected = {"begin", "wait 10", "send <stop key>", "send <return>", "wait 20", "send #sound 1480.000"};
  Add(expected, row.reads, ' ');
  AddRun(expected);
  EXPECT_EQ(LogOf([&] { ApplySettings(*state_); }), expected);

  Run(1);
  expected = {"begin",
              "wait 10",
              "send <stop key>",
              "send <return>",
              row.pauseOfSpeedChange,
              "send #speed 3000000",
              "wait 100",
              "send #reset",
              "wait 100"};
  AddConnected(expected, "3000000", row.identity);
  AddRun(expected);
  EXPECT_EQ(LogOf([&] { ChangeSpeed(*state_, 3'000'000); }), expected);
  EXPECT_EQ(saboteur_->Mode(), "baud=3000000 parity=N data=8 stop=1 octs=on rts=on");

  Run(1);
  EXPECT_EQ(
      LogOf([&] { StopRun(*state_); }),
      (std::vector<std::string>{"begin", "status 0 Device: Disconnected", "status 1 GPS: Disconnected"}));
}

INSTANTIATE_TEST_SUITE_P(
    Families, Order,
    testing::Values(OrderCase{"First", DeviceFamily::first, std::string(kFirstReads) + " #reset #info",
                              kFirstReads, "VIRTUAL-0001", "wait 1110", "wait 20"},
                    OrderCase{"Second", DeviceFamily::second,
                              std::string("##maxrangel ") + kSecondReads + " #reset", kSecondReads, "0042",
                              "", "wait 20"},
                    OrderCase{"Third", DeviceFamily::third, std::string("##maxrangel #iden ") + kThirdReads,
                              kThirdReads, "0042", "", "wait 10"}),
    [](const auto& row) { return std::string(row.param.name); });

}  // namespace
}  // namespace tw::test
