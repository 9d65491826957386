// What a reader of one type gets of a variable, and what is remarked on it.
#include "tools/velmar-cfg/settings/typed_answer.h"

#include <gtest/gtest.h>

#include "tools/velmar-cfg/base/errors.h"

namespace
{
LAYERS layers_of(const std::string& text)
{
    return {{LAYER_KIND::MAIN_FILE, std::make_shared<const INPUT_FILE>(INPUT_FILE{"velmar.ini", text, {}})}};
}

// A reader's question of the settings "n = 12", "d = 2.5ms", "e =" and what it gets.
struct QUESTION
{
    const char* name;
    const char* type;
    const char* fallback; // null for none
    const char* shown;    // null for no value
    bool usable;
    const char* remark = "";
};

const QUESTION questions[] = {
    {"n", "int", nullptr, "12", true},
    {"N", "int", "5", "12", true},
    {"n", "bool", nullptr, nullptr, false, "'n' is '12' at velmar.ini:1: no switch (on, 1, true, off, 0, false)"},
    {"n", "bool", "off", "off", false},
    {"n", "bool", "", "", false},
    {"d", "double", nullptr, "2.5", true, "'d' is '2.5ms': only the number at its start is read, 2.5"},
    {"d", "double", "1", "2.5", true, "'d' is '2.5ms': only the number at its start is read, 2.5"},
    {"d", "text", nullptr, "2.5ms", true},
    {"zero", "double", nullptr, "-0", true, "'zero' is '-.0ms': only the number at its start is read, -0"},
    {"word", "double", "1", "0", true, "'word' is '.fast5': it begins with no number, and is read as 0"},
    {"sign", "double", "1", "0", true, "'sign' is '-': it begins with no number, and is read as 0"},
    {"signs", "double", "1", "0", true, "'signs' is '--5': it begins with no number, and is read as 0"},
    {"dots", "double", "1", "0", true, "'dots' is '..5': it begins with no number, and is read as 0"},
    {"e", "text", nullptr, nullptr, false, "'e' is set to the empty text at velmar.ini:3"},
    {"e", "text", "x", "x", false},
    {"unset", "text", nullptr, nullptr, false, "'unset' is not set"},
    {"unset", "uint", "7", "7", false},
    {"zanth_flow", "text", nullptr, nullptr, false, "'zanth_flow' is not set; the catalogue's default is on"},
    {"zanth_flwo", "text", nullptr, nullptr, false, "'zanth_flwo' is not set (did you mean 'zanth_flow'?)"},
};

TEST(TYPED_ANSWER_TEST, is_the_variables_value_or_the_default)
{
    for (const QUESTION& row : questions)
    {
        SCOPED_TRACE(std::string(row.name) + " as " + row.type);
        const READER_TYPE type = *type_of_word(row.type);
        std::optional<TYPED_VALUE> fallback;
        if (row.fallback != nullptr)
            fallback = default_of_type(type, row.fallback);
        const SETTINGS settings = SETTINGS::of_one_variable(
            layers_of("n = 12\nd = 2.5ms\ne =\nzero = -.0ms\nword = .fast5\nsign = -\nsigns = --5\ndots = ..5\n"),
            row.name);
        const TYPED_ANSWER answer = answer_typed(settings, row.name, type, fallback);
        EXPECT_EQ(answer.name, row.name);
        EXPECT_EQ(value_as_text(answer.value),
                  row.shown == nullptr ? std::nullopt : std::optional<std::string>(row.shown));
        EXPECT_EQ(answer.usable, row.usable);
        EXPECT_EQ(answer.remark, row.remark);
        EXPECT_EQ(answer.is_set(), settings.find(row.name) != nullptr);
        EXPECT_EQ(answer.external, answer.is_set()); // a main settings file
    }
}

TEST(TYPED_ANSWER_TEST, refuses_a_default_that_no_reader_of_the_type_could_have)
{
    struct ROW
    {
        const char* type;
        const char* text;
        bool accepted;
    };
    const ROW rows[] = {
        {"text", "anything", true}, {"text", "", true},   {"bool", "on", true},    {"bool", "2", false},
        {"int", "-1", true},        {"int", "x", false},  {"uint", "-1", false},   {"uint", "0", true},
        {"double", "1e3", true},    {"double", "", true}, {"double", "1x", false}, {"double", "x", false},
    };
    for (const ROW& row : rows)
    {
        const auto make = [&row] { return default_of_type(*type_of_word(row.type), row.text); };
        if (row.accepted)
            EXPECT_NO_THROW(make()) << row.type << " " << row.text;
        else
            EXPECT_THROW(make(), TOOL_ERROR) << row.type << " " << row.text;
    }
}
}
