// Documents and their elements, right or wrong as told. Not inlined: GCC 12 would warn of
// texts that overlap, which they cannot.
#ifndef LUMIGRAM_TESTS_SUPPORT_DOCUMENTS_H_
#define LUMIGRAM_TESTS_SUPPORT_DOCUMENTS_H_

#include <string>

namespace lumigram::test {

// The shortest document that all containers take, or one of the size.
[[gnu::noinline]] inline std::string Document(size_t size = 8) {
  return "<emoji>" + std::string(size - 7, '.');
}

[[gnu::noinline]] inline std::string Tag(const std::string& name, const std::string& content) {
  return "<tags name=\"" + name + "\">" + content + "</tags>";
}
[[gnu::noinline]] inline std::string Label(const std::string& name, const std::string& more = "") {
  return "<label><name>" + name + "</name>" + more + "</label>";
}
[[gnu::noinline]] inline std::string Repeat(const std::string& text, size_t n) {
  std::string all;
  while (n-- > 0) all += text;
  return all;
}

}  // namespace lumigram::test

#endif  // LUMIGRAM_TESTS_SUPPORT_DOCUMENTS_H_
