// The result of an operation. The values are those of lumigram.h. A value with several reasons
// has a name for each reason.
#ifndef LUMIGRAM_CORE_BASE_STATUS_H_
#define LUMIGRAM_CORE_BASE_STATUS_H_

#include "lumigram.h"

namespace lumigram {

// clang-format off
enum [[nodiscard]] Status : int32_t {
  kOk                = kLumigramOk,
  kFailed            = kLumigramFailed,        // no size or type, or a faulty element
  kCannotGoBack      = kLumigramFailed,        // a stream refuses to seek back over a comment
  kNoTags            = kLumigramNoTags,        // neither start tag nor end tag
  kNoBlob            = kLumigramNoTags,        // no blob has the wanted label and name
  kStartTagOnly      = kLumigramStartTagOnly,  // no end tag
  kEndTagOnly        = kLumigramEndTagOnly,    // no start tag
  kNoDocument        = kLumigramNoDocument,    // a picture without metadata
  kNullArgument      = kLumigramNullArgument,  // null, or a Java text that cannot be read
  kCannotOpen        = kLumigramCannotOpen,    // the picture cannot be opened
  kUnsupported       = kLumigramUnsupported,   // extension or first bytes are not of ours
  kNoFrameHeader     = kLumigramUnsupported,   // a JPEG picture without dimensions
  kMalformed         = kLumigramMalformed,     // a short read, or bytes that are not allowed there
  kDimensions        = kLumigramDimensions,    // over 960 pixels
  kBadLabels         = kLumigramLabels,        // unusable labels
  kTooLong           = kLumigramTooLong,       // an element or a document over its limit in bytes
  kTooManyCharacters = kLumigramOverLimit,     // a name or note over 24 characters
  kPictureTooLarge   = kLumigramOverLimit,     // a new picture over 2 MiB
  kDuplicateBlob     = kLumigramDuplicate,     // two blobs with one name
  kBadArgument       = kLumigramBadArgument,   // an argument that cannot be used
  kBadStream         = kLumigramBadArgument,   // a stream that cannot be measured or positioned
  kNoRoom            = kLumigramBadArgument,   // no memory, or an output that is full
  kBadBlob           = kLumigramBadArgument,   // an unreadable blob file, or wrong stored sizes
  kBadField          = kLumigramBadArgument,   // a Java field, array or text that cannot be read
  kNotReady          = kLumigramBadArgument,   // not a regular file of 1 byte to 2 MiB
  kCannotWrite       = kLumigramBadArgument,   // the picture cannot be replaced
};
// clang-format on

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_STATUS_H_
