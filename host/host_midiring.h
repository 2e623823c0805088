// Hands messages from the audio thread to the one that sends them.
#pragma once

#include <atomic>
#include <cstddef>
#include <vector>

/// A queue of messages and their times between two threads, without locks. Memory is taken once, at
/// construction.
/// Thread: one that pushes, in real time, and one that takes out.
class Host_MidiRing {
public:
  /// Room for at least so many bytes; each message takes 12 more.
  explicit Host_MidiRing(size_t iNumBytes);
  Host_MidiRing(Host_MidiRing const &) = delete;
  Host_MidiRing & operator=(Host_MidiRing const &) = delete;

  /// False if there is no room. A message of more than three bytes leaves a quarter of the room
  /// free, so that a long one never keeps out a note-off.
  bool Push(long long iTime, unsigned char const * iData, int iLength) noexcept;

  /// The time of the oldest message; false if there is none.
  bool Peek(long long & oTime) const noexcept;

  /// Takes the oldest message out.
  /// Needs: one is there.
  void Pop(std::vector<unsigned char> & oMessage);

private:
  struct Head {
    long long mTime;
    int mLength;
  };
  static constexpr size_t kHeadSize = sizeof(long long) + sizeof(int);

  void Write(size_t iAt, void const * iData, size_t iNumBytes) noexcept;
  void Read(size_t iAt, void * oData, size_t iNumBytes) const noexcept;
  Head ReadHead(size_t iAt) const noexcept;

  std::vector<unsigned char> mBytes;  // a power of two of them
  // How many bytes ever went in and came out; the places are these, modulo the size.
  std::atomic<size_t> mNumIn{0};
  std::atomic<size_t> mNumOut{0};
};
