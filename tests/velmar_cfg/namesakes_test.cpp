// The index of namesakes beside the settings, which keep every assignment: over generated stacks of layers.
#include "tools/velmar-cfg/lint/namesakes.h"

#include <gtest/gtest.h>
#include <memory>

#include "tests/velmar_cfg/settings_generator.h"
#include "tools/velmar-cfg/settings/settings.h"

namespace
{
LAYER layer_of(LAYER_KIND kind, const std::string& text)
{
    const char* const path = is_file(kind) ? layer_code(kind) : inline_source;
    return {kind, std::make_shared<const INPUT_FILE>(INPUT_FILE{path, text, {}})};
}

LAYERS generated_layers(SETTINGS_GENERATOR& generate)
{
    const auto line = [&] { return generate.below(2) == 0 ? generate.line() : generate.hostile_line(); };
    return {layer_of(LAYER_KIND::MAIN_FILE, generate.file(line, 40)),
            layer_of(LAYER_KIND::APPENDED_FILE, generate.file(line)),
            layer_of(LAYER_KIND::INLINE_TEXT, generate.inline_text(line)),
            layer_of(LAYER_KIND::REGTEST_FILE, generate.file(line))};
}

bool is_place_of(const NAMESAKES::ASSIGNED& assigned, const ASSIGNMENT& assignment, const SETTINGS& settings)
{
    const LOCATION expected = settings.location_of(assignment);
    return assigned.name == assignment.name && assigned.value == assignment.value &&
           assigned.location.layer == expected.layer && assigned.location.source == expected.source &&
           assigned.location.position == expected.position;
}

// Whether a later assignment to the name stands in that layer, or in a later one if that layer has any.
bool is_assigned_to_later(const SETTINGS& settings, std::string_view name, std::size_t layer, std::size_t from)
{
    bool later = false;
    bool in_layer = false;
    for (std::size_t i = 0; i < settings.assignments().size(); ++i)
    {
        const ASSIGNMENT& assignment = settings.assignments()[i];
        if (!same_name(assignment.name, name))
            continue;
        later = later || i >= from;
        in_layer = in_layer || assignment.layer == layer;
    }
    return later && in_layer;
}

TEST(NAMESAKES_, are_those_of_the_settings)
{
    SETTINGS_GENERATOR generate(20261122);
    int followed = 0;
    int not_first = 0;
    for (int i = 0; i < 1500; ++i)
    {
        const SETTINGS settings(generated_layers(generate));
        const NAMESAKES namesakes(settings.layers());
        const std::vector<ASSIGNMENT>& assignments = settings.assignments();
        std::size_t variables = 0;
        for (std::uint32_t number = 0; number < assignments.size(); ++number)
        {
            SCOPED_TRACE("stack " + std::to_string(i) + ", assignment " + std::to_string(number));
            const ASSIGNMENT& assignment = assignments[number];
            const VARIABLE& variable = *settings.find(assignment.name);
            ASSERT_EQ(namesakes.is_first(number, variables), variable.first == number);
            variables += variable.first == number ? 1U : 0U;
            not_first += variable.first == number ? 0 : 1;

            const auto first = namesakes.first_before(assignment.name, number);
            ASSERT_EQ(first.has_value(), variable.first < number);
            ASSERT_TRUE(!first || is_place_of(*first, assignments[variable.first], settings));
            ASSERT_TRUE(is_place_of(*namesakes.first_before(assignment.name), assignments[variable.first], settings));

            const ASSIGNMENT_INDEX next = assignment.next_to_same;
            const bool in_layer = next != no_assignment && assignments[next].layer == assignment.layer;
            const auto found = namesakes.next(number);
            ASSERT_EQ(found.has_value(), in_layer);
            ASSERT_TRUE(!found || is_place_of(*found, assignments[next], settings));
            followed += in_layer ? 1 : 0;

            for (std::size_t layer = 0; layer < settings.layers().size(); ++layer)
                ASSERT_EQ(namesakes.may_be_assigned_to_later(assignment.name, layer, number + 1),
                          is_assigned_to_later(settings, assignment.name, layer, number + 1));
        }
        ASSERT_FALSE(namesakes.first_before("no such name"));
        ASSERT_FALSE(namesakes.may_be_assigned_to_later("no such name", 0, 0));
    }
    EXPECT_GT(followed, 1000);
    EXPECT_GT(not_first, followed);
}

// More variables than the first table of slots holds, several times over.
TEST(NAMESAKES_, are_found_among_many)
{
    std::string text;
    for (int i = 0; i < 5000; ++i)
        text += "name" + std::to_string(i) + " = " + std::to_string(i) + "\n";
    const LAYERS layers = {layer_of(LAYER_KIND::MAIN_FILE, text)};
    const NAMESAKES namesakes(layers);
    for (int i = 0; i < 5000; ++i)
    {
        const auto found = namesakes.first_before("NAME" + std::to_string(i));
        ASSERT_TRUE(found) << i;
        ASSERT_EQ(found->value, std::to_string(i));
        ASSERT_EQ(found->location.position, static_cast<std::size_t>(i) + 1);
    }
    EXPECT_FALSE(namesakes.first_before("name5000"));
}
}
