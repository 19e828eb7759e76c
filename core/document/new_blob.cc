#include "core/document/new_blob.h"

#include "core/base/path.h"
#include "core/base/status.h"

namespace lumigram {

NewBlob::NewBlob(const RecordToWrite& record, size_t entry) {
  if (const uint8_t* const bytes = record.InMemory(entry); bytes != nullptr) {
    bytes_ = {bytes, record.inMemory[entry].size};
  } else if (record.mayOpenFiles) {
    char path[sizeof(AppExtEntry::binaryDataUri)];
    CopyText(path, TextOf(record.attr.appExt[entry].binaryDataUri));
    file_.reset(OpenForReading(path));
  }
}

int32_t NewBlob::Size() const {
  if (bytes_.data() == nullptr) return GetFileLength(file_.get());
  return bytes_.size() > kMaxPosition ? static_cast<int32_t>(kFailed)
                                      : static_cast<int32_t>(bytes_.size());
}

ByteSource NewBlob::Source() const {
  return file_ != nullptr ? ByteSource(file_.get()) : ByteSource(bytes_);
}

}  // namespace lumigram
