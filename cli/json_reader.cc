#include "cli/json_reader.h"

#include <errno.h>
#include <stdlib.h>
#include <string.h>

#include <algorithm>
#include <iterator>
#include <map>
#include <nlohmann/json.hpp>
#include <span>
#include <utility>

#include "cli/base64.h"
#include "cli/spelling.h"
#include "core/base/scoped.h"
#include "core/base/status.h"
#include "core/document/part_of_speech.h"

namespace lumigram::cli {
namespace {

using Json = nlohmann::json;

// More than any object that `show --json` prints: a picture has at most 2 MiB.
constexpr uint64_t kMaxObjectBytes = 16 << 20;

constexpr char kBase64[] = "Base64";  // "nameBase64" has the bytes of the text "name"

// ---- the members of one object ------------------------------------------------------------------

// A text, a number or another value that is no array and no object.
struct Scalar {
  enum Type { kText, kNumber, kOther } type = kOther;
  std::string text;  // as it is shown, if it is no text

  std::string Shown() const { return type == kText ? Quoted(text) : Shortened(text); }
};

[[noreturn]] void ThrowExpected(const std::string& place, const std::string& what,
                                const std::string& found) {
  throw Failure(kBadArgument, place + ": expected " + what + ", found " + found);
}

std::string Below(const std::string& place, std::string_view key) {
  std::string escaped;
  for (const char c : key) {
    if (c == '~' || c == '/') {
      escaped += c == '~' ? "~0" : "~1";
    } else {
      escaped += c;
    }
  }
  return (place == "/" ? place : place + "/") + Shortened(escaped);
}

class Members {
 public:
  void Begin(std::string place) {
    place_ = std::move(place);
    values_.clear();
  }

  // False when there is a member of this name.
  bool Add(const std::string& key) { return values_.try_emplace(key).second; }
  void Set(const std::string& key, Scalar value) { values_[key] = std::move(value); }

  bool Has(const std::string& key) const {
    return values_.contains(key) || values_.contains(key + kBase64);
  }

  [[noreturn]] void Expected(const std::string& key, const std::string& what) const {
    ThrowExpected(Below(place_, key), what, values_.at(key).Shown());
  }

  // The text of a member, as it is stored in a picture.
  std::string Text(const std::string& key) const {
    Require(key);
    return values_.contains(key + kBase64) ? Bytes(key) : ToJava(Plain(key));
  }

  std::string TextOr(const std::string& key, const std::string& otherwise) const {
    return Has(key) ? Text(key) : otherwise;
  }

  // The name of a file.
  std::string File(const std::string& key) const {
    Require(key);
    if (values_.contains(key + kBase64)) return Bytes(key);
    std::string text = Plain(key);
    if (text.find('\0') != std::string::npos) Expected(key, "a text without NUL");
    if (text.empty()) Expected(key, "the name of a file");
    return text;
  }

  // The bytes of a blob; none when it is known that they were missing.
  std::optional<std::string> BlobBytes() const {
    constexpr char kKey[] = "bytes";
    const Scalar& value = values_.at(kKey);
    if (value.type == Scalar::kOther && value.text == "null") return std::nullopt;
    auto bytes = FromBase64(Plain(kKey));
    if (!bytes) Expected(kKey, "base64 or null");
    return bytes;
  }

  // An unknown name is accepted here: it may come from a picture, and is checked with the document.
  std::string Part() const {
    constexpr char kKey[] = "part";
    if (values_.contains(std::string(kKey) + kBase64)) return Text(kKey);
    const auto& [type, text] = values_.at(kKey);
    if (type == Scalar::kText && FindPart(text) == 0) return ToJava(text);
    try {
      return PartNamed(text);
    } catch (const Failure&) {
      Expected(kKey, "a part of speech, 0 to 21 or its name");
    }
  }

  const std::string& Place() const { return place_; }

 private:
  void Require(const std::string& key) const {
    if (!Has(key)) ThrowExpected(place_, "a member \"" + key + "\"", "an object without it");
  }

  const std::string& Plain(const std::string& key) const {
    const Scalar& value = values_.at(key);
    if (value.type != Scalar::kText) Expected(key, "a text");
    return value.text;
  }

  // If the text is given beside its bytes, the two must be the same: one of them has been edited
  // otherwise.
  std::string Bytes(const std::string& key) const {
    const auto bytes = FromBase64(Plain(key + kBase64));
    if (!bytes || bytes->empty() || bytes->find('\0') != std::string::npos) {
      Expected(key + kBase64, "base64 of bytes without NUL");
    }
    if (values_.contains(key) && Plain(key) != ToUtf8(*bytes)) {
      Expected(key, "the text of \"" + key + kBase64 + "\" or no such member");
    }
    return *bytes;
  }

  std::string place_;
  std::map<std::string, Scalar> values_;
};

Label ToLabel(const Members& members) {
  const std::string name = members.Text("name"), note = members.TextOr("note", "");
  return {name, note, members.Has("part") ? members.Part() : ""};
}

void RequireBelow(const std::string& folder, const std::string& file) {
  const ScopedBlock<char> real(realpath(file.c_str(), nullptr));
  if (real == nullptr) throw Failure(kCannotOpen, strerror(errno));
  const std::string start = folder == "/" ? folder : folder + "/";
  if (!folder.empty() && !std::string_view(real.get()).starts_with(start)) {
    throw Failure(kCannotOpen, "outside of " + Quoted(folder) + ", --files-anywhere allows it");
  }
}

Tag ToTag(const Members& members, const std::string& folder) {
  const std::string name = members.Text("name");
  if (!members.Has("file")) return {name, members.Text("content"), nullptr};
  const std::string file = members.File("file"), label = members.Text("label");
  try {
    RequireBelow(folder, file);
    return EmbedFile(name, label, file);
  } catch (const Failure& failure) {
    members.Expected("file", std::string("a file to embed (") + failure.what() + ")");
  }
}

// ---- the events of one object -------------------------------------------------------------------

using Names = std::span<const std::string_view>;

constexpr std::string_view kNames[] = {
    "path",  "pathBase64", "category", "categoryBase64", "type", "typeBase64", "labels",  "tags",
    "blobs", "format",     "width",    "height",         "pop",  "size",       "findings"};
// These cannot be set. They are accepted because `show --json` prints them.
constexpr Names kIgnoredNames = Names(kNames).last(6);

constexpr std::string_view kLabelNames[] = {"name",       "nameBase64", "note",
                                            "noteBase64", "part",       "partBase64"};
constexpr std::string_view kTagNames[] = {"name",          "nameBase64", "content",
                                          "contentBase64", "label",      "file"};
constexpr std::string_view kBlobNames[] = {"label",      "labelBase64", "name",
                                           "nameBase64", "size",        "bytes"};

bool Contains(Names names, std::string_view name) {
  return std::find(names.begin(), names.end(), name) != names.end();
}

// The members of the objects in a list; none when it is no list.
Names NamesOfItems(std::string_view list) {
  if (list == "labels") return kLabelNames;
  if (list == "tags") return kTagNames;
  return list == "blobs" ? Names(kBlobNames) : Names();
}

bool IsList(std::string_view name) { return !NamesOfItems(name).empty(); }

// Builds an entry from the events of one object. Nothing is kept of values that are ignored.
class EntryBuilder final : public nlohmann::json_sax<Json> {
 public:
  EntryBuilder(JsonText* text, const std::string& folder, std::string place)
      : text_(*text), folder_(folder) {
    entry_.position = text->Position();
    entry_.place = std::move(place);
    members_.Begin(entry_.place);
  }

  JsonEntry Take() {
    if (members_.Has("path")) entry_.path = members_.File("path");
    if (members_.Has("category")) entry_.changes.category = members_.Text("category");
    if (members_.Has("type")) entry_.changes.type = members_.Text("type");
    return std::move(entry_);
  }

  bool null() override { return Add({Scalar::kOther, "null"}); }
  bool boolean(bool value) override { return Add({Scalar::kOther, value ? "true" : "false"}); }
  bool number_integer(int64_t value) override {
    return Add({Scalar::kNumber, std::to_string(value)});
  }
  bool number_unsigned(uint64_t value) override {
    return Add({Scalar::kNumber, std::to_string(value)});
  }
  bool number_float(double, const std::string& digits) override {
    return Add({Scalar::kNumber, digits});
  }
  bool string(std::string& value) override { return Add({Scalar::kText, std::move(value)}); }
  bool binary(Json::binary_t&) override { return false; }  // not in JSON texts

  bool start_object(size_t) override {
    if (Ignores()) return ++ignored_;
    if (level_ != kNowhere && level_ != kInList) Refuse("an object");
    if (level_ == kInList) item_.Begin(Place());
    level_ = level_ == kInList ? kInItem : kInEntry;
    return true;
  }

  bool end_object() override {
    if (ignored_ > 0) return EndIgnored();
    if (level_ == kInItem) {
      AddItem();
      ++index_;
    }
    level_ = level_ == kInItem ? kInList : kNowhere;
    return true;
  }

  bool start_array(size_t) override {
    if (Ignores()) return ++ignored_;
    if (level_ != kInEntry || !IsList(key_)) Refuse("an array");
    if (key_ == "labels") entry_.changes.allLabels.emplace();
    if (key_ == "tags") entry_.changes.allTags.emplace();
    index_ = 0;
    level_ = kInList;
    return true;
  }

  bool end_array() override {
    if (ignored_ > 0) return EndIgnored();
    level_ = kInEntry;
    return true;
  }

  bool key(std::string& name) override {
    if (ignored_ > 0) return true;
    (level_ == kInItem ? itemKey_ : key_) = name;
    const Names known = KnownNames();
    if (!Contains(known, name))
      ThrowExpected(Place(), "one of the members " + Joined(known), Quoted(name));
    if (!(level_ == kInItem ? item_ : members_).Add(name)) {
      ThrowExpected(Place(), "each member once", "it again");
    }
    return true;
  }

  bool parse_error(size_t size, const std::string&,
                   const nlohmann::detail::exception& error) override {
    // "[json.exception.parse_error.101] parse error at line 3, column 5: REASON", where the line
    // and the column are those of the object.
    std::string reason = error.what();
    reason.erase(0, reason.find("] ") + 2);
    if (reason.starts_with("parse error at ")) reason.erase(0, reason.find(": ") + 2);
    throw Failure(kBadArgument,
                  text_.Where(entry_.position + size) + ": " + Shortened(reason, 200));
  }

 private:
  enum Level { kNowhere, kInEntry, kInList, kInItem };

  bool Ignores() const {
    return ignored_ > 0 || (level_ == kInEntry && Contains(kIgnoredNames, key_));
  }
  bool EndIgnored() {
    --ignored_;
    return true;
  }

  Names KnownNames() const { return level_ == kInItem ? NamesOfItems(key_) : Names(kNames); }

  static std::string Joined(Names names) {
    std::string joined;
    for (const auto name : names) {
      if (name.ends_with(kBase64)) continue;
      joined += (joined.empty() ? "" : ", ") + std::string(name);
    }
    return joined;
  }

  std::string Place() const {
    if (level_ == kNowhere) return entry_.place;
    std::string member = Below(entry_.place, key_);
    if (level_ == kInEntry) return member;
    std::string item = Below(member, std::to_string(index_));
    return level_ == kInList ? item : Below(item, itemKey_);
  }

  // Refuses a value that is of a wrong type for its place.
  [[noreturn]] void Refuse(const std::string& found) {
    std::string expected = "a text";
    if (level_ == kInEntry && IsList(key_)) expected = "an array";
    if (level_ == kNowhere || level_ == kInList) {
      const Names known = level_ == kInList ? NamesOfItems(key_) : Names(kNames);
      expected = "an object with " + Joined(known);
    }
    ThrowExpected(Place(), expected, found);
  }

  bool Add(Scalar value) {
    if (Ignores()) return true;
    if (level_ == kInItem) {
      item_.Set(itemKey_, std::move(value));
    } else if (level_ == kInEntry && !IsList(key_)) {
      members_.Set(key_, std::move(value));
    } else {
      Refuse(value.Shown());
    }
    return true;
  }

  void AddItem() {
    if (key_ == "labels") entry_.changes.allLabels->push_back(ToLabel(item_));
    if (key_ == "tags") entry_.changes.allTags->push_back(ToTag(item_, folder_));
    if (key_ == "blobs") AddBlob();
  }

  // Without bytes, a blob says what the picture has, and changes nothing.
  void AddBlob() {
    const bool hasBytes = item_.Has("bytes");
    auto& blobs = entry_.changes.allBlobs;
    if (index_ > 0 && hasBytes != blobs.has_value()) {
      ThrowExpected(item_.Place(), "\"bytes\" in all blobs or in none", "a blob that differs");
    }
    if (!hasBytes) return;
    if (!blobs) blobs.emplace();
    if (auto bytes = item_.BlobBytes()) {
      blobs->push_back({item_.Text("label"), item_.Text("name"), std::move(*bytes)});
    }
  }

  JsonText& text_;
  const std::string& folder_;
  JsonEntry entry_;
  Level level_ = kNowhere;
  size_t ignored_ = 0;  // arrays and objects that are open in an ignored value
  std::string key_, itemKey_;
  size_t index_ = 0;  // of an item in its list
  Members members_, item_;
};

// The bytes of a text from its position on. All copies share the position.
class Cursor {
 public:
  using iterator_category = std::input_iterator_tag;
  using value_type = char;
  using difference_type = ptrdiff_t;
  using pointer = const char*;
  using reference = char;

  explicit Cursor(JsonText* text) : text_(text), limit_(text->Position() + kMaxObjectBytes) {}

  char operator*() const { return static_cast<char>(text_->Peek()); }
  Cursor& operator++() {
    text_->Advance();
    return *this;
  }
  // Compares with the end only.
  bool operator!=(const Cursor&) const {
    if (text_->Position() < limit_) return text_->Peek() != JsonText::kEnd;
    throw Failure(kTooLong, text_->Where(limit_) + ": expected an object of at most 16 MiB");
  }

 private:
  JsonText* text_;
  uint64_t limit_;
};

}  // namespace

void JsonReader::SkipSpace() {
  constexpr std::string_view kSpace = " \t\r\n";
  while (text_.Peek() != JsonText::kEnd &&
         kSpace.find(static_cast<char>(text_.Peek())) != std::string_view::npos) {
    text_.Advance();
  }
}

bool JsonReader::Skip(char byte) {
  SkipSpace();
  if (text_.Peek() != static_cast<uint8_t>(byte)) return false;
  text_.Advance();
  SkipSpace();
  return true;
}

void JsonReader::Expected(const std::string& what) {
  const int byte = text_.Peek();
  const std::string found = byte == JsonText::kEnd
                                ? "the end of the file"
                                : Quoted(std::string(1, static_cast<char>(byte)));
  ThrowExpected(text_.Where(text_.Position() + 1), what, found);
}

bool JsonReader::Begin() {
  text_.Seek(0);
  index_ = 0;
  isArray_ = Skip('[');
  next_ = text_.Position();
  return !isArray_ || !Skip(']');
}

void JsonReader::RequireEnd() {
  SkipSpace();
  if (text_.Peek() != JsonText::kEnd) Expected("the end of the file");
}

std::optional<JsonEntry> JsonReader::Next() {
  if (state_ == kAtEnd) return std::nullopt;
  if (state_ == kAtStart && !Begin()) {
    state_ = kAtEnd;
    RequireEnd();
    return std::nullopt;
  }
  text_.Seek(next_);
  state_ = kAtEnd;  // also after a failure
  JsonEntry entry = ReadEntry(isArray_ ? "/" + std::to_string(index_++) : "/");
  if (!isArray_ || Skip(']')) {
    RequireEnd();
  } else if (Skip(',')) {
    state_ = kInArray;
  } else {
    Expected("a comma or the end of the array");
  }
  next_ = text_.Position();
  return entry;
}

JsonEntry JsonReader::ReadAt(uint64_t position) {
  text_.Seek(position);
  return ReadEntry("/");
}

JsonEntry JsonReader::ReadEntry(std::string place) {
  EntryBuilder builder(&text_, folder_, std::move(place));
  const Cursor cursor(&text_);
  Json::sax_parse(cursor, cursor, &builder, Json::input_format_t::json, false);
  return builder.Take();
}

}  // namespace lumigram::cli
