// The rules of EXAMINATION (examination.h) for an assignment, the same for lines and items. Each looks at one part: the
// name as written, the name as stored, the value, or the other assignments to the variable. A known variable is
// compared with the catalogue; of any other, the rules can only guess what its value is for.
#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <string>

#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/lint/examination.h"
#include "tools/velmar-cfg/lint/finding.h"
#include "tools/velmar-cfg/lint/intentions.h"
#include "tools/velmar-cfg/lint/namesakes.h"
#include "tools/velmar-cfg/lint/written_form.h"
#include "tools/velmar-cfg/settings/known_variables.h"
#include "tools/velmar-cfg/settings/layers.h"
#include "tools/velmar-cfg/settings/library_rules.h"

void EXAMINATION::examine_assignment()
{
    name_form();
    name_characters();
    value_form();
    quotes_kept();
    if (const KNOWN_VARIABLE* const known = find_known_variable(statement.name); known != nullptr)
        known_variable(*known);
    else
        unknown_variable();
    letter_case();
    overridden();
}

void EXAMINATION::name_form()
{
    const std::string_view before = text.substr(0, text.find('='));
    const std::string_view written = without_outer_white(before);
    if (looks_like_a_name(written))
        return;
    const WRITTEN_NAME name = name_as_written(written);
    if (std::ranges::any_of(name.core, is_white) || name.exported)
        add(first_visible(text), SEVERITY::WARNING, "blanks-in-name",
            (is_file(layer.kind) ? "white space in a name is removed: this sets "
                                 : "blanks in a name are kept here, while a settings file removes them: this sets ") +
                in_single_quotes(statement.name),
            "write the name without blanks", " if that is the variable");
    if (!name.operator_sign.empty())
        add(static_cast<std::size_t>(name.operator_sign.data() - text.data()), SEVERITY::WARNING, "operator-in-name",
            "there is no operator but \"=\": the " + in_single_quotes(name.operator_sign) + " is part of the name " +
                in_single_quotes(statement.name),
            "write the name, \"=\" and the whole value");
    if (name.quoted)
        add(first_visible(text), SEVERITY::WARNING, "quoted-name",
            "the quotes are part of the name: this sets " + in_single_quotes(statement.name),
            "write the name without quotes");
}

void EXAMINATION::name_characters()
{
    if (statement.name.empty())
    {
        add(0, SEVERITY::WARNING, "empty-name", "this sets the variable of empty name",
            "write a name before the \"=\"");
        return;
    }
    const std::string_view before = text.substr(0, text.find('='));
    const auto odd = std::ranges::find_if(
        before, [](char c) { return static_cast<unsigned char>(c) >= 0x7f || (c < ' ' && !is_white(c)); });
    if (odd == before.end())
        return;
    std::array<char, 5> byte;
    std::snprintf(byte.data(), byte.size(), "0x%02x", static_cast<unsigned int>(static_cast<unsigned char>(*odd)));
    add(static_cast<std::size_t>(odd - before.begin()), SEVERITY::WARNING, "odd-character",
        std::string("the byte ") + byte.data() + ", no ASCII letter or blank, is part of the name",
        "write the name in ASCII letters, digits and \"_\"");
}

void EXAMINATION::value_form()
{
    const std::string_view value = statement.value;
    const std::size_t equals = text.find('=');
    const std::string_view behind_signs = value.substr(std::min(value.find_first_not_of('='), value.size()));
    if (value.starts_with('=') && text[equals + 1] == '=' && !behind_signs.empty())
        add(equals + 1, SEVERITY::WARNING, "double-equals", "a second \"=\" is part of the value", "write one \"=\"");
    const std::string_view name = without_outer_white(text.substr(0, equals));
    if (looks_like_a_name(name) && value.find('=') != std::string_view::npos && !assignments_in_value(value).empty())
        add(value_offset(), SEVERITY::WARNING, "second-assignment",
            "this holds one assignment: all behind the first \"=\" is the value " + in_single_quotes(value),
            "write each assignment for itself");
}

void EXAMINATION::quotes_kept()
{
    const std::string_view value = statement.value;
    const bool in_quotes = between_quotes(value) || (value.size() >= 2 && value.front() == '"' && value.back() == '"');
    // Quotes that keep a comment sign in the value have a reason to be there.
    if (in_quotes && (value.find_first_of(";#") == std::string_view::npos || !is_file(layer.kind)))
        add(text.find(value.front(), text.find('=')), SEVERITY::NOTE, "quotes-kept", "the quotes are part of the value",
            "write the value without quotes", " unless the reader of the variable takes the quotes off");
}

void EXAMINATION::known_variable(const KNOWN_VARIABLE& known)
{
    const std::string value(statement.value);
    const std::string name(known.name); // as letter_case() wants it
    const std::string readers = ", so readers of " + in_single_quotes(known.name) + " take their default";
    if (known.kind == KNOWN_VARIABLE::KIND::SWITCH && !as_boolean(value))
        add(value_offset(), SEVERITY::ERROR, "no-boolean", in_single_quotes(value) + " is no boolean" + readers,
            "write " + in_single_quotes(name + " = on") + " or " + in_single_quotes(name + " = off"));
    if (known.kind == KNOWN_VARIABLE::KIND::INTEGER && !as_integer(value))
    {
        const bool is_number =
            value.find_first_not_of("0123456789", value.starts_with('-') ? 1 : 0) == std::string::npos &&
            value.find_first_of("0123456789") != std::string::npos;
        add(value_offset(), SEVERITY::ERROR, "no-integer",
            in_single_quotes(value) + (is_number ? " is out of range" : " is no integer") + readers,
            is_number ? "write a number from -2147483648 to 2147483647"
                      : "write decimal digits only, such as " + in_single_quotes(name + " = 2"));
    }
}

void EXAMINATION::unknown_variable()
{
    const std::string_view value = statement.value;
    if (const std::string* const nearest = nearest_known_name(statement.name); nearest != nullptr)
        add(first_visible(text), SEVERITY::WARNING, "almost-known",
            "no variable " + in_single_quotes(statement.name) + " is known, but " + in_single_quotes(*nearest) + " is",
            "write " + in_single_quotes(*nearest) + " if that is the variable", " if that is the variable");
    if (without_comma(value))
        add(text.find(value.back(), value_offset() + value.size() - 1), SEVERITY::WARNING, "trailing-comma",
            std::string("the \"") + value.back() + "\" is part of the value", "write the value without it");
    else if (boolean_meant_by(value))
        add(value_offset(), SEVERITY::NOTE, "boolean-word",
            in_single_quotes(value) + " is no boolean: a reader that asks for one takes its default",
            "write 'on' or 'off'", " if this is a switch");
    else if (hexadecimal_meant_by(value))
        add(value_offset(), SEVERITY::NOTE, "hexadecimal",
            in_single_quotes(value) + " is no integer: a reader that asks for one takes its default",
            "write decimal digits", " if this is an integer");
}

void EXAMINATION::letter_case()
{
    const KNOWN_VARIABLE* const known = find_known_variable(statement.name);
    std::string expected(known == nullptr ? "" : known->name);
    std::string whence;
    if (known == nullptr)
    {
        const auto first = standing.is_first && statement.layer == 0
                               ? std::nullopt
                               : namesakes.first_before(statement.name, standing.number);
        if (!first)
            return;
        expected = first->name;
        whence = " at " + location_as_text(first->location);
    }
    if (statement.name == expected)
        return;
    add(first_visible(text), SEVERITY::WARNING, "letter-case",
        "the same variable as " + in_single_quotes(expected) + whence +
            ", but callbacks registered under that spelling are not notified of this one",
        "write " + in_single_quotes(expected));
}

void EXAMINATION::overridden()
{
    constexpr const char* advice = "remove one of the two";
    if (standing.is_new)
    {
        if (namesakes.is_assigned_to_later(statement.name, statement.layer,
                                           standing.number + (standing.is_assignment ? 1 : 0)))
            add(first_visible(text), SEVERITY::WARNING, "overridden", "set again later", advice, nullptr);
        return;
    }
    const std::optional<NAMESAKES::ASSIGNED> later = namesakes.next(standing.number);
    if (!later)
        return;
    const bool same = later->value == statement.value;
    add(first_visible(text), same ? SEVERITY::NOTE : SEVERITY::WARNING, "overridden",
        location_as_text(later->location) + " sets " + in_single_quotes(statement.name) + " again" +
            (same ? ", to the same value" : ""),
        advice, nullptr);
}
