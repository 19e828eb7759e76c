// Pictures for the benchmarks: from a folder that the user names, or built here.
#ifndef LUMIGRAM_BENCH_PICTURES_H_
#define LUMIGRAM_BENCH_PICTURES_H_

#include <string>
#include <vector>

#include "lumigram.h"

namespace lumigram::bench {

// The paths of readable pictures of one kind, named by its extension. All were in the page cache
// when they were listed.
struct PictureSet {
  std::string name;
  std::vector<std::string> paths;
};

// Returns the readable pictures of a folder and its subfolders, one set for each kind.
std::vector<PictureSet> PicturesOf(const std::string& folder);

// Builds pictures of every kind in the folder, without a document. They have the sizes of small
// emoji: medians of about 1.2 KB for GIF, 1.7 KB for PNG and 15 KB for JPEG.
void BuildPictures(const std::string& folder);

// Builds one picture of every kind with about this size, at most the limit. Their image data are
// walked (GIF), skipped (PNG), at the end of the file (JPEG), or searched for their end (another
// JPEG).
std::vector<PictureSet> BuildPicturesOfSize(const std::string& folder, size_t size);

// Fills in `count` tags with ten names.
void FillTags(AttrInfo* record, int count);

// Fills in `count` blobs of 64 bytes. Writes their files to the folder, unless it is "file://THIS".
void FillBlobs(AttrInfo* record, int count, const std::string& folder);

// Fills in two labels, category, type and a tag, for the tagged pictures.
void FillRecord(AttrInfo* record);

}  // namespace lumigram::bench

#endif  // LUMIGRAM_BENCH_PICTURES_H_
