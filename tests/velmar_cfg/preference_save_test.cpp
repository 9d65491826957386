// What a save makes of a preference file: the lines that it loses as a table, and everything beside a save that the
// library makes.
#include "tools/velmar-cfg/preferences/preference_save.h"

#include <gmock/gmock.h>
#include <set>
#include <utility>

#include "tests/support/isolated_test.h"
#include "tests/velmar_cfg/preference_files.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/lint/preference_rules.h"
#include "tools/velmar-cfg/preferences/preference_lines.h"

using namespace zon_cfg;

namespace
{
// "2 duplicate", with a "!" where a value is lost.
std::vector<std::string> brief(const std::vector<LOST_LINE>& lost)
{
    std::vector<std::string> lines;
    for (const LOST_LINE& line : lost)
        lines.push_back(std::to_string(line.number) + " " + loss_word(line.reason) + (line.value_lost ? "!" : ""));
    return lines;
}

struct SAVE
{
    const char* title;
    std::string before;
    std::string saved;
    std::vector<std::string> lost;
};

void PrintTo(const SAVE& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFERENCE_SAVE : public testing::TestWithParam<SAVE>
{
};

TEST_P(PREFERENCE_SAVE, writes_and_loses)
{
    const PREFERENCE_RECORDS records(GetParam().before);
    EXPECT_EQ(records.saved(), GetParam().saved);
    EXPECT_EQ(brief(records.lost_lines()), GetParam().lost);
}

INSTANTIATE_TEST_SUITE_P(
    table, PREFERENCE_SAVE,
    testing::Values(
        SAVE{"nothing", "", "", {}}, SAVE{"its own form", "\n[A]\nk = v\n", "\n[A]\nk = v\n", {}},
        SAVE{"blanks, quotes, ends of lines and blank lines are no loss",
             " [A] \r\n\r\n \t\n k=\" v \"\r\nl =w",
             "\n[A]\nk = v\nl = w\n",
             {}},
        SAVE{"another order is no loss", "[B]\nz = 1\na = 2\n[A]\nk = v\n", "\n[A]\nk = v\n\n[B]\na = 2\nz = 1\n", {}},
        SAVE{"an old name is no loss", "[A]\nPost warning messages = 1\n", "\n[A]\nDISPLAY_WARNING_MESSAGES = 1\n", {}},
        SAVE{"a repeated header is no loss", "[A]\nk = 1\n[A]\nl = 2\n", "\n[A]\nk = 1\nl = 2\n", {}},
        SAVE{"a comment line with an equals sign in a section is kept", "[A]\n# k = v\n", "\n[A]\n# k = v\n", {}},
        SAVE{"two quotes alone are a value", "[A]\nk = \"\"\n", "\n[A]\nk = \"\"\n", {}},
        SAVE{"one quote is a value", "[A]\nk = \"\n", "\n[A]\nk = \"\n", {}},
        SAVE{"an empty name is a name", "[A]\n= v\n", "\n[A]\n = v\n", {}},

        SAVE{"comments",
             "# c\n[A]\n; d\nk = v\n#\n;e",
             "\n[A]\nk = v\n",
             {"1 not-kept", "3 not-kept", "5 not-kept", "6 not-kept"}},
        SAVE{"a comment that looks like a key, before any section",
             "# k = v\n[A]\nk = v\n",
             "\n[A]\nk = v\n",
             {"1 not-kept"}},
        SAVE{"an unknown line", "[A]\nk = v\nhello there\n", "\n[A]\nk = v\n", {"3 not-kept"}},
        SAVE{
            "short lines", "[A]\nk = v\nab\n=x\n[]\n", "\n[A]\nk = v\n", {"3 too-short", "4 too-short", "5 too-short"}},
        SAVE{"a line that ends at three bytes", "[A]\n=xy\nabc\n", "\n[A]\n = xy\n", {"3 not-kept"}},
        SAVE{"a header without its end", "[A]\nk = v\n[BC\nl = w\n", "\n[A]\nk = v\nl = w\n", {"3 malformed-header"}},
        SAVE{"a header without its end, with a value",
             "[A]\nk = v\n[B l = w\n",
             "\n[A]\nk = v\n",
             {"3 malformed-header!"}},
        SAVE{"a commented header without its end", "[A]\nk = v\n# [B\n", "\n[A]\nk = v\n", {"3 not-kept"}},
        SAVE{"a bracket in a value",
             "[A]\nk = v\np = [host]\nl = w\n",
             "\n[A]\nk = v\n\n[host]\nl = w\n",
             {"3 bracket-in-value!"}},
        SAVE{
            "a bracket in a value without its end", "[A]\nk = v\np = x[1\n", "\n[A]\nk = v\n", {"3 bracket-in-value!"}},
        SAVE{"a comment that begins a section",
             "[A]\nk = v\n# old = [B]\nl = w\n",
             "\n[A]\nk = v\n\n[B]\nl = w\n",
             {"3 beside-header"}},
        SAVE{"an empty header",
             "[A]\nk = v\n[] \nl = w\n# m = x\n",
             "\n[A]\nk = v\n",
             {"3 empty-header", "4 below-empty-header!", "5 not-kept"}},
        SAVE{"an empty value below an empty header",
             "[A]\nk = v\n[] \nl = \n",
             "\n[A]\nk = v\n",
             {"3 empty-header", "4 below-empty-header"}},
        SAVE{"keys before any section",
             "k = v\nl =\n[A]\nk = v\n",
             "\n[A]\nk = v\n",
             {"1 before-section!", "2 before-section"}},
        SAVE{"a section behind an empty header", "[] \n[A]\nk = v\n", "\n[A]\nk = v\n", {"1 empty-header"}},
        SAVE{"an empty section", "[A]\nk = v\n[B]\n", "\n[A]\nk = v\n", {"3 empty-section"}},
        SAVE{"a section of empty values",
             "[A]\nk = v\n[B]\nl = \nm=\"  \"\n",
             "\n[A]\nk = v\n",
             {"3 empty-section", "4 empty-value", "5 empty-value"}},
        SAVE{"text beside headers",
             "old [A]\nk = v\n[B] # note = 1\nl = w\n; x [C] m = x\nn = y\n",
             "\n[A]\nk = v\n\n[B]\nl = w\n\n[C]\nn = y\n",
             {"1 beside-header", "3 beside-header", "5 beside-header"}},
        SAVE{"a value beside a header", "[A] k = v\nl = w\n", "\n[A]\nl = w\n", {"1 beside-header!"}},
        SAVE{"lone carriage returns", "[A]\rk = v\rl = w\r", "", {"1 beside-header!"}},
        SAVE{"the second line of a key",
             "[A]\nk = 1\nk = 2\nk =\nk = 1\n",
             "\n[A]\nk = 1\n",
             {"3 duplicate!", "4 duplicate", "5 duplicate"}},
        SAVE{"the second line of a commented key", "[A]\n# k = 1\n# k = 2\n", "\n[A]\n# k = 1\n", {"3 duplicate"}},
        SAVE{"the second line of a key whose first is empty",
             "[A]\nk =\nk = 2\nl = 1\n",
             "\n[A]\nl = 1\n",
             {"2 empty-value", "3 duplicate!"}},
        SAVE{"a key in a section that comes again",
             "[A]\nk = 1\n[B]\nk = 2\n[A]\nk = 3\n",
             "\n[A]\nk = 1\n\n[B]\nk = 2\n",
             {"6 duplicate!"}},
        SAVE{"an old name beside the current one",
             "[A]\nDISPLAY_WARNING_MESSAGES = 1\npost WARNING messages = 0\n",
             "\n[A]\nDISPLAY_WARNING_MESSAGES = 1\n",
             {"3 duplicate!"}},
        SAVE{"section and key that run together in two ways",
             "[A]\nBc = 1\n[AB]\nc = 2\nd = 3\n",
             "\n[A]\nBc = 1\n\n[AB]\nd = 3\n",
             {"4 duplicate!"}},
        SAVE{"section and key that run together in two ways, with the same value",
             "[A]\nBc = 1\n[AB]\nc = 1\nd = 3\n",
             "\n[A]\nBc = 1\n\n[AB]\nd = 3\n",
             {"4 duplicate!"}},
        SAVE{"sections in two letter cases",
             "[ab]\nk = 1\n[Ab]\nl = 2\n[aB]\n",
             "\n[Ab]\nl = 2\nk = 1\n",
             {"1 merged-section", "2 merged-section!", "5 empty-section"}},
        SAVE{"a section in another letter case that is empty takes no place",
             "[Ab]\n[ab]\nk = 1\n",
             "\n[ab]\nk = 1\n",
             {"1 empty-section"}},
        SAVE{"an empty value in a merged section",
             "[ab]\nk =\nm = 3\n[Ab]\nl = 2\n",
             "\n[Ab]\nl = 2\nm = 3\n",
             {"1 merged-section", "2 empty-value", "3 merged-section!"}},
        SAVE{"zero bytes",
             std::string("[A]\0b\nk = v\0w\nl = x\0\0 \nab\0c = d\n", 32),
             "\n[A]\nk = v\nl = x\n",
             {"1 beside-header", "2 zero-byte!", "3 zero-byte", "4 too-short!"}},
        SAVE{"characters of two bytes",
             std::string("[\0A\0]\0\n\0k\0=\0v\0\n\0abc\0=\0d\0\n\0", 26),
             "",
             {"1 too-short", "2 too-short!", "3 too-short!", "4 too-short"}},
        SAVE{"an assignment behind a zero byte",
             std::string("[A]\nk = v\nold\0l = w\nabc\0x\n", 26),
             "\n[A]\nk = v\n",
             {"3 not-kept!", "4 not-kept"}},
        SAVE{"quotes within quotes",
             "[A]\nk = \"\"v\"\"\nl = \"\"\"\"\nm = \"\"w\n",
             "\n[A]\nk = \"v\"\nl = \"\"\nm = \"\"w\n",
             {"2 changed-value!"}},
        SAVE{
            "blanks within quotes within quotes", "[A]\nk = \"\" \"\"\n", "\n[A]\nk = \" \"\n", {"2 changed-value!"}}));

// --- What the reader takes from the lines ---

// "2 key [A] k = v", "3 header [B]", "4", with the word for a loss behind it.
std::string brief(const EXAMINED_LINE& line)
{
    std::string text = std::to_string(line.number);
    if (line.is_header || line.makes_record)
        text.append(line.is_header ? " header [" : " key [").append(line.section).append("]");
    if (line.makes_record)
        text.append(" ")
            .append(line.name)
            .append(line.old_name_converted ? " (converted) = " : " = ")
            .append(line.value);
    return line.loss ? text + " " + loss_word(line.loss->reason) : text;
}

TEST(EXAMINED_LINES, say_what_the_reader_takes_from_them)
{
    const std::string bytes = "k = v\n\n[A]\n \t k\t= \"  v w \" \r\nk = 2\nPOST warning messages = on\nnote\n[a] x\n"
                              "l =\n [] \nm = n\np = [q] \n";
    const PREFERENCE_RECORDS records(bytes);
    std::vector<std::string> lines;
    records.for_each_line(
        [&](const EXAMINED_LINE& line)
        {
            lines.push_back(brief(line));
            // Parts of the file, but for what the reader has converted.
            for (const std::string_view part :
                 {line.text, line.section, line.old_name_converted ? "" : line.name, line.value})
                EXPECT_TRUE(part.empty() || (part.data() >= bytes.data() && part.data() < bytes.data() + bytes.size()))
                    << part;
        });
    EXPECT_EQ(lines, (std::vector<std::string>{"1 before-section", "3 header [A]", "4 key [A] k = v w", "5 duplicate",
                                               "6 key [A] DISPLAY_WARNING_MESSAGES (converted) = on", "7 not-kept",
                                               "8 header [a] beside-header", "9 key [a] l =  empty-value",
                                               "10 header [] empty-header", "11 below-empty-header",
                                               "12 header [q] bracket-in-value"}));
}

TEST(PREFERENCE_SAVE_TEXT, names_the_line_that_has_the_place_of_another)
{
    const auto text_of_loss = [](const char* bytes)
    { return loss_as_text(PREFERENCE_RECORDS(bytes).lost_lines().front()); };
    EXPECT_EQ(text_of_loss("[A]\nk = 1\nk = 2\n"),
              "line 2 sets this key of this section already: the first one counts, and a save drops this one");
    EXPECT_EQ(text_of_loss("[A]\nBc = 1\n[AB]\nc = 1\nd = 3\n"),
              "line 2, in [A], sets the same preference, since the store joins section and key to one name: the first "
              "one counts, and a save drops this one");
}

// --- Changes ---

struct CHANGED_SAVE
{
    const char* title;
    std::string before;
    std::string value; // of HDL_PREFERENCE; empty: cleared
    std::string saved;
    std::vector<std::string> lost;
};

void PrintTo(const CHANGED_SAVE& row, std::ostream* stream)
{
    *stream << row.title;
}

class PREFERENCE_SAVE_OF_CHANGE : public testing::TestWithParam<CHANGED_SAVE>
{
};

TEST_P(PREFERENCE_SAVE_OF_CHANGE, writes_and_loses)
{
    const CHANGED_SAVE& row = GetParam();
    PREFERENCE_RECORDS records(row.before);
    if (row.value.empty())
        records.clear(HDL_PREFERENCE);
    else
        records.assign(HDL_PREFERENCE, row.value);
    EXPECT_EQ(records.saved(), row.saved);
    EXPECT_EQ(brief(records.lost_lines()), row.lost);
}

INSTANTIATE_TEST_SUITE_P(
    table, PREFERENCE_SAVE_OF_CHANGE,
    testing::Values(
        CHANGED_SAVE{
            "a new key", "[A]\nk = v\n", "VHDL", "\n[A]\nk = v\n\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n", {}},
        CHANGED_SAVE{"the changed line is not lost",
                     "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                     {}},
        CHANGED_SAVE{"an empty value that gets one",
                     "[General 23.4_pro]\nHDL_PREFERENCE =\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                     {}},
        CHANGED_SAVE{"an empty section that gets a key",
                     "[General 23.4_pro]\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                     {}},
        CHANGED_SAVE{"the second line of the key keeps a value of its own",
                     "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nHDL_PREFERENCE = Verilog\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                     {"3 duplicate!"}},
        CHANGED_SAVE{"the second line says what the first one says now",
                     "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nHDL_PREFERENCE = VHDL\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                     {"3 duplicate"}},
        CHANGED_SAVE{"the second line says what the first one said",
                     "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nHDL_PREFERENCE = KHDL\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n",
                     {"3 duplicate"}},
        CHANGED_SAVE{"a section that the change brings in takes another one in",
                     "[general 23.4_pro]\nUSER_LIBRARIES = /x\n",
                     "VHDL",
                     "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /x\n",
                     {"1 merged-section", "2 merged-section!"}},
        CHANGED_SAVE{"the last key of a section takes its header with it",
                     "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n",
                     "",
                     "",
                     {}},
        CHANGED_SAVE{"the last value of a section takes its header with it, but not silently its other lines",
                     "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nUSER_LIBRARIES =\n",
                     "",
                     "",
                     {"3 empty-value"}},
        CHANGED_SAVE{"to clear what is not there",
                     "[General 23.4_pro]\nUSER_LIBRARIES = /x\n",
                     "",
                     "\n[General 23.4_pro]\nUSER_LIBRARIES = /x\n",
                     {}}));

TEST(PREFERENCE_SAVE_OF_CHANGES, goes_by_the_last_one_and_by_what_the_file_said)
{
    PREFERENCE_RECORDS records(
        "[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nHDL_PREFERENCE = KHDL\nHDL_PREFERENCE = Verilog\n");
    records.assign(HDL_PREFERENCE, "Verilog");
    records.assign(HDL_PREFERENCE, "VHDL");
    EXPECT_EQ(brief(records.lost_lines()), (std::vector<std::string>{"3 duplicate", "4 duplicate!"}));
    records.assign(HDL_PREFERENCE, "KHDL");
    EXPECT_EQ(records.saved(), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n");
    records.clear(HDL_PREFERENCE);
    records.clear(SHOW_MESSAGE_ID);
    EXPECT_EQ(records.saved(), "");

    // What was assigned where nothing was can be assigned again.
    PREFERENCE_RECORDS none("");
    none.assign(HDL_PREFERENCE, "VHDL");
    none.assign(HDL_PREFERENCE, "KHDL");
    none.assign(SHOW_MESSAGE_ID, "off");
    EXPECT_EQ(none.saved(),
              "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n\n[Messages 23.4_pro]\nSHOW_MESSAGE_ID = off\n");
}

// --- Beside the library ---

class PREFERENCE_SAVE_BESIDE_THE_LIBRARY : public ISOLATED_TEST
{
protected:
    PREFERENCE_SAVE_BESIDE_THE_LIBRARY()
    {
        write_file("user/velmar2.ini", "");
        environment.set("VELMAR2_INI", "user");
    }

    ~PREFERENCE_SAVE_BESIDE_THE_LIBRARY() override
    {
        cfg_close_user_ini_file();
    }

    using RECORD = std::tuple<std::string, std::string, std::string>; // section, name and value

    // What the library makes of the file, and what it reads back afterwards.
    static std::string saved_by_library(const std::string& bytes, std::set<RECORD>& records,
                                        std::set<std::string>& sections)
    {
        write_file("user/velmar2.ini", bytes);
        cfg_close_user_ini_file();
        cfg_read_user_ini_file();
        EXPECT_TRUE(cfg_write_and_close_user_ini_file());
        cfg_read_user_ini_file();
        records.clear();
        sections.clear();
        for (const auto& [key, record] : *cfg_user_ini_records)
            records.emplace(record->section, record->name, record->value);
        for (const auto& [section, nothing] : *cfg_user_ini_sections_read)
            sections.insert(section);
        return read_file("user/velmar2.ini");
    }

    // The lines that the second reading does not find, told line by line: a header by its section, a key line by its
    // record, which only one line can have made.
    static std::vector<std::size_t> lines_not_found(const std::string& bytes, const std::set<RECORD>& records,
                                                    const std::set<std::string>& sections)
    {
        std::vector<std::size_t> lost;
        std::set<std::string> seen;
        for_each_preference_line(
            bytes,
            [&](std::size_t number, std::string_view text, const PREFERENCE_LINE& line, const std::string& section)
            {
                const std::string content = trimmed(text);
                bool kept = content.empty();
                if (line.kind == PREFERENCE_LINE_KIND::HEADER)
                    kept = content == "[" + line.section + "]" && sections.contains(line.section);
                else if (line.kind == PREFERENCE_LINE_KIND::KEY && !section.empty())
                    kept = seen.insert(section + line.name).second && !line.value.empty() &&
                           text.find('\0') == std::string_view::npos &&
                           records.contains({section, line.name, line.value});
                if (!kept)
                    lost.push_back(number);
            });
        return lost;
    }

    static void compare(const std::string& bytes, bool with_lint)
    {
        std::set<RECORD> records;
        std::set<std::string> sections;
        const std::string saved = saved_by_library(bytes, records, sections);
        const PREFERENCE_RECORDS model(bytes);
        ASSERT_EQ(model.saved(), saved);
        std::vector<std::size_t> lost;
        for (const LOST_LINE& line : model.lost_lines())
            lost.push_back(line.number);
        ASSERT_EQ(lost, lines_not_found(bytes, records, sections)) << bytes;

        // And prefs lint names each of them by the same word. It takes its time to find names that look alike.
        if (!with_lint)
            return;
        std::set<std::pair<std::size_t, std::string>> linted;
        SECRETS secrets;
        lint_preferences(read_whole_file_of(bytes), secrets,
                         [&linted](const FINDING& finding) { linted.emplace(finding.line.value(), finding.reason); });
        for (const LOST_LINE& line : model.lost_lines())
            ASSERT_TRUE(linted.contains({line.number, loss_word(line.reason)})) << line.number << " " << bytes;
    }

    static INPUT_FILE read_whole_file_of(const std::string& bytes)
    {
        return {"checked.ini", bytes, {}};
    }
};

TEST_F(PREFERENCE_SAVE_BESIDE_THE_LIBRARY, generated_files)
{
    std::set<LOSS> reasons;
    std::size_t lost_values = 0;
    for (unsigned int seed = 1; seed <= 1000; ++seed)
    {
        SCOPED_TRACE("seed " + std::to_string(seed));
        SETTINGS_GENERATOR generate(seed);
        const std::string bytes = generated_preference_file(generate);
        compare(bytes, seed % 10 == 0);
        if (HasFatalFailure())
            return;
        for (const LOST_LINE& line : PREFERENCE_RECORDS(bytes).lost_lines())
        {
            reasons.insert(line.reason);
            lost_values += line.value_lost ? 1 : 0;
        }
    }
    EXPECT_EQ(reasons.size(), 14U); // every one
    EXPECT_GT(lost_values, 300U);
}

TEST_F(PREFERENCE_SAVE_BESIDE_THE_LIBRARY, real_files)
{
    const auto files = real_files_with_sections(200);
    if (files.size() < 5)
        GTEST_SKIP() << "no configuration files here";
    for (const auto& [path, bytes] : files)
    {
        SCOPED_TRACE(path);
        compare(bytes, bytes.size() < 1000);
        if (HasFatalFailure())
            return;
    }
}

TEST(PREFERENCE_LOSSES, are_counted_one_by_one_in_a_large_file)
{
    std::string bytes;
    for (int section = 0; section < 300; ++section)
    {
        bytes += "[S" + std::to_string(section) + "]\n";
        for (int key = 0; key < 100; ++key)
            bytes += "k" + std::to_string(key) + " = v\nk" + std::to_string(key) + " = w\n# note\n";
    }
    const std::vector<LOST_LINE> lost = PREFERENCE_RECORDS(bytes).lost_lines();
    EXPECT_EQ(lost.size(), 60'000U);
}

TEST(PREFERENCE_LOSSES, say_what_happens_and_why)
{
    const std::string bytes = "k = v\n[A]\nk = 1\nk = 2\n[a]\nl = 3\n p = [q]\n";
    const std::vector<LOST_LINE> lost = PREFERENCE_RECORDS(bytes).lost_lines();
    std::vector<std::string> texts;
    for (const LOST_LINE& line : lost)
        texts.push_back(line.text + ": " + loss_as_text(line));
    EXPECT_EQ(
        texts,
        (std::vector<std::string>{
            "k = v: a key line before any section is ignored, and a save drops it",
            "k = 2: line 3 sets this key of this section already: the first one counts, and a save drops this one",
            "[a]: the section [a] differs from [A] in letter case only, and a save writes both below that header",
            "l = 3: the section [a] differs from [A] in letter case only, and a save writes both below that header",
            " p = [q]: a line with a \"[\" is taken for a section header: the section 'q' begins here, and a save "
            "drops "
            "the key"}));
}
}
