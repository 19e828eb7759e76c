// The document of a record, in the order and within the limits of document_format.h.
#ifndef LUMIGRAM_CORE_WRITE_DOCUMENT_BUILDER_H_
#define LUMIGRAM_CORE_WRITE_DOCUMENT_BUILDER_H_

#include "core/base/status.h"

namespace lumigram {

// Builds the document of a record; an empty record's is <emoji></emoji>. Contents are inserted as
// they are: nothing is escaped. Returns kOk; kTooManyCharacters for a name of any label, or the
// note of a label with a name, over 24 characters; kTooLong for a document that would reach 10,240
// bytes. The first fault in the order of the document counts.
Status BuildDocument(const AttrInfo& attr, XmlStringInfo* document);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_DOCUMENT_BUILDER_H_
