package lumigram;

import java.util.Locale;

/**
 * The part of speech of a label. Pictures store its Japanese name. The constants are in the order
 * of the library's numbers.
 */
public enum PartOfSpeech {
  /** None, or one that is not in this list. */
  NONE(""),
  /** A noun. */
  NOUN("名詞"),
  /** A proper noun. */
  PROPER_NOUN("名詞-固有名詞"),
  /** A pronoun. */
  PRONOUN("名詞-代名詞"),
  /** A noun that can act as an adverb. */
  ADVERBIAL_NOUN("名詞-副詞可能"),
  /** A noun that forms a verb with a light verb. */
  VERBAL_NOUN("名詞-サ変接続"),
  /** The stem of an adjectival noun. */
  ADJECTIVAL_NOUN("名詞-形容動詞語幹"),
  /** The stem of an adjective that is formed with a negative ending. */
  NEGATIVE_ADJECTIVAL_NOUN("名詞-ナイ形容詞語幹"),
  /** A number. */
  NUMBER("名詞-数"),
  /** A dependent noun. */
  DEPENDENT_NOUN("名詞-非自立"),
  /** A special noun. */
  SPECIAL_NOUN("名詞-特殊"),
  /** A noun that is a suffix. */
  SUFFIX_NOUN("名詞-接尾"),
  /** A noun that is used like a conjunction. */
  CONJUNCTIVE_NOUN("名詞-接続詞的"),
  /** A noun that is used like a verb. */
  VERB_LIKE_NOUN("名詞-動詞的"),
  /** A prefix. */
  PREFIX("接頭詞"),
  /** A verb. */
  VERB("動詞"),
  /** An adjective. */
  ADJECTIVE("形容詞"),
  /** An adverb. */
  ADVERB("副詞"),
  /** An adnominal. */
  ADNOMINAL("連体詞"),
  /** A conjunction. */
  CONJUNCTION("接続詞"),
  /** An interjection. */
  INTERJECTION("感動詞"),
  /** A symbol. */
  SYMBOL("記号");

  private static final PartOfSpeech[] BY_NUMBER = values();

  private final String storedName;

  PartOfSpeech(String storedName) {
    this.storedName = storedName;
  }

  /**
   * {@return the English name: lower case with hyphens, such as {@code proper-noun}; {@code none}
   * for {@link #NONE}}
   */
  public String englishName() {
    return name().toLowerCase(Locale.ROOT).replace('_', '-');
  }

  /**
   * {@return the name that pictures store; empty for {@link #NONE}, which is not stored}
   */
  public String storedName() {
    return storedName;
  }

  /**
   * Looks up a stored name.
   *
   * @param storedName a name, exactly as it is stored
   * @return the part of speech; {@link #NONE} for every other text
   */
  public static PartOfSpeech ofStoredName(String storedName) {
    for (PartOfSpeech part : BY_NUMBER) {
      if (part.storedName.equals(storedName)) return part;
    }
    return NONE;
  }

  /** {@return the library's number for this part of speech} */
  byte number() {
    return (byte) ordinal();
  }

  /**
   * {@return the part of speech with this number; {@link #NONE} for every unknown number}
   *
   * @param number a number as the library stores it
   */
  static PartOfSpeech ofNumber(byte number) {
    return number >= 0 && number < BY_NUMBER.length ? BY_NUMBER[number] : NONE;
  }
}
