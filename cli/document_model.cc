#include "cli/document_model.h"

#include <string.h>

#include <algorithm>
#include <optional>

#include "cli/spelling.h"
#include "core/base/status.h"
#include "core/base/utf8.h"
#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/document/document_walk.h"
#include "core/document/part_of_speech.h"
#include "core/document/tag_grouping.h"

namespace lumigram::cli {
namespace {

// Takes the whole document apart, in stored order.
class Parser {
 public:
  explicit Parser(Reading* reading) : reading_(*reading), document_(reading->whole) {}

  void Parse(std::string_view text) {
    std::string_view root, after;
    if (!SplitDocument(text, &root, &after)) {
      Unread(kBadLabels, "the document has no end tag: its labels are not read");
    }
    FindStray(after, "after </emoji>");
    FoundElement element;
    while (TakeElement(kRootElements, &root, &element)) {
      FindStray(element.before, "between the elements");
      Take(element);
    }
    FindStray(root, "between the elements");
  }

 private:
  void Unread(int32_t code, std::string text) {
    reading_.Add(Finding::kUnread, code, std::move(text));
  }

  void FindStray(std::string_view text, const std::string& where) {
    if (!IsBlank(text)) Unread(kTooLong, "text " + where + ": " + Quoted(text));
  }

  void Take(const FoundElement& element) {
    switch (static_cast<RootElement>(element.index)) {
      case kLabelElement:
        return TakeLabel(element.content);
      case kCategoryElement:
        return TakeOnce("category", element.content, &hasCategory_, &document_.category);
      case kTypeElement:
        return TakeOnce("type", element.content, &hasType_, &document_.type);
      case kTagsElement:
        return TakeTag(element.content);
    }
  }

  void TakeLabel(std::string_view content) {
    const std::string which = "label " + std::to_string(document_.labels.size() + 1);
    std::optional<std::string> texts[std::size(kLabelElements)];
    FoundElement element;
    while (TakeElement(kLabelElements, &content, &element)) {
      FindStray(element.before, "in " + which);
      auto& text = texts[element.index];
      if (text)
        Unread(kTooLong, which + " has a second name, note or part: " + Quoted(element.content));
      if (!text) text = element.content;
    }
    FindStray(content, "in " + which);
    const auto& [name, note, part] = texts;
    if (!name) Unread(kBadLabels, which + " has no name: no label is read");
    document_.labels.push_back({name.value_or(""), note.value_or(""), part.value_or("")});
  }

  void TakeOnce(const char* what, std::string_view content, bool* taken, std::string* field) {
    if (*taken) Unread(kTooLong, std::string("there is a second ") + what + ": " + Quoted(content));
    if (!*taken) *field = content;
    *taken = true;
  }

  void TakeTag(std::string_view group) {
    std::string_view name, content;
    if (SplitTagGroup(group, &name, &content)) {
      document_.tags.push_back({std::string(name), std::string(content), nullptr});
    } else {
      Unread(kTooLong, "the name of a tag has no end: no tag is read");
    }
  }

  Reading& reading_;
  Document& document_;
  bool hasCategory_ = false;
  bool hasType_ = false;
};

// Reads the document with the library's own functions.
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
  // A tag over its limits empties the texts of all tags, but does not reset their count.
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

// Finds texts and counts of a document that are over their limits or invalid.
class LimitTest {
 public:
  explicit LimitTest(const Document& document) : document_(document) {}

  std::vector<Finding> Run() {
    ForEachText(document_, [this](const std::string& what, const std::string& text) {
      if (!IsValidText(text)) Add(kBadArgument, what + " is not valid text");
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
    findings_.push_back({Finding::kUnread, code, effect ? problem + " (" + effect + ")" : problem});
  }

  void TestBytes(const std::string& what, const std::string& text, size_t limit,
                 const char* effect) {
    if (text.size() <= limit) return;
    Add(kTooLong,
        what + " has " + std::to_string(text.size()) + " bytes; the limit is " +
            std::to_string(limit),
        effect);
  }

  void TestCharacters(const std::string& what, const std::string& text, const char* effect) {
    const uint32_t count = CountCharacters(text);
    if (count <= kLumigramMaxCharacters) return;
    Add(kTooManyCharacters,
        what + " has " + std::to_string(count) + " characters; the limit is 24" +
            (ToUtf8(text) == text ? "" : " (an emoji counts as two)"),
        effect);
  }

  void TestLabel(const Label& label) {
    constexpr char kEffect[] = "no label is read";
    const size_t number = static_cast<size_t>(&label - document_.labels.data()) + 1;
    const std::string which = "label " + std::to_string(number) + " " + Quoted(label.name);
    if (number > kLumigramMaxLabels)
      return Add(kBadLabels, which + " is not read: the limit is 10 labels");
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

  void TestTagGroups() {
    TagGrouping grouping;
    for (const Tag& tag : document_.tags) {
      const std::string which = "tag " + Quoted(tag.name) + " with " + Quoted(tag.content);
      if (static_cast<size_t>(&tag - document_.tags.data()) >= kLumigramMaxTags) {
        return Add(kTooLong, "there are over 100 tags: only the first 100 are read");
      }
      switch (grouping.Add(tag.name)) {
        case TagGrouping::Fate::kStartsGroup:
          break;
        case TagGrouping::Fate::kJoinsGroup:
          if (grouping.GroupName() == tag.name) break;
          Note("tag " + Quoted(tag.name) + " is read as part of the group " +
               Quoted(grouping.GroupName()) + ": its own name is not listed");
          break;
        case TagGrouping::Fate::kNameTooMany:
          Add(kTooLong, which + " is not read: the limit is 10 names");
          break;
        case TagGrouping::Fate::kElementTooMany:
          Add(kTooLong, which + " is not read: the limit is 10 tags of one name");
          break;
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
        Note("a tag " + Quoted(tag.name) + " is empty: a lookup of that name stops there");
      }
    }
  }

  void Note(std::string text) { findings_.push_back({Finding::kNote, kOk, std::move(text)}); }

  const Document& document_;
  std::vector<Finding> findings_;
};

}  // namespace

std::vector<Finding> FindUnread(const Document& document) { return LimitTest(document).Run(); }

Reading InspectDocument(std::string_view text) {
  Reading reading;
  Parser(&reading).Parse(text);
  for (Finding& finding : FindUnread(reading.whole)) reading.findings.push_back(std::move(finding));
  reading.asRead = ReadAsLibrary(text);
  const bool explained =
      std::any_of(reading.findings.begin(), reading.findings.end(),
                  [](const Finding& finding) { return finding.severity == Finding::kUnread; });
  if (!explained && reading.whole != reading.asRead) {
    reading.Add(Finding::kUnread, kTooLong, "a text contains markup and is read differently");
  }
  return reading;
}

std::string DescribePart(const std::string& stored) {
  const int32_t number = GetPartNo(stored.c_str());
  return number != 0 ? EnglishPartName(number) : ToUtf8(stored);
}

std::string_view BlobReference(std::string_view content) {
  return RefersToThisPicture(content) ? BlobName(content) : std::string_view();
}

}  // namespace lumigram::cli
