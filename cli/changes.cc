#include "cli/changes.h"

#include <algorithm>
#include <deque>
#include <map>

#include "cli/spelling.h"
#include "core/base/status.h"
#include "core/base/utf8.h"
#include "core/document/blob_entries.h"
#include "core/document/document_format.h"
#include "core/document/part_of_speech.h"

namespace lumigram::cli {
namespace {

// Gives a text the spelling that the picture has for it already. If a picture has two spellings of
// one text, they are used in stored order, so that an unchanged list stays the same.
class Speller {
 public:
  explicit Speller(const Picture& picture) {
    ForEachText(picture.GetDocument(), [this](const std::string&, const std::string& text) {
      spellings_[ToUtf8(text)].push_back(text);
    });
    for (const Blob& blob : picture.blobs) {
      const std::string reference = std::string(kThisPicture) + blob.name;
      spellings_[ToUtf8(reference)].push_back(reference);
    }
  }

  std::string operator()(const std::string& text) {
    const auto found = spellings_.find(ToUtf8(text));
    if (found == spellings_.end() || !IsJavaSpelling(text)) return text;
    std::string spelling = found->second.front();
    if (found->second.size() > 1) found->second.pop_front();
    return spelling;
  }

 private:
  std::map<std::string, std::deque<std::string>> spellings_;
};

// Replaces a stored text, unless it is the same in another spelling.
void Assign(const std::string& text, Speller& spell, std::string* stored) {
  const std::string spelling = spell(text);
  if (ToUtf8(*stored) != ToUtf8(text) || !IsJavaSpelling(text)) *stored = spelling;
}

auto IsNamed(const std::string& name) {
  return [text = ToUtf8(name)](const Label& label) { return ToUtf8(label.name) == text; };
}

void RenameLabel(const std::string& from, const std::string& to, Document* document) {
  auto& labels = document->labels;
  if (std::none_of(labels.begin(), labels.end(), IsNamed(from))) return;
  if (std::any_of(labels.begin(), labels.end(), IsNamed(to))) {
    throw Failure(kBadLabels, "there is a label " + Quoted(to) + " already");
  }
  for (Label& label : labels) {
    if (IsNamed(from)(label)) label.name = to;
  }
}

void ApplyLabel(const Changes::LabelChange& change, Speller& spell, Document* document) {
  auto& labels = document->labels;
  auto label = std::find_if(labels.begin(), labels.end(), IsNamed(change.name));
  if (label == labels.end()) label = labels.insert(label, {spell(change.name), "", ""});
  if (change.note) Assign(*change.note, spell, &label->note);
  if (change.part) Assign(*change.part, spell, &label->part);
}

// Replaces all tags of one name by the changes of that name, in the place of the first old one.
void ApplyTagGroup(const std::string& name, const std::vector<Tag>& changes, Speller& spell,
                   std::vector<Tag>* tags) {
  const auto isNamed = [&name](const Tag& tag) { return ToUtf8(tag.name) == ToUtf8(name); };
  const auto first = std::find_if(tags->begin(), tags->end(), isNamed);
  const std::string storedName = first == tags->end() ? spell(name) : first->name;
  std::vector<Tag> group;
  for (const Tag& change : changes) {
    if (change.name == name && (change.blob != nullptr || !change.content.empty())) {
      group.push_back({storedName, spell(change.content), change.blob});
    }
  }
  const auto place = first - tags->begin();
  tags->erase(std::remove_if(first, tags->end(), isNamed), tags->end());
  tags->insert(tags->begin() + place, group.begin(), group.end());
}

// Takes the text up to the next separator, which stays out of the field. In the text, the separator
// and a backslash follow a backslash. The rest stays in words. False when there was no separator.
bool TakeField(char separator, std::string_view* words, std::string* field) {
  while (!words->empty() && words->front() != separator) {
    const bool isEscape = words->front() == '\\' && words->size() > 1 &&
                          ((*words)[1] == separator || (*words)[1] == '\\');
    if (isEscape) words->remove_prefix(1);
    field->push_back(words->front());
    words->remove_prefix(1);
  }
  if (words->empty()) return false;
  words->remove_prefix(1);
  return true;
}

}  // namespace

Document Apply(const Changes& changes, const Document& document, const Picture& picture) {
  Document result = document;
  Speller spell(picture);
  if (changes.allLabels) {
    result.labels.clear();
    for (const Label& label : *changes.allLabels) {
      const std::string name = spell(label.name), note = spell(label.note);
      result.labels.push_back({name, note, spell(label.part)});
    }
  }
  if (changes.category) Assign(*changes.category, spell, &result.category);
  if (changes.type) Assign(*changes.type, spell, &result.type);
  if (changes.allTags) {
    result.tags.clear();
    for (const Tag& tag : *changes.allTags) {
      const std::string name = spell(tag.name);
      result.tags.push_back({name, spell(tag.content), tag.blob});
    }
  }
  for (const std::string& name : changes.removedLabels) std::erase_if(result.labels, IsNamed(name));
  for (const auto& [from, to] : changes.renamedLabels) RenameLabel(from, to, &result);
  for (const auto& change : changes.labels) ApplyLabel(change, spell, &result);
  for (auto tag = changes.tags.begin(); tag != changes.tags.end(); ++tag) {
    const auto isSame = [tag](const Tag& earlier) { return earlier.name == tag->name; };
    if (std::none_of(changes.tags.begin(), tag, isSame)) {
      ApplyTagGroup(tag->name, changes.tags, spell, &result.tags);
    }
  }
  return result;
}

std::string ParseText(std::string_view words) {
  if (!IsValidText(words)) throw Failure(kBadArgument, "this is not valid text");
  return ToJava(words);
}

Changes::LabelChange ParseLabel(std::string_view words) {
  const std::string text = ParseText(words);
  std::string_view rest = text;
  Changes::LabelChange change;
  if (TakeField(':', &rest, &change.name)) {
    if (TakeField(':', &rest, &change.note.emplace())) {
      if (TakeField(':', &rest, &change.part.emplace())) {
        throw Failure(kBadArgument, "expected NAME[:NOTE[:PART]], with \\: for a colon");
      }
      change.part = PartNamed(*change.part);
    }
  }
  if (change.name.empty()) throw Failure(kBadArgument, "a label needs a name");
  return change;
}

std::pair<std::string, std::string> ParseRenaming(std::string_view words) {
  const std::string text = ParseText(words);
  std::string_view rest = text;
  std::pair<std::string, std::string> names;
  if (!TakeField('=', &rest, &names.first) || TakeField('=', &rest, &names.second) ||
      names.first.empty() || names.second.empty()) {
    throw Failure(kBadArgument, "expected OLD=NEW, with \\= for an equals sign");
  }
  return names;
}

Tag ParseTag(std::string_view words) {
  const std::string text = ParseText(words);
  const size_t equals = text.find('=');
  if (equals == 0 || equals == std::string::npos) {
    throw Failure(kBadArgument, "expected NAME=CONTENT");
  }
  return {text.substr(0, equals), text.substr(equals + 1), nullptr};
}

Tag ParseEmbed(std::string_view words) {
  const size_t colon = words.find(':');
  const size_t equals = words.find('=', std::min(colon, words.size()));
  if (equals == std::string_view::npos || equals == colon + 1) {
    throw Failure(kBadArgument, "expected LABEL:TAG=FILE");
  }
  const std::string tag = ParseText(words.substr(colon + 1, equals - colon - 1));
  return EmbedFile(tag, std::string(words.substr(0, colon)), std::string(words.substr(equals + 1)));
}

Tag EmbedFile(const std::string& tagName, const std::string& label, const std::string& file) {
  if (!BeginsWith(label, kBlobMark) || label.size() > kBlobLabelSize || !IsValidText(label)) {
    throw Failure(kBadArgument, "a blob's label must begin with EMJ and have at most 11 bytes");
  }
  Blob blob = {label, ToJava(BlobName(file)), ""};
  if (blob.name.size() > kMaxBlobName || !IsValidText(file)) {
    throw Failure(kTooLong, "the file's name is too long or is not valid text");
  }
  try {
    const std::vector<uint8_t> bytes = ReadRegularFile(file);
    blob.bytes.assign(bytes.begin(), bytes.end());
  } catch (const Failure& failure) {
    throw Failure(kBadBlob, Quoted(file) + ": " + failure.what());
  }
  const std::string content = std::string(kThisPicture) + blob.name;
  return {tagName, content, std::make_shared<const Blob>(std::move(blob))};
}

std::string PartNamed(const std::string& words) {
  if (words.empty() || words == "0") return "";
  const bool isNumber =
      words.size() <= 2 && words.find_first_not_of("0123456789") == std::string::npos;
  const uint32_t number =
      isNumber ? static_cast<uint32_t>(std::stoul(words)) : static_cast<uint32_t>(FindPart(words));
  std::string name = GetPartName(number);
  if (name.empty()) {
    throw Failure(kBadLabels,
                  "a part of speech is a name such as noun or proper-noun, a stored name or a "
                  "number from 1 to 21, not " +
                      Quoted(words));
  }
  return name;
}

}  // namespace lumigram::cli
