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

// Columns as wide as their widest text, set apart by two blanks; the last is as long as its text. All is kept until it
// is written.
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

// How many columns of a terminal the printable text takes: its characters, of which some scripts' take two, count as
// one.
std::size_t columns_of(std::string_view text);

#endif
