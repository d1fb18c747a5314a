#include <atomic>
#include <functional>
#include <thread>
#include <vector>

#include "Expect.h"
#include "RkXmlLib16/RkXmlLib16.h"
#include "gpx.h"
#include "order.h"

using namespace RkXmlTest;

namespace {

constexpr int kThreads = 8;

// Runs the work in threads that start it together.
void InThreads(const std::function<void(int)>& work) {
  std::atomic<int> waiting{kThreads};
  std::vector<std::thread> threads;
  for (int i = 0; i < kThreads; ++i) {
    threads.emplace_back([&, i] {
      --waiting;
      while (waiting > 0) std::this_thread::yield();
      try {
        work(i);
      } catch (const CRkException& e) {
        ADD_FAILURE() << Narrow(e.GetFullMessage());
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
}

class CCounted : public CElement {
 public:
  explicit CCounted(std::atomic<int>& deleted) : CElement(L"e"), m_deleted(deleted) {}
  ~CCounted() override { ++m_deleted; }

 private:
  std::atomic<int>& m_deleted;
};

}  // namespace

// The first test, so that threads race for the records of the classes and for everything that is made on first use.
TEST(Threads, ReadAndWriteWithTheirOwnContexts) {
  InThreads([](int number) {
    for (int round = 0; round < 5; ++round) {
      CSerializationContext context;
      context.GetJsonContext()->SetStrictOutput(true);
      context.GetNamespaceAliases().Add(L"a", L"urn:example:audit");
      context.GetNamespaceAliases().Add(L"o", L"urn:example:order");
      context.GetNamespaceAliases().Add(L"xsi", CXmlWriter::XSI_NAMESPACE.c_str());
      Order::COrderType order;
      order.FromXmlFile(L"" RKXML_EXAMPLE_DATA "/order.xml", context);
      order.SetId(L"RK-" + std::to_wstring(1000 + number));
      const auto write = [&context](const Order::COrderType& object) {
        return object.ToXmlStream(true, true, XmlEncoding_UTF8, EOLType_LF, context, CompressionType_GZip);
      };
      const CBinaryData text = write(order);

      Order::COrderType fromFastInfoset;
      fromFastInfoset.FromXmlStream(order.ToFastInfosetStream(FInfoDecl_None, context, CompressionType_GZip), context);
      EXPECT_EQ(text, write(fromFastInfoset));
      Order::COrderType fromJson;
      fromJson.FromJsonStream(order.ToJsonStream(true, XmlEncoding_UTF8, EOLType_LF, context), context);
      EXPECT_EQ(text, write(fromJson));

      Gpx::CGpxType track;
      track.FromXmlFile(L"" RKXML_EXAMPLE_DATA "/track.gpx", context);
      EXPECT_FALSE(track.ToXml(true, true, EOLType_LF, context).empty());
      EXPECT_THROWS(CRkException, L"no element found at line 1", order.FromXml("<order>", context));
    }
  });
}

TEST(Threads, CountReferencesOfOneObject) {
  std::atomic<int> deleted{0};
  auto* const object = new CCounted(deleted);
  object->AddRef();
  InThreads([object](int) {
    for (int i = 0; i < 1000; ++i) object->AddRef();
    for (int i = 0; i < 1000; ++i) object->Release();
  });
  EXPECT_EQ(1, object->GetRefCount());
  EXPECT_EQ(0, deleted);
  for (int i = 1; i < kThreads; ++i) object->AddRef();
  InThreads([object](int) { object->Release(); });
  EXPECT_EQ(1, deleted);
}

TEST(Threads, ShareBytesUntilOneWrites) {
  CBinaryData shared(L"0123456789");
  const CBinaryData original(L"0123456789");
  InThreads([&](int number) {
    for (int i = 0; i < 500; ++i) {
      CBinaryData copy = shared;
      CBinaryData another = copy;
      EXPECT_EQ(original, another);
      const auto byte = static_cast<unsigned char>(number);
      copy.Append(byte);
      EXPECT_EQ(original.GetLength() + 1, copy.GetLength());
    }
  });
  EXPECT_EQ(original, shared);
}

TEST(Threads, GetTheSameLazyMembersOfOneContext) {
  for (int round = 0; round < 50; ++round) {
    const CSerializationContext context;
    const void* members[kThreads][3] = {};
    InThreads([&](int number) {
      members[number][0] = context.GetFIContext();
      members[number][1] = context.GetJsonContext();
      const CSerializationContext copy(context);
      members[number][2] = copy.GetJsonContext();
    });
    for (const auto& seen : members) {
      for (int i = 0; i < 3; ++i) {
        EXPECT_NE(nullptr, seen[i]);
        EXPECT_EQ(members[0][i], seen[i]);
      }
    }
  }
}
