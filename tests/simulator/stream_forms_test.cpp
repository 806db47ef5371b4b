// One message of each form, and the answer to "#info", against text and hex put down by hand (numbers
// converted and checksums added by another program). Readers elsewhere are tested against the same forms.
#include <gtest/gtest.h>

#include "simulator/echo_stream.h"
#include "simulator/stream_forms.h"
#include "tests/simulator/recorded_stream.h"

namespace tw::sim {
namespace {

constexpr uint16_t kSamples[] = {0, 66, 4'095, 1'000};

PingReport Report(int32_t mode) {
  return {.identity = "AB-12",
          .time_s = 1'700'000'000,  // 2023-11-14 22:13:20
          .time_ms = 250,
          .outputMode = mode,
          .samplingFrequency_hz = 25'000,
          .resolution_um = 30'000,
          .range_mm = 30'000,
          .altitude_mm = 12'345,
          .altitudeLow_mm = 12'601,
          .temperature_centi = 1'420,
          .pitch_centi = 125,
          .roll_centi = -50,
          .ema_centi = 117,
          .number = 17,
          .txFrequency_hz = 450'000,
          .secondChannel = false,
          .reportsFrequency = false,
          .channels = 1,
          .sentences = {},
          .samples = kSamples};
}

std::string Message(DeviceFamily family, const PingReport& report) {
  const StreamMode* mode = FindStreamMode(family, report.outputMode);
  if (mode == nullptr) return "no such mode";
  StreamMessage message;
  mode->append(report, {}, message);
  return {message.bytes.begin(), message.bytes.end()};
}

std::string Hex(const StreamMessage& message) {
  constexpr char kDigits[] = "0123456789abcdef";
  std::string text;
  for (const uint8_t byte : message.bytes) {
    text += kDigits[byte >> 4];
    text += kDigits[byte & 15];
  }
  return text;
}

TEST(StreamForms, TextByHand) {
  using enum DeviceFamily;
  const std::string secondText =
      "#DeviceID AB-12\r\n"
      "#TimeWork 1700000000.250\r\n"
      "#Ping 17\r\n"
      "#Altitude,m 12.345\r\n"
      "#Temperature,\xB0"
      "C 14.20\r\n"
      "#Pitch,deg 1.25\r\n"
      "#Roll,deg -0.50\r\n"
      "#NSamples 4\r\n"
      "#Resolution,mm 30.000\r\n"
      "#---------------Parameters---------------\r\n"
      "#OutputMode    5\r\n"
      "#Tx_Frequency,Hz 450000\r\n"
      "##DataStart\r\n"
      "0\r\n66\r\n4095\r\n1000\r\n"
      "\r\n\r\n";
  const std::string secondEpoch =
      "$GPDBT,40.50,f,12.345,M,,*5E\r\n"
      "$YXXDR,A,1.25,D,PTCH,A,-0.50,D,ROLL*73\r\n"
      "$GPMTW,14.20,*70\r\n"
      "$GPEMA,1.17*6B\r\n";
  const struct {
    DeviceFamily family;
    int32_t mode;
    std::string text;
  } rows[] = {
      {first, 1, "Alt : 12.345\r\n"},
      {first, 3,
       "$SDZDA,221320.25,14,11,2023,00,00,*4B\r\n"
       "$SDDBT,40.50,f,12.345,M,6.75,F*02\r\n"
       "$SDXDR,A,1.25,D,PTCH,A,-0.50,D,ROLL*65\r\n"
       "$SDMTW,14.20,*70\r\n"
       "$SDXDR,A,1.17,P,EMA*18\r\n"},
      {first, 5, "no such mode"},
      {first, 6, "DA12.345 m*\r\n"},
      {first, 7, "Dual : 17, 12.345, 12.601, 14.20\r\n"},
      {first, 8, "1 12.345 12.601 0.00 12.10 100\r\n"},
      {first, 9, "1 12.345 0 0 0 12.10 100 17\r\n"},
      {first, 10, "no such mode"},
      {second, 1, "Alt : 12.345\r\n"},
      {second, 3, secondEpoch},
      {second, 5, secondText},
      {third, 5, secondText},
      {second, 7, "R12.345\r\n"},
      {second, 8, "12.345,   14.20\r\n"},
      {second, 9, "1 12.345 12.601 0.00 12.10 100\r\n"},
      {second, 10, "1 12.345 0 0 0 12.10 100 17\r\n"},
      {second, 99, "no such mode"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(Message(row.family, Report(row.mode)), row.text)
        << "family " << static_cast<int>(row.family) << " mode " << row.mode;
  }
}

TEST(StreamForms, VariantsByHand) {
  PingReport report = Report(1);
  report.reportsFrequency = true;
  EXPECT_EQ(Message(DeviceFamily::first, report), "Hz\r\n 450000.0\r\nAlt : 12.345\r\n");
  report.outputMode = 3;
  report.sentences.depthOfWater = true;
  report.sentences.attitude = false;
  EXPECT_EQ(Message(DeviceFamily::first, report),
            "#F 450000 Hz\r\n"
            "$SDZDA,221320.25,14,11,2023,00,00,*4B\r\n"
            "$SDDBT,40.50,f,12.345,M,6.75,F*02\r\n"
            "$SDDPT,12.345,0.0*66\r\n"
            "$SDMTW,14.20,*70\r\n"
            "$SDXDR,A,1.17,P,EMA*18\r\n");
  report = Report(6);
  report.secondChannel = true;
  EXPECT_EQ(Message(DeviceFamily::first, report), "DB12.345 m*\r\n");
}

TEST(StreamForms, NoBottomIsZeroOrEmptyFields) {
  PingReport report = Report(3);
  report.altitude_mm = 0;
  const auto expect = [&](DeviceFamily family, const char* depth) {
    EXPECT_NE(Message(family, report).find(depth), std::string::npos) << depth;
  };
  expect(DeviceFamily::first, "$SDDBT,0.00,f,0.000,M,0.00,F*06\r\n");
  expect(DeviceFamily::second, "$GPDBT,0.00,f,0.000,M,,*5E\r\n");
  report.sentences.depthZero = false;
  expect(DeviceFamily::first, "$SDDBT,,f,,M,,F*28\r\n");
}

TEST(StreamForms, BinaryByHand) {
  const std::string magic = "54494445575249544543";
  const std::string values = "1f854541333363410000a03f000000bf";  // altitude, temperature, pitch, roll
  const std::string block = "00f15365fa00000011000000" + values;  // time, number
  const std::string facts = "0400000030750000d0dd0600a8610000";   // samples, range, frequencies
  const std::string words = "00004200ff0fe803";
  const std::string frame =
      "580000000000000000000000"          // length of the header
      "00f1536511000000a861000000000000"  // time, number, sampling frequency
      "040000000000f041d0dd060000000000"  // samples, range, frequency
      + values + std::string(48, '0') + words;
  const struct {
    const char* name;
    const StreamMode* mode;
    std::string hex;
  } rows[] = {
      {"16-bit block", FindStreamMode(DeviceFamily::first, 100),
       magic + "46000000" + block + "00000000" + facts + words},
      // 66 lies between the codes 64 (65) and 65 (67); 1000 between 189 (991) and 190 (1007).
      {"companded block", FindStreamMode(DeviceFamily::first, 101),
       magic + "42000000" + block + "01000000" + facts + "0040ffbd"},
      {"frame", FindBinaryForm(BinaryForm::frame), "54523537" + frame},
      {"dual frame", FindBinaryForm(BinaryForm::dualFrame), "4455414c" + frame},
  };
  for (const auto& row : rows) {
    StreamMessage message;
    row.mode->append(Report(100), {}, message);
    EXPECT_EQ(Hex(message), row.hex) << row.name;
  }
}

// The third family's block of 38 bytes, or of another length, was packed by another program.
TEST(Information, AsEachFamilyTellsIt) {
  const std::string frequency = "]\r\nTx Frequency      450000 Hz  ";
  const struct {
    SounderOptions options;
    std::string told;
  } rows[] = {
      {{.interfaceWord = InterfaceWord::usb},
       "Device VIRTUAL-0001\r\nFirmware 2.10\r\nRange 30000 mm\r\nOutput 2\r\nInterface USB"},
      {{.family = DeviceFamily::second, .identity = "1042", .firmware_hundredths = 195},
       "Device 1042\r\nFirmware 1.95\r\nRange 30000 mm\r\nOutput 2"},
      {{.family = DeviceFamily::third},
       "B64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AU=" + frequency},
      {{.family = DeviceFamily::third, .faults = {.informationBytes = 13}},
       "B64INFO[JgAAACoAAAAwdQAAMg==" + frequency},
      {{.family = DeviceFamily::third, .faults = {.informationBytes = 40}},
       "B64INFO[JgAAACoAAAAwdQAAMgAAAAAA9AEAAAoAAAAAAAAAcEEBAAIA3AUAAA==" + frequency},
  };
  for (const auto& row : rows) {
    VirtualEchosounder device(row.options);
    device.Receive({reinterpret_cast<const uint8_t*>("#info\r"), 6}, 0);
    EXPECT_EQ(ReadUntil(device, 500'000), "#info\r\n" + row.told + "\r\n\r\n>");
  }
}

}  // namespace
}  // namespace tw::sim
