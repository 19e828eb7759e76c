#include "cli/json.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "cli/base64.h"
#include "cli/spelling.h"
#include "core/base/utf8.h"

namespace lumigram::cli {
namespace {

using OrderedJson = nlohmann::ordered_json;

OrderedJson FindingToJson(const Finding& finding) {
  constexpr const char* kKinds[] = {"note", "missing", "unread", "dropped"};
  return {{"kind", kKinds[finding.severity]}, {"text", finding.text}};
}

// Adds a text as a member and, if it is not valid text, its bytes as another.
void AddText(const char* key, const std::string& stored, bool isExact, OrderedJson* object) {
  (*object)[key] = ToUtf8(stored);
  if (!isExact) (*object)[std::string(key) + "Base64"] = ToBase64(stored);
}

void AddText(const char* key, const std::string& stored, OrderedJson* object) {
  AddText(key, stored, IsValidText(stored), object);
}

OrderedJson LabelToJson(const Label& label) {
  OrderedJson object;
  AddText("name", label.name, &object);
  AddText("note", label.note, &object);
  object["part"] = DescribePart(label.part);
  if (!IsValidText(label.part)) object["partBase64"] = ToBase64(label.part);
  return object;
}

OrderedJson TagToJson(const Tag& tag) {
  OrderedJson object;
  AddText("name", tag.name, &object);
  AddText("content", tag.content, &object);
  return object;
}

OrderedJson BlobToJson(const Blob& blob) {
  OrderedJson object;
  AddText("label", blob.label, &object);
  AddText("name", blob.name, &object);
  object["size"] = blob.bytes.size();
  return object;
}

template <typename Item>
OrderedJson ListToJson(const std::vector<Item>& items, OrderedJson (*toJson)(const Item&)) {
  OrderedJson list = OrderedJson::array();
  for (const Item& item : items) list.push_back(toJson(item));
  return list;
}

}  // namespace

std::string ToJson(const std::string& path, const Picture& picture) {
  const Document& document = picture.GetDocument();
  OrderedJson object;
  AddText("path", path, ToUtf8(path) == path, &object);
  object["format"] = picture.KindName();
  object["width"] = picture.width;
  object["height"] = picture.height;
  object["pop"] = picture.pop != 0;
  object["size"] = picture.bytes.size();
  object["labels"] = ListToJson(document.labels, LabelToJson);
  AddText("category", document.category, &object);
  AddText("type", document.type, &object);
  object["tags"] = ListToJson(document.tags, TagToJson);
  object["blobs"] = ListToJson(picture.blobs, BlobToJson);
  object["findings"] = ListToJson(picture.reading.findings, FindingToJson);
  return object.dump(2);
}

}  // namespace lumigram::cli
