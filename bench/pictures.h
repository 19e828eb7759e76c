// Pictures to measure with: a folder that the user names, or a set built here.
#ifndef LUMIGRAM_BENCH_PICTURES_H_
#define LUMIGRAM_BENCH_PICTURES_H_

#include <string>
#include <vector>

#include "lumigram.h"

namespace lumigram::bench {

// The paths of the pictures of one type, each of which could be read when they were listed. All in
// the page cache.
struct PictureSet {
  std::string name;
  FileType type;
  std::vector<std::string> paths;
};

// The readable pictures of a folder and those below it, a set for each type that it has.
std::vector<PictureSet> PicturesOf(const std::string& folder);

// Builds pictures of every type in the folder, with and without a document. Their sizes are those
// of small emoji: about 1.2 KB for GIF, 1.7 KB for PNG and 15 KB for JPEG in the median.
std::vector<PictureSet> BuildPictures(const std::string& folder);

// Two labels, category, type and a tag: what a tagged picture carries.
void FillRecord(AttrInfo* record);

}  // namespace lumigram::bench

#endif  // LUMIGRAM_BENCH_PICTURES_H_
