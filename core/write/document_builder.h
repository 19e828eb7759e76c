// The document of a record, in the order and within the limits of document_format.h.
#ifndef LUMIGRAM_CORE_WRITE_DOCUMENT_BUILDER_H_
#define LUMIGRAM_CORE_WRITE_DOCUMENT_BUILDER_H_

#include <stdint.h>

#include <initializer_list>
#include <string_view>

#include "core/base/output_buffer.h"
#include "core/base/status.h"

namespace lumigram {

// Puts a document together in memory that it borrows. Each element is formatted first and then
// appended whole, so that what a label's own texts are refused for is found before the document is
// found to be full. Contents are inserted as they are: nothing is escaped. An element whose key
// text is empty is left out.
class DocumentBuilder {
 public:
  explicit DocumentBuilder(XmlStringInfo* document);

  // kTooManyCharacters for a name or note over 24 characters, but the note of a label without a
  // name is not looked at; kTooLong, as for the others, when the document is full.
  Status AddLabel(std::string_view name, std::string_view note, std::string_view part);
  Status AddElement(std::string_view startTag, std::string_view content, std::string_view endTag);
  Status AddTagGroup(std::string_view name, std::string_view content);

  // Closes the document and stores its length.
  Status Finish();

 private:
  using Pieces = std::initializer_list<std::string_view>;

  void Format(Pieces pieces);
  Status AppendFormatted();

  XmlStringInfo* const document_;
  OutputBuffer text_;
  // The longest element is a tag group of 256 and 1,024 bytes: 1,301 bytes.
  char scratch_[1638];
  size_t scratchSize_ = 0;
  bool fits_ = true;
};

// Builds the document of a record; an empty record's is <emoji></emoji>. Returns kOk;
// kTooManyCharacters for a name of any label, or the note of a label with a name, over 24
// characters; kTooLong for a document that would reach 10,240 bytes. The first fault in the order
// of the document counts.
Status BuildDocument(const AttrInfo& attr, XmlStringInfo* document);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_DOCUMENT_BUILDER_H_
