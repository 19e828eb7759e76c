// Walks all elements of a document in stored order, and finds the text between them. The functions
// that read a document for a batch search for one kind of element after another instead, and skip
// the rest.
#ifndef LUMIGRAM_CORE_DOCUMENT_DOCUMENT_WALK_H_
#define LUMIGRAM_CORE_DOCUMENT_DOCUMENT_WALK_H_

#include <stddef.h>

#include <span>
#include <string_view>

namespace lumigram {

struct ElementTags {
  std::string_view start, end;
};

// The elements of the root, and of a label. A tag group's content includes its name:
// NAME">CONTENT
enum RootElement : size_t { kLabelElement, kCategoryElement, kTypeElement, kTagsElement };
enum LabelElement : size_t { kNameElement, kNoteElement, kPartElement };
extern const ElementTags kRootElements[4];
extern const ElementTags kLabelElements[3];

struct FoundElement {
  size_t index;              // into the tags that were searched for
  std::string_view before;   // the text between the last element and this one
  std::string_view content;  // between start tag and end tag
};

// Finds the next element with one of the tags, and removes it from the text with everything before
// it. False when there is none. A start tag without an end tag after it begins no element.
bool TakeElement(std::span<const ElementTags> tags, std::string_view* text, FoundElement* element);

// Splits a document that begins with the root's start tag into the content of the root and the text
// after its end tag. False without an end tag; the content then extends to the document's end.
bool SplitDocument(std::string_view document, std::string_view* root, std::string_view* after);

// Splits the content of a tag group into name and content; false when the name is not closed.
bool SplitTagGroup(std::string_view group, std::string_view* name, std::string_view* content);

// Whether the text is only white space, which may be lost between elements.
bool IsBlank(std::string_view text);

// Whether the text of an element contains something that a search takes for a tag of the document.
bool HoldsMarkup(std::string_view text);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_DOCUMENT_WALK_H_
