// What of settings and preferences is secret, and texts in which that is hidden.
//
// A value is secret by the name of what it is assigned to. It is hidden where texts come in, before anything is made of
// them: in the layers' texts, the environment, the preference file and documents. What is made of these, such as
// findings, raw lines and differences, has nothing to give away then, and no command can forget to hide something.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SECRETS_H
#define TOOLS_VELMAR_CFG_SETTINGS_SECRETS_H

#include <functional>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "tools/velmar-cfg/base/mask_key.h"

// Which names are secret; and what makes the marks. Hides by its built-in names unless told otherwise.
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

    // Marks are made under the key of the user whose environment this is now, which is made with the first mark unless
    // there is one; else under a key of this process.
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

    // False only for a text in which no secret name stands. Quick.
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

// The text of a settings file with the secret values in it hidden, and behind them what stands on their lines. Where no
// assignment is, what follows a secret name is hidden. Lines keep their outcome, their number and their names.
// Nothing when nothing is to be hidden.
std::optional<std::string> hide_in_settings_text(std::string_view text, SECRETS& secrets);

// The same for an inline text. What a secret value was to hold, and a separator within it has cut off, is hidden too.
std::optional<std::string> hide_in_inline_text(const std::string& text, SECRETS& secrets);

// A value as it is to be shown: hidden when the name is secret, or with what is assigned to secret names within it
// hidden. What is hidden already stays so. `kept` stays as where the texts of layers are hidden: of lines quotes and
// what would begin a comment outside of them, of items separators.
inline constexpr std::string_view kept_in_lines = "\";#";
inline constexpr std::string_view kept_in_items = ":;";
std::string hide_in_value(std::string_view name, std::string_view value, SECRETS& secrets,
                          std::string_view kept = kept_in_lines);

// --- For rules of other files ---

// `text` with each run of characters that are none of `kept` hidden, white space at the runs' ends excepted.
std::string hide_runs(std::string_view text, std::string_view kept, SECRETS& secrets);

using IS_SECRET_NAME = std::function<bool(std::string_view)>;

// Where the first secret name in the text ends; npos when there is none.
std::size_t end_of_secret_name(std::string_view text, const IS_SECRET_NAME& is_secret);

// `text`, which is no assignment, with what follows a secret name hidden but for the characters `kept`; with
// `only_assigned`, only behind "=" or ":".
std::string hide_behind_names(std::string_view text, bool only_assigned, const IS_SECRET_NAME& is_secret,
                              SECRETS& secrets, std::string_view kept = "\"");

#endif
