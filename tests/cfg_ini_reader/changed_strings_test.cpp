// The first use of a variable loads the settings, which runs callbacks. One of them changes the strings that the host
// handed in: the call is about what they were.
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include "cfg_ini/cfg_ini_reader/store_primitives.h"
#include "tests/support/store_test.h"

namespace
{

constexpr const char* asked = "asked_name";
constexpr const char* changed = "other_name";

struct CHANGED_CALL
{
    const char* call;
    std::string text;                                                         // of the variable asked for, in the file
    std::function<std::string(std::string& name, std::string& value)> answer; // both are the caller's
    std::string expected;
};

void PrintTo(const CHANGED_CALL& row, std::ostream* out)
{
    *out << row.call;
}

class CHANGED_STRINGS : public STORE_TEST
{
protected:
    class CHANGER : public CFG_INI_CALLBACK
    {
    public:
        CHANGER(std::string& of_name, std::string& of_value)
            : CFG_INI_CALLBACK("trigger"), caller_name(of_name), caller_value(of_value)
        {
        }
        void refresh() override
        {
            caller_name.replace(0, std::string::npos, changed); // as long as before, and so in the same memory
            caller_value.replace(0, std::string::npos, "66");
        }

    private:
        std::string& caller_name;
        std::string& caller_value;
    };
};

class CHANGED_STRING_TEST : public CHANGED_STRINGS, public testing::WithParamInterface<CHANGED_CALL>
{
};

TEST_P(CHANGED_STRING_TEST, the_call_is_about_the_strings_as_they_were)
{
    const SCOPED_POINT_LOCALE locale;
    write_file(temporary.path("cwd/velmar.ini"),
               "trigger=1\n" + std::string(asked) + "=" + GetParam().text + "\n" + changed + "=99\n");
    std::string name = asked;
    std::string value = "55";
    const CHANGER changer(name, value);
    EXPECT_EQ(GetParam().answer(name, value), GetParam().expected);
    EXPECT_EQ(name, changed) << "the callback ran";
    EXPECT_EQ(record_of(changed)->value, "99");
    EXPECT_EQ(record_of(changed)->access_count, 0U);
    EXPECT_FALSE(record_of(changed)->had_valid_read);
}

std::string_view view(const std::string& name)
{
    return name;
}

template <typename T>
std::string shown(T value)
{
    return std::to_string(value);
}

template <typename T>
std::string shown(const std::optional<T>& value)
{
    return value ? std::to_string(*value) : "none";
}

// The number, the messages, and whether the variable was marked.
template <typename T>
std::string shown_number(T number)
{
    std::string all = shown(number);
    for (const auto& message : fake::mem::messages())
        all += ' ' + message.text;
    const zon_cfg::STORE_LOCK lock;
    return all + (cfg_ini_get_record(asked)->had_valid_read ? " marked" : " not marked");
}

std::string text_of_asked()
{
    return cfg_get_value(asked);
}

using STRING = std::string;

const std::string not_a_number =
    "2.500000 Couldn't parse ini setting asked_name=(2.5ms) as a floating point value not marked";

INSTANTIATE_TEST_SUITE_P(
    reading, CHANGED_STRING_TEST,
    testing::Values(
        CHANGED_CALL{"cfg_is_on string", "on", [](STRING& name, STRING&) { return shown(cfg_is_on(name, false)); },
                     "1"},
        CHANGED_CALL{"cfg_is_on view", "on", [](STRING& name, STRING&) { return shown(cfg_is_on(view(name), false)); },
                     "1"},
        CHANGED_CALL{"cfg_is_on characters", "on",
                     [](STRING& name, STRING&) { return shown(cfg_is_on(name.c_str(), false)); }, "1"},
        CHANGED_CALL{"cfg_is_on string, no default", "on", [](STRING& name, STRING&) { return shown(cfg_is_on(name)); },
                     "1"},
        CHANGED_CALL{"cfg_is_on view, no default", "on",
                     [](STRING& name, STRING&) { return shown(cfg_is_on(view(name))); }, "1"},
        CHANGED_CALL{"cfg_is_on characters, no default", "on",
                     [](STRING& name, STRING&) { return shown(cfg_is_on(name.c_str())); }, "1"},
        CHANGED_CALL{"cfg_get_int_value string", "-7",
                     [](STRING& name, STRING&) { return shown(cfg_get_int_value(name, 0)); }, "-7"},
        CHANGED_CALL{"cfg_get_int_value view", "-7",
                     [](STRING& name, STRING&) { return shown(cfg_get_int_value(view(name), 0)); }, "-7"},
        CHANGED_CALL{"cfg_get_uint_value string", "7",
                     [](STRING& name, STRING&) { return shown(cfg_get_uint_value(name, 0)); }, "7"},
        CHANGED_CALL{"cfg_get_uint_value view", "7",
                     [](STRING& name, STRING&) { return shown(cfg_get_uint_value(view(name), 0)); }, "7"},
        CHANGED_CALL{"cfg_get_double_value string", "2.5",
                     [](STRING& name, STRING&) { return shown_number(cfg_get_double_value(name, 0)); },
                     "2.500000 marked"},
        CHANGED_CALL{"cfg_get_double_value view", "2.5",
                     [](STRING& name, STRING&) { return shown_number(cfg_get_double_value(view(name), 0)); },
                     "2.500000 marked"},
        CHANGED_CALL{"cfg_get_double_value string, left over", "2.5ms",
                     [](STRING& name, STRING&) { return shown_number(cfg_get_double_value(name, 0)); }, not_a_number},
        CHANGED_CALL{"cfg_get_double_value view, left over", "2.5ms",
                     [](STRING& name, STRING&) { return shown_number(cfg_get_double_value(view(name), 0)); },
                     not_a_number},
        CHANGED_CALL{"cfg_get_value string", "text", [](STRING& name, STRING&) { return cfg_get_value(name); }, "text"},
        CHANGED_CALL{"cfg_get_value view", "text", [](STRING& name, STRING&) { return cfg_get_value(view(name)); },
                     "text"},
        CHANGED_CALL{"cfg_get_value_as bool", "on",
                     [](STRING& name, STRING&) { return shown(cfg_get_value_as<bool>(name)); }, "1"},
        CHANGED_CALL{"cfg_get_value_as bool, view", "on",
                     [](STRING& name, STRING&) { return shown(cfg_get_value_as<bool>(view(name))); }, "1"},
        CHANGED_CALL{"cfg_get_value_as int", "7",
                     [](STRING& name, STRING&) { return shown(cfg_get_value_as<int>(name)); }, "7"},
        CHANGED_CALL{"cfg_get_value_as string", "text",
                     [](STRING& name, STRING&) { return *cfg_get_value_as<std::string>(name); }, "text"},
        CHANGED_CALL{"cfg_get_value_as double", "2.5",
                     [](STRING& name, STRING&) { return shown_number(cfg_get_value_as<double>(name)); },
                     "2.500000 marked"},
        CHANGED_CALL{"cfg_get_value_as float, left over", "2.5ms",
                     [](STRING& name, STRING&) { return shown_number(cfg_get_value_as<float>(name)); }, not_a_number},
        CHANGED_CALL{"cfg_dyn_is_on", "on",
                     [](STRING& name, STRING&) { return shown(cfg_dyn_is_on(name.c_str(), false)); }, "1"},
        CHANGED_CALL{"cfg_dyn_get_int_value", "7",
                     [](STRING& name, STRING&)
                     {
                         int number = 0;
                         cfg_dyn_get_int_value(name.c_str(), &number, 0);
                         return shown(number);
                     },
                     "7"},
        CHANGED_CALL{"cfg_dyn_get_value", "text",
                     [](STRING& name, STRING&)
                     {
                         std::string text;
                         cfg_dyn_get_value(name.c_str(), &text);
                         return text;
                     },
                     "text"},
        CHANGED_CALL{"cfg_ini_get_value_for_zanth", "text",
                     [](STRING& name, STRING&)
                     {
                         const char* const characters = name.c_str();
                         char room[8] = {};
                         cfg_ini_get_value_for_zanth(nullptr, &characters, room, sizeof room);
                         return std::string(room);
                     },
                     "text"}));

INSTANTIATE_TEST_SUITE_P(setting, CHANGED_STRING_TEST,
                         testing::Values(CHANGED_CALL{"cfg_set_value", "1",
                                                      [](STRING& name, STRING& value)
                                                      {
                                                          cfg_set_value(name, value);
                                                          return text_of_asked();
                                                      },
                                                      "55"},
                                         CHANGED_CALL{"cfg_ini_insert_element", "1",
                                                      [](STRING& name, STRING& value)
                                                      {
                                                          cfg_ini_insert_element(name, value);
                                                          return text_of_asked();
                                                      },
                                                      "55"},
                                         CHANGED_CALL{"cfg_ini_insert_element_external_ini", "1",
                                                      [](STRING& name, STRING& value)
                                                      {
                                                          cfg_ini_insert_element_external_ini(name, value);
                                                          return text_of_asked();
                                                      },
                                                      "55"},
                                         CHANGED_CALL{"cfg_set_int_value string", "1",
                                                      [](STRING& name, STRING&)
                                                      {
                                                          cfg_set_int_value(name, 55);
                                                          return text_of_asked();
                                                      },
                                                      "55"},
                                         CHANGED_CALL{"cfg_set_int_value characters", "1",
                                                      [](STRING& name, STRING&)
                                                      {
                                                          cfg_set_int_value(name.c_str(), 55);
                                                          return text_of_asked();
                                                      },
                                                      "55"},
                                         CHANGED_CALL{"cfg_set_on", "1",
                                                      [](STRING& name, STRING&)
                                                      {
                                                          cfg_set_on(name);
                                                          return text_of_asked();
                                                      },
                                                      "on"},
                                         CHANGED_CALL{"cfg_set_off", "1",
                                                      [](STRING& name, STRING&)
                                                      {
                                                          cfg_set_off(name);
                                                          return text_of_asked();
                                                      },
                                                      "off"}));

// The default by the catalogue is that of the name asked for, too.
using CHANGED_NAME_TEST = CHANGED_STRINGS;

TEST_F(CHANGED_NAME_TEST, the_default_is_that_of_the_name_as_it_was)
{
    for (const bool as_view : {false, true})
    {
        cfg_close_ini_file();
        write_file(temporary.path("cwd/velmar.ini"), "trigger=1\n");
        std::string name = "msg_sqlite"; // on by default
        std::string value;
        const CHANGER changer(name, value);
        EXPECT_TRUE(as_view ? cfg_is_on(view(name)) : cfg_is_on(name));
        EXPECT_EQ(name, changed);
    }
}
}
