// A document as a batch read delivers it.
#ifndef LUMIGRAM_CORE_DOCUMENT_DELIVERED_H_
#define LUMIGRAM_CORE_DOCUMENT_DELIVERED_H_

#include "lumigram.h"

namespace lumigram {

// Of attr, only labels, category and type are used. The entries of tags after elementCount are
// unspecified. Exception: the texts of the first entry are empty when there are no tags.
struct DeliveredDocument {
  bool hasLabels;  // there is at least one label, and all are usable
  bool hasCategory;
  bool hasType;
  AttrInfo attr;
  TagCollection tags;
};

// Cuts labels, tags, category and type out of a document in its buffer. Clears only the part of the
// output that it uses: clearing all of it takes several times as long as reading a small picture.
void TakeDocumentApart(char* document, DeliveredDocument* out);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_DELIVERED_H_
