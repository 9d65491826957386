#include "benchmarks/table.h"

#include <algorithm>
#include <iomanip>
#include <optional>
#include <sstream>

#include "benchmarks/goals.h"
#include "benchmarks/rows.h"

namespace
{
// A column: the text, padded to the left or to the right.
std::string left(std::string text, std::size_t width)
{
    text.resize(std::max(width, text.size()), ' ');
    return text + ' ';
}

std::string right(const std::string& text, std::size_t width)
{
    return std::string(width - std::min(width, text.size()), ' ') + text + ' ';
}

std::string with_decimals(double number, int decimals)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << number;
    return text.str();
}

// Three digits that count: 1.23, 12.3, 123, 1234.
std::string short_number(double number)
{
    return with_decimals(number, number < 10 ? 2 : number < 100 ? 1 : 0);
}

std::string ratio(double time, const MEASUREMENT* reference)
{
    return reference == nullptr ? "-" : short_number(time / reference->median());
}

std::string time_row(const std::string& title, const std::string& who, const std::string& median,
                     const std::string& least, const std::string& in_locks, const std::string& in_peers)
{
    return left(title, 50) + left(who, 18) + right(median, 10) + right(least, 10) + right(in_locks, 8) +
           right(in_peers, 15) + '\n';
}

std::string figure_row(const std::string& title, const std::string& who, const std::string& value,
                       const std::string& unit)
{
    return left(title, 50) + left(who, 18) + right(value, 10) + unit + '\n';
}

std::string goal_row(const std::string& goal, const std::string& limit, const std::string& measured,
                     const std::string& least, const std::string& unit, const std::string& verdict)
{
    return left(goal, 62) + right(limit, 8) + right(measured, 8) + right(least, 8) + left(unit, 12) + verdict + '\n';
}

std::string number_or_dash(const std::optional<double>& number)
{
    return number ? short_number(*number) : "-";
}

std::string quoted(const std::string& text)
{
    return '"' + text + '"'; // titles hold nothing that needs escaping
}

std::string json_number(const std::optional<double>& number)
{
    return number ? with_decimals(*number, 4) : "null";
}

template <typename RANGE, typename PRINT>
void print_json_list(std::ostream& out, const char* key, const RANGE& range, PRINT print)
{
    out << quoted(key) << ": [";
    const char* separator = "\n";
    for (const auto& element : range)
    {
        out << separator << "    {";
        print(element);
        out << '}';
        separator = ",\n";
    }
    out << "\n  ]";
}
}

void print_table(std::ostream& out, const RESULTS& results)
{
    const MEASUREMENT* const lock = results.measurement(work_lock, standard_library);
    out << time_row("work", "who", "median ns", "least ns", "x lock", "x fastest peer");
    for (const WORK& work : results.works)
    {
        const MEASUREMENT* const peer = work.fastest_peer();
        std::string title = work.title;
        for (const MEASUREMENT& measurement : work.measurements)
        {
            const double time = measurement.median();
            out << time_row(title, measurement.who, short_number(time), short_number(measurement.least()),
                            ratio(time, lock), ratio(time, peer));
            title.clear();
        }
    }

    out << '\n' << figure_row("other figures", "who", "value", "");
    for (const FIGURE& figure : results.figures)
        out << figure_row(figure.title, figure.who, short_number(figure.value), figure.unit);

    out << '\n' << goal_row("goal", "at most", "medians", "least", "", "verdict");
    for (const VERDICT& verdict : verdicts(results))
    {
        const char* const word = !verdict.measured        ? "not measured"
                                 : verdict.met()          ? "met"
                                 : verdict.other_form_met ? "other form met"
                                                          : "MISSED";
        out << goal_row(verdict.goal, short_number(verdict.limit), number_or_dash(verdict.measured),
                        number_or_dash(verdict.least), verdict.unit, word);
    }
}

void print_json(std::ostream& out, const RESULTS& results)
{
    std::vector<std::pair<const WORK*, const MEASUREMENT*>> rows;
    for (const WORK& work : results.works)
    {
        for (const MEASUREMENT& measurement : work.measurements)
            rows.emplace_back(&work, &measurement);
    }
    const MEASUREMENT* const lock = results.measurement(work_lock, standard_library);
    const auto in_units_of = [](const MEASUREMENT* reference, const MEASUREMENT& measurement)
    { return reference == nullptr ? std::nullopt : std::optional(measurement.median() / reference->median()); };

    out << "{\n  ";
    print_json_list(out, "rows", rows,
                    [&](const auto& row)
                    {
                        const auto& [work, measurement] = row;
                        out << "\"work\": " << quoted(work->title) << ", \"who\": " << quoted(measurement->who)
                            << ", \"median_ns\": " << json_number(measurement->median())
                            << ", \"least_ns\": " << json_number(measurement->least())
                            << ", \"locks\": " << json_number(in_units_of(lock, *measurement))
                            << ", \"fastest_peers\": " << json_number(in_units_of(work->fastest_peer(), *measurement));
                    });
    out << ",\n  ";
    print_json_list(out, "figures", results.figures,
                    [&](const FIGURE& figure)
                    {
                        out << "\"title\": " << quoted(figure.title) << ", \"who\": " << quoted(figure.who)
                            << ", \"value\": " << json_number(figure.value) << ", \"unit\": " << quoted(figure.unit);
                    });
    out << ",\n  ";
    print_json_list(out, "goals", verdicts(results),
                    [&](const VERDICT& verdict)
                    {
                        out << "\"goal\": " << quoted(verdict.goal) << ", \"limit\": " << json_number(verdict.limit)
                            << ", \"measured\": " << json_number(verdict.measured)
                            << ", \"of_least_times\": " << json_number(verdict.least)
                            << ", \"unit\": " << quoted(verdict.unit)
                            << ", \"met\": " << (verdict.met() || verdict.other_form_met ? "true" : "false");
                    });
    out << "\n}\n";
}
