// Queries of blob sizes, and copies of blobs. Input: a byte for the container, label, name,
// picture.
#include "core/file/blobs.h"

#include "fuzz/input.h"

using namespace lumigram::fuzz;
using lumigram::Kind;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const bool isGif = input.Byte() % 2 == 0;
  const std::string label = input.Text(70000), name = input.Text(70000);
  const Bytes picture = input.Rest();
  const auto measure =
      isGif ? GetSizeApplicationExtensionFromGif : GetSizeApplicationExtensionFromPng;
  const auto copy = isGif ? GetApplicationExtensionDataFromGif : GetApplicationExtensionDataFromPng;
  const auto* const functions = lumigram::BlobFunctionsOf(isGif ? Kind::kGif : Kind::kPng);

  const lumigram::ScopedFile stream = lumigram::test::Stream(picture);
  uint32_t all = 7, one = 7;
  int32_t status = measure(stream.get(), &all, nullptr);
  RequireStatus(status, {0, -99, -30});
  Require(status != 0 || ftell(stream.get()) == 0, "a size query puts the stream back");
  Require(status != 0 || all <= picture.size(), "blobs are no larger than the picture");
  rewind(stream.get());
  RequireStatus(measure(stream.get(), &one, name.c_str()), {0, -99, -30});

  const auto blob = Block(picture.size());
  uint8_t* const out = reinterpret_cast<uint8_t*>(blob.get());
  uint32_t length = 7;
  rewind(stream.get());
  status = copy(stream.get(), out, &length, label.c_str(), name.c_str());
  RequireStatus(status, {0, -99, -30, -31});
  Require(length <= picture.size(), "a blob is no larger than the picture");
  if (status != 0 || length == 0) return 0;
  // A buffer of exactly the blob's size is enough, one byte less is not.
  const auto exact = Block(length), less = Block(length - 1);
  lumigram::OutputBuffer enough(reinterpret_cast<uint8_t*>(exact.get()), length);
  lumigram::OutputBuffer tooLittle(reinterpret_cast<uint8_t*>(less.get()), length - 1);
  uint32_t again = 0;
  rewind(stream.get());
  lumigram::ByteSource source(stream.get());
  status = functions->copy(source, {label.c_str(), name.c_str()}, &enough, &again);
  Require(
      status == 0 && again == length && std::equal(exact.get(), exact.get() + length, blob.get()),
      "a buffer of the blob's size is enough");
  Require(source.Rewind(), "a file in memory can be positioned");
  status = functions->copy(source, {label.c_str(), name.c_str()}, &tooLittle, &again);
  Require(status == -99, "a smaller buffer is refused");
  return 0;
}
