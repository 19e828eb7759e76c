package lumigram.demo;

/** Words for the parts of speech, by the numbers that pictures are read and written with. */
final class PartsOfSpeech {
  private static final String[] WORDS = {
    "",
    "noun",
    "proper noun",
    "pronoun",
    "adverbial noun",
    "verbal noun",
    "adjectival noun",
    "negative adjectival noun",
    "number",
    "dependent noun",
    "special noun",
    "suffix noun",
    "conjunctive noun",
    "verb-like noun",
    "prefix",
    "verb",
    "adjective",
    "adverb",
    "adnominal",
    "conjunction",
    "interjection",
    "symbol"
  };

  private PartsOfSpeech() {}

  static String word(byte part) {
    return part >= 0 && part < WORDS.length ? WORDS[part] : "?";
  }
}
