// Ports are named and found here; tests/tools/play_test.py plays to a real one.
#include "host/host_midiport.h"

#include <gtest/gtest.h>

namespace {

std::vector<Host_MidiPortName> const kPorts = {
    {"ALSA", "Synth:left 128:0"}, {"ALSA", "Synth:right 128:1"}, {"JACK", "left"}};

std::string Find(std::vector<Host_MidiPortName> const & iPorts, std::string const & iPort) {
  try {
    return std::to_string(Host_FindMidiPort(iPorts, iPort));
  } catch (Host_MidiPortError const & error) {
    return error.what();
  }
}

std::string const kList = "; there are:\n  0  Synth:left 128:0\n  1  Synth:right 128:1\n  2  left";

}  // namespace

TEST(Host_FindMidiPort, ByNumber) {
  EXPECT_EQ("0", Find(kPorts, "0"));
  EXPECT_EQ("2", Find(kPorts, "2"));
}

TEST(Host_FindMidiPort, ByPartOfAName) {
  EXPECT_EQ("1", Find(kPorts, "right"));
}

TEST(Host_FindMidiPort, ByWholeNameEvenIfItIsPartOfAnother) {
  EXPECT_EQ("2", Find(kPorts, "left"));
}

TEST(Host_FindMidiPort, SaysWhatThereIs) {
  EXPECT_EQ("no MIDI port has the number 3" + kList, Find(kPorts, "3"));
  EXPECT_EQ("no MIDI port is named 'flute'" + kList, Find(kPorts, "flute"));
  EXPECT_EQ("several MIDI ports are named 'Synth'" + kList, Find(kPorts, "Synth"));
}

TEST(Host_FindMidiPort, SaysThatThereAreNone) {
  EXPECT_EQ("no MIDI port has the number 0; there are no ports", Find({}, "0"));
  EXPECT_EQ("no MIDI port is named 'a'; there are no ports", Find({}, "a"));
}

TEST(Host_FindMidiPort, NumbersAreDigitsAlone) {
  EXPECT_EQ("no MIDI port is named '-1'" + kList, Find(kPorts, "-1"));
  EXPECT_EQ("no MIDI port is named '99999999999999999999'" + kList,
            Find(kPorts, "99999999999999999999"));
}
