// Decides which values of settings and preferences are secret, and hides them in texts.
//
// A value is secret if the name that it is assigned to is secret. It is hidden as soon as a text is read: the text of a
// layer, the environment, the preference file or a document. So nothing that is made from these texts, such as
// findings, raw lines and differences, contains a secret, and no command can forget to hide one.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SECRETS_H
#define TOOLS_VELMAR_CFG_SETTINGS_SECRETS_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/mask_key.h"

// Decides which names are secret, and makes the marks. Unless told otherwise, it hides the values of its built-in
// names.
class SECRETS
{
public:
    // Hides nothing from now on.
    void show_all()
    {
        all_shown = true;
    }

    bool shown() const
    {
        return all_shown;
    }

    // Names that match the shell pattern are secret too, letter case ignored.
    void add_pattern(std::string pattern);

    // Makes marks under the lasting key of the user whose environment this is now. If there is no such key, the first
    // mark makes it. Without this call, marks are made under a key of this process. Must be called before the first
    // mark.
    void use_lasting_key()
    {
        lasting_key_path = mask_key_path();
    }

    // Why the user's key was not used for the marks made so far; empty when it was.
    std::string key_problem() const
    {
        return key ? key->problem : "";
    }

    bool is_secret_name(std::string_view name) const;

    // False only if no secret name stands in the text. Fast.
    bool may_hold_secret_name(std::string_view text) const;

    // The mark for `text`.
    std::string mark(std::string_view text);

private:
    bool all_shown = false;
    std::optional<std::string> lasting_key_path;
    std::vector<std::string> patterns; // besides the built-in ones
    std::optional<MASK_KEY> key;       // of the marks; chosen with the first
};

// Whether the value is too plain to be a secret: empty, a switch such as "on", or a number of up to nine digits.
bool is_plain_value(std::string_view value);

// The text of a settings file with its secret values hidden, and the comments behind them. In a line without an
// assignment, what follows a secret name is hidden. Lines keep their outcome, their number and their names. Nothing if
// there is nothing to hide.
std::optional<std::string> hide_in_settings_text(std::string_view text, SECRETS& secrets);

// The same for an inline text. If a separator within a secret value has cut off the rest of it, the rest is hidden too.
std::optional<std::string> hide_in_inline_text(const std::string& text, SECRETS& secrets);

// A value as it is to be shown. If the name is secret, the value is hidden; else only what is assigned to secret names
// within it. A value with hidden parts stays as it is. Of a value with a secret name, the characters of `kept` stay, as
// they do in the texts of layers: in lines, quotes and signs that may begin a comment; in items, separators.
inline constexpr std::string_view kept_in_lines = "\";#";
inline constexpr std::string_view kept_in_items = ":;";
std::string hide_in_value(std::string_view name, std::string_view value, SECRETS& secrets,
                          std::string_view kept = kept_in_lines);

// --- For rules of other files ---

// `text` with each run of characters other than those of `kept` hidden. White space at the ends of a run stays.
std::string hide_runs(std::string_view text, std::string_view kept, SECRETS& secrets);

using IS_SECRET_NAME = std::function<bool(std::string_view)>;

// Where the first secret name in the text ends; npos when there is none.
std::size_t end_of_secret_name(std::string_view text, const IS_SECRET_NAME& is_secret);

// `text`, which is no assignment or the value of one, with what follows a secret name hidden, except the characters of
// `kept`. With `only_assigned`, only what follows the name and "=" or ":" is hidden.
std::string hide_behind_names(std::string_view text, bool only_assigned, const IS_SECRET_NAME& is_secret,
                              SECRETS& secrets, std::string_view kept = "\"");

#endif
