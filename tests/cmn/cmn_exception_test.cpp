#include "cmn/cmn_exception.h"

#include <memory>
#include <type_traits>

#include <gtest/gtest.h>

namespace {

typedef Cmn_TypedException<L10N_ExceptionData> Exception;

class Dump : public Cmn_StackDump {
public:
  std::string GetText() const override { return "here"; }
};

Exception MakeException(char const * iMessage, Cmn_StackDump * iDumpP = nullptr) {
  return Exception(L10N_ExceptionCode<L10N_ExceptionData>(100), L10N_ExceptionData{iMessage},
                   iDumpP);
}

}  // namespace

TEST(Cmn_Exception, ClassesStandInOneLine) {
  static_assert(std::is_base_of_v<std::exception, Cmn_ExceptionDescription>);
  static_assert(std::is_base_of_v<Cmn_ExceptionDescription, Cmn_Exception>);
  static_assert(
      std::is_base_of_v<Cmn_Exception, Cmn_TypedExceptionDescription<L10N_ExceptionData>>);
  static_assert(std::is_base_of_v<Cmn_TypedExceptionDescription<L10N_ExceptionData>, Exception>);
  static_assert(std::is_base_of_v<Cmn_TypedExceptionCode<L10N_ExceptionData>,
                                  L10N_ExceptionCode<L10N_ExceptionData>>);
  Exception const exception = MakeException("text");
  std::exception const & base = exception;
  EXPECT_NE(nullptr, dynamic_cast<Cmn_Exception const *>(&base));
}

TEST(Cmn_TypedException, WhatIsTheMessage) {
  EXPECT_STREQ("bad data", MakeException("bad data").what());
}

TEST(Cmn_TypedException, DescriptionIsTheMessage) {
  Exception const exception = MakeException("bad data");
  Cmn_ExceptionDescription const & description = exception;
  EXPECT_EQ("bad data", description.GetDescription());
}

TEST(Cmn_TypedException, KeepsDataAndCode) {
  Exception const exception = MakeException("bad data");
  EXPECT_EQ("bad data", exception.GetData().mMessage);
  EXPECT_EQ(100, exception.GetCode().GetCode());
}

TEST(Cmn_TypedException, MessageMayBeEmpty) {
  EXPECT_STREQ("", MakeException("").what());
}

TEST(Cmn_TypedException, HasNoStackDumpUnlessGivenOne) {
  Dump dump;
  EXPECT_EQ(nullptr, MakeException("text").GetStackDump());
  EXPECT_EQ(&dump, MakeException("text", &dump).GetStackDump());
}

TEST(Cmn_TypedException_Clone, MakesAHeapCopyOfTheWholeType) {
  Exception const exception = MakeException("bad data");
  std::unique_ptr<Cmn_Exception> const clone(static_cast<Cmn_Exception const &>(exception).Clone());
  EXPECT_NE(&exception, clone.get());
  ASSERT_NE(nullptr, dynamic_cast<Exception *>(clone.get()));
  EXPECT_STREQ("bad data", clone->what());
}

TEST(Cmn_TypedException_Throw, ThrowsACopyByValue) {
  Exception const exception = MakeException("bad data");
  Cmn_Exception const & base = exception;
  try {
    base.Throw();
  } catch (Exception const & caught) {
    EXPECT_NE(&exception, &caught);
    EXPECT_STREQ("bad data", caught.what());
    return;
  }
  FAIL() << "not caught by its type";
}

TEST(Cmn_TypedException, IsCaughtByEachBase) {
  EXPECT_THROW(MakeException("text").Throw(), Cmn_TypedExceptionDescription<L10N_ExceptionData>);
  EXPECT_THROW(MakeException("text").Throw(), Cmn_Exception);
  EXPECT_THROW(MakeException("text").Throw(), Cmn_ExceptionDescription);
  EXPECT_THROW(MakeException("text").Throw(), std::exception);
}

TEST(Cmn_Exception, TextIsWhatAndDescription) {
  Cmn_Exception const exception("text");
  EXPECT_STREQ("text", exception.what());
  EXPECT_EQ("text", exception.GetDescription());
}

TEST(Cmn_Exception, CopiesWithoutThrowing) {
  static_assert(std::is_nothrow_copy_constructible_v<Cmn_Exception>);
  static_assert(std::is_nothrow_copy_assignable_v<Cmn_Exception>);
  Cmn_Exception const exception("text");
  Cmn_Exception copy("other");
  copy = exception;
  EXPECT_STREQ("text", copy.what());
}

TEST(Cmn_Exception, ClonesAndThrowsItself) {
  Cmn_Exception const exception("text");
  std::unique_ptr<Cmn_Exception> const clone(exception.Clone());
  EXPECT_STREQ("text", clone->what());
  EXPECT_THROW(exception.Throw(), Cmn_Exception);
}

TEST(Cmn_Exception, PlainRuntimeErrorIsNone) {
  try {
    throw std::runtime_error("text");
  } catch (Cmn_Exception const &) {
    FAIL() << "a plain error was taken for one of the library's";
  } catch (std::runtime_error const & caught) {
    EXPECT_STREQ("text", caught.what());
  }
}
