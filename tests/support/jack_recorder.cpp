// A JACK client that writes down which MIDI messages arrive.
//
// jack_recorder OUT [SECONDS]   has one port, jack_recorder:in; prints "ready" when it can be
// played to, and ends when its input is closed or after so many seconds. OUT then holds a line for
// each message: the frame at which it arrived, and its bytes.
#include <array>
#include <atomic>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <thread>
#include <vector>

#include <jack/jack.h>
#include <jack/midiport.h>

namespace {

struct Message {
  jack_time_t mTime;
  std::vector<unsigned char> mBytes;
};

// Room taken beforehand, since the callback may not wait for memory. It does anyway for the bytes
// of a message, which a test can bear.
struct Recording {
  jack_client_t * mClient;
  jack_port_t * mPort;
  std::vector<Message> mMessages;
};

int Record(jack_nframes_t iNumFrames, void * ioRecording) {
  Recording & recording = *static_cast<Recording *>(ioRecording);
  void * const buffer = jack_port_get_buffer(recording.mPort, iNumFrames);
  jack_time_t const now = jack_get_time();
  for (jack_nframes_t i = 0; i < jack_midi_get_event_count(buffer); ++i) {
    jack_midi_event_t event;
    if (jack_midi_event_get(&event, buffer, i) != 0) continue;
    recording.mMessages.push_back(
        {now, std::vector<unsigned char>(event.buffer, event.buffer + event.size)});
  }
  return 0;
}

void Write(std::vector<Message> const & iMessages, char const * iPath) {
  std::ofstream out(iPath);
  for (Message const & message : iMessages) {
    out << message.mTime;
    for (unsigned char byte : message.mBytes) {
      std::array<char, 4> text;
      std::snprintf(text.data(), text.size(), " %02x", static_cast<unsigned>(byte));
      out << text.data();
    }
    out << "\n";
  }
}

void EndAfter(int iSeconds) {
  std::thread([iSeconds] {
    std::this_thread::sleep_for(std::chrono::seconds(iSeconds));
    std::fputs("jack_recorder: nobody closed the input\n", stderr);
    std::_Exit(1);
  }).detach();
}

}  // namespace

int main(int iNumArgs, char ** iArgs) {
  if (iNumArgs < 2) return 2;
  EndAfter(iNumArgs > 2 ? std::atoi(iArgs[2]) : 60);
  Recording recording{jack_client_open("jack_recorder", JackNoStartServer, nullptr), nullptr, {}};
  if (!recording.mClient) return 1;
  recording.mMessages.reserve(100000);
  recording.mPort =
      jack_port_register(recording.mClient, "in", JACK_DEFAULT_MIDI_TYPE, JackPortIsInput, 0);
  jack_set_process_callback(recording.mClient, Record, &recording);
  if (!recording.mPort || jack_activate(recording.mClient) != 0) return 1;
  std::puts("ready");
  std::fflush(stdout);
  while (std::getchar() != EOF) {
  }
  jack_deactivate(recording.mClient);
  Write(recording.mMessages, iArgs[1]);
  jack_client_close(recording.mClient);
}
