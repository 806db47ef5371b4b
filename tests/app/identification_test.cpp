#include <algorithm>

#include "app/run_control.h"
#include "app/worker_control.h"
#include "tests/app/run_control_fixture.h"
#include "tests/app/scripted_device.h"

namespace tw::test {
namespace {

// Devices that no simulator plays here: each answers what its family's form asks first.
class IdentificationTest : public RunControlTest {
 protected:
  IdentificationTest() { AttachPeer(kDeviceLine, &device_); }

  // The number of the line in what the device received; the number of lines when it is not there.
  [[nodiscard]] ptrdiff_t PlaceOf(const char* line) const {
    return std::find(device_.lines.begin(), device_.lines.end(), line) - device_.lines.begin();
  }
  [[nodiscard]] bool Received(const char* line) const {
    return PlaceOf(line) < static_cast<ptrdiff_t>(device_.lines.size());
  }

  // The values up to the output mode; what comes behind may be missing.
  void AnswerFirstFamily(const char* outputMode) {
    device_.answers = {{"##maxrangel", "200000"}, {"#rangeh", "50000"},    {"##maxrangeh", "100000"},
                       {"##maxlengthh", "100"},   {"##maxlengthl", "200"}, {"#swversion", "3.10"},
                       {"#getfreq", "447000"},    {"#rangel", "60000"},    {"#interval", "0.005"},
                       {"#output", outputMode},   {"#reset", ""}};
  }

  ScriptedDevice device_;
};

TEST_F(IdentificationTest, ADeviceThatRefusesEverythingOrAnswersRubbishIsAskedInThreeForms) {
  StartRun(*state_);
  ExpectIdle();
  Ui().boxes.clear();
  for (const char* keyword : {"##maxrangel", "#rangeh", "#iden", "#range", "#info", "#reset"}) {
    device_.answers[keyword] = "%n%s\x01\xff,-,>";
  }
  StartRun(*state_);
  ExpectBox(L"Unable to read settings form the Echosounder", L"Error", BoxIcon::error);
  ExpectIdle();
  EXPECT_EQ(state_->settings.highFrequency_hz, 447'000);
  EXPECT_LT(PlaceOf("##maxrangel"), PlaceOf("#iden"));
  EXPECT_LT(PlaceOf("#iden"), PlaceOf("#info"));
  EXPECT_TRUE(Received("#info"));
  EXPECT_FALSE(Received("#reset"));
}

TEST_F(IdentificationTest, AFailureGivesTheGpsPortBack) {
  ConnectGps({});
  ChooseGps();
  StartRun(*state_);
  EXPECT_EQ(gpsPeer_->Opened(), 1);
  EXPECT_EQ(gpsPeer_->Closed(), 1);
  ExpectIdle();
}

TEST_F(IdentificationTest, FirstFamily) {
  AnswerFirstFamily("7");
  StartRun(*state_);
  EXPECT_EQ(globals.deviceFamily, 1);
  EXPECT_TRUE(Received("#reset"));
  EXPECT_TRUE(Ui().controls[ID_LOW_FREQUENCY].visible);
  EXPECT_TRUE(Ui().controls[ID_DUAL_MODE].visible);
  EXPECT_TRUE(Ui().controls[ID_PRESET].visible);
  EXPECT_EQ(state_->displayRangeUpper, 50'000);
  EXPECT_EQ(state_->settings.pingInterval_ms, 10);
  EXPECT_EQ(state_->appliedSettings.pingInterval_ms, 5);
  EXPECT_EQ(globals.measuredHighFrequency_hz, 447'000) << "older firmware gives the channels no names";
  EXPECT_EQ(globals.measuredLowFrequency_hz, 200'000);
}

TEST_F(IdentificationTest, SecondFamily) {
  device_.answers = {{"#iden", "42"}, {"#range", "20000"}, {"#reset", ""}};
  state_->settings.simultaneous = 1;
  state_->settings.outputMode = 3;
  StartRun(*state_);
  EXPECT_EQ(globals.deviceFamily, 2);
  EXPECT_EQ(state_->settings.identifierWord, 42);
  EXPECT_EQ(state_->settings.simultaneous, 0);
  EXPECT_EQ(state_->displayRangeUpper, 20'000);
  EXPECT_TRUE(Received("#reset"));
  EXPECT_TRUE(Ui().controls[ID_HIGH_FREQUENCY].visible);
  EXPECT_FALSE(Ui().controls[ID_LOW_FREQUENCY].visible);
  EXPECT_FALSE(Ui().controls[ID_DUAL_MODE].visible);
  EXPECT_TRUE(Ui().controls[ID_PRESET].visible);
}

TEST_F(IdentificationTest, ThirdFamily) {
  // Identifier 42, range 20,000 mm, interval 0.1 s, output mode 2, 1,480 m/s.
  device_.answers = {{"#info",
                      "B64INFO[AAAAACoAAAAgTgAAHgDNzMw9yAAAABkAAABAQAAAAAAAAAIAyAUA]\r\n"
                      "Tx Frequency      450000 Hz  "}};
  globals.smoothingSupported = 1;
  StartRun(*state_);
  EXPECT_EQ(globals.deviceFamily, 0);
  EXPECT_EQ(state_->settings.identifierWord, 42);
  EXPECT_EQ(state_->settings.frequencyInUse_hz, 450'000);
  EXPECT_EQ(globals.smoothingSupported, 0);
  EXPECT_FALSE(Received("#reset"));
  EXPECT_FALSE(Ui().controls[ID_DUAL_MODE].visible);
  EXPECT_FALSE(Ui().controls[ID_PRESET].visible);
  EXPECT_FALSE(Ui().controls[ID_PRESET_LABEL].visible);
}

TEST_F(IdentificationTest, AModeWithoutAWorkerIsReported) {
  // Every accepted mode has a worker, so no run gets here.
  ReportWorkerStart(*state_, WorkerStart::unsupportedOutput);
  ExpectBox(L"Unsupported output", L"Error", BoxIcon::error);
}

}  // namespace
}  // namespace tw::test
