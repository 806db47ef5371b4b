#include <gtest/gtest.h>

#include <cstring>
#include <optional>
#include <vector>

#include "platform/clock.h"
#include "platform/system_error.h"
#include "tests/platform/network_peer.h"

namespace tw {
namespace {

class NetworkContract : public testing::Test {
 protected:
  void SetUp() override { ASSERT_NE(listener_, Handle::invalid) << LastSystemError(); }
  void TearDown() override { CloseSocket(listener_); }

  [[nodiscard]] Handle Accept() const {
    Handle connection = AcceptConnection(listener_);
    for (int i = 0; i < 2'000 && connection == Handle::invalid; ++i) {
      SleepMilliseconds(1);
      connection = AcceptConnection(listener_);
    }
    return connection;
  }

  const NetworkAddress at_ = NetworkPeer::Receiver().Address();  // free again
  Handle listener_ = ListenForConnections(at_, 8);
};

TEST_F(NetworkContract, DatagramsArriveOneByOneAndNobodyThereCostsNothing) {
  const NetworkPeer receiver = NetworkPeer::Receiver();
  const Handle socket = OpenDatagramSocket();
  for (const char* const text : {"$A\r\n", "$BC"}) {
    for (int i = 0; i < 3; ++i) EXPECT_TRUE(SendDatagram(socket, at_, "x", 1));
    EXPECT_TRUE(SendDatagram(socket, receiver.Address(), text, static_cast<uint32_t>(strlen(text))));
  }
  EXPECT_EQ(receiver.Receive(), "$A\r\n");
  EXPECT_EQ(receiver.Receive(), "$BC");
  EXPECT_FALSE(SendDatagram(socket, receiver.Address(), std::vector<char>(70'000).data(), 70'000));
  EXPECT_NE(LastSystemError(), 0u);
  CloseSocket(socket);
}

TEST_F(NetworkContract, AConnectionThatNobodyReadsTakesWhatFitsAndLosesNothingOfIt) {
  EXPECT_EQ(AcceptConnection(listener_), Handle::invalid);
  std::optional<NetworkPeer> client = NetworkPeer::Client(at_.port);
  const Handle connection = Accept();
  const std::string piece(1'000, 'x');
  size_t taken = 0;
  for (uint32_t sent = 1; sent != 0 && taken < 50'000'000; taken += sent) {
    ASSERT_TRUE(SendOnConnection(connection, piece.data(), 1'000, sent)) << LastSystemError();
  }
  EXPECT_LT(taken, 50'000'000u);
  EXPECT_EQ(client->Receive(taken).size(), taken);
  client.reset();
  uint32_t sent = 0;
  bool works = true;
  for (int i = 0; i < 2'000 && works; ++i) {
    SleepMilliseconds(1);
    works = SendOnConnection(connection, "x", 1, sent);
  }
  EXPECT_FALSE(works) << "the client has gone";
  EXPECT_EQ(sent, 0u);
  CloseSocket(connection);
}

TEST_F(NetworkContract, APortIsListenedOnOnceAtATimeAndAgainAtOnce) {
  EXPECT_EQ(ListenForConnections(at_, 8), Handle::invalid);
  EXPECT_NE(LastSystemError(), 0u);
  const NetworkPeer client = NetworkPeer::Client(at_.port);
  CloseSocket(Accept());  // the side that closes first keeps the port busy for a while
  EXPECT_TRUE(client.HasEnded());
  CloseSocket(listener_);
  listener_ = ListenForConnections(at_, 8);
  EXPECT_NE(listener_, Handle::invalid) << LastSystemError();
}

TEST(NetworkContractHandles, NoSocketIsNoHandle) {
  for (const Handle none : {Handle::null, Handle::invalid}) {
    uint32_t sent = 7;
    EXPECT_FALSE(SendDatagram(none, {0x7F00'0001, 9}, "x", 1));
    EXPECT_NE(LastSystemError(), 0u);
    EXPECT_FALSE(SendOnConnection(none, "x", 1, sent));
    EXPECT_EQ(sent, 0u);
    EXPECT_EQ(AcceptConnection(none), Handle::invalid);
    CloseSocket(none);
  }
  EXPECT_EQ(ListenForConnections({0xC000'0201, 10'110}, 8), Handle::invalid) << "another computer's address";
}

}  // namespace
}  // namespace tw
