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

bool same_place(const LOCATION& a, const LOCATION& b)
{
    return a.layer == b.layer && a.source == b.source && a.position == b.position;
}

// The number of the first assignment to the variable in that layer, and of the last; nothing where there is none.
std::optional<std::pair<std::size_t, std::size_t>> ends_in_layer(const SETTINGS& settings, const VARIABLE& variable,
                                                                 std::size_t layer)
{
    std::optional<std::pair<std::size_t, std::size_t>> ends;
    for (ASSIGNMENT_INDEX i = variable.first; i != no_assignment; i = settings.assignments()[i].next_to_same)
    {
        if (settings.assignments()[i].layer == layer)
            ends = {ends ? ends->first : i, i};
    }
    return ends;
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
            const bool first_in_layer = ends_in_layer(settings, variable, assignment.layer)->first == number;
            ASSERT_EQ(namesakes.is_first_in_layer(number, variables), first_in_layer);
            variables += first_in_layer ? 1U : 0U;
            not_first += variable.first == number ? 0 : 1;

            const auto first = namesakes.first_before(assignment.name, number);
            ASSERT_EQ(first.has_value(), variable.first < number);
            const auto anywhere = namesakes.first_before(assignment.name);
            ASSERT_TRUE(anywhere);
            ASSERT_EQ(anywhere->name, settings.name_of(variable));
            ASSERT_TRUE(same_place(anywhere->location, settings.location_of(assignments[variable.first])));
            ASSERT_TRUE(!first || (first->name == anywhere->name && same_place(first->location, anywhere->location)));

            const ASSIGNMENT_INDEX next = assignment.next_to_same;
            const bool in_layer = next != no_assignment && assignments[next].layer == assignment.layer;
            const auto found = namesakes.next(number);
            ASSERT_EQ(found.has_value(), in_layer);
            ASSERT_TRUE(!found || found->value == assignments[next].value);
            ASSERT_TRUE(!found || same_place(found->location, settings.location_of(assignments[next])));
            followed += in_layer ? 1 : 0;

            for (std::size_t layer = 0; layer < settings.layers().size(); ++layer)
            {
                const auto ends = ends_in_layer(settings, variable, layer);
                ASSERT_EQ(namesakes.is_assigned_to_later(assignment.name, layer, number + 1),
                          ends && ends->second > number);
            }
        }
        ASSERT_FALSE(namesakes.first_before("no such name"));
        ASSERT_FALSE(namesakes.is_assigned_to_later("no such name", 0, 0));
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
        ASSERT_EQ(found->name, "name" + std::to_string(i));
        ASSERT_EQ(found->location.position, static_cast<std::size_t>(i) + 1);
    }
    EXPECT_FALSE(namesakes.first_before("name5000"));
}
}
