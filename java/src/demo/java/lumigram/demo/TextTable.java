package lumigram.demo;

import java.io.PrintStream;
import java.util.ArrayList;
import java.util.Arrays;
import java.util.List;

/** A table for a terminal. A cell may have several lines; a column is as wide as its widest one. */
final class TextTable {
  private static final String GAP = "  ";

  /** Ranges of code points that terminals show two columns wide: East Asian scripts and emoji. */
  private static final int[][] WIDE = {{0x1100, 0x115F}, {0x2E80, 0x303E}, {0x3041, 0xA4CF},
      {0xAC00, 0xD7A3}, {0xF900, 0xFAFF}, {0xFE30, 0xFE6F}, {0xFF00, 0xFF60}, {0xFFE0, 0xFFE6},
      {0x1F300, 0x1F64F}, {0x1F680, 0x1F6FF}, {0x1F900, 0x1FAFF}, {0x20000, 0x3FFFD}};

  private final List<List<List<String>>> rows = new ArrayList<>();
  private final int[] widths;

  TextTable(String... titles) {
    widths = new int[titles.length];
    Object[] rules = new Object[titles.length];
    for (int i = 0; i < titles.length; i++) {
      rules[i] = repeated('-', width(titles[i]));
    }
    add((Object[]) titles);
    add(rules);
  }

  /** Adds a row. A cell is a list of lines, or anything else, which is a single line. */
  void add(Object... cells) {
    List<List<String>> row = new ArrayList<>();
    for (int i = 0; i < widths.length; i++) {
      List<String> lines = new ArrayList<>();
      for (Object line : cells[i] instanceof List ? (List<?>) cells[i] : Arrays.asList(cells[i])) {
        lines.add(printable(String.valueOf(line)));
        widths[i] = Math.max(widths[i], width(lines.get(lines.size() - 1)));
      }
      row.add(lines);
    }
    rows.add(row);
  }

  void print(PrintStream out) {
    for (List<List<String>> row : rows) {
      int height = row.stream().mapToInt(List::size).max().orElse(0);
      for (int line = 0; line < height; line++) {
        out.println(line(row, line));
      }
    }
  }

  private String line(List<List<String>> row, int line) {
    StringBuilder text = new StringBuilder();
    for (int i = 0; i < widths.length; i++) {
      String cell = line < row.get(i).size() ? row.get(i).get(line) : "";
      text.append(cell).append(repeated(' ', widths[i] - width(cell))).append(GAP);
    }
    return text.toString().replaceFirst(" +$", "");
  }

  /** Fills lines of about the given width with items, a comma between them. */
  static List<String> filled(List<String> items, int width) {
    List<String> lines = new ArrayList<>();
    String line = "";
    for (String item : items) {
      if (!line.isEmpty() && width(line) + width(item) > width) {
        lines.add(line + ",");
        line = "";
      }
      line += (line.isEmpty() ? "" : ", ") + item;
    }
    lines.add(line);
    return lines;
  }

  /** Replaces control characters: a terminal would obey those in a picture's text. */
  static String printable(String text) {
    return text.replaceAll("\\p{Cc}", "\uFFFD");
  }

  private static int width(String text) {
    return text.codePoints().map(TextTable::width).sum();
  }

  private static int width(int codePoint) {
    int type = Character.getType(codePoint);
    if (type == Character.NON_SPACING_MARK || type == Character.ENCLOSING_MARK
        || type == Character.FORMAT) {
      return 0;
    }
    return Arrays.stream(WIDE).anyMatch(r -> r[0] <= codePoint && codePoint <= r[1]) ? 2 : 1;
  }

  private static String repeated(char c, int count) {
    char[] text = new char[count];
    Arrays.fill(text, c);
    return new String(text);
  }
}
