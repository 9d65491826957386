// Hides known secrets wherever they stand in messages and in what other programs wrote.
#ifndef TOOLS_VELMAR_CFG_SETTINGS_SECRETS_IN_MESSAGES_H
#define TOOLS_VELMAR_CFG_SETTINGS_SECRETS_IN_MESSAGES_H

#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "tools/velmar-cfg/base/word_search.h"
#include "tools/velmar-cfg/settings/secrets.h"

// Where a text of up to three bytes counts as the secret; elsewhere it may be part of anything.
enum class SHORT_SECRETS
{
    QUOTED, // in quotes, behind a colon or alone: in the tool's own sentences, and beside paths
    APART,  // between characters that are no letters and no digits: in what somebody else wrote
};

struct SECRET_TEXT
{
    std::string_view text;
    std::string_view shown = {}; // must stand before the secret, and stays visible
};

// Hides secrets wherever they stand. Their pieces are hidden too: quotes, brackets, line ends and comment signs may
// have been removed from a secret, or may have divided it, and a quotation may have shortened it. If two secrets
// overlap, both are hidden. What is hidden already is not searched.
class SECRET_TEXTS
{
public:
    // The texts and `secrets`, which makes the marks, must outlive this.
    SECRET_TEXTS(const std::vector<SECRET_TEXT>& texts, SECRETS& the_secrets,
                 SHORT_SECRETS of_short = SHORT_SECRETS::QUOTED);

    std::string hide_in(std::string_view message) const;

private:
    struct PIECE
    {
        std::string text; // as it is searched for
        SECRET_TEXT secret;
    };

    void add(const SECRET_TEXT& secret);
    std::string replacement(const PIECE& piece) const;
    std::string with_long_pieces_hidden(std::string_view text) const;
    std::string with_short_pieces_hidden(std::string_view text) const;

    SECRETS& secrets;
    const SHORT_SECRETS of_short_pieces;
    std::vector<PIECE> long_pieces;
    std::unordered_map<std::string, PIECE> short_pieces; // by their text
    std::unique_ptr<const WORD_SEARCH> search;           // for the long ones
};

// A message with one secret hidden.
std::string hide_in_text(std::string_view text, std::string_view secret, SECRETS& secrets,
                         SHORT_SECRETS of_short = SHORT_SECRETS::QUOTED);

// A message about a word of the command line, such as "api_token=VALUE" or "api_token:VALUE". If the name in that word
// is secret, its value is hidden in the message.
std::string hide_typed_value(std::string_view message, std::string_view word, const IS_SECRET_NAME& is_secret,
                             SECRETS& secrets);

#endif
