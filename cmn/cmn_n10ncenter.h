// Notification: messages that go to whoever asked for their type.
#pragma once

#include <typeindex>
#include <typeinfo>

#include <boost/function.hpp>
#include <boost/smart_ptr/intrusive_ptr.hpp>

#include "foundation/sys_atomic.h"
#include "foundation/vrad_export.h"

class Cmn_MsgSender;

/// A handler as the sender keeps it, its message type known only by name.
class VRAD_EXPORT Cmn_MsgFunctionImplBase : public Sys_ThreadSafeRefCountObject {
public:
  std::type_index GetMsgType() const;

protected:
  explicit Cmn_MsgFunctionImplBase(std::type_index iMsgType);
  ~Cmn_MsgFunctionImplBase() override;

private:
  std::type_index mMsgType;
};

/// A handler of messages of type `TMsg`.
template <class TMsg>
class Cmn_MsgFunctionImpl : public Cmn_MsgFunctionImplBase {
public:
  explicit Cmn_MsgFunctionImpl(boost::function<void(TMsg const &)> const & iFunction)
      : Cmn_MsgFunctionImplBase(typeid(TMsg)), mFunction(iFunction) {}

  /// Fails: "call to empty boost::function".
  void Call(TMsg const & iMsg) const { mFunction(iMsg); }

private:
  boost::function<void(TMsg const &)> mFunction;
};

/// A message on its way.
class VRAD_EXPORT Cmn_MsgImplBase : public Sys_ThreadSafeRefCountObject {
public:
  /// Hands the message to a handler.
  /// Fails: `std::runtime_error` when the handler is for another type.
  virtual void Deliver(Cmn_MsgFunctionImplBase const & iFunction) const = 0;

  std::type_index GetMsgType() const;

protected:
  explicit Cmn_MsgImplBase(std::type_index iMsgType);
  ~Cmn_MsgImplBase() override;

  void CheckReceiver(Cmn_MsgFunctionImplBase const & iFunction) const;

private:
  std::type_index mMsgType;
};

/// A message of type `TMsg` on its way. Keeps a copy of it.
template <class TMsg>
class Cmn_MsgImpl : public Cmn_MsgImplBase {
public:
  explicit Cmn_MsgImpl(TMsg const & iMsg) : Cmn_MsgImplBase(typeid(TMsg)), mMsg(iMsg) {}

  void Deliver(Cmn_MsgFunctionImplBase const & iFunction) const override {
    CheckReceiver(iFunction);
    static_cast<Cmn_MsgFunctionImpl<TMsg> const &>(iFunction).Call(mMsg);
  }

private:
  TMsg mMsg;
};

/// The hold on a connected handler: it stays connected as long as this lives. Move only.
class VRAD_EXPORT Cmn_MsgConnection {
public:
  Cmn_MsgConnection(Cmn_MsgConnection && ioOther) noexcept;
  Cmn_MsgConnection & operator=(Cmn_MsgConnection &&) = delete;
  ~Cmn_MsgConnection();

  /// The handler gets no message sent from now on; a delivery that has begun still reaches it.
  /// A second call does nothing.
  void Disconnect();
  bool IsConnected() const;

private:
  friend class Cmn_MsgSender;
  Cmn_MsgConnection(boost::intrusive_ptr<Cmn_MsgSender> const & iSender,
                    boost::intrusive_ptr<Cmn_MsgFunctionImplBase> const & iFunction);

  // Both null once disconnected or moved from.
  boost::intrusive_ptr<Cmn_MsgSender> mSender;
  boost::intrusive_ptr<Cmn_MsgFunctionImplBase> mFunction;
};

/// Sends messages to the handlers of their type. A message is an instance of a plain type. Lives on
/// the heap, held by handles. Thread: any, not the audio thread; handlers run on the sender's.
class VRAD_EXPORT Cmn_MsgSender : public Sys_ThreadSafeRefCountObject {
public:
  Cmn_MsgSender();
  Cmn_MsgSender(Cmn_MsgSender const &) = delete;
  Cmn_MsgSender & operator=(Cmn_MsgSender const &) = delete;

  /// An empty function is taken too, and fails when a message is sent.
  template <class TMsg>
  Cmn_MsgConnection Connect(boost::function<void(TMsg const &)> const & iFunction) {
    return ConnectImpl(new Cmn_MsgFunctionImpl<TMsg>(iFunction));
  }

  /// Calls the handlers that are connected now, in order of connecting, before it returns. What
  /// handlers connect and disconnect counts from the next message on.
  /// Fails: what a handler throws passes through, and the handlers after it get nothing.
  template <class TMsg>
  void Send(TMsg const & iMsg = TMsg()) {
    SendImpl(boost::intrusive_ptr<Cmn_MsgImplBase>(new Cmn_MsgImpl<TMsg>(iMsg)));
  }

protected:
  ~Cmn_MsgSender() override;

private:
  friend class Cmn_MsgConnection;
  Cmn_MsgConnection ConnectImpl(boost::intrusive_ptr<Cmn_MsgFunctionImplBase> const & iFunction);
  void SendImpl(boost::intrusive_ptr<Cmn_MsgImplBase> const & iMsg);
  void Remove(boost::intrusive_ptr<Cmn_MsgFunctionImplBase> const & iFunction);

  struct Handlers;
  Handlers * mHandlersP;  // owned
};

/// Where the process's notifications go through.
class VRAD_EXPORT Cmn_N10nCenter {
public:
  /// The process-wide sender, usable from static initialisers on and never destroyed.
  static boost::intrusive_ptr<Cmn_MsgSender> Sender();
};
