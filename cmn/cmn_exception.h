// Failures that a host catches by type.
#pragma once

#include <exception>
#include <stdexcept>
#include <string>

#include "foundation/vrad_export.h"

/// An exception that can say in words what happened.
class VRAD_EXPORT Cmn_ExceptionDescription : public std::exception {
public:
  ~Cmn_ExceptionDescription() override;

  /// UTF-8.
  virtual std::string GetDescription() const = 0;
};

/// The calls that led to a failure. The library makes none; a host may derive its own.
class VRAD_EXPORT Cmn_StackDump {
public:
  virtual ~Cmn_StackDump();
  virtual std::string GetText() const = 0;
};

/// Base of all typed exceptions: a text and perhaps a stack dump.
/// A class derived from it overrides `Clone` and `Throw`, so that neither cuts it down.
class VRAD_EXPORT Cmn_Exception : public Cmn_ExceptionDescription {
public:
  /// `iText` is UTF-8. The dump is not owned; the thrower keeps it for as long as anyone may look.
  explicit Cmn_Exception(std::string const & iText, Cmn_StackDump * iStackDumpP = nullptr);
  Cmn_Exception(Cmn_Exception const &) noexcept;
  Cmn_Exception & operator=(Cmn_Exception const &) noexcept;
  ~Cmn_Exception() override;

  char const * what() const noexcept override;
  std::string GetDescription() const override;

  /// A copy on the heap, which the caller owns.
  virtual Cmn_Exception * Clone() const;

  /// Throws a copy by value.
  [[noreturn]] virtual void Throw() const;

  Cmn_StackDump * GetStackDump() const;

private:
  std::runtime_error mText;  // a string whose copies share
  Cmn_StackDump * mStackDumpP;
};

/// Which failure of its kind an exception with data `T` stands for.
template <class T>
class Cmn_TypedExceptionCode {
public:
  explicit Cmn_TypedExceptionCode(int iCode = 0) : mCode(iCode) {}
  int GetCode() const { return mCode; }

private:
  int mCode;
};

/// The code of a failure whose text comes from a string table: the string's id.
template <class T>
class L10N_ExceptionCode : public Cmn_TypedExceptionCode<T> {
public:
  explicit L10N_ExceptionCode(int iStringID) : Cmn_TypedExceptionCode<T>(iStringID) {}
};

/// An exception that carries a `T`, whose field `mMessage` is the description.
template <class T>
class VRAD_EXPORT Cmn_TypedExceptionDescription : public Cmn_Exception {
public:
  std::string GetDescription() const override { return mData.mMessage; }
  T const & GetData() const { return mData; }

protected:
  Cmn_TypedExceptionDescription(T const & iData, Cmn_StackDump * iStackDumpP)
      : Cmn_Exception(iData.mMessage, iStackDumpP), mData(iData) {}

private:
  T mData;
};

/// The exception that is thrown and caught for data `T`. `what()` is the description.
template <class T>
class VRAD_EXPORT Cmn_TypedException : public Cmn_TypedExceptionDescription<T> {
public:
  Cmn_TypedException(Cmn_TypedExceptionCode<T> const & iCode, T const & iData,
                     Cmn_StackDump * iStackDumpP = nullptr)
      : Cmn_TypedExceptionDescription<T>(iData, iStackDumpP), mCode(iCode) {}

  Cmn_TypedException * Clone() const override { return new Cmn_TypedException(*this); }
  [[noreturn]] void Throw() const override { throw Cmn_TypedException(*this); }

  Cmn_TypedExceptionCode<T> const & GetCode() const { return mCode; }

private:
  Cmn_TypedExceptionCode<T> mCode;
};

/// A failure told in the user's language.
struct VRAD_EXPORT L10N_ExceptionData {
  std::string mMessage;  // UTF-8
};
