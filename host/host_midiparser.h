// Takes a Standard MIDI File apart into messages with their ticks and file offsets. It gives no
// meaning to them: notes, clips and tempo are made by whoever listens.
//
// file    := header chunk*
// header  := "MThd" length:uint32 format:uint16 tracks:uint16 division:uint16 more*
// chunk   := "MTrk" length:uint32 event*  |  id:4 length:uint32 byte*
// event   := delta:var message
// message := status data data?            channel message; the status may be left out when
//                                         it repeats
//          | 0xF0 length:var byte*        sysex, or the first packet of one
//          | 0xF7 length:var byte*        a further packet of a sysex, or bytes sent as they are
//          | 0xFF type:1 length:var byte* meta event; type 0x2F ends the track
#pragma once

#include <cstddef>
#include <span>
#include <stdexcept>
#include <string>

/// The file is not a Standard MIDI File, or one of a form that cannot be read at all.
/// `what()` says what is wrong, without the file's name and the offset.
class Host_MidiFileError : public std::runtime_error {
public:
  Host_MidiFileError(size_t iOffset, std::string const & iText);
  ~Host_MidiFileError() override;

  /// Where, in bytes from the file's beginning.
  size_t GetOffset() const { return mOffset; }

private:
  size_t mOffset;
};

/// The file's header, as it stands there.
struct Host_MidiHeader {
  int mFormat = 0;     // 0, 1 or 2
  int mNumTracks = 0;  // announced; what follows may hold fewer or more
  int mDivision = 0;   // 16 bits: ticks to the quarter note, or with bit 15 set an SMPTE rate
};

/// Far beyond music; keeps sums within 64 bits.
constexpr long long kHost_MaxFileTick = 1ll << 40;

/// Listens to the parser. The spans lie in the file's bytes and hold as long as those.
/// Ticks are the file's own, from the beginning of the track, never falling, at most
/// kHost_MaxFileTick.
class Host_MidiFileVisitor {
public:
  virtual ~Host_MidiFileVisitor();

  virtual void BeginFile(Host_MidiHeader const & iHeader) = 0;

  /// Tracks come in file order, counted from 0.
  virtual void BeginTrack(int iTrack, size_t iOffset) = 0;

  /// iStatus 0x80 to 0xEF, data 0 to 127; iData2 is 0 where the message has one data byte.
  virtual void ChannelMessage(long long iTick, unsigned char iStatus, unsigned char iData1,
                              unsigned char iData2, size_t iOffset) = 0;

  /// iStatus 0xF0 or 0xF7; the packet's bytes without status and length.
  virtual void SysexPacket(long long iTick, unsigned char iStatus,
                           std::span<unsigned char const> iBytes, size_t iOffset) = 0;

  /// All but the end of the track.
  virtual void MetaEvent(long long iTick, unsigned char iType,
                         std::span<unsigned char const> iBytes, size_t iOffset) = 0;

  /// Follows each BeginTrack, also when the track breaks off. iTick is where it ends.
  virtual void EndTrack(long long iTick) = 0;

  /// A whole chunk that is neither header nor track and has been passed over.
  virtual void UnknownChunk(size_t iOffset) = 0;

  /// Something is not as it should be. iIsLoss: bytes that may have held music could not be read.
  virtual void Problem(size_t iOffset, std::string const & iText, bool iIsLoss) = 0;
};

/// Reads iFile from front to back in one pass and tells ioVisitor what it finds.
/// A damaged track is read up to the damage, and reading goes on with the next track. Tracks beyond
/// the announced number are read too. After a sysex or meta event a channel message may still leave
/// its status out, which the format forbids and some writers do.
/// Fails: Host_MidiFileError when the header cannot be read; nothing has been told by then. What
///        the visitor throws passes through.
/// Allocates only the texts of problems.
void Host_ParseMidiFile(std::span<unsigned char const> iFile, Host_MidiFileVisitor & ioVisitor);
