// A metadata document taken apart twice: whole, with everything that stands in it, and as the
// library's readers see it. Where the two differ, reading loses something.
#ifndef LUMIGRAM_TOOLS_DOCUMENT_MODEL_H_
#define LUMIGRAM_TOOLS_DOCUMENT_MODEL_H_

#include <stdint.h>

#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "tools/files.h"

namespace lumigram::tool {

// A blob that is to be embedded.
struct NewBlob {
  std::string label;  // begins "EMJ", at most 11 bytes
  std::string name;   // what the picture calls it
  std::string path;   // with a "/", as the record of a picture wants it
  std::string bytes;
};

struct Label {
  std::string name, note, part;
  bool operator==(const Label&) const = default;
};

struct Tag {
  std::string name, content;
  std::shared_ptr<const NewBlob> blob;  // in a document that is to be written
  bool operator==(const Tag&) const = default;
};

// The texts are as they are stored.
struct Document {
  std::vector<Label> labels;
  std::string category, type;
  std::vector<Tag> tags;
  bool operator==(const Document&) const = default;
};

struct Finding {
  enum Kind {
    kNote,     // worth knowing
    kUnread,   // stands in the picture, but a reader does not deliver it
    kDropped,  // every rewriting of the picture drops it
  };
  Kind kind;
  int32_t code;
  std::string text;
};

struct Reading {
  Document whole;
  Document asRead;
  std::vector<Finding> findings;

  void Add(Finding::Kind kind, int32_t code, std::string text) {
    findings.push_back({kind, code, std::move(text)});
  }
};

Reading ReadDocument(std::string_view text);

// Calls function(what, text) with every text of a document and with words for what it is.
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

// What a reader does not deliver of such a document: texts and numbers over their limits, names
// that it does not know. Also a test of a document that is to be written.
std::vector<Finding> FindUnread(const Document& document);

// The file name of a blob that a tag's content refers to; empty when it refers to none.
std::string_view BlobReference(std::string_view content);

}  // namespace lumigram::tool

#endif  // LUMIGRAM_TOOLS_DOCUMENT_MODEL_H_
