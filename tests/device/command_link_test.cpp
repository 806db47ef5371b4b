#include "device/command_link.h"

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

#include "platform/clock.h"
#include "tests/device/line_script.h"

namespace tw {
namespace {

class CommandLinkTest : public test::ScriptedLineTest {
 protected:
  void Answer(std::string text) { device_.replies.push_back({std::move(text)}); }
};

TEST(CommandTable, AliasesAndGaps) {
  const std::pair<uint32_t, std::string_view> rows[] = {
      {0, "#range"},   {32, "#txpower"}, {86, "#txpower"}, {10, "#speed"}, {100, "#speed"},
      {33, "##freql"}, {73, "#getfreq"}, {106, "#preset"}, {44, ""},       {98, ""},
      {99, ""},        {107, ""},        {0xFFFFFFFF, ""}};
  for (const auto& [id, keyword] : rows) EXPECT_EQ(KeywordOf(static_cast<CommandId>(id)), keyword) << id;
}

TEST_F(CommandLinkTest, TheWireFormHasABlankAndACarriageReturnAlone) {
  EXPECT_EQ(SendCommand(link_, CommandId::rangeLow, "30"), LinkResult::success);
  EXPECT_EQ(SendCommandNoValue(link_, CommandId::go), LinkResult::success);
  EXPECT_EQ(SendCommand(link_, static_cast<CommandId>(44), "1"), LinkResult::invalid);
  EXPECT_EQ(SendCommandNoValue(link_, static_cast<CommandId>(99)), LinkResult::invalid);
  EXPECT_EQ(device_.received, "#rangel 30\r#go\r");
}

TEST_F(CommandLinkTest, EachPieceIsAWriteOfItsOwnAndAFailureEndsTheCommand) {
  for (uint64_t call = 1; call <= 4; ++call) {
    device_.received.clear();
    ClearFaults();
    InjectFault({.point = FaultPoint::writeLine, .call = call});
    EXPECT_EQ(SendCommand(link_, CommandId::rangeLow, "30"), LinkResult::portFailed);
    const char* const written[] = {"", "#rangel", "#rangel ", "#rangel 30"};
    EXPECT_EQ(device_.received, written[call - 1]);
  }
}

TEST_F(CommandLinkTest, ValueLinesAreStrict) {
  constexpr int32_t kWhole = 99;  // stands there before, and stays when the line is not valid
  constexpr float kReal = 9.f;
  const struct {
    const char* reply;
    int32_t whole;
    float real;
  } rows[] = {
      {"#q\r\n-12\r\n\r\n>", -12, -12.f},
      {"#q\r\n+7\r\n\r\n>", 7, 7.f},
      {"#q\r\n\r\n\n42\r\n>", 42, 42.f},
      {"42\r\n7\r\n>", 7, 7.f},
      {"#q\r\n0.5\r\n\r\n>", kWhole, .5f},
      {"#q\r\n.5\r\n\r\n>", kWhole, .5f},
      {"#q\r\n4294967296\r\n\r\n>", kWhole, 4294967296.f},
      {"#q\r\n1-2\r\n\r\n>", kWhole, kReal},
      {"#q\r\n0.5.1\r\n\r\n>", kWhole, kReal},
      {"#q\r\n10 \r\n\r\n>", kWhole, kReal},
      {"#q\r\n10m\r\n\r\n>", kWhole, kReal},
      {"#q\r\n 10\r\n\r\n>", kWhole, kReal},
      {"#q\r\n1e3\r\n\r\n>", kWhole, kReal},
      {"#q\r\n-\r\n\r\n>", kWhole, kReal},
      {"#q\r\n.\r\n\r\n>", kWhole, kReal},
      {"#q\r\nError\r\n\r\n>", kWhole, kReal},
      {"#q\r\n\r\n>", kWhole, kReal},
  };
  for (const auto& row : rows) {
    int32_t whole = kWhole;
    float real = kReal;
    Answer(row.reply);
    Answer(row.reply);
    const auto result = [](bool valid) { return valid ? LinkResult::success : LinkResult::invalid; };
    EXPECT_EQ(QueryInt(link_, CommandId::rangeLow, whole), result(row.whole != kWhole)) << row.reply;
    EXPECT_EQ(whole, row.whole) << row.reply;
    EXPECT_EQ(QueryFloat(link_, CommandId::sound, real), result(row.real != kReal)) << row.reply;
    EXPECT_EQ(real, row.real) << row.reply;
  }
}

TEST_F(CommandLinkTest, TheIdentityIsTheLineAsItStands) {
  char identity[8] = "old";
  Answer("#iden\r\n KT-1 x,y\r\n\r\n>");
  EXPECT_EQ(QueryString(link_, identity), LinkResult::success);
  EXPECT_STREQ(identity, " KT-1 x");
  EXPECT_EQ(device_.received, "#iden\r");
  for (const char* reply : {"#iden\r\n\r\n\r\n>", "#iden\r\n\r\n>"}) {
    std::strcpy(identity, "old");
    Answer(reply);
    EXPECT_EQ(QueryString(link_, identity), LinkResult::success) << reply;
    EXPECT_STREQ(identity, "") << reply;
  }
  EXPECT_EQ(QueryString(link_, identity), LinkResult::noPrompt);
}

TEST_F(CommandLinkTest, APromptIsRecognisedHoweverItComes) {
  for (const char* reply : {"x\r\r\n>", "x\r\n\r\n>", "\r\n>", ">\r>\r\n>"}) {
    Answer(reply);
    EXPECT_EQ(Exchange(link_, CommandId::reset), LinkResult::success) << reply;
  }
  DeliverSingly(test::kScriptedLine);
  Answer("x\r\n>");
  EXPECT_EQ(Exchange(link_, CommandId::reset), LinkResult::success);
  for (const char* reply : {"x\n\r>", "x\r\n\r>", "x>", "x\r\n"}) {
    Answer(reply);
    EXPECT_EQ(Exchange(link_, CommandId::reset), LinkResult::noPrompt) << reply;
  }
}

TEST_F(CommandLinkTest, OneLimitOfTwoSecondsForTheWholeReply) {
  const struct {
    test::ScriptedReply reply;
    LinkResult result;
  } rows[] = {
      {{"x\r\n>", 1'900'000}, LinkResult::success},
      {{"x\r\n>", 2'100'000}, LinkResult::noPrompt},
      {{"1234567\r\n>", 0, 200'000}, LinkResult::success},       // the last byte after 1,800 ms
      {{"12345678901\r\n>", 0, 200'000}, LinkResult::noPrompt},  // never silent, but too long
      {{""}, LinkResult::noPrompt},
  };
  for (const auto& row : rows) {
    SCOPED_TRACE(row.reply.text);
    device_.replies = {row.reply};
    const int64_t begin_us = VirtualNow_us();
    EXPECT_EQ(Exchange(link_, CommandId::reset), row.result);
    const int64_t taken_us = VirtualNow_us() - begin_us;
    EXPECT_LE(taken_us, 2'110'000);  // the limit and one read
    EXPECT_EQ(taken_us >= 2'000'000, row.result == LinkResult::noPrompt);
    SleepMilliseconds(1'000);
    while (BytesWaiting(link_.port) > 0) static_cast<void>(SkipReply(link_));
  }
}

TEST_F(CommandLinkTest, AReplyBeyondTheBufferStillEndsAtItsPrompt) {
  Answer(std::string(kReplySize + 5'000, 'x') + "\r\n>");
  size_t length = 0;
  ASSERT_EQ(SendCommandNoValue(link_, CommandId::info), LinkResult::success);
  EXPECT_EQ(ReadReply(link_, length), LinkResult::success);
  EXPECT_EQ(length, kReplySize - 1);
  EXPECT_EQ(link_.reply[length], '\0');
}

TEST_F(CommandLinkTest, WhatCameBeforeATimeOutStaysInTheBuffer) {
  Answer("half");
  size_t length = 0;
  ASSERT_EQ(SendCommandNoValue(link_, CommandId::info), LinkResult::success);
  EXPECT_EQ(ReadReply(link_, length), LinkResult::noPrompt);
  EXPECT_STREQ(link_.reply, "half");
  HangUpLine(test::kScriptedLine);
  EXPECT_EQ(ReadReply(link_, length), LinkResult::portFailed);
}

TEST_F(CommandLinkTest, ThePromptIsAskedForUpToTenTimes) {
  for (int i = 0; i < 9; ++i) Answer("noise");
  Answer("\r\n>");
  EXPECT_EQ(RequestPrompt(link_), LinkResult::success);
  EXPECT_EQ(device_.received, std::string(10, '\r'));
  device_.received.clear();
  EXPECT_EQ(RequestPrompt(link_), LinkResult::noPrompt);
  EXPECT_EQ(device_.received, std::string(10, '\r'));
  HangUpLine(test::kScriptedLine);
  EXPECT_EQ(RequestPrompt(link_), LinkResult::portFailed);
}

TEST_F(CommandLinkTest, AttemptsForThePromptAreCountedWhenTheLineCannotBeWritten) {
  InjectFault({.point = FaultPoint::writeLine, .call = 1, .repeat = 3});
  Answer("\r\n>");
  EXPECT_EQ(RequestPrompt(link_), LinkResult::success);
  EXPECT_EQ(CallCount(FaultPoint::writeLine), 4u);
  EXPECT_EQ(VirtualNow_us() / 1000, 40) << "10 ms behind each attempt, the good one too";
}

}  // namespace
}  // namespace tw
