// The preference store written out plainly, with walks instead of indexes and a value instead of globals: what the
// library must answer and write, for comparison.
#ifndef TESTS_CFG_USER_INI_READER_PLAIN_PREFERENCES_H
#define TESTS_CFG_USER_INI_READER_PLAIN_PREFERENCES_H

#include <map>
#include <set>
#include <string>
#include <vector>

class PLAIN_PREFERENCES
{
public:
    // `file` holds the bytes of the preference file, read at once.
    PLAIN_PREFERENCES(const std::string& file, std::string running, std::vector<std::string> known);

    std::string value(const std::string& name, bool use_default);
    bool assign(const std::string& name, const std::string& value);

    // The bytes that a save writes.
    std::string saved() const;

private:
    struct RECORD
    {
        std::string section;
        std::string name;
        std::string value;
    };

    void read_line(const std::string& line, std::string& section);
    std::string carried_over(const std::string& section, const std::string& name);
    std::string released(const std::string& section, const std::string& version) const;

    std::string running_release;
    std::vector<std::string> known_releases;
    std::map<std::string, RECORD> records;
    std::set<std::string> sections;
};

#endif
