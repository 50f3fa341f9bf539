import java.io.IOException;
import java.nio.file.Files;
import java.nio.file.Path;
import java.util.ArrayList;
import java.util.List;
import java.util.Set;
import java.util.TreeMap;
import java.util.regex.Matcher;
import java.util.regex.Pattern;

/**
 * Writes the classes of constants from the solver's header, so that what they say stands in one
 * place: KVX has its codes, KVXAttribute and KVXParameter the rows of the tables in its comments.
 *
 * <p>Usage: {@code java Constants.java DIRECTORY HEADER...}, as the build does.
 */
public final class Constants {
    /** Codes for the bridge alone. */
    private static final Set<String> HIDDEN = Set.of("LOADENV_KEY", "INTERFACE_JAVA", "TEXT_SIZE");

    private static final String NAMES = "Names are matched without regard to case; a library may "
                                        + "have more than these.";

    private final Path directory;
    private final String header;
    private final List<String[]> attributes, parameters;
    /** What the names in the tables become in javadoc. */
    private final TreeMap<String, String> links = new TreeMap<>();

    private Constants(Path directory, String header) {
        this.directory = directory;
        this.header = header;
        attributes = table("attribute", "KVXAttribute");
        parameters = table("parameter", "KVXParameter");
    }

    /**
     * Writes the classes.
     *
     * @param args the directory for them, and the header's parts
     * @throws IOException if a file can't be read or written
     */
    public static void main(String[] args) throws IOException {
        StringBuilder header = new StringBuilder();
        for (String part : List.of(args).subList(1, args.length))
            header.append(Files.readString(Path.of(part))).append('\n');
        Constants constants = new Constants(Path.of(args[0]), header.toString());
        constants.writeCodes();
        constants.writeAttributes();
        constants.writeParameters();
    }

    /**
     * The rows of the tables with that head. A line without a name goes on with the last column.
     */
    private List<String[]> table(String head, String type) {
        List<String[]> rows = new ArrayList<>();
        Matcher tables =
            Pattern.compile(" \\*   " + head + " .*\\n((?: \\*   .*\\n)+)").matcher(header);
        while (tables.find()) {
            String[] row = {};
            for (String line : tables.group(1).split("\n")) {
                String text = line.substring(" *   ".length());
                if (text.startsWith(" ")) {
                    row[row.length - 1] += " " + text.strip();
                    continue;
                }
                row = text.split("  +");
                rows.add(row);
                links.put(row[0], "{@link " + type + "#" + constant(row[0]) + "}");
            }
        }
        return rows;
    }

    /** A name as Java spells constants. */
    private static String constant(String name) {
        return name.replaceAll("(?<=[a-z])(?=[A-Z])|(?<=[A-Z])(?=[A-Z][a-z]{2})", "_")
            .replaceAll("^IIS_?", "IIS_")
            .toUpperCase();
    }

    /** Each code with the comment beside or above it, after the first sentence above its group. */
    private void writeCodes() throws IOException {
        StringBuilder members = new StringBuilder();
        String group = "", above = "";
        Matcher m = Pattern
                        .compile("(?s)(?<gap>\\n\\n)|/\\*(?<own>\\*?)(?<text>.*?)\\*/|"
                                 + "#define KVX_(?<name>\\w+) +(?<value>\\S+)(?: +/\\*\\*<"
                                 + "(?<beside>.*?)\\*/)?")
                        .matcher(header);
        while (m.find()) {
            if (m.group("gap") != null) {
                group = above = "";
            } else if (m.group("text") != null) {
                String text = m.group("text").replaceAll("\\s+(\\* )?", " ").strip();
                above = m.group("own").isEmpty() ? "" : text;
                // What is longer than a paragraph is about something else.
                if (above.isEmpty() && !m.group("text").contains("\n *\n"))
                    group = text.replaceFirst("\\. .*|\\.$", "");
            } else {
                String own = m.group("beside") == null ? above : m.group("beside").strip();
                String doc = group + (group.isEmpty() || own.isEmpty() ? "" : ": ") + own;
                if (!HIDDEN.contains(m.group("name")))
                    member(members, doc, m.group("name"), m.group("value"));
                above = "";
            }
        }
        write("KVX",
              "The codes of the solver's C interface, under the names they have there but for the "
                  + "prefix.",
              members);
    }

    private void writeAttributes() throws IOException {
        StringBuilder members = new StringBuilder();
        for (String[] row : attributes) {
            String of = row[2]
                            .replaceFirst("^q(?=constr)", "quadratic ")
                            .replaceFirst("^gen(?=constr)", "general ");
            String type = row[1].replaceFirst(" w$", "");
            member(members,
                   "\"" + row[0] + "\": " + type + " of a " + of +
                       (row[1].equals(type) ? "" : ", can be set") + ". " + sentence(row[3]),
                   constant(row[0]), "\"" + row[0] + "\"");
        }
        write("KVXAttribute",
              "The attributes of models and batches, for {@link KVXModel#getDouble}, {@link "
                  + "KVXModel#set} and so on. " + NAMES + " What belongs to a solution can be "
                  + "read while there is one.",
              members);
    }

    private void writeParameters() throws IOException {
        StringBuilder members = new StringBuilder();
        for (String[] row : parameters) {
            String range = row[3].replaceFirst("^(.*)\\.\\.(.*)$", "from $1 to $2");
            member(members,
                   "\"" + row[0] + "\": " + row[1] + ", " + range + ", " + row[2] +
                       " by default. " + sentence(row[4]),
                   constant(row[0]), "\"" + row[0] + "\"");
        }
        write("KVXParameter",
              "The parameters of environments and models, for {@link KVXParams}. " + NAMES +
                  " A model works with a copy of its environment's parameters, made when the "
                  + "model was made.",
              members);
    }

    private static String sentence(String text) {
        return text.substring(0, 1).toUpperCase() + text.substring(1);
    }

    private void member(StringBuilder members, String doc, String name, String value) {
        String type = value.startsWith("\"")      ? "String"
                      : value.startsWith("'")     ? "char"
                      : value.matches(".*[.e].*") ? "double"
                                                  : "int";
        members.append("\n    /** ").append(javadoc(doc)).append(" */\n    public static final ");
        members.append(type).append(' ').append(name).append(" = ").append(value).append(";\n");
    }

    /** A comment of the header as javadoc: quoted names and the header's own become links. */
    private String javadoc(String doc) {
        String text = doc.replace("&", "&amp;").replace("<", "&lt;").replace(">", "&gt;");
        text = text.replaceAll("\\bKVX_(\\w+[A-Z0-9])\\b", "{@link KVX#$1}");
        text = text.replaceAll("\\bKVX_(\\w+)_\\b", "one of the {@code $1_} codes of {@link KVX}");
        text = text.replaceAll("\\bKVX([a-z]\\w+)", "{@code $1}");
        Matcher quoted = Pattern.compile("(?<!^)\"(\\w+)\"").matcher(text);
        text = quoted.replaceAll(q -> links.getOrDefault(q.group(1), "\"" + q.group(1) + "\""));
        return text.endsWith(".") ? text : text + ".";
    }

    private void write(String type, String doc, StringBuilder members) throws IOException {
        Files.createDirectories(directory);
        Files.writeString(directory.resolve(type + ".java"),
                          "package com.korvex;\n\n/** " + doc + " */\npublic final class " + type +
                              " {\n    private " + type + "() {}\n" + members + "}\n");
    }
}
