#include "cli/json.h"

#include <nlohmann/json.hpp>
#include <vector>

#include "cli/base64.h"
#include "cli/spelling.h"
#include "core/base/utf8.h"

namespace lumigram::cli {
namespace {

using OrderedJson = nlohmann::ordered_json;

class PictureToJson {
 public:
  PictureToJson(const Picture& picture, bool withBlobs)
      : picture_(picture), withBlobs_(withBlobs) {}

  OrderedJson Convert(const std::string& path) const {
    const Document& document = picture_.GetDocument();
    OrderedJson object;
    AddText("path", path, ToUtf8(path) == path, &object);
    object["format"] = picture_.KindName();
    object["width"] = picture_.width;
    object["height"] = picture_.height;
    object["pop"] = picture_.pop != 0;
    object["size"] = picture_.bytes.size();
    object["labels"] = Labels();
    AddText("category", document.category, &object);
    AddText("type", document.type, &object);
    object["tags"] = Tags();
    object["blobs"] = Blobs();
    object["findings"] = Findings();
    return object;
  }

 private:
  // Adds a text as a member and, if that does not have all of it, its bytes as another.
  static void AddText(const char* key, const std::string& stored, bool isWhole,
                      OrderedJson* object) {
    (*object)[key] = ToUtf8(stored);
    if (!isWhole) (*object)[std::string(key) + "Base64"] = ToBase64(stored);
  }

  void AddText(const char* key, const std::string& stored, OrderedJson* object) const {
    AddText(key, stored, IsWhole(stored), object);
  }

  bool IsWhole(const std::string& stored) const {
    return withBlobs_ ? IsJavaSpelling(stored) : IsValidText(stored);
  }

  OrderedJson Labels() const {
    OrderedJson list = OrderedJson::array();
    for (const Label& label : picture_.GetDocument().labels) {
      OrderedJson object;
      AddText("name", label.name, &object);
      AddText("note", label.note, &object);
      AddText("part", label.part, &object);
      object["part"] = DescribePart(label.part);
      list.push_back(std::move(object));
    }
    return list;
  }

  OrderedJson Tags() const {
    OrderedJson list = OrderedJson::array();
    for (const Tag& tag : picture_.GetDocument().tags) {
      OrderedJson object;
      AddText("name", tag.name, &object);
      AddText("content", tag.content, &object);
      list.push_back(std::move(object));
    }
    return list;
  }

  OrderedJson Blobs() const {
    OrderedJson list = OrderedJson::array();
    for (const Blob& blob : picture_.blobs) {
      OrderedJson object;
      AddText("label", blob.label, &object);
      AddText("name", blob.name, &object);
      object["size"] = blob.bytes.size();
      if (withBlobs_) object["bytes"] = ToBase64(blob.bytes);
      list.push_back(std::move(object));
    }
    for (const Tag& tag : picture_.GetDocument().tags) {
      if (!withBlobs_ || !IsWithoutBlob(tag, picture_.blobs)) continue;
      OrderedJson object;
      AddText("name", std::string(BlobReference(tag.content)), &object);
      object["bytes"] = nullptr;
      list.push_back(std::move(object));
    }
    return list;
  }

  OrderedJson Findings() const {
    constexpr const char* kKinds[] = {"note", "missing", "unread", "unread", "dropped"};
    OrderedJson list = OrderedJson::array();
    for (const Finding& finding : picture_.reading.findings) {
      list.push_back({{"kind", kKinds[finding.severity]}, {"text", finding.text}});
    }
    return list;
  }

  const Picture& picture_;
  const bool withBlobs_;
};

}  // namespace

std::string ToJson(const std::string& path, const Picture& picture, bool withBlobs) {
  return PictureToJson(picture, withBlobs).Convert(path).dump(2);
}

}  // namespace lumigram::cli
