// Pieces of GIF files, right or wrong as told; a picture is their sum.
#ifndef LUMIGRAM_TESTS_SUPPORT_GIF_BUILDER_H_
#define LUMIGRAM_TESTS_SUPPORT_GIF_BUILDER_H_

#include <string_view>

#include "tests/support/bytes.h"

namespace lumigram::test {

// Colour tables are full of trailers: a walk that gets their size wrong ends early.
Bytes GifScreen(uint32_t width = 100, uint32_t height = 80, std::string_view signature = "GIF89a",
                uint8_t packed = 0x80);
Bytes GifImage(uint32_t width = 40, uint32_t height = 30, uint8_t packed = 0x81);
// The bytes in sub-blocks of `step`, and the terminator.
Bytes GifChain(const Bytes& data, size_t step = 255);
Bytes GifComment(std::string_view text, size_t step = 255);
Bytes GifApplication(std::string_view identifier, const Bytes& chain);
// A label of 11 bytes, the name, the data.
Bytes GifBlob(std::string_view label, std::string_view name, const Bytes& data);

inline const Bytes kGifControl = {0x21, 0xF9, 4, 5, 0x21, 0x2C, 0x3B, 0};
inline const Bytes kGifPopMarker = GifApplication("HTMLEMJI1.0", GifChain({7}));
inline const Bytes kGifPlainText = {0x21, 0x01, 1, 0x3B, 2, 0x3B, 0x3B, 0};
inline const Bytes kGifEnd = {0x3B};

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_GIF_BUILDER_H_
