// Bytes as any document into generated classes: what an object writes in one form it reads back, to the same XML text.
#include "Check.h"
#include "Gpx.h"
#include "Order.h"

using namespace Fuzz;

namespace {

template <class Object, class Read>
void RequireSame(const char* form, const std::wstring& expected, Object& again, const CSerializationContext& context,
                 Read&& read) {
  try {
    read();
  } catch (const CRkException& e) {
    Fail(form, e.GetFullMessage() + L"\n--- object\n" + expected);
  }
  const std::wstring actual = Joined(again.ToXml(true, true, EOLType_LF, context));
  Require(actual == expected, form, L"--- object\n" + expected + L"\n--- read again\n" + actual);
}

template <class Object>
void Try(const std::uint8_t* data, std::size_t size) {
  Object object;
  const CSerializationContext reading = MakeContext();
  if (!Succeeds([&] { object.FromXmlStream(const_cast<std::uint8_t*>(data), size, reading); })) return;

  CElement tree;
  tree.FromXmlStream(object.ToFastInfosetStream(), reading);
  if (!IsXml(tree)) return;
  const CSerializationContext context = MakeContext(&tree);
  const std::wstring expected = Joined(object.ToXml(true, true, EOLType_LF, context));

  Object fromXml;
  RequireSame("the same object after XML text", expected, fromXml, context, [&] {
    fromXml.FromXmlStream(object.ToXmlStream(true, false, XmlEncoding_UTF8, EOLType_LF, context), context);
  });
  Object fromFastInfoset;
  RequireSame("the same object after Fast Infoset", expected, fromFastInfoset, context,
              [&] { fromFastInfoset.FromXmlStream(object.ToFastInfosetStream(FInfoDecl_None, context), context); });
  Object fromJson;
  RequireSame("the same object after JSON text", expected, fromJson, context, [&] {
    fromJson.FromJsonStream(object.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, context), context);
  });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  Try<Gpx::CGpxType>(data, size);
  Try<Order::COrderType>(data, size);
  return 0;
}
