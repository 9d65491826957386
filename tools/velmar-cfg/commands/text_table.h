// A table for people.
#ifndef TOOLS_VELMAR_CFG_COMMANDS_TEXT_TABLE_H
#define TOOLS_VELMAR_CFG_COMMANDS_TEXT_TABLE_H

#include <string>
#include <vector>

#include "tools/velmar-cfg/base/output.h"

struct TABLE_CELL
{
    std::string text; // printable
    STYLE style = STYLE::PLAIN;
};

// Each column is as wide as its widest text, and two blanks separate columns. The last column is not padded. All rows
// are kept until write().
class TEXT_TABLE
{
public:
    explicit TEXT_TABLE(const std::vector<std::string>& headings);

    // A row of as many cells as there are headings.
    void add(std::vector<TABLE_CELL> row)
    {
        rows.push_back(std::move(row));
    }

    void write(OUTPUT& out) const;

private:
    std::vector<std::vector<TABLE_CELL>> rows;
};

// The number of characters of the printable text. Characters of some scripts take two columns of a terminal, but count
// as one.
std::size_t columns_of(std::string_view text);

#endif
