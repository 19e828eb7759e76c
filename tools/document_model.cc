#include "tools/document_model.h"

#include <string.h>

#include <algorithm>
#include <optional>

#include "core/base/status.h"
#include "core/document/document_format.h"
#include "tools/spelling.h"

namespace lumigram::tool {
namespace {

bool IsBlank(std::string_view text) {
  return text.find_first_not_of(" \t\r\n") == std::string_view::npos;
}

// Takes the first element with these tags out of the text.
std::optional<std::string> TakeElement(std::string* text, std::string_view startTag,
                                       std::string_view endTag) {
  const size_t start = text->find(startTag);
  const size_t end = start == std::string::npos ? start : text->find(endTag, start);
  if (end == std::string::npos) return std::nullopt;
  const size_t content = start + startTag.size();
  std::string taken = text->substr(content, end - content);
  text->erase(start, end + endTag.size() - start);
  return taken;
}

// Takes the document apart element by element, in the order in which they stand.
class Parser {
 public:
  explicit Parser(Reading* reading) : reading_(*reading), document_(reading->whole) {}

  void Parse(std::string_view text) {
    const size_t end = text.find(kRootEnd);
    if (end == std::string_view::npos) {
      Unread(kBadLabels, "the document is not closed: its labels are not read");
    } else {
      Between(text.substr(end + strlen(kRootEnd)), "behind </emoji>");
    }
    text = text.substr(0, end);
    text.remove_prefix(strlen(kRootStart));
    while (ParseElement(&text)) continue;
    Between(text, "between the elements");
  }

 private:
  struct Kind {
    std::string_view start, end;
    void (Parser::*take)(std::string_view content);
  };

  void Unread(int32_t code, std::string text) {
    reading_.Add(Finding::kUnread, code, std::move(text));
  }

  void Between(std::string_view text, const char* where) {
    if (!IsBlank(text)) Unread(kTooLong, std::string(where) + " stands " + Quoted(text));
  }

  // Takes the next element off the text; false when there is none, or none that ends.
  bool ParseElement(std::string_view* text) {
    static constexpr Kind kKinds[] = {{kLabelStart, kLabelEnd, &Parser::TakeLabel},
                                      {kCategoryStart, kCategoryEnd, &Parser::TakeCategory},
                                      {kTypeStart, kTypeEnd, &Parser::TakeType},
                                      {kTagsStart, kTagsEnd, &Parser::TakeTag}};
    const Kind& kind = *std::min_element(
        std::begin(kKinds), std::end(kKinds),
        [text](const Kind& a, const Kind& b) { return text->find(a.start) < text->find(b.start); });
    const size_t start = text->find(kind.start);
    const size_t end = text->find(kind.end, start);
    if (start == std::string_view::npos || end == std::string_view::npos) return false;
    Between(text->substr(0, start), "between the elements");
    const size_t content = start + kind.start.size();
    (this->*kind.take)(text->substr(content, end - content));
    text->remove_prefix(end + kind.end.size());
    return true;
  }

  void TakeLabel(std::string_view content) {
    std::string rest(content);
    Label label;
    const auto name = TakeElement(&rest, kNameStart, kNameEnd);
    label.name = name.value_or("");
    label.note = TakeElement(&rest, kNoteStart, kNoteEnd).value_or("");
    label.part = TakeElement(&rest, kPartStart, kPartEnd).value_or("");
    document_.labels.push_back(std::move(label));
    const std::string which = "label " + std::to_string(document_.labels.size());
    if (!name) Unread(kBadLabels, which + " has no name: no label is read");
    Between(rest, ("in " + which).c_str());
  }

  void TakeOnce(const char* what, std::string_view content, bool* taken, std::string* field) {
    if (*taken) Unread(kTooLong, std::string("a second ") + what + " stands: " + Quoted(content));
    if (!*taken) *field = content;
    *taken = true;
  }
  void TakeCategory(std::string_view content) {
    TakeOnce("category", content, &hasCategory_, &document_.category);
  }
  void TakeType(std::string_view content) { TakeOnce("type", content, &hasType_, &document_.type); }

  void TakeTag(std::string_view content) {
    const size_t nameEnd = content.find(kAttributeEnd);
    if (nameEnd == std::string_view::npos) {
      return Unread(kTooLong, "a tag's name is not closed: no tag is read");
    }
    document_.tags.push_back({std::string(content.substr(0, nameEnd)),
                              std::string(content.substr(nameEnd + strlen(kAttributeEnd))),
                              nullptr});
  }

  Reading& reading_;
  Document& document_;
  bool hasCategory_ = false;
  bool hasType_ = false;
};

// What the library's own functions make of the document.
Document ReadAsLibrary(std::string_view text) {
  Document document;
  std::vector<char> buffer(kLumigramDocumentBufferBytes);
  text.copy(buffer.data(), kLumigramMaxDocumentBytes);
  const auto record = std::make_unique<AttrInfo>();
  if (GetLabelInfo(buffer.data(), record.get()) == kOk) {
    for (int i = 0; i < record->nameCount; ++i) {
      const int part = GetPartNo(record->part[i]);
      document.labels.push_back({record->name[i], record->note[i], GetPartName(part)});
    }
  }
  const auto tags = std::make_unique<TagCollection>();
  CollectTagGroups(buffer.data(), tags.get());
  for (int i = 0; i < tags->elementCount; ++i) {
    document.tags.push_back({tags->tagName[i], tags->tagElement[i], nullptr});
  }
  // One tag over its limits leaves the count, but empties the texts.
  const auto isEmpty = [](const Tag& tag) { return tag.name.empty() && tag.content.empty(); };
  if (std::all_of(document.tags.begin(), document.tags.end(), isEmpty)) document.tags.clear();

  char content[kLumigramMaxTextBytes + 1] = "";
  if (GetElementContent(buffer.data(), kCategoryStart, kCategoryEnd, content) == kOk) {
    document.category = content;
  }
  memset(content, 0, sizeof content);
  if (GetElementContent(buffer.data(), kTypeStart, kTypeEnd, content) == kOk) {
    document.type = content;
  }
  return document;
}

// Gathers what is wrong with a document's texts and numbers.
class LimitTest {
 public:
  explicit LimitTest(const Document& document) : document_(document) {}

  std::vector<Finding> Run() {
    ForEachText(document_, [this](const std::string& what, const std::string& text) {
      if (!IsValid(text)) Add(kBadArgument, what + " is not valid text");
    });
    for (const Label& label : document_.labels) TestLabel(label);
    TestBytes("the category", document_.category, kLumigramMaxTextBytes, "it is not read");
    TestBytes("the type", document_.type, kLumigramMaxTextBytes, "it is not read");
    for (const Tag& tag : document_.tags) TestTag(tag);
    TestTagGroups();
    return std::move(findings_);
  }

 private:
  void Add(int32_t code, const std::string& problem, const char* effect = nullptr) {
    findings_.push_back(
        {Finding::kUnread, code, effect ? problem + " (then " + effect + ")" : problem});
  }

  void TestBytes(const std::string& what, const std::string& text, size_t limit,
                 const char* effect) {
    if (text.size() <= limit) return;
    Add(kTooLong,
        what + " is " + std::to_string(text.size() - limit) + " bytes longer than the " +
            std::to_string(limit) + " that are allowed",
        effect);
  }

  void TestCharacters(const std::string& what, const std::string& text, const char* effect) {
    const uint32_t count = CountCharacters(text);
    if (count <= kLumigramMaxCharacters) return;
    Add(kTooManyCharacters,
        what + " has " + std::to_string(count) + " characters where 24 are allowed" +
            (ToUtf8(text) == text ? "" : " (an emoji counts as two)"),
        effect);
  }

  void TestLabel(const Label& label) {
    constexpr char kEffect[] = "no label is read";
    const size_t number = static_cast<size_t>(&label - document_.labels.data()) + 1;
    const std::string which = "label " + std::to_string(number) + " " + Quoted(label.name);
    if (number > kLumigramMaxLabels)
      return Add(kBadLabels, which + " is one too many: 10 are read");
    if (label.name.empty()) Add(kBadLabels, which + " has an empty name", "it is not written");
    TestBytes("the name of " + which, label.name, kLumigramMaxTextBytes, kEffect);
    TestCharacters("the name of " + which, label.name, kEffect);
    TestBytes("the note of " + which, label.note, kLumigramMaxTextBytes, kEffect);
    TestCharacters("the note of " + which, label.note, kEffect);
    TestBytes("the part of speech of " + which, label.part, kLumigramMaxTextBytes, kEffect);
    if (!label.part.empty() && GetPartNo(label.part.c_str()) == 0) {
      Add(kBadLabels, "the part of speech of " + which + " is unknown: " + Quoted(label.part));
    }
  }

  void TestTag(const Tag& tag) {
    constexpr char kEffect[] = "no tag of the picture is read";
    const std::string which = "tag " + Quoted(tag.name);
    if (tag.name.empty()) Add(kTooLong, "a tag has an empty name", "it is not written");
    TestBytes("the name of " + which, tag.name, kLumigramMaxTextBytes, kEffect);
    TestCharacters("the name of " + which, tag.name, kEffect);
    TestBytes("the content of " + which, tag.content, kLumigramMaxContentBytes, kEffect);
  }

  // As CollectTagGroups() counts: a name that begins the name of an earlier group belongs to it.
  void TestTagGroups() {
    struct Group {
      std::string name;
      int size;
    };
    std::vector<Group> groups;
    for (const Tag& tag : document_.tags) {
      const std::string which = "tag " + Quoted(tag.name) + " with " + Quoted(tag.content);
      if (static_cast<size_t>(&tag - document_.tags.data()) >= kLumigramMaxTags) {
        return Add(kTooLong, "there are over 100 tags: the others are not read");
      }
      const auto group = std::find_if(groups.begin(), groups.end(), [&tag](const Group& g) {
        return BeginsWith(g.name, tag.name);
      });
      if (group == groups.end() && groups.size() == kLumigramMaxTagGroups) {
        Add(kTooLong, which + " has an eleventh name: it is not read");
      } else if (group == groups.end()) {
        groups.push_back({tag.name, 1});
      } else if (++group->size > kLumigramMaxGroupSize) {
        Add(kTooLong, which + " is one too many of its name: 10 are read");
      } else if (group->name != tag.name) {
        Note("tag " + Quoted(tag.name) + " counts among those named " + Quoted(group->name) +
             ", and its name is not listed");
      }
    }
    TestEmptyContents();
  }

  void TestEmptyContents() {
    for (const Tag& tag : document_.tags) {
      if (!tag.content.empty()) continue;
      if (&tag == &document_.tags.front()) {
        Add(kTooLong, "the content of the first tag is empty: no content is read with the picture");
      } else {
        Note("a tag " + Quoted(tag.name) + " is empty: a look-up of that name ends there");
      }
    }
  }

  void Note(std::string text) { findings_.push_back({Finding::kNote, kOk, std::move(text)}); }

  const Document& document_;
  std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> FindUnread(const Document& document) { return LimitTest(document).Run(); }

Reading ReadDocument(std::string_view text) {
  Reading reading;
  Parser(&reading).Parse(text);
  for (Finding& finding : FindUnread(reading.whole)) reading.findings.push_back(std::move(finding));
  reading.asRead = ReadAsLibrary(text);
  const bool explained =
      std::any_of(reading.findings.begin(), reading.findings.end(),
                  [](const Finding& finding) { return finding.kind == Finding::kUnread; });
  if (!explained && reading.whole != reading.asRead) {
    reading.Add(Finding::kUnread, kTooLong, "a text holds markup, and is read otherwise");
  }
  return reading;
}

std::string_view BlobReference(std::string_view content) {
  if (!BeginsWith(content, kThisPicture)) return {};
  return content.substr(content.rfind('/') + 1);
}

}  // namespace lumigram::tool
