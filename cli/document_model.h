// A metadata document, taken apart twice: whole, and as the library's readers deliver it. If the
// two differ, reading loses something.
#ifndef LUMIGRAM_CLI_DOCUMENT_MODEL_H_
#define LUMIGRAM_CLI_DOCUMENT_MODEL_H_

#include <stdint.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "cli/files.h"

namespace lumigram::cli {

struct Blob {
  std::string label, name, bytes;
  bool operator==(const Blob&) const = default;
};

struct Label {
  std::string name, note, part;
  bool operator==(const Label&) const = default;
};

struct Tag {
  std::string name, content;
  std::shared_ptr<const Blob> blob;  // to be embedded; null: none

  bool operator==(const Tag& other) const {
    const bool isSameBlob = blob && other.blob ? *blob == *other.blob : blob == other.blob;
    return isSameBlob && name == other.name && content == other.content;
  }
};

// The texts have their stored spelling.
struct Document {
  std::vector<Label> labels;
  std::string category, type;
  std::vector<Tag> tags;
  bool operator==(const Document&) const = default;
};

struct Finding {
  enum Severity {
    kNote,     // nothing is lost
    kMissing,  // a tag refers to it, and it is not in the picture
    kUnnamed,  // a blob that no tag refers to: a reader does not look for it
    kUnread,   // a reader does not deliver it
    kDropped,  // every rewrite of the picture drops it
  };
  Severity severity;
  int32_t code;
  std::string text;
};

struct Reading {
  Document whole;
  Document asRead;
  std::vector<Finding> findings;

  void Add(Finding::Severity severity, int32_t code, std::string text) {
    findings.push_back({severity, code, std::move(text)});
  }
};

Reading InspectDocument(std::string_view text);

// Calls function(what, text) for every text of a document; `what` describes the text.
template <typename Function>
void ForEachText(const Document& document, Function function) {
  for (size_t i = 0; i < document.labels.size(); ++i) {
    const std::string where = " of label " + std::to_string(i + 1);
    function("the name" + where, document.labels[i].name);
    function("the note" + where, document.labels[i].note);
    function("the part of speech" + where, document.labels[i].part);
  }
  function("the category", document.category);
  function("the type", document.type);
  for (size_t i = 0; i < document.tags.size(); ++i) {
    const std::string where = " of tag " + std::to_string(i + 1);
    function("the name" + where, document.tags[i].name);
    function("the content" + where, document.tags[i].content);
  }
}

// Finds the parts of a document that a reader does not deliver: texts and counts over their limits,
// unknown parts of speech. Also used to check a document before it is written.
std::vector<Finding> FindUnread(const Document& document);

// The English name of a part of speech; the stored text if it is not in the table.
std::string DescribePart(const std::string& stored);

// The name of the blob that a tag's content refers to; empty when it refers to none.
std::string_view BlobReference(std::string_view content);

}  // namespace lumigram::cli

#endif  // LUMIGRAM_CLI_DOCUMENT_MODEL_H_
