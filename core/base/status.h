// What an operation answers. The values are those of lumigram.h; a code with two reasons has two
// names here, so that the code says which one it means.
#ifndef LUMIGRAM_CORE_BASE_STATUS_H_
#define LUMIGRAM_CORE_BASE_STATUS_H_

#include "lumigram.h"

namespace lumigram {

enum [[nodiscard]] Status : int32_t{
    kOk = kLumigramOk,

    kFailed = kLumigramFailed,        // a size, a type or an ordinary element cannot be had
    kCannotGoBack = kLumigramFailed,  // a writer's stream refuses to go back over a comment
    kNoTags = kLumigramNoTags,        // neither start nor end tag
    kStartTagOnly = kLumigramStartTagOnly, kEndTagOnly = kLumigramEndTagOnly,
    kNoDocument = kLumigramNoDocument,  // a picture without metadata
    kNullArgument = kLumigramNullArgument, kCannotOpen = kLumigramCannotOpen,
    kUnsupported = kLumigramUnsupported,    // the extension is not one of ours
    kNoFrameHeader = kLumigramUnsupported,  // a JPEG without dimensions
    kMalformed = kLumigramMalformed,        // a short read, or bytes that cannot be
    kDimensions = kLumigramDimensions,      // over 960 pixels
    kBadLabels = kLumigramLabels,
    kTooLong = kLumigramTooLong,  // an element or a document over its limit in bytes
    kTooManyCharacters = kLumigramOverLimit,
    kPictureTooLarge = kLumigramOverLimit,  // a new picture over 2 MiB
    kDuplicateBlob = kLumigramDuplicate,
    kBadArgument = kLumigramBadArgument,  // an argument that cannot be used
    kBadStream = kLumigramBadArgument,    // a stream that cannot be measured or positioned
    kNoRoom = kLumigramBadArgument,       // no memory, or an output that is full
    kBadBlob = kLumigramBadArgument,  // a blob file that cannot be read, or a stored blob that lies
                                      // about its size
    kBadField = kLumigramBadArgument,     // a Java field, array or text that cannot be had
    kCannotWrite = kLumigramBadArgument,  // the picture cannot be replaced
};

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_BASE_STATUS_H_
