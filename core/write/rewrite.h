// A whole rewrite of a picture: read it, check that nothing is lost that the caller has not seen,
// build the new picture, and replace the old one unless it changes meanwhile.
#ifndef LUMIGRAM_CORE_WRITE_REWRITE_H_
#define LUMIGRAM_CORE_WRITE_REWRITE_H_

#include <stdint.h>

#include "core/base/byte_source.h"
#include "core/base/fingerprint.h"
#include "core/base/kind.h"
#include "core/write/build_picture.h"

namespace lumigram {

struct RewriteRequest {
  RecordToWrite record;  // the new metadata
  // The metadata that the caller has seen; null: whatever is there is replaced.
  const FingerprintValue* expected;
  // Replaces also what a read withholds, and metadata that cannot be read at all.
  bool replacesUnread;
};

// Is kRewritten, one of the reasons below, or the Status that reading or building returned.
using RewriteResult = int32_t;
enum : RewriteResult {
  kRewritten = kOk,
  kBlobMissing = 3,  // a tag newly refers to a blob that the picture does not carry
  kUnread = 4,       // a read withholds something that the rewrite would remove
  kChanged = 5,      // document or blobs are not those of the expected fingerprint
  kBusy = 6,         // another program holds the lock, or keeps changing the picture
  kNotReplaced = 7,
};

// What a read withholds, or a rewrite drops.
enum UnreadKind {
  kRefusedLabels,
  kFurtherLabels,
  kUnknownParts,
  kRefusedTags,
  kDroppedTags,
  kRefusedTexts,
  kStrayTexts,
  kTextsWithMarkup,
  kFurtherDocuments,
  kUnnamedBlobs,
  kBytesAfterEnd,
  kUnreadKinds
};

struct RewriteReport {
  int32_t unread[kUnreadKinds];  // after kUnread: how many of each kind
  int32_t tagOfBlob;             // after kBlobMissing: the index of the tag
  FingerprintValue fingerprint;  // after kRewritten: of the new picture
  int32_t size;
  int32_t error;  // after kCannotOpen and kNotReplaced: errno, or 0
};

// Checks the request and builds the new picture, from a measured source, whatever its position.
RewriteResult BuildRewrite(ByteSource& source, Kind kind, const RewriteRequest& request,
                           NewPicture* picture, RewriteReport* report);

// Rewrites the picture at a path, whose extension decides its kind. Waits for the lock of another
// rewrite, ten seconds at most. If another program changes the picture meanwhile, begins again, a
// few times. A picture that does not exist is not created. After a failure it is the old one.
RewriteResult RewriteFile(const char* path, const RewriteRequest& request, RewriteReport* report);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_WRITE_REWRITE_H_
