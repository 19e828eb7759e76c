// Extraction by type, and the lookup of one tag group. Input: a byte for the type, a tag name, the
// picture.
#include "fuzz/input.h"

using namespace lumigram::fuzz;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  Input input(data, size);
  const FileType type = static_cast<int8_t>(input.Byte()) % 5;
  const std::string tagName = input.Text(300);
  const Bytes picture = input.Rest();
  if (picture.empty()) return 0;  // The library would wait a second for an empty file.

  const lumigram::ScopedFile stream = lumigram::test::Stream(picture);
  const auto document = Block(kLumigramDocumentBufferBytes);
  int32_t height = 0, width = 0, pop = 0;
  const int32_t status = GetXmlString(stream.get(), type, document.get(), &height, &width, &pop);
  RequireStatus(status, {0, -5, -21, -30, -31, -41, -99});
  Require((status == 0) <= (document[0] != '\0'), "on success there is a document");
  rewind(stream.get());
  const auto results = std::make_unique<char[][1025]>(10);
  const int32_t lookup = GetTagInfo(stream.get(), type, tagName.c_str(), results.get());
  RequireStatus(lookup, {0, -99});
  Require(lookup != 0 || status == 0, "a lookup succeeds only if there is a document");
  return 0;
}
