// Compares two snapshots list by list.
//
// Rows of both sides are paired by name. Two snapshots mostly have the same variables in the same order. Therefore the
// row behind the one found last is tried first, and a hash index by name is made only when that is another variable.
// Texts of which parts are masked are the same, different, or neither for sure: those rows are listed apart and are no
// differences.
//
// A run report knows less than a snapshot, and only what both sides know is compared: of its variables the values, and
// neither files nor preferences. Version 1 of run reports does not tell what is unset from what
// was set and never read, so that nothing is known of what has no value there. It has U+FFFD for bytes that are no
// UTF-8. If only one side is such a report, it is compare_variables()'s A: what finds no match in B is compared again
// with B's texts in that form.
//
// A difference is attributed to the later one of the two layers that won. That layer has changed, or one state has no
// assignment of it.
//
// Cost: O(n) expected time for n variables, O(d log d) for d differences, and memory for those, one bit a variable and
// the index. keep_what_the_run_read() searches the report for each difference: O(d r) for r rows.
#include "tools/velmar-cfg/documents/snapshot_differences.h"

#include <algorithm>
#include <fnmatch.h>
#include <map>
#include <nlohmann/json.hpp>

#include "tools/velmar-cfg/base/hash_index.h"
#include "tools/velmar-cfg/base/hidden_text.h"
#include "tools/velmar-cfg/base/text.h"
#include "tools/velmar-cfg/settings/library_rules.h"
#include "tools/velmar-cfg/settings/typed_readings.h"
#include "tools/velmar-cfg/settings/variable_name.h"

namespace
{
// The rows of both sides under each name: those of A in their order, then those that only B has.
template <typename ROW>
std::vector<std::pair<const ROW*, const ROW*>> pairs_of(const std::vector<ROW>& a, const std::vector<ROW>& b,
                                                        std::string ROW::*name)
{
    std::map<std::string, std::size_t> index_of_name;
    std::vector<std::pair<const ROW*, const ROW*>> pairs;
    for (const ROW& row : a)
    {
        index_of_name[row.*name] = pairs.size();
        pairs.emplace_back(&row, nullptr);
    }
    for (const ROW& row : b)
    {
        if (const auto found = index_of_name.find(row.*name); found != index_of_name.end())
            pairs[found->second].second = &row;
        else
            pairs.emplace_back(nullptr, &row);
    }
    return pairs;
}

template <typename ROW>
const std::string& name_of_pair(const std::pair<const ROW*, const ROW*>& rows, std::string ROW::*name)
{
    return (rows.first != nullptr ? rows.first : rows.second)->*name;
}

// Whether the rows differ; notes those of which it cannot be told.
bool is_different(const char* list, const std::string& name, SAMENESS sameness, std::vector<UNDECIDED_ROW>& undecided)
{
    if (sameness == SAMENESS::UNKNOWN)
        undecided.push_back({list, name});
    return sameness == SAMENESS::DIFFERENT;
}

SAMENESS compare_if_present(const std::optional<std::string>& a, const std::optional<std::string>& b,
                            const MARK_MAKER& mark)
{
    if (a && b)
        return compare_masked(*a, *b, mark);
    return a.has_value() == b.has_value() ? SAMENESS::SAME : SAMENESS::DIFFERENT;
}

// --- Variables ---

// Version 1 of run reports has U+FFFD for what is no UTF-8.
std::string as_in_version_1(const std::string& text)
{
    using nlohmann::ordered_json;
    return ordered_json::parse(ordered_json(text).dump(-1, ' ', false, ordered_json::error_handler_t::replace))
        .get<std::string>();
}

bool has_replaced_bytes(std::string_view text)
{
    return text.find("\xef\xbf\xbd") != std::string_view::npos;
}

// Of a value in a lossy document, and another.
SAMENESS compare_with_lossy(std::string_view lossy, std::string_view other, const MARK_MAKER& mark)
{
    const SAMENESS sameness = compare_masked(lossy, other, mark);
    return sameness == SAMENESS::DIFFERENT && has_replaced_bytes(lossy) && as_in_version_1(std::string(other)) == lossy
               ? SAMENESS::SAME
               : sameness;
}

// Whether readers read something of the texts, and all of them the same.
bool same_in_every_type(const SNAPSHOT_VARIABLE& a, const SNAPSHOT_VARIABLE& b)
{
    const TYPED_READINGS& readings = a.readings;
    return a.value != b.value && same_readings(readings, b.readings) &&
           (readings.boolean || readings.signed_integer || readings.unsigned_integer || readings.floating_is_whole);
}

SAMENESS compare_answers(const SNAPSHOT_VARIABLE& a, const SNAPSHOT_VARIABLE& b, const MARK_MAKER& mark)
{
    // A masked value has no readings.
    const bool have_readings = has_hidden_parts(a.value) == has_hidden_parts(b.value);
    if (a.external != b.external || (have_readings && !same_readings(a.readings, b.readings)))
        return SAMENESS::DIFFERENT;
    return compare_masked(a.value, b.value, mark);
}

// The highest of the layers that assign to the variable on one side only and that `counts` accepts.
template <typename COUNTS>
std::optional<LAYER_KIND> highest_on_one_side(const SNAPSHOT_VARIABLE& a, const SNAPSHOT_VARIABLE& b, COUNTS counts)
{
    std::optional<LAYER_KIND> highest;
    for (const LAYER_KIND kind : all_layer_kinds)
    {
        if (counts(kind) && a.layers.contains(kind) != b.layers.contains(kind))
            highest = kind;
    }
    return highest;
}

// The later layer wins, so that of the two that won the later one has changed, or has come or gone.
std::optional<LAYER_KIND> maker_of(const VARIABLE_DIFFERENCE& rows, const MARK_MAKER& mark)
{
    if (!rows.a || !rows.b)
        return (rows.a ? rows.a : rows.b)->location.layer;
    if (rows.a->location.layer == LAYER_KIND::UNKNOWN || rows.b->location.layer == LAYER_KIND::UNKNOWN)
        return LAYER_KIND::UNKNOWN;
    if (compare_masked(rows.a->value, rows.b->value, mark) == SAMENESS::DIFFERENT)
        return std::max(rows.a->location.layer, rows.b->location.layer);
    return highest_on_one_side(*rows.a, *rows.b, marks_external);
}

// Where the variables of a snapshot are, by name. Snapshots mostly hold the same names in the same order, so that the
// one behind the last is tried first, and an index made only where that is another.
class VARIABLES_BY_NAME
{
public:
    explicit VARIABLES_BY_NAME(const SNAPSHOT_VARIABLES& of_snapshot) : variables(of_snapshot) {}

    // The variable that a lossy document calls so.
    std::optional<std::size_t> find_of_lossy(const std::string& name)
    {
        const std::optional<std::size_t> found = find(name);
        if (found || !has_replaced_bytes(name))
            return found;
        if (!of_replaced_bytes)
            of_replaced_bytes = names_that_are_no_text();
        const auto replaced = of_replaced_bytes->find(name);
        return replaced == of_replaced_bytes->end() ? std::nullopt : std::optional(replaced->second);
    }

    std::optional<std::size_t> find(std::string_view name)
    {
        std::optional<std::size_t> found;
        if (next < variables.size() && same_name(variables.name(next), name))
            found = next;
        else
            found = find_in_index(name);
        if (found)
            next = *found + 1;
        return found;
    }

private:
    std::optional<std::size_t> find_in_index(std::string_view name)
    {
        for (; indexed < variables.size(); ++indexed)
            index.add(hash_of_name(variables.name(indexed)), static_cast<std::uint32_t>(indexed));
        return index.find(hash_of_name(name),
                          [&](std::uint32_t candidate) { return same_name(variables.name(candidate), name); });
    }

    // Those that lossy documents call otherwise; of several that they call the same, the first.
    BY_VARIABLE_NAME<std::size_t> names_that_are_no_text() const
    {
        BY_VARIABLE_NAME<std::size_t> names;
        for (std::size_t i = 0; i < variables.size(); ++i)
        {
            if (!is_utf_8(variables.name(i)))
                names.emplace(as_in_version_1(std::string(variables.name(i))), i);
        }
        return names;
    }

    const SNAPSHOT_VARIABLES& variables;
    std::optional<BY_VARIABLE_NAME<std::size_t>> of_replaced_bytes; // once asked for
    std::size_t next = 0;
    HASH_INDEX index;
    std::size_t indexed = 0;
};

// What is compared of a variable that both sides have.
SAMENESS compare_rows(const SNAPSHOT& a, const SNAPSHOT& b, const SNAPSHOT_VARIABLE& left,
                      const SNAPSHOT_VARIABLE& right, const MARK_MAKER& mark)
{
    if (a.lossy)
        return compare_with_lossy(left.value, right.value, mark);
    return a.of_run || b.of_run ? compare_masked(left.value, right.value, mark) : compare_answers(left, right, mark);
}

bool contains(const VARIABLE_NAMES& names, std::string_view name)
{
    return !names.empty() && names.contains(std::string(name));
}

// Whether a variable that is not in its list is known to be unset.
bool knows_unset(const SNAPSHOT& snapshot, std::string_view name)
{
    return snapshot.knows_unset ? !contains(snapshot.not_recorded, name) : contains(snapshot.known_unset, name);
}

// The variables that A is known to have set and B to have left unset, although A does not record to what.
template <typename ADD>
void add_not_recorded(const SNAPSHOT& a, VARIABLES_BY_NAME& of_a, const SNAPSHOT& b, VARIABLES_BY_NAME& of_b, ADD add)
{
    for (const std::string& name : a.not_recorded)
    {
        if (of_a.find(name) || of_b.find(name) || !knows_unset(b, name))
            continue;
        SNAPSHOT_VARIABLE row{name, {}, false, {LAYER_KIND::UNKNOWN, {}, 0}, {}, {}, false};
        row.layers.insert(LAYER_KIND::UNKNOWN);
        add(row);
    }
}

// A lossy document is A: what it calls a variable or a value is looked for in the other.
std::vector<VARIABLE_DIFFERENCE> compare_variables(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark,
                                                   std::vector<UNDECIDED_ROW>& undecided)
{
    std::vector<VARIABLE_DIFFERENCE> differences;
    const auto add = [&differences, &mark](std::string_view name, const std::optional<SNAPSHOT_VARIABLE>& left,
                                           const std::optional<SNAPSHOT_VARIABLE>& right)
    {
        VARIABLE_DIFFERENCE difference{std::string(name), left, right, {}};
        difference.made_by = maker_of(difference, mark);
        difference.same_in_every_type =
            difference.a && difference.b && same_in_every_type(*difference.a, *difference.b);
        differences.push_back(std::move(difference));
    };
    VARIABLES_BY_NAME of_b(b.variables);
    std::vector<bool> in_both(b.variables.size());
    for (std::size_t i = 0; i < a.variables.size(); ++i)
    {
        const SNAPSHOT_VARIABLE left = a.variables[i];
        const std::optional<std::size_t> found =
            a.lossy ? of_b.find_of_lossy(std::string(left.name)) : of_b.find(left.name);
        if (!found)
        {
            if (knows_unset(b, left.name))
                add(left.name, left, std::nullopt);
            continue;
        }
        const SNAPSHOT_VARIABLE right = b.variables[*found];
        const SAMENESS sameness = compare_rows(a, b, left, right, mark);
        if (sameness == SAMENESS::DIFFERENT)
            add(left.name, left, right);
        else if (sameness == SAMENESS::UNKNOWN)
            undecided.push_back({"variables", std::string(left.name)});
        in_both[*found] = true;
    }
    for (std::size_t i = 0; i < b.variables.size(); ++i)
    {
        if (!in_both[i] && knows_unset(a, b.variables.name(i)))
            add(b.variables.name(i), std::nullopt, b.variables[i]);
    }
    VARIABLES_BY_NAME of_a(a.variables);
    add_not_recorded(a, of_a, b, of_b, [&add](const SNAPSHOT_VARIABLE& row) { add(row.name, row, std::nullopt); });
    add_not_recorded(b, of_b, a, of_a, [&add](const SNAPSHOT_VARIABLE& row) { add(row.name, std::nullopt, row); });
    std::ranges::sort(differences, {}, &VARIABLE_DIFFERENCE::name);
    return differences;
}

// --- Preferences ---

// How much a source comes before others.
int rank_of(PREFERENCE_SOURCE source)
{
    switch (source)
    {
    case PREFERENCE_SOURCE::RUNNING_RELEASE:
        return 4;
    case PREFERENCE_SOURCE::OLDER_RELEASE:
        return 3;
    case PREFERENCE_SOURCE::UNVERSIONED_SECTION:
        return 2;
    case PREFERENCE_SOURCE::DEFAULT:
        return 1;
    case PREFERENCE_SOURCE::NOWHERE:
        break;
    }
    return 0;
}

PREFERENCE_SOURCE source_of(const SNAPSHOT_PREFERENCE* preference)
{
    return preference == nullptr ? PREFERENCE_SOURCE::NOWHERE : preference->origin.source;
}

std::vector<PREFERENCE_DIFFERENCE> compare_preferences(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark,
                                                       std::vector<UNDECIDED_ROW>& undecided)
{
    std::vector<PREFERENCE_DIFFERENCE> differences;
    for (const auto& rows : pairs_of(a.preferences, b.preferences, &SNAPSHOT_PREFERENCE::key))
    {
        const auto [left, right] = rows;
        if (!is_different("preferences", name_of_pair(rows, &SNAPSHOT_PREFERENCE::key),
                          left != nullptr && right != nullptr ? compare_masked(left->value, right->value, mark)
                                                              : SAMENESS::DIFFERENT,
                          undecided))
            continue;
        const PREFERENCE_SOURCE of_left = source_of(left);
        const PREFERENCE_SOURCE of_right = source_of(right);
        differences.push_back({name_of_pair(rows, &SNAPSHOT_PREFERENCE::key), left, right,
                               rank_of(of_left) < rank_of(of_right) ? of_right : of_left});
    }
    return differences;
}

// --- The rest ---

std::vector<INSTALLATION_DIFFERENCE> compare_installations(const SNAPSHOT& a, const SNAPSHOT& b)
{
    std::vector<INSTALLATION_DIFFERENCE> differences;
    if (a.product != b.product && !a.of_run && !b.of_run)
        differences.push_back({"product", a.product, b.product});
    if (a.release != b.release)
        differences.push_back({"release", a.release, b.release});
    return differences;
}

std::vector<ENVIRONMENT_DIFFERENCE> compare_environments(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark,
                                                         std::vector<UNDECIDED_ROW>& undecided)
{
    const auto value_of = [](const ENVIRONMENT_VARIABLE* variable)
    { return variable == nullptr ? std::nullopt : variable->value; };
    std::vector<ENVIRONMENT_DIFFERENCE> differences;
    const bool with_run = a.of_run || b.of_run;
    for (const auto& rows : pairs_of(a.environment, b.environment, &ENVIRONMENT_VARIABLE::name))
    {
        if (with_run && (rows.first == nullptr || rows.second == nullptr))
            continue;
        if (is_different("environment", name_of_pair(rows, &ENVIRONMENT_VARIABLE::name),
                         compare_if_present(value_of(rows.first), value_of(rows.second), mark), undecided))
            differences.push_back({name_of_pair(rows, &ENVIRONMENT_VARIABLE::name), rows.first, rows.second});
    }
    return differences;
}

// What tells the contents of the two files apart: the masked hash where the other side has no other.
std::optional<std::string> content_of(const SNAPSHOT_FILE* file, const SNAPSHOT_FILE* other)
{
    if (file == nullptr || !file->sha256 || file->hash_behind_mask.empty())
        return file == nullptr ? std::nullopt : file->sha256;
    const bool other_is_masked =
        other != nullptr && other->sha256 && other->hash_behind_mask.empty() && has_hidden_parts(*other->sha256);
    return other_is_masked ? file->sha256 : file->hash_behind_mask;
}

std::vector<FILE_DIFFERENCE> compare_files(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark,
                                           std::vector<UNDECIDED_ROW>& undecided)
{
    std::vector<FILE_DIFFERENCE> differences;
    for (const auto& rows : pairs_of(a.files, b.files, &SNAPSHOT_FILE::role))
    {
        const auto [left, right] = rows;
        if (is_different("files", name_of_pair(rows, &SNAPSHOT_FILE::role),
                         compare_if_present(content_of(left, right), content_of(right, left), mark), undecided))
            differences.push_back({name_of_pair(rows, &SNAPSHOT_FILE::role), rows.first, rows.second});
    }
    return differences;
}
}

SNAPSHOT_DIFFERENCES compare_snapshots(const SNAPSHOT& a, const SNAPSHOT& b, const MARK_MAKER& mark)
{
    SNAPSHOT_DIFFERENCES differences;
    std::vector<UNDECIDED_ROW>& undecided = differences.undecided;
    differences.installation = compare_installations(a, b);
    differences.environment = compare_environments(a, b, mark, undecided);
    const bool with_run = a.of_run || b.of_run;
    if (!with_run)
        differences.files = compare_files(a, b, mark, undecided);
    const bool swapped = b.lossy && !a.lossy;
    differences.variables =
        swapped ? compare_variables(b, a, mark, undecided) : compare_variables(a, b, mark, undecided);
    for (VARIABLE_DIFFERENCE& difference : differences.variables)
    {
        if (swapped)
            std::swap(difference.a, difference.b);
    }
    if (!with_run)
        differences.preferences = compare_preferences(a, b, mark, undecided);
    return differences;
}

void ignore_names(SNAPSHOT_DIFFERENCES& differences, const std::vector<std::string>& patterns)
{
    const auto ignored = [&patterns](const std::string& name)
    {
        return std::ranges::any_of(patterns, [&name](const std::string& pattern)
                                   { return fnmatch(pattern.c_str(), name.c_str(), FNM_CASEFOLD) == 0; });
    };
    std::erase_if(differences.installation, [&](const auto& row) { return ignored(row.what); });
    std::erase_if(differences.environment, [&](const auto& row) { return ignored(row.name); });
    std::erase_if(differences.files, [&](const auto& row) { return ignored(row.role); });
    std::erase_if(differences.variables, [&](const auto& row) { return ignored(row.name); });
    std::erase_if(differences.preferences, [&](const auto& row) { return ignored(row.key); });
    std::erase_if(differences.undecided, [&](const auto& row) { return ignored(row.name); });
}

void keep_sections(SNAPSHOT_DIFFERENCES& differences, const std::vector<std::string>& sections)
{
    const auto kept = [&sections](const char* section) { return std::ranges::count(sections, section) > 0; };
    if (!kept("installation"))
        differences.installation.clear();
    if (!kept("environment"))
        differences.environment.clear();
    if (!kept("files"))
        differences.files.clear();
    if (!kept("variables"))
        differences.variables.clear();
    if (!kept("preferences"))
        differences.preferences.clear();
    std::erase_if(differences.undecided, [&](const UNDECIDED_ROW& row) { return !kept(row.list); });
}

void keep_what_the_run_read(SNAPSHOT_DIFFERENCES& differences, const RUN_REPORT& run)
{
    const DEPENDENCES dependences(run);
    const auto dependence_of_run_on = [&](const std::string& name)
    { return dependences.on(run.version == 1 ? as_in_version_1(name) : name); };
    std::vector<UNDECIDED_ROW> undecided = std::move(differences.undecided);
    std::erase_if(undecided, [&](const UNDECIDED_ROW& row)
                  { return std::string_view(row.list) != "variables" || !may_depend(dependence_of_run_on(row.name)); });
    std::vector<VARIABLE_DIFFERENCE> kept;
    for (VARIABLE_DIFFERENCE& difference : differences.variables)
    {
        difference.dependence = dependence_of_run_on(difference.name);
        if (may_depend(difference.dependence))
            kept.push_back(std::move(difference));
    }
    differences = {};
    differences.variables = std::move(kept);
    differences.undecided = std::move(undecided);
}
