// Typed answers with where they come from: as JSON, over all layers, and what is said of defaults that are none.
#include "tools/velmar-cfg/settings/typed_answer.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
LAYER layer_with(LAYER_KIND kind, const std::string& text)
{
    const char* const path = is_file(kind) ? layer_code(kind) : inline_source;
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, text, {}})};
}

const SETTINGS& all_settings()
{
    static const SETTINGS settings({layer_with(LAYER_KIND::MAIN_FILE, "n = 1\nlost = 1\ntext = x y\nempty =\n"),
                                    layer_with(LAYER_KIND::APPENDED_FILE, "only = on\n\nlost = 2.5\n"),
                                    layer_with(LAYER_KIND::INLINE_TEXT, "x=1;n=-7"),
                                    layer_with(LAYER_KIND::REGTEST_FILE, "big = 4294967295\nlost = inf\n")});
    return settings;
}

std::string json_of(const char* name, READER_TYPE type, const std::optional<TYPED_VALUE>& fallback = std::nullopt)
{
    TEXT_SINK sink;
    JSON_WRITER out(sink);
    write_json(out, answer_typed(all_settings(), name, type, fallback));
    out.finish();
    return nlohmann::ordered_json::parse(sink.text).dump();
}

TEST(TYPED_ANSWERS_JSON, have_every_field)
{
    struct ROW
    {
        const char* name;
        READER_TYPE type;
        std::optional<TYPED_VALUE> fallback;
        const char* json; // behind the name
    };
    const ROW rows[] = {
        {"n",
         READER_TYPE::INT,
         {},
         R"("type":"int","value":-7,"usable":true,"set":true,"masked":false,"text":"-7","external":true,"layer":"inline","file":null,"line":null,"item":2)"},
        {"n",
         READER_TYPE::UINT,
         {},
         R"("type":"uint","value":null,"usable":false,"set":true,"masked":false,"text":"-7","external":true,"layer":"inline","file":null,"line":null,"item":2)"},
        {"n", READER_TYPE::UINT, TYPED_VALUE(7U),
         R"("type":"uint","value":7,"usable":false,"set":true,"masked":false,"text":"-7","external":true,"layer":"inline","file":null,"line":null,"item":2)"},
        {"only",
         READER_TYPE::BOOL,
         {},
         R"("type":"bool","value":true,"usable":true,"set":true,"masked":false,"text":"on","external":false,"layer":"appended","file":"appended","line":1,"item":null)"},
        {"lost",
         READER_TYPE::DOUBLE,
         {},
         R"("type":"double","value":"inf","usable":true,"set":true,"masked":false,"text":"inf","external":true,"layer":"regtest","file":"regtest","line":2,"item":null)"},
        {"big",
         READER_TYPE::UINT,
         {},
         R"("type":"uint","value":4294967295,"usable":true,"set":true,"masked":false,"text":"4294967295","external":false,"layer":"regtest","file":"regtest","line":1,"item":null)"},
        {"text",
         READER_TYPE::TEXT,
         {},
         R"("type":"text","value":"x y","usable":true,"set":true,"masked":false,"text":"x y","external":true,"layer":"main","file":"main","line":3,"item":null)"},
        {"empty", READER_TYPE::TEXT, TYPED_VALUE(std::string("d")),
         R"("type":"text","value":"d","usable":false,"set":true,"masked":false,"text":"","external":true,"layer":"main","file":"main","line":4,"item":null)"},
        {"nothing", READER_TYPE::BOOL, TYPED_VALUE(false),
         R"("type":"bool","value":false,"usable":false,"set":false,"masked":false,"text":"","external":false,"layer":null,"file":null,"line":null,"item":null)"},
        {"nothing",
         READER_TYPE::DOUBLE,
         {},
         R"("type":"double","value":null,"usable":false,"set":false,"masked":false,"text":"","external":false,"layer":null,"file":null,"line":null,"item":null)"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(json_of(row.name, row.type, row.fallback),
                  std::string(R"({"name":")") + row.name + "\"," + row.json + "}");
    // The name is the one that was asked for.
    EXPECT_EQ(json_of("TEXT", READER_TYPE::TEXT).substr(0, 28), R"({"name":"TEXT","type":"text")");
}

TEST(TYPED_ANSWERS, remark_on_what_is_odd)
{
    struct ROW
    {
        const char* name;
        READER_TYPE type;
        const char* remark;
    };
    const ROW rows[] = {
        {"n", READER_TYPE::INT, ""},
        {"n", READER_TYPE::UINT, "'n' is '-7' at VELMAR_INI_VARS:2: no integer from 0 to 4294967295"},
        {"n", READER_TYPE::BOOL, "'n' is '-7' at VELMAR_INI_VARS:2: no switch (on, 1, true, off, 0, false)"},
        {"big", READER_TYPE::INT, "'big' is '4294967295' at regtest:1: no integer from -2147483648 to 2147483647"},
        {"text", READER_TYPE::DOUBLE, "'text' is 'x y': it begins with no number, and is read as 0"},
        {"lost", READER_TYPE::DOUBLE, ""},
        {"empty", READER_TYPE::DOUBLE, "'empty' is set to the empty text at main:4"},
        {"empty", READER_TYPE::BOOL, "'empty' is set to the empty text at main:4"},
        {"debug_msg", READER_TYPE::BOOL, "'debug_msg' is not set"},
        {"Empti", READER_TYPE::BOOL, "'Empti' is not set (did you mean 'empty'?)"},
        {"wholly_other_name", READER_TYPE::BOOL, "'wholly_other_name' is not set"},
    };
    for (const ROW& row : rows)
        EXPECT_EQ(answer_typed(all_settings(), row.name, row.type, std::nullopt).remark, row.remark) << row.name;
    // A default stands in without a word; what is read of a number is told all the same.
    EXPECT_EQ(answer_typed(all_settings(), "n", READER_TYPE::UINT, TYPED_VALUE(1U)).remark, "");
    EXPECT_EQ(answer_typed(all_settings(), "text", READER_TYPE::DOUBLE, TYPED_VALUE(1.0)).remark,
              "'text' is 'x y': it begins with no number, and is read as 0");
}

TEST(TYPED_ANSWERS, complain_of_defaults_of_another_type)
{
    struct ROW
    {
        READER_TYPE type;
        const char* text;
        const char* complaint;
    };
    const ROW rows[] = {
        {READER_TYPE::BOOL, "yes", "the default 'yes' is no switch (on, 1, true, off, 0, false); give one of the type"},
        {READER_TYPE::INT, "2147483648",
         "the default '2147483648' is no integer from -2147483648 to 2147483647; give one of the type"},
        {READER_TYPE::UINT, "-1", "the default '-1' is no integer from 0 to 4294967295; give one of the type"},
        {READER_TYPE::DOUBLE, "2.5ms", "the default '2.5ms' is no number; give one of the type"},
    };
    for (const ROW& row : rows)
    {
        try
        {
            default_of_type(row.type, row.text);
            ADD_FAILURE() << row.text;
        }
        catch (const TOOL_ERROR& error)
        {
            EXPECT_EQ(error.exit_code, EXIT_CODE::USAGE);
            EXPECT_STREQ(error.what(), row.complaint);
        }
    }
    EXPECT_EQ(default_of_type(READER_TYPE::INT, "-5"), TYPED_VALUE(-5));
    EXPECT_EQ(default_of_type(READER_TYPE::INT, ""), TYPED_VALUE(std::string()));
    EXPECT_EQ(default_of_type(READER_TYPE::BOOL, "OFF"), TYPED_VALUE(false));
    EXPECT_EQ(default_of_type(READER_TYPE::DOUBLE, "1e3"), TYPED_VALUE(1000.0));
}

TEST(READER_TYPES, have_a_word_and_a_text_for_what_is_none)
{
    struct ROW
    {
        READER_TYPE type;
        const char* word;
        const char* wanted;
    };
    for (const ROW& row : {ROW{READER_TYPE::TEXT, "text", "no text"},
                           {READER_TYPE::BOOL, "bool", "no switch (on, 1, true, off, 0, false)"},
                           {READER_TYPE::INT, "int", "no integer from -2147483648 to 2147483647"},
                           {READER_TYPE::UINT, "uint", "no integer from 0 to 4294967295"},
                           {READER_TYPE::DOUBLE, "double", "no number"}})
    {
        EXPECT_STREQ(type_word(row.type), row.word);
        EXPECT_EQ(type_of_word(row.word), row.type);
        EXPECT_STREQ(what_is_wanted(row.type), row.wanted);
    }
    for (const char* const other : {"", "Bool", "string", "in"})
        EXPECT_EQ(type_of_word(other), std::nullopt) << other;
}
}
