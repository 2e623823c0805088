#include "cmn/cmn_n10ncenter.h"

#include <algorithm>
#include <mutex>
#include <stdexcept>
#include <utility>
#include <vector>

namespace {

typedef boost::intrusive_ptr<Cmn_MsgFunctionImplBase> FunctionPtr;

}  // namespace

Cmn_MsgFunctionImplBase::Cmn_MsgFunctionImplBase(std::type_index iMsgType) : mMsgType(iMsgType) {}
Cmn_MsgFunctionImplBase::~Cmn_MsgFunctionImplBase() = default;

std::type_index Cmn_MsgFunctionImplBase::GetMsgType() const {
  return mMsgType;
}

Cmn_MsgImplBase::Cmn_MsgImplBase(std::type_index iMsgType) : mMsgType(iMsgType) {}
Cmn_MsgImplBase::~Cmn_MsgImplBase() = default;

std::type_index Cmn_MsgImplBase::GetMsgType() const {
  return mMsgType;
}

void Cmn_MsgImplBase::CheckReceiver(Cmn_MsgFunctionImplBase const & iFunction) const {
  if (iFunction.GetMsgType() == mMsgType) return;
  throw std::runtime_error("Can't cast to correct Cmn_MsgFunctionImpl< TMsg >");
}

Cmn_MsgConnection::Cmn_MsgConnection(boost::intrusive_ptr<Cmn_MsgSender> const & iSender,
                                     FunctionPtr const & iFunction)
    : mSender(iSender), mFunction(iFunction) {}
Cmn_MsgConnection::Cmn_MsgConnection(Cmn_MsgConnection && ioOther) noexcept = default;

Cmn_MsgConnection::~Cmn_MsgConnection() {
  Disconnect();
}

void Cmn_MsgConnection::Disconnect() {
  if (!mSender) return;
  mSender->Remove(mFunction);
  mFunction.reset();
  mSender.reset();
}

bool Cmn_MsgConnection::IsConnected() const {
  return mSender != nullptr;
}

struct Cmn_MsgSender::Handlers {
  std::mutex mMutex;
  std::vector<FunctionPtr> mFunctions;  // guarded by mMutex; in order of connecting
};

Cmn_MsgSender::Cmn_MsgSender() : mHandlersP(new Handlers) {}

Cmn_MsgSender::~Cmn_MsgSender() {
  delete mHandlersP;
}

Cmn_MsgConnection Cmn_MsgSender::ConnectImpl(FunctionPtr const & iFunction) {
  std::lock_guard const lock(mHandlersP->mMutex);
  mHandlersP->mFunctions.push_back(iFunction);
  return Cmn_MsgConnection(boost::intrusive_ptr<Cmn_MsgSender>(this), iFunction);
}

void Cmn_MsgSender::SendImpl(boost::intrusive_ptr<Cmn_MsgImplBase> const & iMsg) {
  std::vector<FunctionPtr> receivers;
  {
    std::lock_guard const lock(mHandlersP->mMutex);
    std::copy_if(mHandlersP->mFunctions.begin(), mHandlersP->mFunctions.end(),
                 std::back_inserter(receivers), [&iMsg](FunctionPtr const & iFunction) {
                   return iFunction->GetMsgType() == iMsg->GetMsgType();
                 });
  }
  for (FunctionPtr const & receiver : receivers)
    iMsg->Deliver(*receiver);
}

void Cmn_MsgSender::Remove(FunctionPtr const & iFunction) {
  std::lock_guard const lock(mHandlersP->mMutex);
  std::vector<FunctionPtr> & functions = mHandlersP->mFunctions;
  functions.erase(std::find(functions.begin(), functions.end(), iFunction));
}

boost::intrusive_ptr<Cmn_MsgSender> Cmn_N10nCenter::Sender() {
  static auto * const sSenderP = new boost::intrusive_ptr<Cmn_MsgSender>(new Cmn_MsgSender);
  return *sSenderP;
}
