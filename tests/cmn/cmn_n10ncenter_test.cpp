#include "cmn/cmn_n10ncenter.h"

#include <atomic>
#include <optional>
#include <stdexcept>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "vrad/vrad_n10n.h"

namespace {

struct Ping {
  int mNumber = 3;
};

struct Pong {};

typedef boost::intrusive_ptr<Cmn_MsgSender> SenderPtr;

std::string WhatOf(boost::function<void()> const & iBody) {
  try {
    iBody();
  } catch (std::runtime_error const & error) {
    return error.what();
  }
  return "nothing thrown";
}

// Usable from an initialiser, whatever the order of files.
SenderPtr const sSenderAtLoad = Cmn_N10nCenter::Sender();

}  // namespace

TEST(Cmn_N10nCenter, SenderIsTheSameForAll) {
  EXPECT_TRUE(Cmn_N10nCenter::Sender());
  EXPECT_EQ(sSenderAtLoad, Cmn_N10nCenter::Sender());
}

TEST(Cmn_MsgSender_Send, ReachesTheHandlerBeforeItReturns) {
  int num = 0;
  Cmn_MsgConnection const connection =
      Cmn_N10nCenter::Sender()->Connect<Vrad_N10n_MIDIZeroOnVelocitiesFound>(
          [&num](Vrad_N10n_MIDIZeroOnVelocitiesFound const &) { ++num; });
  Cmn_N10nCenter::Sender()->Send<Vrad_N10n_MIDIZeroOnVelocitiesFound>();
  EXPECT_EQ(1, num);
}

TEST(Cmn_MsgSender_Send, WithoutHandlersDoesNothing) {
  SenderPtr const sender(new Cmn_MsgSender);
  EXPECT_NO_THROW(sender->Send<Ping>());
}

TEST(Cmn_MsgSender_Send, CarriesTheMessage) {
  SenderPtr const sender(new Cmn_MsgSender);
  std::vector<int> numbers;
  Cmn_MsgConnection const connection =
      sender->Connect<Ping>([&](Ping const & iPing) { numbers.push_back(iPing.mNumber); });
  sender->Send(Ping{8});
  sender->Send<Ping>();
  EXPECT_EQ((std::vector<int>{8, 3}), numbers);
}

TEST(Cmn_MsgSender_Send, ReachesOnlyHandlersOfTheType) {
  SenderPtr const sender(new Cmn_MsgSender);
  int numPings = 0, numPongs = 0;
  Cmn_MsgConnection const pings = sender->Connect<Ping>([&](Ping const &) { ++numPings; });
  Cmn_MsgConnection const pongs = sender->Connect<Pong>([&](Pong const &) { ++numPongs; });
  sender->Send<Pong>();
  EXPECT_EQ(0, numPings);
  EXPECT_EQ(1, numPongs);
}

TEST(Cmn_MsgSender_Send, CallsInOrderOfConnecting) {
  SenderPtr const sender(new Cmn_MsgSender);
  std::string order;
  Cmn_MsgConnection const first = sender->Connect<Ping>([&](Ping const &) { order += "1"; });
  Cmn_MsgConnection const second = sender->Connect<Ping>([&](Ping const &) { order += "2"; });
  Cmn_MsgConnection const third = sender->Connect<Ping>([&](Ping const &) { order += "3"; });
  sender->Send<Ping>();
  EXPECT_EQ("123", order);
}

TEST(Cmn_MsgSender_Send, EmptyHandlerRaises) {
  SenderPtr const sender(new Cmn_MsgSender);
  Cmn_MsgConnection const connection = sender->Connect<Ping>(boost::function<void(Ping const &)>());
  EXPECT_TRUE(connection.IsConnected());
  EXPECT_EQ("call to empty boost::function", WhatOf([&] { sender->Send<Ping>(); }));
}

TEST(Cmn_MsgSender_Send, WhatAHandlerThrowsPassesAndEndsTheDelivery) {
  SenderPtr const sender(new Cmn_MsgSender);
  int num = 0;
  Cmn_MsgConnection const first =
      sender->Connect<Ping>([](Ping const &) { throw std::runtime_error("from a handler"); });
  Cmn_MsgConnection const second = sender->Connect<Ping>([&](Ping const &) { ++num; });
  EXPECT_EQ("from a handler", WhatOf([&] { sender->Send<Ping>(); }));
  EXPECT_EQ(0, num);
}

TEST(Cmn_MsgSender_Send, HandlerMaySend) {
  SenderPtr const sender(new Cmn_MsgSender);
  int num = 0;
  Cmn_MsgConnection const ping = sender->Connect<Ping>([&](Ping const &) { sender->Send<Pong>(); });
  Cmn_MsgConnection const pong = sender->Connect<Pong>([&](Pong const &) { ++num; });
  sender->Send<Ping>();
  EXPECT_EQ(1, num);
}

TEST(Cmn_MsgSender_Send, HandlerConnectedDuringADeliveryWaitsForTheNext) {
  SenderPtr const sender(new Cmn_MsgSender);
  std::optional<Cmn_MsgConnection> late;
  int num = 0;
  Cmn_MsgConnection const early = sender->Connect<Ping>([&](Ping const &) {
    if (!late) late.emplace(sender->Connect<Ping>([&](Ping const &) { ++num; }));
  });
  sender->Send<Ping>();
  EXPECT_EQ(0, num);
  sender->Send<Ping>();
  EXPECT_EQ(1, num);
}

TEST(Cmn_MsgSender_Send, HandlerDisconnectedDuringADeliveryStillGetsThatMessage) {
  SenderPtr const sender(new Cmn_MsgSender);
  std::optional<Cmn_MsgConnection> second;
  int num = 0;
  Cmn_MsgConnection const first = sender->Connect<Ping>([&](Ping const &) { second.reset(); });
  second.emplace(sender->Connect<Ping>([&](Ping const &) { ++num; }));
  sender->Send<Ping>();
  EXPECT_EQ(1, num);
  sender->Send<Ping>();
  EXPECT_EQ(1, num);
}

TEST(Cmn_MsgSender_Send, HandlerMayDisconnectItself) {
  SenderPtr const sender(new Cmn_MsgSender);
  std::optional<Cmn_MsgConnection> connection;
  int num = 0;
  connection.emplace(sender->Connect<Ping>([&](Ping const &) {
    ++num;
    connection->Disconnect();
  }));
  sender->Send<Ping>();
  sender->Send<Ping>();
  EXPECT_EQ(1, num);
}

TEST(Cmn_MsgConnection_Disconnect, EndsTheMessages) {
  SenderPtr const sender(new Cmn_MsgSender);
  int num = 0;
  Cmn_MsgConnection connection = sender->Connect<Ping>([&](Ping const &) { ++num; });
  EXPECT_TRUE(connection.IsConnected());
  connection.Disconnect();
  EXPECT_FALSE(connection.IsConnected());
  connection.Disconnect();
  sender->Send<Ping>();
  EXPECT_EQ(0, num);
}

TEST(Cmn_MsgConnection, DestructorDisconnects) {
  SenderPtr const sender(new Cmn_MsgSender);
  int num = 0;
  {
    Cmn_MsgConnection const connection = sender->Connect<Ping>([&](Ping const &) { ++num; });
  }
  sender->Send<Ping>();
  EXPECT_EQ(0, num);
}

TEST(Cmn_MsgConnection, MoveTakesTheHandlerAlong) {
  SenderPtr const sender(new Cmn_MsgSender);
  int num = 0;
  std::optional<Cmn_MsgConnection> first(sender->Connect<Ping>([&](Ping const &) { ++num; }));
  Cmn_MsgConnection const second(std::move(*first));
  EXPECT_FALSE(first->IsConnected());
  EXPECT_TRUE(second.IsConnected());
  first.reset();
  sender->Send<Ping>();
  EXPECT_EQ(1, num);
}

TEST(Cmn_MsgConnection, OneFunctionConnectedTwiceIsCalledTwice) {
  SenderPtr const sender(new Cmn_MsgSender);
  int num = 0;
  boost::function<void(Ping const &)> const function = [&](Ping const &) { ++num; };
  Cmn_MsgConnection const first = sender->Connect<Ping>(function);
  Cmn_MsgConnection second = sender->Connect<Ping>(function);
  sender->Send<Ping>();
  EXPECT_EQ(2, num);
  second.Disconnect();
  sender->Send<Ping>();
  EXPECT_EQ(3, num);
}

TEST(Cmn_MsgConnection, KeepsItsSenderAlive) {
  SenderPtr sender(new Cmn_MsgSender);
  Cmn_MsgConnection connection = sender->Connect<Ping>([](Ping const &) {});
  sender.reset();
  EXPECT_TRUE(connection.IsConnected());
  EXPECT_NO_THROW(connection.Disconnect());
}

TEST(Cmn_MsgImpl_Deliver, ReachesAHandlerOfItsType) {
  int number = 0;
  boost::intrusive_ptr<Cmn_MsgFunctionImpl<Ping>> const function(
      new Cmn_MsgFunctionImpl<Ping>([&](Ping const & iPing) { number = iPing.mNumber; }));
  boost::intrusive_ptr<Cmn_MsgImplBase>(new Cmn_MsgImpl<Ping>(Ping{5}))->Deliver(*function);
  EXPECT_EQ(5, number);
}

TEST(Cmn_MsgImpl_Deliver, WrongReceiverTypeRaises) {
  boost::intrusive_ptr<Cmn_MsgFunctionImplBase> const function(
      new Cmn_MsgFunctionImpl<Pong>([](Pong const &) {}));
  boost::intrusive_ptr<Cmn_MsgImplBase> const message(new Cmn_MsgImpl<Ping>(Ping()));
  EXPECT_EQ("Can't cast to correct Cmn_MsgFunctionImpl< TMsg >",
            WhatOf([&] { message->Deliver(*function); }));
}

TEST(Cmn_MsgSender_Threads, ConnectsAndSendsFromAll) {
  SenderPtr const sender(new Cmn_MsgSender);
  std::atomic<int> num{0};
  {
    std::vector<std::jthread> threads;
    for (int i = 0; i < 3; ++i) {
      threads.emplace_back([&] {
        for (int step = 0; step < 200; ++step) {
          Cmn_MsgConnection const connection = sender->Connect<Ping>([&](Ping const &) { ++num; });
          sender->Send<Ping>();
        }
      });
    }
  }
  EXPECT_GE(num, 600);
}
