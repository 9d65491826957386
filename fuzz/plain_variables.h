// The internal variable store written out plainly, as an ordered map and without files: what the library's store must
// hold, count, mark and answer, for comparison.
#ifndef FUZZ_PLAIN_VARIABLES_H
#define FUZZ_PLAIN_VARIABLES_H

#include <cstdint>
#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

struct PLAIN_VARIABLE
{
    std::string spelling; // of whoever created it
    std::string value;
    std::uint64_t count = 0;
    bool had_valid_read = false;
    bool external = false;
};

class PLAIN_VARIABLES
{
public:
    void store(const std::string& name, const std::string& value, bool external);

    // Each counts, or creates the variable, and marks it as the library does.
    std::optional<bool> boolean(const std::string& name);
    std::optional<int> integer(const std::string& name);
    std::optional<unsigned int> unsigned_integer(const std::string& name);
    std::optional<double> floating(const std::string& name);
    std::string text(const std::string& name);

    bool is_external(const std::string& name) const;

    std::map<std::string, std::string> used() const;
    std::map<std::string, std::string> externals() const;

    // The ranked report; reads the two variables that steer it.
    std::vector<std::pair<std::string, std::string>> most_accessed();

    // Checks the answer of the single most-accessed report, in which any of several equal ones may be named.
    void expect_single_most_accessed(std::uint64_t count, const std::string& name, const std::string& value) const;

    // Aborts unless the library's store holds exactly this.
    void expect_same_store() const;

private:
    PLAIN_VARIABLE& counted(const std::string& name);

    std::map<std::string, PLAIN_VARIABLE> variables; // by the folded name
};

#endif
