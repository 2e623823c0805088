// Records written by hand, byte by byte: tests/golden/format/NAME.hex holds pairs of digits and,
// from a '#' to the end of a line, what they are. No test ever writes these files.
#pragma once

#include <exception>
#include <fstream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

#include "foundation/sys_stream.h"

typedef std::vector<unsigned char> Bytes;

inline Bytes ReadHex(std::istream & ioText) {
  Bytes bytes;
  for (std::string line; std::getline(ioText, line);) {
    std::istringstream words(line.substr(0, line.find('#')));
    for (std::string word; words >> word;)
      bytes.push_back(static_cast<unsigned char>(std::stoi(word, nullptr, 16)));
  }
  return bytes;
}

inline Bytes ReadGolden(std::string const & iName) {
  std::ifstream file(VRAD_SOURCE_DIR "/tests/golden/format/" + iName + ".hex");
  if (!file) throw std::runtime_error("no golden file " + iName);
  return ReadHex(file);
}

inline Sys_MemoryInStream OpenGolden(std::string const & iName) {
  return Sys_MemoryInStream(ReadGolden(iName));
}

/// Streams a record into the object.
template <class T>
void ReadInto(T & oObject, std::string const & iGolden) {
  Sys_MemoryInStream stream = OpenGolden(iGolden);
  oObject.StreamIn(stream);
}

template <class T>
Bytes Written(T const & iObject) {
  Sys_MemoryOutStream stream;
  iObject.StreamOut(stream);
  return stream.GetBytes();
}

/// What the body throws: its text, "nothing" if it throws nothing.
template <class TBody>
std::string ThrownBy(TBody iBody) {
  try {
    iBody();
  } catch (std::exception const & exception) {
    return exception.what();
  }
  return "nothing";
}

/// What reading throws.
template <class T>
std::string Refusal(T & oObject, std::string const & iGolden) {
  return ThrownBy([&] { ReadInto(oObject, iGolden); });
}
