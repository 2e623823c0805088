#include "host/host_midiapis.h"

#include <alsa/asoundlib.h>
#include <jack/jack.h>

namespace {

void IgnoreAlsa(char const *, int, char const *, int, char const *, ...) {}

void IgnoreJack(char const *) {}

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
