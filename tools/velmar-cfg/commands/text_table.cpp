// Keeps all rows, measures each column, then writes row by row. Cells at the end of a row that are empty take no room.
#include "tools/velmar-cfg/commands/text_table.h"

#include <algorithm>

TEXT_TABLE::TEXT_TABLE(const std::vector<std::string>& headings)
{
    std::vector<TABLE_CELL> row;
    row.reserve(headings.size());
    for (const std::string& heading : headings)
        row.push_back({heading, STYLE::STRONG});
    add(std::move(row));
}

void TEXT_TABLE::write(OUTPUT& out) const
{
    std::vector<std::size_t> widths(rows.front().size());
    for (const std::vector<TABLE_CELL>& row : rows)
    {
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], columns_of(row[i].text));
    }
    for (const std::vector<TABLE_CELL>& row : rows)
    {
        for (std::size_t i = 0; i < row.size(); ++i)
        {
            out << out.painted(row[i].style, row[i].text);
            const bool rest_is_empty = std::all_of(row.begin() + static_cast<std::ptrdiff_t>(i) + 1, row.end(),
                                                   [](const TABLE_CELL& cell) { return cell.text.empty(); });
            if (rest_is_empty)
                break;
            out << std::string(widths[i] - columns_of(row[i].text) + 2, ' ');
        }
        out << "\n";
    }
}

std::size_t columns_of(std::string_view text)
{
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char c) { return (static_cast<unsigned char>(c) & 0xC0U) != 0x80U; }));
}
