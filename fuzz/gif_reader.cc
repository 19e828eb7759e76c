// The document reader of GIF pictures. Input: the picture.
#include "fuzz/input.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  lumigram::fuzz::CheckReader(lumigram::fuzz::Bytes(data, data + size), kFileTypeGif,
                              {0, -30, -31, -41});
  return 0;
}
