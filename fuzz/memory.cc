// Pictures in memory and in files give the same results. Input: a picture, read as each kind.
#include "fuzz/memory.h"

#include "fuzz/input.h"

using namespace lumigram::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  const Bytes picture(data, data + size);
  if (picture.empty() || size > kLumigramMaxPictureBytes) return 0;
  for (FileType type : {kFileTypeGif, kFileTypeJpeg, kFileTypePng}) {
    const std::string differences = DifferencesFromFile(picture, type);
    Require(differences.empty(), differences.c_str());
  }
  return 0;
}
