// Bytes as any document into generated classes: what an object writes in one form it reads back, to the same tree.
#include "Check.h"
#include "gpx.h"
#include "order.h"

using namespace Fuzz;

namespace {

// Years are written without leading zeros, and read with four digits only.
bool KeepsYears(const Gpx::CGpxType& gpx) {
  const auto* const metadata = gpx.GetMetadata();
  const auto* const copyright = metadata != nullptr ? metadata->GetCopyright() : nullptr;
  return copyright == nullptr || !copyright->HasYear() ||
         (copyright->GetYear() >= 1000 && copyright->GetYear() < 10000);
}
bool KeepsYears(const Order::COrderType&) { return true; }

template <class Object>
CSmartPtr<CElement> TreeOf(const Object& object) {
  CSmartPtr<CElement> tree(new CElement);
  tree->FromXmlStream(object.ToFastInfosetStream(), MakeContext());
  return tree;
}

template <class Object, class Read>
void RequireSame(const char* form, const CElement& tree, const Object& again, Read&& read) {
  const std::wstring expected = Describe(tree);
  try {
    read();
  } catch (const CRkException& e) {
    Fail(form, e.GetFullMessage() + L"\n--- object\n" + expected);
  }
  const std::wstring actual = Describe(*TreeOf(again));
  Require(actual == expected, form, L"--- object\n" + expected + L"\n--- read again\n" + actual);
}

// What is accepted is accepted the same when errors are collected, and what is not has an error then.
template <class Object>
void RequireSameWithCollector(const std::uint8_t* data, std::size_t size, const Object* accepted) {
  CErrorCollector collector(5);
  CSerializationContext context = MakeContext();
  context.SetErrorHandler(&collector);
  Object object;
  const bool isRead = Succeeds([&] { object.FromXmlStream(const_cast<std::uint8_t*>(data), size, context); });
  CheckCollected(collector, isRead, accepted != nullptr);
  if (accepted == nullptr) return;
  Require(Describe(*TreeOf(object)) == Describe(*TreeOf(*accepted)), "the same object with a collector", L"");
}

template <class Object>
void Try(const std::uint8_t* data, std::size_t size) {
  Object object;
  const bool isRead = Succeeds([&] { object.FromXmlStream(const_cast<std::uint8_t*>(data), size, MakeContext()); });
  if (isRead && !Succeeds([&] { TreeOf(object); })) return;
  RequireSameWithCollector(data, size, isRead ? &object : nullptr);
  if (!isRead) return;
  const CSmartPtr<CElement> tree = TreeOf(object);
  if (!IsXml(*tree) || !KeepsYears(object)) return;
  const CSerializationContext context = MakeContext(tree);

  Object fromXml;
  RequireSame("the same object after XML text", *tree, fromXml, [&] {
    fromXml.FromXmlStream(object.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, context), context);
  });
  Object fromFastInfoset;
  RequireSame("the same object after Fast Infoset", *tree, fromFastInfoset,
              [&] { fromFastInfoset.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, context), context); });
  if (!FitsJson(*tree)) return;
  Object fromJson;
  RequireSame("the same object after JSON text", *tree, fromJson, [&] {
    fromJson.FromJsonStream(object.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, context), context);
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Try<Gpx::CGpxType>(data, size);
  Try<Order::COrderType>(data, size);
  return 0;
}
