#include "core/document/part_of_speech.h"

#include "lumigram.h"

namespace lumigram {
namespace {

struct PartOfSpeech {
  char stored[33];
  char english[25];
};

// By number. Pictures contain the stored names, and Java uses the numbers: do not change or move an
// entry. Java's constants and the manual page have the same English names.
constexpr PartOfSpeech kPartOfSpeechTable[kLumigramParts] = {
    {"", ""},  // none
    {"名詞", "noun"},
    {"名詞-固有名詞", "proper-noun"},
    {"名詞-代名詞", "pronoun"},
    {"名詞-副詞可能", "adverbial-noun"},
    {"名詞-サ変接続", "verbal-noun"},
    {"名詞-形容動詞語幹", "adjectival-noun"},
    {"名詞-ナイ形容詞語幹", "negative-adjectival-noun"},
    {"名詞-数", "number"},
    {"名詞-非自立", "dependent-noun"},
    {"名詞-特殊", "special-noun"},
    {"名詞-接尾", "suffix-noun"},
    {"名詞-接続詞的", "conjunctive-noun"},
    {"名詞-動詞的", "verb-like-noun"},
    {"接頭詞", "prefix"},
    {"動詞", "verb"},
    {"形容詞", "adjective"},
    {"副詞", "adverb"},
    {"連体詞", "adnominal"},
    {"接続詞", "conjunction"},
    {"感動詞", "interjection"},
    {"記号", "symbol"},
};

const PartOfSpeech& PartAt(uint32_t number) {
  return kPartOfSpeechTable[number < kLumigramParts ? number : 0];
}

}  // namespace

const char* EnglishPartName(int32_t number) {
  return PartAt(static_cast<uint32_t>(number)).english;
}

int32_t FindPart(std::string_view name) {
  for (int32_t i = 0; i < kLumigramParts; ++i) {
    if (name == kPartOfSpeechTable[i].english || name == kPartOfSpeechTable[i].stored) return i;
  }
  return 0;
}

}  // namespace lumigram

using namespace lumigram;

const char* GetPartName(uint32_t index) { return PartAt(index).stored; }

int32_t GetPartNo(const char* name) {
  if (name == nullptr) return 0;
  for (int32_t i = 0; i < kLumigramParts; ++i) {
    if (std::string_view(kPartOfSpeechTable[i].stored) == name) return i;
  }
  return 0;
}
