// What a program says that was built without RtMidi, FluidSynth, or JACK's own library. The sources
// that then stand in are built into this test, so that they are built at all.
#include <gtest/gtest.h>

#include <string>

#include "host/host_midiapis.h"
#include "host/host_midiport.h"
#include "host/host_wavewriter.h"

namespace {

constexpr char const * kNoPorts = "this program was built without MIDI ports: RtMidi was not found";
constexpr char const * kNoSound = "this program was built without sound: FluidSynth was not found";

template <class TError, class TAction>
std::string ErrorOf(TAction iAction) {
  try {
    iAction();
    return "none";
  } catch (TError const & error) {
    return error.what();
  }
}

}  // namespace

TEST(Host_MidiPort_None, ListingSaysThatRtMidiIsMissing) {
  EXPECT_EQ(kNoPorts, ErrorOf<Host_MidiPortError>([] { Host_ListMidiPorts(); }));
}

TEST(Host_MidiPort_None, OpeningSaysThatRtMidiIsMissing) {
  EXPECT_EQ(kNoPorts, ErrorOf<Host_MidiPortError>([] { Host_MidiPort("0", "test"); }));
}

// Told before a SoundFont is asked for, which would be of no use.
TEST(Host_WaveWriter_None, LookingForASoundFontSaysThatFluidSynthIsMissing) {
  EXPECT_EQ(kNoSound, ErrorOf<Host_SoundError>([] { Host_FindSoundFont(); }));
}

TEST(Host_WaveWriter_None, WritingSaysThatFluidSynthIsMissing) {
  EXPECT_EQ(kNoSound, ErrorOf<Host_SoundError>([] { Host_WaveWriter("out.wav", "in.sf2"); }));
}

// RtMidi is then asked itself, and finds out.
TEST(Host_MidiApis_Others, TakeEachSystemAsRunning) {
  Host_SilenceMidiSystems();
  EXPECT_TRUE(Host_IsAlsaRunning());
  EXPECT_TRUE(Host_IsJackRunning());
  EXPECT_TRUE(Host_JackCycles().WaitForNext());
}
