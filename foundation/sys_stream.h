// Typed streams, in memory and in files, and the frame around a record.
//
// Values are little-endian without marks of type: bool and signed char 1 byte, short 2, int 4,
// long long 8. A record is
//   record := tagLength:uint8  tag:byte[tagLength]  version:int16  size:int64  byte[size]
//
// Thread: a stream is used by one thread at a time.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

#include "cmn/cmn_exception.h"
#include "foundation/vrad_export.h"

/// What reading and writing throw. `what()` is the text.
class VRAD_EXPORT Sys_StreamException : public Cmn_Exception {
public:
  enum EReason : int { kEndOfStream, kWrongTag, kWrongVersion, kIO };

  /// `iText` is UTF-8.
  Sys_StreamException(EReason iReason, std::string const & iText);
  ~Sys_StreamException() override;

  EReason GetReason() const { return mReason; }

  Sys_StreamException * Clone() const override;
  [[noreturn]] void Throw() const override;

private:
  EReason mReason;
};

/// Takes values at a position, which moves on with each.
/// Fails: `Sys_StreamException` with `kIO` where bytes cannot be kept.
class VRAD_EXPORT Sys_TypedOutStream {
public:
  virtual ~Sys_TypedOutStream();

  void Write(bool iValue);
  void Write(signed char iValue);
  void Write(short iValue);
  void Write(int iValue);
  void Write(long long iValue);
  template <class T>
  void Write(T) = delete;  // no other type slips into an overload

  /// A count of 0 or less writes nothing.
  virtual void WriteBlock(void const * iData, int iNumBytes) = 0;

  virtual long long GetPos() = 0;
  /// Past the end is legal: what is skipped reads as zeros once something is written behind it.
  virtual void SetPos(long long iPos) = 0;

protected:
  Sys_TypedOutStream() = default;
  Sys_TypedOutStream(Sys_TypedOutStream const &) = default;
  Sys_TypedOutStream & operator=(Sys_TypedOutStream const &) = default;
};

/// Gives back the values at a position, which moves on with each.
/// Fails: `Sys_StreamException` with `kEndOfStream` where fewer bytes are left; the position then
/// stays.
class VRAD_EXPORT Sys_TypedInStream {
public:
  virtual ~Sys_TypedInStream();

  void Read(bool * oValue);  // any byte but 0 is true
  void Read(signed char * oValue);
  void Read(short * oValue);
  void Read(int * oValue);
  void Read(long long * oValue);

  /// A count of 0 or less reads nothing.
  virtual void ReadBlock(void * oData, int iNumBytes) = 0;

  virtual long long GetPos() = 0;
  /// Outside the stream is legal: the next read throws.
  virtual void SetPos(long long iPos) = 0;
  /// From the position to the end, never below 0. No count read from the stream reserves more.
  virtual long long BytesLeft() = 0;

protected:
  Sys_TypedInStream() = default;
  Sys_TypedInStream(Sys_TypedInStream const &) = default;
  Sys_TypedInStream & operator=(Sys_TypedInStream const &) = default;
};

/// Writes into memory of its own.
class VRAD_EXPORT Sys_MemoryOutStream : public Sys_TypedOutStream {
public:
  Sys_MemoryOutStream();
  ~Sys_MemoryOutStream() override;

  /// All that was written. Lives: until the next write.
  std::vector<unsigned char> const & GetBytes() const { return mBytes; }

  void WriteBlock(void const * iData, int iNumBytes) override;
  long long GetPos() override;
  void SetPos(long long iPos) override;

private:
  std::vector<unsigned char> mBytes;
  long long mPos = 0;
};

/// Reads bytes that it owns.
class VRAD_EXPORT Sys_MemoryInStream : public Sys_TypedInStream {
public:
  explicit Sys_MemoryInStream(std::vector<unsigned char> iBytes);
  ~Sys_MemoryInStream() override;

  void ReadBlock(void * oData, int iNumBytes) override;
  long long GetPos() override;
  void SetPos(long long iPos) override;
  long long BytesLeft() override;

private:
  std::vector<unsigned char> mBytes;
  long long mPos = 0;
};

class Sys_NewFile;
class Sys_ExistingFile;

/// Writes a file beside its target and puts it in the target's place when closed, so that whatever
/// stops the writer leaves the old file whole. Without `Close` the new file is thrown away.
/// The path is UTF-8.
class VRAD_EXPORT Sys_FileOutStream : public Sys_TypedOutStream {
public:
  /// Fails: `kIO` if no file can be made in the target's folder.
  explicit Sys_FileOutStream(std::string const & iPath);
  ~Sys_FileOutStream() override;
  Sys_FileOutStream(Sys_FileOutStream const &) = delete;
  Sys_FileOutStream & operator=(Sys_FileOutStream const &) = delete;

  /// Brings the bytes to the disk and replaces the target. A second call does nothing.
  /// Fails: `kIO` if this or any earlier write failed; the old file stays. Only if the folder
  /// itself could not be brought to the disk is the new one already in its place.
  void Close();

  void WriteBlock(void const * iData, int iNumBytes) override;
  long long GetPos() override;
  void SetPos(long long iPos) override;

private:
  void WriteThrough(long long iPos, void const * iData, size_t iNumBytes);
  void Flush();

  std::unique_ptr<Sys_NewFile> mFileP;  // null once closed
  std::vector<unsigned char> mBuffer;   // not yet written, ending at the position
  long long mPos = 0;
  bool mFailed = false;
};

/// Reads a file that stays open. The path is UTF-8.
class VRAD_EXPORT Sys_FileInStream : public Sys_TypedInStream {
public:
  /// Fails: `kIO` if the file cannot be opened.
  explicit Sys_FileInStream(std::string const & iPath);
  ~Sys_FileInStream() override;
  Sys_FileInStream(Sys_FileInStream const &) = delete;
  Sys_FileInStream & operator=(Sys_FileInStream const &) = delete;

  void ReadBlock(void * oData, int iNumBytes) override;
  long long GetPos() override;
  void SetPos(long long iPos) override;
  long long BytesLeft() override;

private:
  void FillBuffer();

  std::unique_ptr<Sys_ExistingFile> mFileP;
  std::vector<unsigned char> mBuffer;  // the bytes of the file from `mBufferPos` on
  long long mBufferPos = 0;
  long long mPos = 0;
};

/// Opens a record; what is written next belongs to it. Its size is 0 until `PatchSize`.
class VRAD_EXPORT Sys_StdStreamHeaderWriter {
public:
  /// The stream must outlive the writer. Needs: a tag of at most 255 bytes.
  Sys_StdStreamHeaderWriter(Sys_TypedOutStream & iStream, char const * iTag, short iVersion);
  ~Sys_StdStreamHeaderWriter();
  Sys_StdStreamHeaderWriter(Sys_StdStreamHeaderWriter const &) = delete;
  Sys_StdStreamHeaderWriter & operator=(Sys_StdStreamHeaderWriter const &) = delete;

  /// Writes into the header how much lies between it and the stream's position, which stays. The
  /// destructor does not do it.
  void PatchSize();

private:
  Sys_TypedOutStream & mStream;
  long long mSizePos;
};

/// Opens a record for reading. Reads are not bounded by it.
class VRAD_EXPORT Sys_StdStreamHeaderReader {
public:
  /// The stream must outlive the reader. Fails: `kWrongTag` for another tag.
  Sys_StdStreamHeaderReader(Sys_TypedInStream & iStream, char const * iTag);
  ~Sys_StdStreamHeaderReader();
  Sys_StdStreamHeaderReader(Sys_StdStreamHeaderReader const &) = delete;
  Sys_StdStreamHeaderReader & operator=(Sys_StdStreamHeaderReader const &) = delete;

  short GetVersion() const { return mVersion; }
  /// Fails: `kWrongVersion` outside [iMin, iMax].
  void CheckVersion(short iMin, short iMax);

  /// Whether the position lies before the record's end, by its recorded size alone.
  bool IsMoreLeft();
  /// Moves to the record's end, also back to it.
  void SkipTheRest();
  long long GetEndPos() const { return mEndPos; }

private:
  Sys_TypedInStream & mStream;
  short mVersion;
  long long mEndPos;
};
