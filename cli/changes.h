// Changes to the metadata of a picture.
#ifndef LUMIGRAM_CLI_CHANGES_H_
#define LUMIGRAM_CLI_CHANGES_H_

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "cli/picture_model.h"

namespace lumigram::cli {

// The texts are as they are stored. One in Java's spelling takes the spelling that the picture has
// for it; one in another spelling, or with bytes that are no character, is meant byte for byte.
// Metadata without a change stay the same.
struct Changes {
  // Note and part change only when they are given.
  struct LabelChange {
    std::string name;
    std::optional<std::string> note, part;
    bool operator==(const LabelChange&) const = default;
  };

  std::optional<std::vector<Label>> allLabels;
  std::optional<std::vector<Tag>> allTags;
  std::optional<std::vector<Blob>> allBlobs;
  std::optional<std::string> category, type;
  std::vector<std::string> removedLabels;
  std::vector<std::pair<std::string, std::string>> renamedLabels;  // old and new names
  std::vector<LabelChange> labels;  // each changes the label of its name, or adds one
  // The tags of one name replace all tags of that name; an empty content only removes them.
  std::vector<Tag> tags;

  bool operator==(const Changes&) const = default;
  bool Empty() const { return *this == Changes(); }
};

// Returns the changed document. The document may be the whole document of the picture or another
// one.
Document Apply(const Changes& changes, const Document& document, const Picture& picture);

// These functions parse words of a command line. They throw Failure.

std::string ParseText(std::string_view words);
// OLD=NEW, where \= is an equals sign.
std::pair<std::string, std::string> ParseRenaming(std::string_view words);
// NAME[:NOTE[:PART]], where \: is a colon.
Changes::LabelChange ParseLabel(std::string_view words);
// NAME=CONTENT
Tag ParseTag(std::string_view words);
// LABEL:TAG=FILE
Tag ParseEmbed(std::string_view words);

inline constexpr size_t kMaxBlobName = 255;  // the largest size of a GIF sub-block

// Returns a tag that embeds the file. Throws Failure for a label that is not one of ours, and for a
// file that cannot be read, is empty or is too large.
Tag EmbedFile(const std::string& tagName, const std::string& label, const std::string& file);

// Returns the stored name of a part of speech, given by its English name, its stored name or its
// number. Throws Failure.
std::string PartNamed(const std::string& words);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_CHANGES_H_
