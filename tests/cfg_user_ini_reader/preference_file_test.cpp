#include "cfg_ini/cfg_user_ini_reader/preference_file.h"

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>
#include <vector>

#include "tests/cfg_user_ini_reader/preference_test.h"

namespace
{
using namespace std::string_literals;
using PREFERENCE_FILE_TEST = PREFERENCE_TEST;

// --- Location ---

TEST_F(PREFERENCE_FILE_TEST, stands_in_the_profile_directory)
{
    EXPECT_EQ(cfg_generate_user_ini_file_path(), temporary.path("home/velmar2.ini"));
    fake::gen::set_user_profile_directory("/home/someone/");
    EXPECT_EQ(cfg_generate_user_ini_file_path(), "/home/someone/velmar2.ini");
}

TEST_F(PREFERENCE_FILE_TEST, stands_in_the_directory_that_the_variable_names)
{
    environment.set("VELMAR2_INI", temporary.path());
    EXPECT_EQ(cfg_generate_user_ini_file_path(), temporary.path("velmar2.ini"));
    environment.set("VELMAR2_INI", temporary.path() + "/");
    EXPECT_EQ(cfg_generate_user_ini_file_path(), temporary.path("velmar2.ini"));
    EXPECT_EQ(fake::gen::user_profile_directory_calls(), 0);
}

TEST_F(PREFERENCE_FILE_TEST, variable_may_name_a_link_to_a_directory)
{
    std::filesystem::create_directory_symlink(temporary.path("home"), temporary.path("link"));
    environment.set("VELMAR2_INI", temporary.path("link"));
    EXPECT_EQ(cfg_generate_user_ini_file_path(), temporary.path("link/velmar2.ini"));
}

TEST_F(PREFERENCE_FILE_TEST, variable_that_names_a_file_is_ignored)
{
    write_file(temporary.path("a_file"), "");
    environment.set("VELMAR2_INI", temporary.path("a_file"));
    EXPECT_EQ(cfg_generate_user_ini_file_path(), file_path());
    EXPECT_EQ(fake::fio::status_asked(), std::vector<std::string>{temporary.path("a_file")});
}

TEST_F(PREFERENCE_FILE_TEST, variable_that_names_nothing_is_ignored)
{
    for (const std::string& value : {temporary.path("missing"), std::string()})
    {
        environment.set("VELMAR2_INI", value);
        EXPECT_EQ(cfg_generate_user_ini_file_path(), file_path()) << value;
    }
}

TEST_F(PREFERENCE_FILE_TEST, directory_is_told_by_one_bit_that_sockets_share)
{
    struct sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    std::strcpy(address.sun_path, "socket"); // in the current directory: there is no room for long paths
    const int socket_handle = socket(AF_UNIX, SOCK_STREAM, 0);
    ASSERT_EQ(bind(socket_handle, reinterpret_cast<const struct sockaddr*>(&address), sizeof address), 0);
    const std::string path = temporary.path("cwd/socket");
    environment.set("VELMAR2_INI", path);
    EXPECT_EQ(cfg_generate_user_ini_file_path(), path + "/velmar2.ini");
    close(socket_handle);
}

// --- Old names ---

TEST_F(PREFERENCE_FILE_TEST, old_names_are_converted_in_any_letter_case)
{
    EXPECT_EQ(cfg_convert_from_old_to_new("Generate HTML report file"), "GENERATE_HTML_REPORT_FILES");
    EXPECT_EQ(cfg_convert_from_old_to_new("gENERATE html REPORT FILE"), "GENERATE_HTML_REPORT_FILES");
    EXPECT_EQ(cfg_convert_from_old_to_new("GENERATE_HTML_REPORT_FILE"), "GENERATE_HTML_REPORT_FILES");
    EXPECT_EQ(cfg_convert_from_old_to_new("USER_LIBRARIES"), "USER_LIBRARIES");
    EXPECT_EQ(cfg_convert_from_old_to_new("Auto Recompile"), "AUTO_RECOMPILE_BEFORE_SIM"); // the last of the table
    EXPECT_EQ(cfg_convert_from_old_to_new(""), "");
    EXPECT_EQ(cfg_convert_from_old_to_new("anything else"), "anything else");
}

// --- Sections ---

TEST_F(PREFERENCE_FILE_TEST, section_tells_whether_a_value_is_allowed)
{
    EXPECT_EQ(cfg_get_section_for_name("SHOW_MESSAGE_ID", "1", false), "");
    EXPECT_EQ(cfg_get_section_for_name("SHOW_MESSAGE_ID", "1", true), "");
    EXPECT_EQ(cfg_get_section_for_name("SHOW_MESSAGE_ID", "ON", false), "Messages");
    EXPECT_EQ(cfg_get_section_for_name("SHOW_MESSAGE_ID", nullptr, false), "Messages");
    EXPECT_EQ(cfg_get_section_for_name("show_Message_id", "Off", false), "Messages");
    EXPECT_EQ(cfg_get_section_for_name("SHOW_MESSAGE_ID", "", false), "");
    EXPECT_EQ(cfg_get_section_for_name("USER_LIBRARIES", "", false), "General");
    EXPECT_EQ(cfg_get_section_for_name("USER_LIBRARIES", "anything", false), "General");
}

TEST_F(PREFERENCE_FILE_TEST, versioned_section_names_the_running_release)
{
    EXPECT_EQ(cfg_get_section_for_name("USER_LIBRARIES", nullptr, true), "General 23.4_pro");
    EXPECT_EQ(cfg_get_section_for_name("WEB_BROWSER", nullptr, true), "Internet Connectivity 23.4_pro");
    fake::ver::set_version("");
    EXPECT_EQ(cfg_get_section_for_name("USER_LIBRARIES", nullptr, true), "General _pro");
    fake::ver::set_version(std::string(200, '9'));
    EXPECT_EQ(cfg_get_section_for_name("USER_LIBRARIES", nullptr, true), "General " + std::string(200, '9') + "_pro");
}

TEST_F(PREFERENCE_FILE_TEST, unknown_name_has_no_section)
{
    for (const char* const name : {"", "NO_SUCH_KEY", "Post warning messages", "USER_LIBRARIES ", "General"})
    {
        EXPECT_EQ(cfg_get_section_for_name(name, nullptr, false), "") << name;
        EXPECT_EQ(cfg_get_section_for_name(name, nullptr, true), "") << name;
    }
    EXPECT_EQ(fake::ver::version_calls(), 0);
}

TEST_F(PREFERENCE_FILE_TEST, null_name_is_reported_and_has_no_section)
{
    EXPECT_EQ(cfg_get_section_for_name(nullptr, "on", true), "");
    const std::vector<fake::err::REPORT> reports = fake::err::reports();
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].condition, "name != NULL");
    EXPECT_EQ(reports[0].module, "CFG_INI");
    EXPECT_EQ(reports[0].source_file, "cfg_ini/cfg_user_ini_reader");
    EXPECT_GT(reports[0].line, 0);
}

// --- Reading ---

TEST_F(PREFERENCE_FILE_TEST, key_lines_become_records_of_their_section)
{
    write_preferences("\n"
                      "[General 23.4_pro]\n"
                      "USER_LIBRARIES = /opt/lib\n"
                      "[Messages 23.3_pro]\n"
                      "SHOW_MESSAGE_ID = off\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"General 23.4_pro", "USER_LIBRARIES", "/opt/lib"},
                                  {"Messages 23.3_pro", "SHOW_MESSAGE_ID", "off"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"General 23.4_pro", "Messages 23.3_pro"}));
}

TEST_F(PREFERENCE_FILE_TEST, record_keys_are_section_and_name_with_nothing_between)
{
    write_preferences("[General 23.4_pro]\nUSER_LIBRARIES = /opt/lib\n");
    cfg_read_user_ini_file();
    ASSERT_EQ(cfg_user_ini_records->size(), 1U);
    EXPECT_EQ(cfg_user_ini_records->begin()->first, "General 23.4_proUSER_LIBRARIES");
    EXPECT_FALSE(cfg_user_ini_records->begin()->second->pending_write);
    EXPECT_EQ(cfg_user_ini_sections_read->begin()->second, nullptr);
}

TEST_F(PREFERENCE_FILE_TEST, header_without_closing_bracket_leaves_the_section)
{
    write_preferences("[General 23.4_pro]\n[Messages 23.4_pro\nHDL_PREFERENCE = VHDL\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"General 23.4_pro", "HDL_PREFERENCE", "VHDL"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"General 23.4_pro"}));
}

TEST_F(PREFERENCE_FILE_TEST, blanks_and_quotes_around_a_value_are_removed)
{
    write_preferences("[General 23.4_pro]\n  USER_LIBRARIES  =  \"  /opt/lib  \"  \n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"General 23.4_pro", "USER_LIBRARIES", "/opt/lib"}}));
}

TEST_F(PREFERENCE_FILE_TEST, two_quotes_alone_are_kept)
{
    write_preferences("[General 23.4_pro]\nUSER_LIBRARIES = \"\"\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"General 23.4_pro", "USER_LIBRARIES", "\"\""}}));
}

TEST_F(PREFERENCE_FILE_TEST, value_in_brackets_is_read_as_a_header)
{
    write_preferences("[Internet Connectivity 23.4_pro]\nPROXY_SETTINGS = [host]\nPROXY_USER1 = me\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"host", "PROXY_USER1", "me"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"Internet Connectivity 23.4_pro", "host"}));
}

TEST_F(PREFERENCE_FILE_TEST, key_lines_before_the_first_header_and_short_lines_are_ignored)
{
    write_preferences("USER_LIBRARIES = /early\n[A]\nb=\n=c\nx\n\nb=c\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "b", "c"}}));
}

TEST_F(PREFERENCE_FILE_TEST, empty_header_ends_the_section_and_is_entered)
{
    write_preferences("[A]\nk1=1\n[] \nk2=2\n[B]\nk3=3\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k1", "1"}, {"B", "k3", "3"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"", "A", "B"}));
}

TEST_F(PREFERENCE_FILE_TEST, header_of_two_brackets_is_too_short_to_end_a_section)
{
    write_preferences("[A]\n[]\nk1=1\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k1", "1"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"A"}));
}

TEST_F(PREFERENCE_FILE_TEST, old_label_is_stored_under_the_current_name)
{
    write_preferences("[Messages 23.4_pro]\nPost warning messages = on\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"Messages 23.4_pro", "DISPLAY_WARNING_MESSAGES", "on"}}));
    EXPECT_EQ(cfg_user_ini_records->begin()->first, "Messages 23.4_proDISPLAY_WARNING_MESSAGES");
}

TEST_F(PREFERENCE_FILE_TEST, first_of_two_lines_with_the_same_key_is_kept)
{
    write_preferences("[A]\nk = first\nk = second\n[B]\nk = b\n[A]\nk = third\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k", "first"}, {"B", "k", "b"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"A", "B"}));
}

TEST_F(PREFERENCE_FILE_TEST, old_and_current_name_are_the_same_key)
{
    write_preferences("[Messages]\nPost warning messages = old\nDISPLAY_WARNING_MESSAGES = new\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"Messages", "DISPLAY_WARNING_MESSAGES", "old"}}));
}

TEST_F(PREFERENCE_FILE_TEST, first_of_two_pairs_that_share_a_map_key_is_kept)
{
    write_preferences("[AB]\nC = first\n[A]\nBC = second\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"AB", "C", "first"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"A", "AB"}));
}

TEST_F(PREFERENCE_FILE_TEST, letter_case_of_headers_and_keys_makes_records_of_their_own)
{
    write_preferences("[A]\nk=1\nK=2\n[a]\nk=3\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "K", "2"}, {"A", "k", "1"}, {"a", "k", "3"}}));
}

TEST_F(PREFERENCE_FILE_TEST, unknown_keys_and_sections_and_empty_names_are_kept)
{
    write_preferences("[Of another program]\nits key = its value\n = value\n# not a comment = 1\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"Of another program", "", "value"},
                                  {"Of another program", "# not a comment", "1"},
                                  {"Of another program", "its key", "its value"}}));
}

TEST_F(PREFERENCE_FILE_TEST, carriage_returns_are_trimmed_from_keys_and_left_behind_headers)
{
    write_preferences("[A]\r\nk=1\r\nx=\r\n\r\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k", "1"}, {"A", "x", ""}})); // "x=\r" is three characters long
}

TEST_F(PREFERENCE_FILE_TEST, lines_end_at_their_first_nul)
{
    write_preferences("[A]\nk=1\0 [B]\nl=\0[C]\nm=2\n"s);
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k", "1"}, {"A", "m", "2"}}));
    EXPECT_EQ(sections_read(), (SECTIONS{"A"}));
}

TEST_F(PREFERENCE_FILE_TEST, last_line_needs_no_line_feed)
{
    write_preferences("[A]\nk=1");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k", "1"}}));
}

TEST_F(PREFERENCE_FILE_TEST, long_lines_are_read_whole)
{
    const std::string value(100000, 'v');
    write_preferences("[A]\nk=" + value + "\n[" + value + "]\n" + value + "=1\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k", value}, {value, value, "1"}}));
}

TEST_F(PREFERENCE_FILE_TEST, bytes_are_taken_as_they_are)
{
    write_preferences("\xef\xbb\xbf[A]\nk=\xff\x80\n\xa0k=\xc3\xa9\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), (RECORDS{{"A", "k", "\xff\x80"}, {"A", "\xa0k", "\xc3\xa9"}}));
}

TEST_F(PREFERENCE_FILE_TEST, empty_file_gives_empty_maps)
{
    write_preferences("");
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), RECORDS{});
    EXPECT_EQ(sections_read(), SECTIONS{});
}

TEST_F(PREFERENCE_FILE_TEST, missing_file_gives_empty_maps_and_ends_the_reading)
{
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), RECORDS{});
    EXPECT_EQ(sections_read(), SECTIONS{});
    EXPECT_EQ(fake::fio::asked(), std::vector<std::string>{file_path()});
    EXPECT_EQ(fake::ver::version_calls(), 0); // no search path is looked up
}

TEST_F(PREFERENCE_FILE_TEST, file_that_is_said_to_be_missing_is_not_opened)
{
    write_preferences("[General 23.4_pro]\nUSER_LIBRARIES = /opt/lib\n");
    fake::fio::deny_exists(1);
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), RECORDS{});
}

TEST_F(PREFERENCE_FILE_TEST, file_that_is_said_to_exist_but_does_not_open_gives_no_lines)
{
    fake::fio::force_exists(file_path(), true);
    cfg_read_user_ini_file();
    EXPECT_EQ(records(), RECORDS{});
    EXPECT_EQ(sections_read(), SECTIONS{});
    EXPECT_EQ(fake::ver::version_calls(), 2); // the search paths are looked up all the same
    EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{});
}

// --- Search paths ---

TEST_F(PREFERENCE_FILE_TEST, reading_hands_the_search_paths_on)
{
    std::vector<std::string> order;
    fake::gen::before_set_user_library_paths(1, [&] { order.emplace_back("libraries"); });
    fake::gen::before_set_user_ip_search_paths(1, [&] { order.emplace_back("ip"); });
    write_preferences("[General 23.4_pro]\nUSER_IP_SEARCH_PATHS = /ip\nUSER_LIBRARIES = /lib\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{"/lib"});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), std::vector<std::string>{"/ip"});
    EXPECT_EQ(order, (std::vector<std::string>{"libraries", "ip"}));
    EXPECT_EQ(fake::fio::asked().size(), 1U); // the lookups did not read again
}

TEST_F(PREFERENCE_FILE_TEST, reading_hands_on_search_paths_of_an_older_release)
{
    write_preferences("[General 23.2_pro]\nUSER_LIBRARIES = /old/lib\n");
    cfg_read_user_ini_file();
    // Once as the carried-over value is assigned, once at the end of the reading.
    EXPECT_EQ(fake::gen::user_library_paths(), (std::vector<std::string>{"/old/lib", "/old/lib"}));
    EXPECT_EQ(records(), (RECORDS{{"General 23.2_pro", "USER_LIBRARIES", "/old/lib"},
                                  {"General 23.4_pro", "USER_LIBRARIES", "/old/lib"}}));
}

TEST_F(PREFERENCE_FILE_TEST, reading_hands_no_empty_search_paths_on)
{
    write_preferences("[General 23.4_pro]\nUSER_LIBRARIES = \n[Messages]\nUSER_IP_SEARCH_PATHS = /elsewhere\n");
    cfg_read_user_ini_file();
    EXPECT_EQ(fake::gen::user_library_paths(), std::vector<std::string>{});
    EXPECT_EQ(fake::gen::user_ip_search_paths(), std::vector<std::string>{});
}
}
