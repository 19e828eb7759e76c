// The document reader of JPEG pictures. Input: the picture.
#include "fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lumigram::fuzz::CheckReader(lumigram::fuzz::Bytes(data, data + size), kFileTypeJpeg,
                              {0, -21, -30, -31, -41});
  return 0;
}
