#include "host/host_midiapis.h"

#include <atomic>
#include <chrono>
#include <thread>

#include <alsa/asoundlib.h>
#include <jack/jack.h>

namespace {

void IgnoreAlsa(char const *, int, char const *, int, char const *, ...) {}

void IgnoreJack(char const *) {}

int CountCycle(jack_nframes_t, void * ioCount) {
  ++*static_cast<std::atomic<int> *>(ioCount);
  return 0;
}

// The first cycle may have begun before, and a client may be called late in the second.
constexpr int kNumCycles = 3;
constexpr std::chrono::seconds kPatience(2);

}  // namespace

void Host_SilenceMidiSystems() {
  snd_lib_error_set_handler(IgnoreAlsa);
  jack_set_error_function(IgnoreJack);
  jack_set_info_function(IgnoreJack);
}

bool Host_IsAlsaRunning() {
  snd_seq_t * sequencer = nullptr;
  if (snd_seq_open(&sequencer, "default", SND_SEQ_OPEN_OUTPUT, SND_SEQ_NONBLOCK) < 0) return false;
  snd_seq_close(sequencer);
  return true;
}

bool Host_IsJackRunning() {
  jack_client_t * const client = jack_client_open("vrad-asks", JackNoStartServer, nullptr);
  if (!client) return false;
  jack_client_close(client);
  return true;
}

struct Host_JackCycles::Client {
  jack_client_t * mClient;
  std::atomic<int> mNumCycles{0};
};

// Opened at once, since a second client opened after the death of the server ends the program.
Host_JackCycles::Host_JackCycles()
    : mClient(new Client{jack_client_open("vrad-cycles", JackNoStartServer, nullptr)}) {
  if (!mClient->mClient) return;
  jack_set_process_callback(mClient->mClient, CountCycle, &mClient->mNumCycles);
  jack_activate(mClient->mClient);
}

Host_JackCycles::~Host_JackCycles() {
  if (mClient->mClient) jack_client_close(mClient->mClient);
}

bool Host_JackCycles::WaitForNext() const {
  if (!mClient->mClient) return true;
  int const last = mClient->mNumCycles + kNumCycles;
  auto const end = std::chrono::steady_clock::now() + kPatience;
  while (mClient->mNumCycles < last && std::chrono::steady_clock::now() < end)
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
  return mClient->mNumCycles >= last;
}
