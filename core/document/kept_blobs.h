// What the blobs of a picture take, for the sizing of a new picture.
#ifndef LUMIGRAM_CORE_DOCUMENT_KEPT_BLOBS_H_
#define LUMIGRAM_CORE_DOCUMENT_KEPT_BLOBS_H_

#include <stdint.h>

#include <string_view>

#include "core/document/document_format.h"

namespace lumigram {

// In bytes of the file. A blob that several entries keep is counted for each of them.
struct BlobSizes {
  uint64_t all = 0;
  uint64_t kept = 0;
};

// The names of the blobs that a record keeps, each until its blob is found: a picture is walked
// once for all of them. Borrows the record.
class KeptNames {
 public:
  explicit KeptNames(const AttrInfo& attr) {
    for (const AppExtEntry& entry : attr.appExt) {
      if (IsKept(entry)) names_[count_++] = TextOf(entry.fileName);
    }
  }

  // How many entries find their blob in this one: those whose name it begins with, and that have
  // not found theirs before.
  uint32_t TakeFound(std::string_view storedName) {
    uint32_t left = 0;
    for (uint32_t i = 0; i < count_; ++i) {
      if (!BeginsWith(storedName, names_[i])) names_[left++] = names_[i];
    }
    const uint32_t found = count_ - left;
    count_ = left;
    return found;
  }

 private:
  std::string_view names_[kLumigramMaxTags];
  uint32_t count_ = 0;
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_KEPT_BLOBS_H_
