// What a reader takes for a name: whatever a `const std::string&` takes, with the same answer, and characters.
#include <filesystem>
#include <functional>
#include <stdexcept>

#include "cfg_ini/cfg_ini.h"
#include "platform/fio/fio.h"
#include "tests/support/isolated_test.h"

namespace
{
class NAME_FORMS_TEST : public ISOLATED_TEST
{
protected:
    NAME_FORMS_TEST()
    {
        cfg_read_ini_file("");
        cfg_set_value("ab", "1");
    }
    ~NAME_FORMS_TEST() override
    {
        cfg_close_ini_file();
    }
};

// Every reader takes the name in this form, and finds "ab" by it.
#define EXPECT_FINDS_AB(...)                                                                                           \
    do                                                                                                                 \
    {                                                                                                                  \
        EXPECT_EQ(cfg_is_on(__VA_ARGS__, false), true);                                                                \
        EXPECT_EQ(cfg_is_on(__VA_ARGS__), true);                                                                       \
        EXPECT_EQ(cfg_get_int_value(__VA_ARGS__, -1), 1);                                                              \
        EXPECT_EQ(cfg_get_uint_value(__VA_ARGS__, 7), 1U);                                                             \
        EXPECT_EQ(cfg_get_double_value(__VA_ARGS__, -1), 1.0);                                                         \
        EXPECT_EQ(cfg_get_value(__VA_ARGS__), "1");                                                                    \
        EXPECT_EQ(cfg_get_value_as<bool>(__VA_ARGS__), true);                                                          \
        EXPECT_EQ(cfg_get_value_as<int>(__VA_ARGS__), 1);                                                              \
        EXPECT_EQ(cfg_get_value_as<std::string>(__VA_ARGS__), "1");                                                    \
        EXPECT_EQ(cfg_get_value_as<double>(__VA_ARGS__), 1.0);                                                         \
        EXPECT_EQ(cfg_get_value_as<float>(__VA_ARGS__), 1.0F);                                                         \
    } while (false)

// What a `const std::string&` makes of the form: the rule that the readers keep.
std::string plainly(const std::string& name)
{
    return name;
}

#define EXPECT_FINDS_AB_AS_A_STRING_DOES(...)                                                                          \
    do                                                                                                                 \
    {                                                                                                                  \
        EXPECT_EQ(plainly(__VA_ARGS__), "ab");                                                                         \
        EXPECT_FINDS_AB(__VA_ARGS__);                                                                                  \
    } while (false)

TEST_F(NAME_FORMS_TEST, strings)
{
    struct DERIVED : std::string
    {
        using std::string::string;
    };
    std::string changeable = "ab";
    const std::string constant = "ab";
    EXPECT_FINDS_AB_AS_A_STRING_DOES(changeable);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(constant);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(std::string("ab"));
    EXPECT_FINDS_AB_AS_A_STRING_DOES(std::string("a") + "b");
    EXPECT_FINDS_AB_AS_A_STRING_DOES(DERIVED("ab"));
    EXPECT_FINDS_AB_AS_A_STRING_DOES(std::ref(changeable));
    EXPECT_FINDS_AB_AS_A_STRING_DOES(std::cref(constant));
}

struct [[gnu::packed]] PACKED
{
    char before;
    const char* name;
};

extern const char of_unknown_size[];

TEST_F(NAME_FORMS_TEST, characters)
{
    char array[8] = "ab";
    const char constant_array[] = "ab";
    char* const pointer = array;
    const char* const constant_pointer = constant_array;
    EXPECT_FINDS_AB_AS_A_STRING_DOES("ab");
    EXPECT_FINDS_AB_AS_A_STRING_DOES("ab\0c");
    EXPECT_FINDS_AB_AS_A_STRING_DOES(array);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(constant_array);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(pointer);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(constant_pointer);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(of_unknown_size);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(array[0] == 'a' ? "ab" : "b");
    PACKED packed = {'x', constant_array};
    EXPECT_FINDS_AB_AS_A_STRING_DOES(packed.name); // no reference can name it
}

const char of_unknown_size[] = "ab";

TEST_F(NAME_FORMS_TEST, braces)
{
    const std::string text = "xab";
    EXPECT_FINDS_AB_AS_A_STRING_DOES({"abc", 2});
    EXPECT_FINDS_AB_AS_A_STRING_DOES({"ab"});
    EXPECT_FINDS_AB_AS_A_STRING_DOES({'a', 'b'});
    EXPECT_FINDS_AB_AS_A_STRING_DOES({text, 1});
    EXPECT_FINDS_AB_AS_A_STRING_DOES({text.begin() + 1, text.end()});
    EXPECT_FINDS_AB_AS_A_STRING_DOES({std::string_view("abc"), 0, 2});
}

// The empty braces are a position where there is a form by position, and else the empty name.
TEST_F(NAME_FORMS_TEST, empty_braces)
{
    cfg_set_value("", "2");
    cfg_set_value(CFG_INI_VAR_BEGIN, "3");
    EXPECT_EQ(cfg_get_value({}), "3");
    EXPECT_EQ(cfg_get_int_value({}), 3);
    EXPECT_EQ(cfg_get_int_value({}, -1), 2);
    EXPECT_EQ(cfg_get_uint_value({}, 7), 2U);
    EXPECT_EQ(cfg_get_double_value({}, -1), 2.0);
    EXPECT_EQ(cfg_get_value_as<int>({}), 2);
    cfg_set_on("");
    EXPECT_TRUE(cfg_is_on({}, false));
    EXPECT_FALSE(cfg_is_on({}));
}

// --- Objects that convert to a name ---

struct TO_STRING_AND_CHARACTERS
{
    operator std::string() const
    {
        return "ab";
    }
    operator const char*() const
    {
        return "characters";
    }
};

struct TO_STRING_WHEN_CHANGEABLE
{
    operator std::string()
    {
        return "ab";
    }
    operator const char*() const
    {
        return "characters";
    }
};

struct TO_STRING_AND_VIEW
{
    operator std::string() const
    {
        return "ab";
    }
    operator std::string_view() const
    {
        return "view";
    }
};

struct TO_VIEW
{
    TO_VIEW() = default;
    TO_VIEW(const TO_VIEW&) = delete;
    TO_VIEW& operator=(const TO_VIEW&) = delete;
    operator std::string_view() const
    {
        return {"abc", 2};
    }
};

struct TO_CHARACTERS
{
    operator const char*() const
    {
        return "ab";
    }
};

struct TO_VIEW_AND_CHARACTERS
{
    operator std::string_view() const
    {
        return {"abc", 2};
    }
    operator const char*() const
    {
        return "abc";
    }
};

struct DERIVED_VIEW : std::string_view
{
    using std::string_view::string_view;
};

TEST_F(NAME_FORMS_TEST, objects_that_a_string_takes)
{
    TO_STRING_WHEN_CHANGEABLE changeable;
    FIO_PATH path("ab");
    const FIO_PATH constant_path("ab");
    EXPECT_FINDS_AB_AS_A_STRING_DOES(TO_STRING_AND_CHARACTERS());
    EXPECT_FINDS_AB_AS_A_STRING_DOES(TO_STRING_AND_VIEW());
    EXPECT_FINDS_AB_AS_A_STRING_DOES(changeable);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(path);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(constant_path);
    EXPECT_FINDS_AB_AS_A_STRING_DOES(std::filesystem::path("ab"));
}

TEST_F(NAME_FORMS_TEST, objects_that_are_characters)
{
    const TO_VIEW to_view;
    const std::string_view view("abc", 2);
    EXPECT_FINDS_AB(view);
    EXPECT_FINDS_AB(std::string_view("ab"));
    EXPECT_FINDS_AB(DERIVED_VIEW("ab"));
    EXPECT_FINDS_AB(CFG_INI_NAME_VIEW(view));
    EXPECT_FINDS_AB(to_view);
    EXPECT_FINDS_AB(TO_CHARACTERS());
    EXPECT_FINDS_AB(TO_VIEW_AND_CHARACTERS());
}

struct TO_POSITION_AND_CHARACTERS
{
    operator CFG_INI_VAR_ENUM() const
    {
        return CFG_INI_VAR_MSG_SQLITE;
    }
    operator const char*() const
    {
        return "ab";
    }
};

TEST_F(NAME_FORMS_TEST, positions_stay_positions)
{
    cfg_set_value(CFG_INI_VAR_MSG_SQLITE, "5");
    EXPECT_EQ(cfg_get_value(TO_POSITION_AND_CHARACTERS()), "5");
    EXPECT_EQ(cfg_get_int_value(TO_POSITION_AND_CHARACTERS()), 5);
    EXPECT_TRUE(cfg_is_on(TO_POSITION_AND_CHARACTERS()));
}

TEST_F(NAME_FORMS_TEST, the_forms_by_string_have_addresses)
{
    bool (*const is_on)(const std::string&, bool) = cfg_is_on;
    bool (*const is_on_or_default)(const std::string&) = cfg_is_on;
    int (*const integer)(const std::string&, int) = cfg_get_int_value;
    std::string (*const text)(const std::string&) = cfg_get_value;
    std::optional<int> (*const optional)(const std::string&) = cfg_get_value_as<int>;
    EXPECT_TRUE(is_on("ab", false) && is_on_or_default("ab"));
    EXPECT_EQ(integer("ab", -1), 1);
    EXPECT_EQ(text("ab"), "1");
    EXPECT_EQ(optional("ab"), 1);
}

// --- Null names ---

template <typename NAME>
void expect_refused(NAME name)
{
    EXPECT_THROW(cfg_is_on(name, false), std::logic_error);
    EXPECT_THROW(cfg_is_on(name), std::logic_error);
    EXPECT_THROW(cfg_get_int_value(name, -1), std::logic_error);
    EXPECT_THROW(cfg_get_uint_value(name, 7), std::logic_error);
    EXPECT_THROW(cfg_get_double_value(name, -1), std::logic_error);
    EXPECT_THROW(cfg_get_value(name), std::logic_error);
    EXPECT_THROW(cfg_get_value_as<bool>(name), std::logic_error);
    EXPECT_THROW(cfg_get_value_as<int>(name), std::logic_error);
    EXPECT_THROW(cfg_get_value_as<std::string>(name), std::logic_error);
    EXPECT_THROW(cfg_get_value_as<double>(name), std::logic_error);
    EXPECT_THROW(cfg_get_value_as<float>(name), std::logic_error);
}

TEST_F(NAME_FORMS_TEST, null_is_refused)
{
    const char* const null = nullptr;
    expect_refused(nullptr);
    expect_refused(null);
    expect_refused(std::string_view());
    std::map<std::string, std::string> used;
    cfg_get_used_variable_value_map(&used);
    EXPECT_EQ(used.size(), 0U) << "something was read";
}

// --- Zero bytes ---

struct NAME_WITH_ZERO
{
    std::string name;
    bool is_on; // its answer without a default
};

TEST_F(NAME_FORMS_TEST, a_name_ends_at_its_first_zero_byte_in_every_form)
{
    using namespace std::string_literals;
    const NAME_WITH_ZERO rows[] = {
        {"ab\0"s, true},          {"ab\0c"s, true},         {"AB\0ab"s, true},           {"\0ab"s, false},
        {"a\0b"s, false},         {"msg_sqlite\0"s, true},  {"msg_sqlite\0x"s, true},    {"msg_sqlit\0e"s, false},
        {"MSG_SQLITE\0"s, false}, {"\0msg_sqlite"s, false}, {"vtan_sta_mode\0"s, false},
    };
    for (const auto& [name, is_on] : rows)
    {
        const std::string_view view = name;
        const std::string shown = testing::PrintToString(name);
        EXPECT_EQ(cfg_is_on(name), is_on) << shown;
        EXPECT_EQ(cfg_is_on(view), is_on) << shown;
        for (const bool is_default : {false, true})
            EXPECT_EQ(cfg_is_on(view, is_default), cfg_is_on(name, is_default)) << shown;
        EXPECT_EQ(cfg_get_int_value(view, -1), cfg_get_int_value(name, -1)) << shown;
        EXPECT_EQ(cfg_get_uint_value(view, 7), cfg_get_uint_value(name, 7)) << shown;
        EXPECT_EQ(cfg_get_double_value(view, -1), cfg_get_double_value(name, -1)) << shown;
        EXPECT_EQ(cfg_get_value(view), cfg_get_value(name)) << shown;
        EXPECT_EQ(cfg_get_value(view), cfg_get_value(name.c_str())) << shown;
        EXPECT_EQ(cfg_get_value_as<bool>(view), cfg_get_value_as<bool>(name)) << shown;
        EXPECT_EQ(cfg_get_value_as<int>(view), cfg_get_value_as<int>(name)) << shown;
        EXPECT_EQ(cfg_get_value_as<std::string>(view), cfg_get_value_as<std::string>(name)) << shown;
        EXPECT_EQ(cfg_get_value_as<double>(view), cfg_get_value_as<double>(name)) << shown;
        EXPECT_EQ(cfg_get_value_as<float>(view), cfg_get_value_as<float>(name)) << shown;
    }
    std::vector<std::pair<std::string, std::string>> counted;
    cfg_set_value("cfg_max_to_report", "100");
    cfg_set_value("cfg_min_accessed_to_report", "0");
    cfg_get_most_accessed(&counted);
    // "ab", the two that steer the report, and one for each of the other names up to the zero byte.
    EXPECT_EQ(counted.size(), 1U + 2U + 5U);
}
}
