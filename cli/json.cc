#include "cli/json.h"

#include <string.h>

#include <algorithm>
#include <initializer_list>
#include <nlohmann/json.hpp>

#include "cli/spelling.h"
#include "core/base/status.h"
#include "core/document/part_of_speech.h"

namespace lumigram::cli {
namespace {

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

OrderedJson FindingsToJson(const std::vector<Finding>& findings) {
  constexpr const char* kKinds[] = {"note", "unread", "dropped"};
  OrderedJson list = OrderedJson::array();
  for (const Finding& finding : findings) {
    list.push_back({{"kind", kKinds[finding.severity]}, {"text", finding.text}});
  }
  return list;
}

// A value of the file, and its place as a JSON pointer.
class Node {
 public:
  Node(const Json& value, std::string place) : value_(value), place_(std::move(place)) {}

  const std::string& Place() const { return place_; }

  [[noreturn]] void Expected(const std::string& what) const {
    std::string found = value_.is_string() ? Quoted(value_.get<std::string>()) : value_.type_name();
    if (value_.is_number() || value_.is_boolean()) found = value_.dump();
    throw Failure(kBadArgument, place_ + ": expected " + what + ", found " + found);
  }

  std::string Text() const {
    if (!value_.is_string()) Expected("a text");
    return value_.get<std::string>();
  }

  std::vector<Node> List() const {
    if (!value_.is_array()) Expected("an array");
    std::vector<Node> list;
    for (size_t i = 0; i < value_.size(); ++i) {
      list.push_back(Below(value_[i], std::to_string(i)));
    }
    return list;
  }

  // Requires an object without other members.
  void RequireObject(std::initializer_list<const char*> keys) const {
    std::string known;
    for (const char* key : keys) known += (known.empty() ? "" : ", ") + std::string(key);
    if (!value_.is_object()) Expected("an object with " + known);
    for (const auto& [key, member] : value_.items()) {
      if (std::find(keys.begin(), keys.end(), key) == keys.end()) {
        Below(member, key).Expected("one of the members " + known);
      }
    }
  }

  bool Has(const char* key) const { return value_.contains(key); }

  Node Member(const char* key) const {
    if (!Has(key)) Expected(std::string("a member \"") + key + "\"");
    return Below(value_[key], key);
  }

  std::string TextOr(const char* key, const std::string& otherwise) const {
    return Has(key) ? Member(key).Text() : otherwise;
  }

  bool IsArray() const { return value_.is_array(); }
  bool IsNumber() const { return value_.is_number_unsigned(); }
  std::string Digits() const { return value_.dump(); }

 private:
  Node Below(const Json& value, const std::string& key) const {
    return {value, (place_ == "/" ? place_ : place_ + "/") + key};
  }

  const Json& value_;
  std::string place_;
};

// An unknown name is accepted here: it may come from a picture, and is checked with the document.
std::string ParsePart(const Node& node) {
  if (!node.IsNumber()) {
    const std::string text = node.Text();
    const int32_t number = FindPart(text);
    return number != 0 ? GetPartName(static_cast<uint32_t>(number)) : text;
  }
  try {
    return PartNamed(node.Digits());
  } catch (const Failure&) {
    node.Expected("a part of speech, 0 to 21 or its name");
  }
}

Label ParseLabel(const Node& node) {
  node.RequireObject({"name", "note", "part"});
  Label label = {node.Member("name").Text(), node.TextOr("note", ""), ""};
  if (node.Has("part")) label.part = ParsePart(node.Member("part"));
  return label;
}

Tag ParseTag(const Node& node) {
  node.RequireObject({"name", "content", "label", "file"});
  const std::string name = node.Member("name").Text();
  if (!node.Has("file")) return {name, node.Member("content").Text(), nullptr};
  const std::string file = node.Member("file").Text(), label = node.Member("label").Text();
  try {
    return EmbedFile(name, label, file);
  } catch (const Failure& failure) {
    node.Expected(std::string("a file to embed (") + failure.what() + ")");
  }
}

// Members that cannot be set are accepted and ignored, because `show --json` prints them.
JsonEntry ParseEntry(const Node& node) {
  node.RequireObject({"path", "format", "width", "height", "pop", "size", "labels", "category",
                      "type", "tags", "blobs", "findings"});
  JsonEntry entry;
  entry.place = node.Place();
  if (node.Has("path")) entry.path = node.Member("path").Text();
  if (node.Has("category")) entry.changes.category = node.Member("category").Text();
  if (node.Has("type")) entry.changes.type = node.Member("type").Text();
  if (node.Has("labels")) {
    auto& labels = entry.changes.allLabels.emplace();
    for (const Node& label : node.Member("labels").List()) labels.push_back(ParseLabel(label));
  }
  if (node.Has("tags")) {
    auto& tags = entry.changes.allTags.emplace();
    for (const Node& tag : node.Member("tags").List()) tags.push_back(ParseTag(tag));
  }
  return entry;
}

// The message of the JSON library, without its prefix: "line 3, column 5: ...".
std::string SyntaxError(const Json::parse_error& error) {
  std::string message = error.what();
  if (const size_t at = message.find("parse error at "); at != std::string::npos) {
    message.erase(0, at + strlen("parse error at "));
  }
  return message;
}

}  // namespace

std::string ToJson(const std::string& path, const Picture& picture) {
  OrderedJson labels = OrderedJson::array(), tags = labels, blobs = labels;
  for (const Label& label : picture.GetDocument().labels) {
    labels.push_back({{"name", ToUtf8(label.name)},
                      {"note", ToUtf8(label.note)},
                      {"part", DescribePart(label.part)}});
  }
  for (const Tag& tag : picture.GetDocument().tags) {
    tags.push_back({{"name", ToUtf8(tag.name)}, {"content", ToUtf8(tag.content)}});
  }
  for (const Blob& blob : picture.blobs) {
    blobs.push_back(
        {{"label", ToUtf8(blob.label)}, {"name", ToUtf8(blob.name)}, {"size", blob.bytes.size()}});
  }
  const OrderedJson object = {{"path", ToUtf8(path)},
                              {"format", picture.KindName()},
                              {"width", picture.width},
                              {"height", picture.height},
                              {"pop", picture.pop != 0},
                              {"size", picture.bytes.size()},
                              {"labels", labels},
                              {"category", ToUtf8(picture.GetDocument().category)},
                              {"type", ToUtf8(picture.GetDocument().type)},
                              {"tags", tags},
                              {"blobs", blobs},
                              {"findings", FindingsToJson(picture.reading.findings)}};
  return object.dump(2);
}

std::vector<JsonEntry> ParseJson(const std::string& text) {
  Json json;
  try {
    json = Json::parse(text);
  } catch (const Json::parse_error& error) {
    throw Failure(kBadArgument, SyntaxError(error));
  }
  const Node root(json, "/");
  std::vector<JsonEntry> entries;
  if (root.IsArray()) {
    for (const Node& node : root.List()) entries.push_back(ParseEntry(node));
  } else {
    entries.push_back(ParseEntry(root));
  }
  return entries;
}

}  // namespace lumigram::cli
