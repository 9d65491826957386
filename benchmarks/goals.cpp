#include "benchmarks/goals.h"

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
        in_locks(hot_work(type, "string"), 1.6);
        list.push_back({hot_work(type, "literal") + " / string name", hot_work(type, "literal"), noise,
                        hot_work(type, "string"), ours});
        in_locks(shuffled_work(type, "string"), 2.2);
    }
    list.push_back({std::string(work_two_threads_same_name) + " / plain", work_two_threads_same_name, 0.35,
                    work_two_threads_same_name, plain});
    in_locks(work_set_existing, 2.5);
    list.push_back({load_work(10'000) + " / GLib", load_work(10'000), 0.6, load_work(10'000), glib_key_file});
    list.push_back(
        {load_work(longest_file) + " / GLib", load_work(longest_file), 0.9, load_work(longest_file), glib_key_file});
    for (const char* const work : {work_preference_present, work_preference_long, work_preference_default,
                                   work_preference_no_section, work_preference_unknown})
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
        list.push_back({goal.title, goal.limit, goal.reference_who == nobody ? "ns" : "x",
                        measured(goal, results, &MEASUREMENT::median), measured(goal, results, &MEASUREMENT::least)});
    for (const FIGURE& figure : results.figures)
    {
        if (figure.unit == "allocations" && figure.who == ours)
            list.push_back({figure.title, 0, figure.unit, figure.value, figure.value});
    }
    return list;
}
