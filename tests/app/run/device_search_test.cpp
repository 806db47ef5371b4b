#include "app/run/device_search.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <memory>
#include <string>

#include "app/settings/link_texts.h"
#include "base/text_format.h"
#include "platform/virtual/faults.h"
#include "simulator/virtual_echosounder.h"
#include "simulator/virtual_gps.h"
#include "tests/device/line_script.h"
#include "tests/simulator_peer.h"

namespace tw::test {
namespace {

// An instrument at its own speed; at another one it neither understands nor is understood.
class PickyPeer final : public SimulatorPeer {
 public:
  explicit PickyPeer(std::unique_ptr<sim::VirtualInstrument> instrument)
      : SimulatorPeer(*instrument), instrument_(std::move(instrument)) {}

  void Receive(std::span<const uint8_t> bytes, int64_t now_us) override {
    if (AtItsSpeed()) SimulatorPeer::Receive(bytes, now_us);
  }
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    const size_t count = SimulatorPeer::Send(out, now_us);
    if (!AtItsSpeed()) std::fill_n(out.begin(), count, uint8_t{0xE0});
    return count;
  }

 private:
  [[nodiscard]] bool AtItsSpeed() const {
    return Mode().starts_with("baud=" + std::to_string(instrument_->LineSpeed()) + " ");
  }

  std::unique_ptr<sim::VirtualInstrument> instrument_;
};

// Says the same again and again, whatever it hears, at 100,000 bit/s.
class Parrot final : public SerialPeer {
 public:
  explicit Parrot(std::string text) : text_(std::move(text)) {}

  void Receive(std::span<const uint8_t>, int64_t) override {}
  size_t Send(std::span<uint8_t> out, int64_t now_us) override {
    if (Waiting(now_us) == 0) return 0;
    out[0] = static_cast<uint8_t>(text_[at_++ % text_.size()]);
    next_us_ = now_us + 100;
    return 1;
  }
  int64_t NextSend_us(int64_t now_us) override { return std::max(now_us, next_us_); }
  size_t Waiting(int64_t now_us) override { return now_us < next_us_ ? 0 : 1; }

 private:
  std::string text_;
  size_t at_ = 0;
  int64_t next_us_ = 0;
};

class DeviceSearch : public testing::Test {
 protected:
  DeviceSearch() { ClearFaults(); }
  ~DeviceSearch() override { DetachSerialLines(); }

  void Attach(const wchar_t* name, std::unique_ptr<SerialPeer> peer) {
    plan_.ports.emplace_back(name);
    AttachPeer((std::wstring(L"\\\\.\\") + name).c_str(), peers_.emplace_back(std::move(peer)).get());
  }
  void AttachSounder(const wchar_t* name, const sim::SounderOptions& options) {
    Attach(name, std::make_unique<PickyPeer>(std::make_unique<sim::VirtualEchosounder>(options)));
  }

  // What is told of each port in the end, after so many tries.
  std::map<std::wstring, std::string> Search() {
    told_.clear();
    tries_ = 0;
    SearchDevices(plan_,
                  {this, Take, [](void* test) { return static_cast<DeviceSearch*>(test)->Cancels(); }});
    return told_;
  }

  VirtualClock clock_{1'700'000'000'000};
  SearchPlan plan_{{}, {921'600, 115'200, 4'800}};
  int tries_ = 0;
  int64_t cancelAt_us_ = kNever;

 private:
  [[nodiscard]] bool Cancels() const { return VirtualNow_us() >= cancelAt_us_; }

  static void Take(void* context, const SearchNews& news) {
    auto& test = *static_cast<DeviceSearch*>(context);
    if (news.outcome == SearchOutcome::trying) {
      ++test.tries_;
      return;
    }
    wchar_t wide[128];
    FormatNews(news, wide);
    char text[128];
    NarrowText(text, wide);
    test.told_[test.plan_.ports[news.port]] = std::string(text) + " " + std::to_string(news.speed_bps);
  }

  std::vector<std::unique_ptr<SerialPeer>> peers_;
  std::map<std::wstring, std::string> told_;
};

TEST_F(DeviceSearch, FindsEachFamilyIdleOrStreamingAtItsSpeed) {
  const struct {
    const wchar_t* port;
    int32_t family, baud, mode;
    bool streams;
    const char* told;
  } rows[] = {{L"COM1", 1, 921'600, 2, false, "Device 7 921600"},
              {L"COM2", 1, 115'200, 100, true, "Device 7 115200"},
              {L"COM3", 2, 4'800, 2, false, "Device 0007 4800"},
              {L"COM4", 2, 115'200, 3, true, "Device 0007 115200"},
              {L"COM5", 0, 921'600, 2, true, "Device 0007 921600"}};
  AttachSounder(L"COM6", {});
  for (const auto& row : rows) {
    sim::SounderOptions options;
    options.family = static_cast<sim::DeviceFamily>(row.family);
    options.identity = "7";
    options.baud = row.baud;
    options.outputMode = row.mode;
    options.streaming = row.streams;
    options.sampleCount = 200;
    AttachSounder(row.port, options);
  }
  BlockLine(L"\\\\.\\COM6");  // takes nothing, and holds up none of the others
  const auto told = Search();
  for (const auto& row : rows) EXPECT_EQ(told.at(row.port), row.told);
  EXPECT_EQ(tries_, 3 + 1 + 2 + 3 + 2 + 1) << "none behind an answer";
}

TEST_F(DeviceSearch, TellsWhatElseIsThereAndNeverForLong) {
  Attach(L"COM1", std::make_unique<PickyPeer>(std::make_unique<sim::VirtualGps>(sim::GpsOptions{})));
  sim::SounderOptions dead;
  dead.faults.instrument.dead = true;
  AttachSounder(L"COM2", dead);
  plan_.ports.emplace_back(L"COM3");  // is not there
  Attach(L"COM4", std::make_unique<Parrot>("\r\n>"));
  Attach(L"COM5", std::make_unique<Parrot>("#iden\r\n123\r\n\r\n>"));
  Attach(L"COM6", std::make_unique<Parrot>("\x80\xFF"));
  const auto told = Search();
  EXPECT_EQ(told, (std::map<std::wstring, std::string>{{L"COM1", "GPS receiver 4800"},
                                                       {L"COM2", "nothing 4800"},
                                                       {L"COM3", "cannot be opened 921600"},
                                                       {L"COM4", "a prompt, but not the settings 4800"},
                                                       {L"COM5", "a prompt, but not the settings 4800"},
                                                       {L"COM6", "noise (wrong speed?) 4800"}}));
  EXPECT_LE(VirtualNow_us(), 6 * 3 * 3'800'000);
}

TEST_F(DeviceSearch, WhatAThirdFamilyDeviceSaysIsBounded) {
  const struct {
    const char* what;
    std::string block;
    bool found;
  } rows[] = {{"the identifier alone", "B64INFO[AAAAAAcAAAA=]\r\n", true},
              {"cut", "B64INFO[AAAAAAc=]\r\n", false},
              {"without an end", "B64INFO[AAAAAAcAAAA=", false},
              {"too long", "B64INFO[" + std::string(256, 'A') + "]\r\n", false}};
  for (const auto& row : rows) {
    LineScript device;
    device.replies = {
        {" \r\n?\r\n\r\n>"}, {"?\r\n\r\n>"}, {"?\r\n\r\n>"}, {"#info\r\n" + row.block + "\r\n>"}};
    AttachPeer(kScriptedLine, &device);
    plan_ = {{L"COM5"}, {115'200}};
    EXPECT_EQ(Search().at(L"COM5"),
              row.found ? "Device 0007 115200" : "a prompt, but not the settings 115200")
        << row.what;
  }
}

TEST_F(DeviceSearch, EndsAtOnceWhenItIsCancelled) {
  for (const int64_t wait_us : {int64_t{0}, int64_t{700'000}, int64_t{5'000'000}}) {
    for (const char* const text : {"\x80", "\r\n>"}) {
      plan_.ports.clear();
      Attach(L"COM6", std::make_unique<Parrot>(text));
      cancelAt_us_ = VirtualNow_us() + wait_us;
      EXPECT_TRUE(Search().empty());
      EXPECT_LE(VirtualNow_us(), cancelAt_us_ + 200'000);
    }
  }
}

}  // namespace
}  // namespace tw::test
