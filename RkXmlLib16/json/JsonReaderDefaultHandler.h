#ifndef RKXMLLIB16_JSON_JSONREADERDEFAULTHANDLER_H
#define RKXMLLIB16_JSON_JSONREADERDEFAULTHANDLER_H

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "RkXmlLib16/base/Export.h"
#include "RkXmlLib16/json/JsonReaderHandler.h"

namespace RkXmlLib16 {

// Stands in front of every handler: keeps the JSON path and passes each event on.
class RKXML_EXPORT CJsonReaderDefaultHandler : public IJsonReaderHandler, public IErrorPathProvider {
 public:
  CJsonReaderDefaultHandler();
  ~CJsonReaderDefaultHandler() override;

  // `handler` is kept; null for none.
  void SetInnerHandler(IJsonReaderHandler* handler) noexcept { m_inner = handler; }

  std::wstring GetPath() const override;

  void ReadStartDocument() override;
  void ReadEndDocument() override;
  void ReadName(const std::wstring& name) override;
  void ReadString(const std::wstring& value) override;
  void ReadNumber(const std::wstring& lexical) override;
  void ReadStartObject() override;
  void ReadEndObject() override;
  void ReadStartArray() override;
  void ReadEndArray() override;
  void ReadBool(bool value) override;
  void ReadNull() override;

 private:
  enum class Kind { Array, Name, Object };
  struct PathItem {
    std::wstring name;             // of a named member
    std::int32_t arrayIndex = -1;  // of the latest item of an array
    Kind kind = Kind::Object;
  };

  PathItem& Push(Kind kind);
  void BeginValue();
  void EndValue();

  std::vector<PathItem> m_path;  // items beyond m_depth keep the storage of their names
  std::size_t m_depth = 0;
  IJsonReaderHandler* m_inner = nullptr;
};

}  // namespace RkXmlLib16

#endif
