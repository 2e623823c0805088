#include "host/host_wavewriter.h"

#include <array>
#include <filesystem>
#include <system_error>

std::string Host_FindSoundFont() {
  constexpr std::array<char const *, 5> kPlaces = {
      "/usr/share/sounds/sf2/default-GM.sf2", "/usr/share/sounds/sf2/TimGM6mb.sf2",
      "/usr/share/sounds/sf2/FluidR3_GM.sf2", "/usr/share/soundfonts/default.sf2",
      "/usr/share/soundfonts/FluidR3_GM.sf2"};
  for (char const * place : kPlaces) {
    std::error_code error;
    if (std::filesystem::is_regular_file(place, error)) return place;
  }
  return "";
}
