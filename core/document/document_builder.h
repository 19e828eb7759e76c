// Builds the document of a record in the layout of document_format.h.
#ifndef LUMIGRAM_CORE_DOCUMENT_DOCUMENT_BUILDER_H_
#define LUMIGRAM_CORE_DOCUMENT_DOCUMENT_BUILDER_H_

#include "core/base/status.h"

namespace lumigram {

// Builds the document of a record; that of an empty record is <emoji></emoji>. Contents are not
// escaped. Returns kOk; kTooManyCharacters for a name of any label, or the note of a label with a
// name, over 24 characters; kTooLong for a document that would reach 10,240 bytes. The first fault
// in the order of the document decides.
Status BuildDocument(const AttrInfo& attr, XmlStringInfo* document);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_DOCUMENT_BUILDER_H_
