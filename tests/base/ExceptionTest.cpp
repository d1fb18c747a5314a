#include "RkXmlLib16/base/Exception.h"

#include <memory>
#include <typeinfo>

#include "Expect.h"

using namespace RkXmlTest;

TEST(Exception, FullMessageHasOneMessagePerLineOutermostFirst) {
  const CRkInvalidValueException first(L"first");
  const CRkInvalidStateException second(L"second", first);
  const CRkValidationException third(L"third", L"", second);
  EXPECT_TEXT(L"third\nsecond\nfirst", third.GetFullMessage());
  EXPECT_TEXT(L"first", first.GetFullMessage());
  const CRkException& inner = *third.GetInnerException();
  EXPECT_EQ(typeid(CRkInvalidStateException), typeid(inner));
}

TEST(Exception, ACopyOfACopyDoesNotRepeatThePathSuffix) {
  const CRkValidationException inner(L"m", L"/a");
  const CRkException copy(inner);
  EXPECT_TEXT(L"m\nPath: /a", copy.GetMessage());
  const CRkInvalidParamException other(copy);
  EXPECT_TEXT(L"m\nPath: /a", other.GetMessage());
  EXPECT_TEXT(L"/a", other.GetPath());
}

TEST(Exception, AssignmentKeepsTheTargetsPathAndItsOldInnerExceptionAliveIntended) {
  CRkException target(L"old", L"/old", CRkException(L"old inner"));
  const CRkException* oldInner = target.GetInnerException();
  target = CRkException(L"new", L"/new", CRkException(L"new inner"));
  target = CRkException(L"newest", L"/newest");
  EXPECT_TEXT(L"newest", target.GetMessage().substr(0, 6));
  EXPECT_TEXT(L"/old", target.GetPath());
  EXPECT_EQ(nullptr, target.GetInnerException());
  EXPECT_TEXT(L"old inner", oldInner->GetMessage());
  target = *&target;
  EXPECT_TEXT(L"/old", target.GetPath());
  // However often: what was replaced is freed without a level of the stack for each.
  for (int i = 0; i < 200000; ++i) target = CRkException(L"again", L"", CRkException(L"inner"));
  EXPECT_TEXT(L"again\ninner", target.GetFullMessage());
}

template <class T>
class ExceptionClass : public testing::Test {};
using Classes =
    testing::Types<CRkException, CRkValidationException, CRkInvalidValueException, CRkInvalidNamespaceException,
                   CRkInvalidStateException, CRkInvalidParamException, CRkOverFlowException>;
TYPED_TEST_SUITE(ExceptionClass, Classes);

TYPED_TEST(ExceptionClass, ClonesItsOwnClassWithMessagePathAndInner) {
  const TypeParam e(CRkException(L"m", L"/p", CRkOverFlowException(L"cause")));
  const std::unique_ptr<const CRkException> owned(e.Clone());
  const CRkException& clone = *owned;
  EXPECT_EQ(typeid(TypeParam), typeid(clone));
  EXPECT_TEXT(L"m\nPath: /p", clone.GetMessage());
  ASSERT_NE(nullptr, clone.GetInnerException());
  EXPECT_NE(e.GetInnerException(), clone.GetInnerException());
  const CRkException& inner = *clone.GetInnerException();
  EXPECT_EQ(typeid(CRkOverFlowException), typeid(inner));
}
