// order_pay IN OUT: reads a purchase order, works out its total to the cent, changes the payment to cash and saves it.

#include <RkXmlLib16/RkXmlLib16.h>

#include <cstdio>
#include <string>

#include "order.h"

using namespace RkXmlLib16;

namespace {

CDecimal WithTax(const CDecimal& net, Order::ERateType rate) {
  switch (rate) {
    case Order::ERateType::standard:
      return net * CDecimal(L"1.20");
    case Order::ERateType::reduced:
      return net * CDecimal(L"1.10");
    default:
      return net;
  }
}

CDecimal Total(const Order::CLinesType& lines) {
  CDecimal total;
  for (const Order::CLinesTypeChoice& line : *lines.GetChoice()) {
    if (const Order::CGoodsType* goods = line.GetGoods())
      total += WithTax(goods->GetPrice() * CDecimal(goods->GetQuantity()), goods->GetVat());
    if (const Order::CServiceType* service = line.GetService())
      total += WithTax(service->GetPrice(), service->GetVat());
  }
  total.ChangeFractionalDivider(2);
  return total;
}

std::wstring CustomerName(const Order::CCustomerType* customer) {
  if (const auto* person = dynamic_cast<const Order::CPersonType*>(customer)) return person->GetName();
  if (const auto* company = dynamic_cast<const Order::CCompanyType*>(customer)) return company->GetName();
  return L"";
}

}  // namespace

int main(int argc, char** argv) {
  if (argc != 3) {
    std::fputs("usage: order_pay IN OUT\n", stderr);
    return 2;
  }
  try {
    CSerializationContext context;
    context.SetDefaultNamespaceURI(L"urn:example:order");
    context.GetNamespaceAliases().Add(L"xsi", L"http://www.w3.org/2001/XMLSchema-instance");

    Order::COrderType order;
    order.FromXmlFile(argv[1], context);
    std::printf("order %s for %s, %d lines, paid by %s\n", ToUtf8(order.GetId()).c_str(),
                ToUtf8(CustomerName(order.GetCustomer())).c_str(), order.GetLines()->GetChoice()->GetCount(),
                ToUtf8(order.GetPayment()->GetSelected()).c_str());
    const CDecimal total = Total(*order.GetLines());
    std::printf("total %s %s\n", ToUtf8(total.ToString(2)).c_str(), ToUtf8(Order::ToText(order.GetCurrency())).c_str());

    // A choice holds one member: the second is refused until the first has gone.
    try {
      order.GetPayment()->SetCash(total);
    } catch (const CRkInvalidStateException& e) {
      std::printf("refused: %s\n", ToUtf8(e.GetMessage()).c_str());
      order.GetPayment()->SetCard(nullptr);
      order.GetPayment()->SetTransfer(nullptr);
      order.GetPayment()->SetCash(total);
    }
    if (order.IsDueNil()) order.SetDue(CDateTime(2024, 12, 31));
    if (order.GetNote()->GetCount() < 3) order.GetNote()->Add(L"paid in cash");

    order.ToXmlFile(argv[2], true, true, XmlEncoding_UTF8, EOLType_LF, context, CompressionType_None);
    std::printf("now paid by %s\n", ToUtf8(order.GetPayment()->GetSelected()).c_str());
    return 0;
  } catch (const CRkException& e) {
    std::fprintf(stderr, "order_pay: %s\n", ToUtf8(e.GetFullMessage()).c_str());
    return 1;
  }
}
