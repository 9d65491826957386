#include "benchmarks/goals.h"

#include <map>
#include <utility>

#include "benchmarks/peers/peers.h"
#include "benchmarks/rows.h"

namespace
{
constexpr const char* nobody = "";

// Ours in units of `reference`: the time of what `reference_who` does, or one nanosecond for nobody.
struct GOAL
{
    std::string title;
    std::string work;
    double limit;
    std::string reference_work;
    std::string reference_who;
    bool is_other_form = false; // of the goal before: one of the two is enough
};

std::vector<GOAL> goals()
{
    constexpr double noise = 1.05; // for "no slower"
    std::vector<GOAL> list;
    const auto in_locks = [&list](const std::string& work, double limit) {
        list.push_back({work + " / lock", work, limit, work_lock, standard_library});
    };
    const auto at_most = [&list](const std::string& work, double nanoseconds) {
        list.push_back({work, work, nanoseconds, "", nobody});
    };

    for (const char* const type : {"bool", "int"})
    {
        in_locks(hot_work(type, "string"), 1.35);
        list.push_back({hot_work(type, "literal") + " / string name", hot_work(type, "literal"), noise,
                        hot_work(type, "string"), ours});
        in_locks(shuffled_work(type, "string"), 2.2);
    }
    list.push_back({std::string(work_two_threads_same_name) + " / plain", work_two_threads_same_name, 0.35,
                    work_two_threads_same_name, plain});
    in_locks(work_set_existing, 2.2);
    in_locks(work_set_int, 5);
    in_locks(work_catalogue, 1.8);
    in_locks(work_catalogue_default, 2.5);
    for (const auto& [lines, limit] : {std::pair(std::size_t{10'000}, 0.5), std::pair(longest_file, 0.8)})
    {
        list.push_back({load_work(lines) + " / GLib", load_work(lines), limit, load_work(lines), glib_key_file});
        // Met by either: no loader over these structures can be faster than the bare loop.
        list.push_back({load_work(lines) + " / bare loop", load_work(lines), 1.15, bare_loop_work(lines), plain, true});
    }
    in_locks(work_preference_no_section, 5);
    for (const char* const work :
         {work_preference_present, work_preference_long, work_preference_default, work_preference_unknown})
        at_most(work, 60);
    at_most(work_assignment, 150);
    at_most(work_cached_switch, 2);
    at_most(work_mode, 3);
    return list;
}

// `time` is MEASUREMENT::median or MEASUREMENT::least.
std::optional<double> measured(const GOAL& goal, const RESULTS& results, double (MEASUREMENT::*time)() const)
{
    const MEASUREMENT* const own = results.measurement(goal.work, ours);
    if (own == nullptr)
        return std::nullopt;
    if (goal.reference_who == nobody)
        return (own->*time)();
    const MEASUREMENT* const reference = results.measurement(goal.reference_work, goal.reference_who);
    if (reference == nullptr)
        return std::nullopt;
    return (own->*time)() / (reference->*time)();
}
}

std::vector<VERDICT> verdicts(const RESULTS& results)
{
    std::vector<VERDICT> list;
    for (const GOAL& goal : goals())
    {
        list.push_back({goal.title, goal.limit, goal.reference_who == nobody ? "ns" : "x",
                        measured(goal, results, &MEASUREMENT::median), measured(goal, results, &MEASUREMENT::least)});
        if (goal.is_other_form)
        {
            VERDICT& one = *(list.end() - 2);
            VERDICT& other = list.back();
            one.other_form_met = other.met();
            other.other_form_met = one.met();
        }
    }
    const std::map<std::string, double> most_of_figures = {
        {figure_own_pages, 128}, {figure_first_lookup, 100}, {figure_longest_fork, 100}};
    for (const FIGURE& figure : results.figures)
    {
        const auto most = most_of_figures.find(figure.title);
        if (figure.who == ours && (figure.unit == "allocations" || most != most_of_figures.end()))
            list.push_back({figure.title, most == most_of_figures.end() ? 0 : most->second, figure.unit, figure.value,
                            figure.value});
    }
    return list;
}
