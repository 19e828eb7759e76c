// Pictures to measure with: a folder that the user names, or a set built here.
#ifndef LUMIGRAM_BENCH_PICTURES_H_
#define LUMIGRAM_BENCH_PICTURES_H_

#include <string>
#include <vector>

#include "lumigram.h"

namespace lumigram::bench {

// The paths of pictures of one kind, named by its extension, each of which could be read when they
// were listed. All are in the page cache.
struct PictureSet {
  std::string name;
  std::vector<std::string> paths;
};

// The readable pictures of a folder and those below it, a set for each kind that it has.
std::vector<PictureSet> PicturesOf(const std::string& folder);

// Builds pictures of every kind in the folder, without a document. Their sizes are those of small
// emoji: about 1.2 KB for GIF, 1.7 KB for PNG and 15 KB for JPEG in the median.
void BuildPictures(const std::string& folder);

// One picture of every kind with about so many bytes, the limit's at most: image data that have to
// be walked (GIF), skipped (PNG), or end the file (JPEG), and a JPEG in which their end has to be
// searched.
std::vector<PictureSet> BuildPicturesOfSize(const std::string& folder, size_t size);

// So many tags, of ten names.
void FillTags(AttrInfo* record, int count);

// So many blobs of 64 bytes, whose files are written to the folder, unless it is "file://THIS".
void FillBlobs(AttrInfo* record, int count, const std::string& folder);

// Two labels, category, type and a tag: what a tagged picture carries.
void FillRecord(AttrInfo* record);

}  // namespace lumigram::bench

#endif  // LUMIGRAM_BENCH_PICTURES_H_
