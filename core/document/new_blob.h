// The bytes of a new blob.
#ifndef LUMIGRAM_CORE_DOCUMENT_NEW_BLOB_H_
#define LUMIGRAM_CORE_DOCUMENT_NEW_BLOB_H_

#include <stdint.h>

#include <span>

#include "core/base/byte_source.h"
#include "core/base/scoped.h"
#include "core/document/blob_entries.h"

namespace lumigram {

// The bytes of a blob that an entry of a record adds: in memory, or in the file that the entry
// names. The file is opened only if the record allows it.
class NewBlob {
 public:
  NewBlob(const RecordToWrite& record, size_t entry);

  // Whether there are bytes in memory, or an open file.
  bool IsThere() const { return file_ != nullptr || bytes_.data() != nullptr; }
  // As GetFileLength().
  int32_t Size() const;
  // The bytes from the first one on.
  ByteSource Source() const;

 private:
  std::span<const uint8_t> bytes_;
  ScopedFile file_;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_NEW_BLOB_H_
