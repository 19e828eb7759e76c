// Parts of speech travel as small numbers in Java and as these names in documents.
#include <string.h>

#include "core/base/status.h"
#include "lumigram.h"

namespace lumigram {
namespace {

// Pictures store these names: none may change, and new ones go to the end.
constexpr char kPartOfSpeechTable[kLumigramParts][33] = {
    "",                     // none
    "名詞",                 // noun
    "名詞-固有名詞",        // noun, proper noun
    "名詞-代名詞",          // noun, pronoun
    "名詞-副詞可能",        // noun that can act as an adverb
    "名詞-サ変接続",        // noun that forms a verb with a light verb
    "名詞-形容動詞語幹",    // noun, stem of an adjectival noun
    "名詞-ナイ形容詞語幹",  // noun, stem of an adjective with a negative ending
    "名詞-数",              // noun, number
    "名詞-非自立",          // noun, dependent
    "名詞-特殊",            // noun, special
    "名詞-接尾",            // noun, suffix
    "名詞-接続詞的",        // noun used like a conjunction
    "名詞-動詞的",          // noun used like a verb
    "接頭詞",               // prefix
    "動詞",                 // verb
    "形容詞",               // adjective
    "副詞",                 // adverb
    "連体詞",               // adnominal
    "接続詞",               // conjunction
    "感動詞",               // interjection
    "記号",                 // symbol
};

}  // namespace
}  // namespace lumigram

using namespace lumigram;

const char* GetPartName(uint32_t index) {
  return kPartOfSpeechTable[index < kLumigramParts ? index : 0];
}

int32_t GetPartNo(const char* name) {
  if (name == nullptr) return 0;
  for (const auto& entry : kPartOfSpeechTable) {
    if (strcmp(entry, name) == 0) return static_cast<int32_t>(&entry - kPartOfSpeechTable);
  }
  return 0;
}
