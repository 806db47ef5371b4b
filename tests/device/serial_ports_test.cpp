#include "device/serial_ports.h"

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "platform/serial_line.h"
#include "platform/system_error.h"
#include "platform/virtual/faults.h"
#include "platform/virtual/serial_peer.h"
#include "platform/virtual/virtual_clock.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

using PortList = std::vector<PortEntry>;

PortList List(std::vector<std::wstring> names, size_t capacity = kMaxPorts) {
  SetSerialLineList(std::move(names));
  PortList entries(capacity);
  EXPECT_TRUE(EnumerateSerialPorts(entries));
  return entries;
}

std::vector<std::wstring> Names(const PortList& entries) {
  std::vector<std::wstring> names;
  for (size_t i = 0; i < CountPorts(entries); ++i) names.emplace_back(entries[i].name);
  return names;
}

TEST(SerialPorts, NumericOrderAndOnlyComNames) {
  PortList entries = List({L"COM9", L"LPT1", L"com4", L"COM3", L"COM12", L"XCOM5"});
  EXPECT_EQ(Names(entries), (std::vector<std::wstring>{L"COM9", L"COM3", L"COM12"}));
  SortPorts(entries);
  EXPECT_EQ(Names(entries), (std::vector<std::wstring>{L"COM3", L"COM9", L"COM12"}));
  EXPECT_EQ(entries[2].number, 12u);
  EXPECT_EQ(FindPort(entries, L"COM9"), 1);
  for (const wchar_t* other : {L"COM", L"COM1", L"com9", L"COM2"}) EXPECT_EQ(FindPort(entries, other), -1);
}

TEST(SerialPorts, TheNumberIsReadAsTheCLibraryReadsAnInteger) {
  const struct {
    const wchar_t* name;
    uint32_t number;
  } rows[] = {{L"COM007", 7},
              {L"COM12abc", 12},
              {L"COM 5", 5},
              {L"COM+6", 6},
              {L"COM-3", 4'294'967'293},
              {L"COM2147483648", 2'147'483'647},
              {L"COM00000000000000000000000000000008", 8},
              {L"COM99999999999999999999999999999999", 2'147'483'647},
              {L"COM-99999999999", 2'147'483'648},
              {L"COMx1", 0},
              {L"COM - 1", 0}};
  for (const auto& row : rows) EXPECT_EQ(List({row.name})[0].number, row.number);
  EXPECT_EQ(FindPort(List({L"COM-3"}), L"COM-3"), 0);
}

TEST(SerialPorts, APortBehindANameWithoutANumberDoesNotReturnLater) {
  PortList entries = List({L"COM2", L"COM", L"COM7"});
  EXPECT_EQ(Names(entries), std::vector<std::wstring>{L"COM2"}) << "which ends the list";
  ClearPortList(entries);
  EXPECT_EQ(CountPorts(entries), 0u);
  EXPECT_EQ(entries[0].name[0], L'\0');
  SetSerialLineList({L"COM2", L"COM3"});
  EXPECT_TRUE(EnumerateSerialPorts(entries));
  EXPECT_EQ(Names(entries), (std::vector<std::wstring>{L"COM2", L"COM3"}));
}

TEST(SerialPorts, TheListStopsAtItsCapacity) {
  std::vector<std::wstring> names;
  for (int i = 1; i <= 300; ++i) names.push_back(L"COM" + std::to_wstring(i));
  const PortList entries = List(names, 256);
  EXPECT_EQ(CountPorts(entries), 256u);
}

TEST(SerialPorts, AListThatCannotBeReadIsEmpty) {
  InjectFault({.point = FaultPoint::listLines, .code = 13});
  PortList entries(4);
  EXPECT_FALSE(EnumerateSerialPorts(entries));
  EXPECT_EQ(LastSystemError(), 13u);
  EXPECT_EQ(CountPorts(entries), 0u);
  ClearFaults();
}

TEST(SerialPorts, AnIdleReadTakesTwiceAsLongOnTheFastPort) {
  const VirtualClock clock(0);
  test::LineScript silent;
  AttachPeer(L"\\\\.\\COM9", &silent);
  for (const bool fast : {false, true}) {
    const Handle port = fast ? OpenFastDevicePort(L"COM9") : OpenDevicePort(L"COM9", 115'200);
    const int64_t begin_us = VirtualNow_us();
    uint8_t byte = 0;
    uint32_t got = 1;
    EXPECT_TRUE(ReadSerialLine(port, &byte, 1, got));
    EXPECT_EQ(got, 0u);
    EXPECT_EQ((VirtualNow_us() - begin_us) / 1'000, fast ? 200 : 100);
    CloseSerialLine(port);
  }
  DetachSerialLines();
}

class WaitForByte : public test::ScriptedLineTest {};

TEST_F(WaitForByte, TakesFourSecondsAndEatsTheByte) {
  EXPECT_FALSE(WaitForAnyByte(link_));
  EXPECT_GE(VirtualNow_us(), 4'000'000);
  EXPECT_LE(VirtualNow_us(), 4'010'000) << "no read begins when they are over";
  device_.Say({"xy"}, VirtualNow_us());
  EXPECT_TRUE(WaitForAnyByte(link_));
  EXPECT_EQ(BytesWaiting(link_.port), 1u);
  HangUpLine(test::kScriptedLine);
  EXPECT_FALSE(WaitForAnyByte(link_));
}

}  // namespace
}  // namespace tw
