#include "core/gif/gif_format.h"

namespace lumigram {

bool ReadSubBlock(ByteSource& source, GifSubBlock* block) {
  return source.ReadByte(&block->size) && source.Read({block->bytes, block->size});
}

bool PutSubBlock(OutputBuffer& out, std::string_view data) {
  return out.PutByte(static_cast<uint8_t>(data.size())) && out.Put(data);
}

Status SkipChain(ByteSource& source, uint8_t size) {
  while (size != 0) {
    if (!source.Skip(size)) return kBadStream;
    if (!source.ReadByte(&size)) return kMalformed;
  }
  return kOk;
}

Status SkipChain(ByteSource& source) {
  uint8_t size;
  return source.ReadByte(&size) ? SkipChain(source, size) : kMalformed;
}

Status SkipImage(ByteSource& source, const GifImage& image) {
  // The colour table and the byte with the code size.
  if (!source.Skip(GetSizeColorTable(image.Packed()))) return kBadStream;
  uint8_t size;
  if (!source.ReadByte(&size) || !source.ReadByte(&size)) return kMalformed;
  while (size != 0 && size < source.Remaining()) {
    if (!source.Skip(size)) return kBadStream;
    if (!source.ReadByte(&size)) return kMalformed;
  }
  return kOk;
}

}  // namespace lumigram

uint32_t GetSizeColorTable(uint32_t packed) {
  const bool present = (packed & 0x80) != 0;
  return present ? 3u << ((packed & 7) + 1) : 0;
}
