#include "RkXmlLib16/facets/internal/NamespaceConstraint.h"

#include "Expect.h"
#include "RkXmlLib16/facets/FacetChecks.h"

using namespace RkXmlTest;

TEST(NamespaceConstraint, TheFirstTokenThatAdmitsTheUriDecides) {
  const Rows<Wide, Wide, Wide, bool> cases = {
      {L"urn:a", L"##any", L"urn:t", true},
      {L"urn:a", L"##other", L"urn:t", true},
      {L"urn:t", L"##other", L"urn:t", false},
      {L"", L"##other", L"urn:t", true},
      {L"", L"##other", L"", false},
      {L"", L"##local", L"urn:t", true},
      {L"urn:a", L"##local", L"urn:t", false},
      {L"urn:a", L"##targetNamespace", L"urn:t", false},
      {L"urn:b", L"urn:a urn:b", L"urn:t", true},
      {L"urn:B", L"urn:a urn:b", L"urn:t", false},
      {L"urn:t", L"##local ##targetNamespace", L"urn:t", true},
      {L"", L"urn:a  urn:b", L"urn:t", true},  // two blanks part an empty token
  };
  for (const auto& [uri, constraint, target, valid] : cases)
    EXPECT_EQ(valid, CXmlObjectHelper::IsNamespaceValid(uri, constraint, target))
        << Narrow(uri) << " in " << Narrow(constraint);
}

TEST(NamespaceConstraint, TestNamespaceNamesUriConstraintAndTarget) {
  CXmlObjectHelper::TestNamespace(L"urn:a", L"##other", L"urn:t");
  EXPECT_THROWS(
      CRkInvalidNamespaceException,
      L"Invalid namespace [urn:t]. The namespace must be one of [##other] where the target namespace is [urn:t].",
      CXmlObjectHelper::TestNamespace(L"urn:t", L"##other", L"urn:t"));
}
