// What a picture's metadata are to become.
#ifndef LUMIGRAM_TOOLS_CHANGES_H_
#define LUMIGRAM_TOOLS_CHANGES_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/picture_model.h"

namespace lumigram::tool {

// The texts are in UTF-8 proper. What is not named stays.
struct Changes {
  // Note and part change only when they are given.
  struct LabelChange {
    std::string name;
    std::optional<std::string> note, part;
  };

  std::optional<std::vector<Label>> allLabels;
  std::optional<std::vector<Tag>> allTags;
  std::optional<std::string> category, type;
  std::vector<LabelChange> labels;  // each changes the label of its name, or adds one
  std::vector<Tag> tags;  // those of one name take the place of all of that name; an empty content
                          // stands for none

  bool Empty() const;
};

// The document that becomes of one, either the whole document of the picture or another. Texts that
// the picture holds already keep their spelling; new ones are spelled as Java does.
Document Apply(const Changes& changes, const Document& document, const Picture& picture);

// The following take a command line's words apart. They throw Failure, with a sentence.

std::string ParseText(std::string_view words);
// NAME[:NOTE[:PART]], where \: is a colon.
Changes::LabelChange ParseLabel(std::string_view words);
// NAME=CONTENT
Tag ParseTag(std::string_view words);
// LABEL:TAG=FILE
Tag ParseEmbed(std::string_view words);

// A tag that embeds the file. Throws Failure for a label that marks no blob, and for a file that
// cannot be read, is empty or too large.
Tag EmbedFile(const std::string& tagName, const std::string& label, const std::string& file);

// The stored name for a part of speech by its name or number. Throws Failure.
std::string PartNamed(const std::string& words);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_CHANGES_H_
