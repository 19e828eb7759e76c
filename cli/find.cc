#include "cli/find.h"

#include <algorithm>
#include <string_view>

#include "cli/batch.h"
#include "cli/commands.h"
#include "cli/spelling.h"
#include "core/document/part_of_speech.h"

namespace lumigram::cli {
namespace {

using Field = FindOptions::Field;

std::string FoldCase(std::string text) {
  for (char& c : text) {
    if (c >= 'A' && c <= 'Z') c = static_cast<char>(c - 'A' + 'a');
  }
  return text;
}

// The texts that a condition compares. A picture without a category or a type has an empty one.
std::vector<std::string_view> TextsOf(const Picture& picture, Field field) {
  const Document& document = picture.GetDocument();
  const bool isAny = field == FindOptions::kText;
  std::vector<std::string_view> texts;
  for (const Label& label : document.labels) {
    if (isAny || field == FindOptions::kLabel) texts.push_back(label.name);
    if (isAny || field == FindOptions::kNote) texts.push_back(label.note);
  }
  if (isAny || field == FindOptions::kCategory) texts.push_back(document.category);
  if (isAny || field == FindOptions::kType) texts.push_back(document.type);
  if (isAny) {
    for (const Tag& tag : document.tags) texts.push_back(tag.content);
  }
  if (field == FindOptions::kBlob) {
    for (const Blob& blob : picture.blobs) texts.push_back(blob.name);
  }
  return texts;
}

class Search {
 public:
  explicit Search(const FindOptions& options) : options_(options) {
    for (std::vector<std::string>& texts : options_.texts) {
      for (std::string& text : texts) text = Comparable(text);
    }
  }

  bool Finds(const Picture& picture) const {
    if (options_.noDocument && picture.hasDocument) return false;
    if (options_.noLabel && !picture.GetDocument().labels.empty()) return false;
    for (int field = 0; field < FindOptions::kFields; ++field) {
      for (const std::string& wanted : options_.texts[field]) {
        if (!Holds(picture, static_cast<Field>(field), wanted)) return false;
      }
    }
    return true;
  }

 private:
  std::string Comparable(std::string_view text) const {
    return options_.exact ? JoinSurrogates(text) : FoldCase(JoinSurrogates(text));
  }

  bool Matches(std::string_view stored, std::string_view wanted) const {
    const std::string text = Comparable(stored);
    return options_.exact ? text == wanted : text.find(wanted) != std::string::npos;
  }

  // A part of speech is wanted by its English name, by its stored name or by its number.
  bool IsPart(const std::string& stored, const std::string& wanted) const {
    const int32_t number = FindPart(stored);
    const bool isNumbered = number != 0 || stored.empty();
    return Matches(stored, wanted) || Matches(DescribePart(stored), wanted) ||
           (isNumbered && std::to_string(number) == wanted);
  }

  // Wanted is NAME or NAME=TEXT.
  bool IsTag(const Tag& tag, std::string_view wanted) const {
    const size_t equals = wanted.find('=');
    return Matches(tag.name, wanted.substr(0, equals)) &&
           (equals == std::string_view::npos || Matches(tag.content, wanted.substr(equals + 1)));
  }

  bool Holds(const Picture& picture, Field field, const std::string& wanted) const {
    const std::vector<Label>& labels = picture.GetDocument().labels;
    const std::vector<Tag>& tags = picture.GetDocument().tags;
    if (field == FindOptions::kPart) {
      return std::any_of(labels.begin(), labels.end(),
                         [&](const Label& label) { return IsPart(label.part, wanted); });
    }
    if (field == FindOptions::kTag) {
      return std::any_of(tags.begin(), tags.end(),
                         [&](const Tag& tag) { return IsTag(tag, wanted); });
    }
    const std::vector<std::string_view> texts = TextsOf(picture, field);
    return std::any_of(texts.begin(), texts.end(),
                       [&](std::string_view text) { return Matches(text, wanted); });
  }

  FindOptions options_;  // with the texts as they are compared
};

}  // namespace

int Find(const Options& options, Console* console) {
  const Search search(options.find);
  const auto line = [&](const std::string& path) -> std::string {
    if (options.find.count) return "";
    return (console->IsTerminal() ? Printable(path) : path) + (options.find.nul ? '\0' : '\n');
  };
  const auto find = [&](const Target& target) -> Outcome {
    if (!search.Finds(ReadPicture(target.path))) return {Outcome::kNotFound, ""};
    return {Outcome::kFine, line(target.path)};
  };
  const auto targets = TargetsOf(options, Purpose::kRead);
  const Tally tally = RunAll(targets.get(), find, console);
  if (tally.signal != 0) return ExitStatusOf(tally, console);
  const size_t found = tally.counts[Outcome::kFine];
  if (options.find.count) console->Print(std::to_string(found) + "\n");
  if (tally.counts[Outcome::kFailed] != 0) return kFindFailed;
  return found > 0 ? kFound : kFoundNone;
}

}  // namespace lumigram::cli
