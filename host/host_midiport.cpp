#include "host/host_midiport.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <thread>

#include <RtMidi.h>

#include "foundation/time_convert.h"
#include "host/host_blockclock.h"
#include "host/host_midiapis.h"
#include "host/host_midiring.h"

namespace {

using namespace std::chrono_literals;

constexpr size_t kRingSize = 1 << 20;
// From the beginning of a block to its first sample's messages, so that whatever is queued late
// still goes out in time.
constexpr std::chrono::nanoseconds kLatency = 10ms;
constexpr std::chrono::nanoseconds kLongestSleep = 1ms;
constexpr std::chrono::nanoseconds kPatience = 10s;
// RtMidi drops longer ones for JACK, and the longest that it accepts makes it wait for ever.
constexpr size_t kMaxJackMessage = 16000;

long long GetNow() {
  return std::chrono::nanoseconds(std::chrono::steady_clock::now().time_since_epoch()).count();
}

void IgnoreWarning(RtMidiError::Type, std::string const &, void *) {}

bool IsRunning(RtMidi::Api iApi) {
  if (iApi == RtMidi::LINUX_ALSA) return Host_IsAlsaRunning();
  if (iApi == RtMidi::UNIX_JACK) return Host_IsJackRunning();
  return iApi != RtMidi::RTMIDI_DUMMY;
}

std::vector<RtMidi::Api> GetSystems() {
  Host_SilenceMidiSystems();
  std::vector<RtMidi::Api> result;
  RtMidi::getCompiledApi(result);
  std::erase_if(result, [](RtMidi::Api iApi) { return !IsRunning(iApi); });
  return result;
}

// Null where the system is not there.
std::unique_ptr<RtMidiOut> Reach(RtMidi::Api iApi, std::string const & iClientName) {
  try {
    auto out = std::make_unique<RtMidiOut>(iApi, iClientName);
    out->setErrorCallback(IgnoreWarning);
    return out;
  } catch (RtMidiError const &) {
    return nullptr;
  }
}

// A port and how RtMidi reaches it.
struct Place {
  RtMidi::Api mApi;
  unsigned mNumber;
};

void ListPlaces(std::vector<Host_MidiPortName> & oNames, std::vector<Place> & oPlaces) {
  for (RtMidi::Api api : GetSystems()) {
    std::unique_ptr<RtMidiOut> const out = Reach(api, "vrad-lists");
    unsigned const numPorts = out ? out->getPortCount() : 0;
    for (unsigned i = 0; i < numPorts; ++i) {
      oNames.push_back({RtMidi::getApiDisplayName(api), out->getPortName(i)});
      oPlaces.push_back({api, i});
    }
  }
}

}  // namespace

std::vector<Host_MidiPortName> Host_ListMidiPorts() {
  std::vector<Host_MidiPortName> names;
  std::vector<Place> places;
  ListPlaces(names, places);
  return names;
}

// The open port, the queue, and the thread between them. Outlives the port where the system hangs.
class Host_MidiPort::Sender {
public:
  Sender(std::string const & iPort, std::string const & iClientName)
      : mClock(Time_Globals::GetSampleRate()), mRing(kRingSize) {
    std::vector<Host_MidiPortName> names;
    std::vector<Place> places;
    ListPlaces(names, places);
    size_t const index = Host_FindMidiPort(names, iPort);
    mName = names[index];
    if (places[index].mApi == RtMidi::UNIX_JACK) mCycles = std::make_unique<Host_JackCycles>();
    mOut = Reach(places[index].mApi, iClientName);
    if (mOut) mOut->openPort(places[index].mNumber, "out");
    if (!mOut || !mOut->isPortOpen()) {
      throw Host_MidiPortError("the MIDI port '" + mName.mName + "' cannot be opened");
    }
    mOut->setErrorCallback(CountWarning, this);
  }

  // Audio thread.
  void BeginBlock(int iNumSamples) noexcept { mClock.BeginBlock(GetNow(), iNumSamples); }

  void Queue(Host_WireMessage const & iMessage) noexcept {
    if (mIsToEnd) return;
    long long const due = mClock.GetTime(iMessage.mOffset) + kLatency.count();
    if (!mRing.Push(due, iMessage.mData, iMessage.mLength)) CountLoss();
  }

  // Sender's thread, until told to end and nothing is queued.
  void Run() {
    std::vector<unsigned char> message;
    for (long long due = 0;;) {
      // Asked first: what is queued before the request to end is seen after it.
      bool const isToEnd = mIsToEnd;
      if (!mRing.Peek(due)) {
        if (isToEnd) break;
        std::this_thread::sleep_for(kLongestSleep);
      } else if (long long const wait = due - GetNow(); wait > 0) {
        std::this_thread::sleep_for(std::min(kLongestSleep, std::chrono::nanoseconds(wait)));
      } else {
        mRing.Pop(message);
        Send(message);
      }
    }
    // RtMidi closes a JACK port without waiting for what it was given last.
    if (mCycles && !mCycles->WaitForNext()) CountLoss();
    mOut.reset();
    mCycles.reset();
    mHasEnded = true;
  }

  void CountLoss() noexcept { ++mNumLost; }
  // False if it has been told before.
  bool End() { return !mIsToEnd.exchange(true); }
  bool HasEnded() const { return mHasEnded; }
  Host_MidiPortName const & GetName() const { return mName; }
  long long GetNumLost() const { return mNumLost; }

private:
  static void CountWarning(RtMidiError::Type, std::string const &, void * iSender) {
    static_cast<Sender *>(iSender)->CountLoss();
  }

  void Send(std::vector<unsigned char> const & iMessage) {
    if (mCycles && iMessage.size() > kMaxJackMessage) {
      CountLoss();
    } else {
      mOut->sendMessage(iMessage.data(), iMessage.size());
    }
  }

  Host_MidiPortName mName;
  std::unique_ptr<Host_JackCycles> mCycles;  // of JACK alone
  std::unique_ptr<RtMidiOut> mOut;
  Host_BlockClock mClock;
  Host_MidiRing mRing;
  std::atomic<long long> mNumLost{0};
  std::atomic<bool> mIsToEnd{false};
  std::atomic<bool> mHasEnded{false};
};

Host_MidiPort::Host_MidiPort(std::string const & iPort, std::string const & iClientName)
    : mSender(std::make_shared<Sender>(iPort, iClientName)) {
  std::thread([sender = mSender] { sender->Run(); }).detach();
}

Host_MidiPort::~Host_MidiPort() {
  Close();
}

void Host_MidiPort::Close() {
  if (!mSender->End()) return;
  long long const end = GetNow() + kPatience.count();
  while (!mSender->HasEnded() && GetNow() < end)
    std::this_thread::sleep_for(kLongestSleep);
  if (!mSender->HasEnded()) mSender->CountLoss();
}

void Host_MidiPort::BeginBlock(int iNumSamples) {
  mSender->BeginBlock(iNumSamples);
}

void Host_MidiPort::ReceiveMessage(Host_WireMessage const & iMessage) {
  mSender->Queue(iMessage);
}

Host_MidiPortName const & Host_MidiPort::GetName() const {
  return mSender->GetName();
}

long long Host_MidiPort::GetNumLost() const {
  return mSender->GetNumLost();
}
