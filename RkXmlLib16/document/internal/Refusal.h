#ifndef RKXMLLIB16_DOCUMENT_INTERNAL_REFUSAL_H
#define RKXMLLIB16_DOCUMENT_INTERNAL_REFUSAL_H

#include <utility>

#include "RkXmlLib16/base/Exception.h"
#include "RkXmlLib16/context/internal/ErrorSession.h"
#include "RkXmlLib16/document/ElementTree.h"

// What becomes of an error while objects are read from the tree: it gets the location of an element or attribute,
// unless it has one, and is told to the error handler of the context. When there is none, or it does not want to go on,
// the error is thrown.
namespace RkXmlLib16 {

template <class Error, class Node>
void Refuse(const CSerializationContext& context, Error error, const Node& node) {
  At(error, node);
  if (!CErrorSession::Tell(context, error)) throw error;
}

// For a catch block.
template <class Node>
void RefuseCaught(const CSerializationContext& context, CRkException& error, const Node& node) {
  At(error, node);
  if (!CErrorSession::Tell(context, error)) throw;
}

// Tells of something left out at `node`, when the context has an error handler.
template <class Node>
void TellDropped(const CSerializationContext& context, RkDropped kind, const Node& node, std::uint64_t count = 1) {
  if (context.GetErrorHandler() != nullptr)
    CErrorSession::TellDropped(context, {kind, node.GetLocalName().ToString(), count, node.GetLocation()});
}

}  // namespace RkXmlLib16

#endif
