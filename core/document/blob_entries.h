// The blob entries of a record, and the blobs of a picture that they keep.
#ifndef LUMIGRAM_CORE_DOCUMENT_BLOB_ENTRIES_H_
#define LUMIGRAM_CORE_DOCUMENT_BLOB_ENTRIES_H_

#include <stdint.h>

#include <iterator>
#include <span>
#include <string_view>

#include "core/base/bytes.h"
#include "core/base/text.h"
#include "lumigram.h"

namespace lumigram {

// The URI of a blob that the picture itself carries is this prefix and the blob's name.
inline constexpr std::string_view kThisPicture = "file://THIS/";

// A container stores this many bytes of a blob's label. A blob is ours when its label begins with
// the mark.
inline constexpr size_t kBlobLabelSize = 11;
inline constexpr std::string_view kBlobMark = "EMJ";

inline bool RefersToThisPicture(std::string_view uri) { return BeginsWith(uri, kThisPicture); }

// The name of the blob in a URI: the text after its last "/", or all of it.
inline std::string_view BlobName(std::string_view uri) {
  uri.remove_prefix(uri.rfind('/') + 1);
  return uri;
}

// The name is taken from the whole URI, which may be cut to fit its field.
inline void SetUri(std::string_view uri, AppExtEntry* entry) {
  CopyText(entry->binaryDataUri, uri);
  CopyText(entry->fileName, BlobName(uri));
}

// The URI of an entry keeps a blob of the picture, or adds one from a file, or is not in use.
inline bool IsKept(const AppExtEntry& entry) {
  return BeginsWith(std::string_view(entry.binaryDataUri, kThisPicture.size()), kThisPicture);
}
inline bool IsNew(const AppExtEntry& entry) {
  return entry.binaryDataUri[0] != '\0' && !IsKept(entry);
}

// A record that is to be written, and where the bytes of its new blobs come from. Borrows both.
struct RecordToWrite {
  // All new blobs come from the files that the entries name.
  RecordToWrite(const AttrInfo& record) : attr(record) {}  // NOLINT(google-explicit-constructor)
  RecordToWrite(const AttrInfo& record, const NewBlobs& newBlobs)
      : attr(record),
        inMemory(newBlobs.blobs, newBlobs.blobs == nullptr ? 0 : newBlobs.count),
        mayOpenFiles(newBlobs.mayOpenFiles != 0) {}

  // The bytes of the blob that an entry adds from memory; null for an entry that adds none.
  const uint8_t* InMemory(size_t entry) const {
    return entry < inMemory.size() ? inMemory[entry].bytes : nullptr;
  }
  bool IsKept(size_t entry) const {
    return InMemory(entry) == nullptr && lumigram::IsKept(attr.appExt[entry]);
  }
  bool IsNew(size_t entry) const {
    return InMemory(entry) != nullptr || lumigram::IsNew(attr.appExt[entry]);
  }

  const AttrInfo& attr;
  const std::span<const BlobBytes> inMemory;
  const bool mayOpenFiles = true;
};

// The search for a blob: the first blob whose label and name begin with these.
struct WantedBlob {
  std::string_view label;
  std::string_view name;
};

// Sizes in bytes of the file. `kept` counts a blob once for each entry that keeps it.
struct BlobSizes {
  uint64_t all = 0;
  uint64_t kept = 0;
};

// Whether a URI that refers to this picture keeps the blob with the stored name: it keeps every blob
// whose stored name begins with the name in the URI.
inline bool Keeps(std::string_view name, std::string_view storedName) {
  return BeginsWith(storedName, name);
}

// The names of the blobs that a record keeps. Borrows the record.
class KeptNames {
 public:
  explicit KeptNames(const RecordToWrite& record) {
    for (size_t i = 0; i < std::size(record.attr.appExt); ++i) {
      if (record.IsKept(i)) names_[count_++] = TextOf(record.attr.appExt[i].fileName);
    }
  }

  // Whether the record keeps the blob.
  bool Keep(std::string_view storedName) const {
    for (uint32_t i = 0; i < count_; ++i) {
      if (Keeps(names_[i], storedName)) return true;
    }
    return false;
  }

  // Removes the names that find this blob, and returns their number. A size query by name ends at
  // the first blob that it finds, so each name counts one blob.
  uint32_t TakeFound(std::string_view storedName) {
    uint32_t left = 0;
    for (uint32_t i = 0; i < count_; ++i) {
      if (!Keeps(names_[i], storedName)) names_[left++] = names_[i];
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

#endif  // LUMIGRAM_CORE_DOCUMENT_BLOB_ENTRIES_H_
