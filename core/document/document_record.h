// Takes a whole document apart, not only the part that a batch read delivers.
#ifndef LUMIGRAM_CORE_DOCUMENT_DOCUMENT_RECORD_H_
#define LUMIGRAM_CORE_DOCUMENT_DOCUMENT_RECORD_H_

#include <string_view>

#include "lumigram.h"

namespace lumigram {

// Fills a record that is all zero with the labels, category, type, tags and blob entries of a
// document that begins with the root's start tag, and counts in the summary what a batch read
// withholds or a rewrite of the record drops.
void FillRecord(std::string_view document, AttrInfo* attr, PictureSummary* summary);

}  // namespace lumigram

#endif  // LUMIGRAM_CORE_DOCUMENT_DOCUMENT_RECORD_H_
