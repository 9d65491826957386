// Edits of the preference file in this process: what fails while it is read or written, and other programs that save it
// meanwhile.
#include "tools/velmar-cfg/preferences/preference_edit.h"

#include <atomic>
#include <csignal>
#include <cstdlib>
#include <linux/fs.h>
#include <random>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <utility>

#include "tests/support/failing_files.h"
#include "tests/velmar_cfg/failing_calls.h"
#include "tests/velmar_cfg/replaced_file_test.h"
#include "tools/velmar-cfg/documents/take_snapshot.h"
#include "tools/velmar-cfg/preferences/preferences.h"

using namespace zon_cfg;

namespace
{
using std::chrono::milliseconds;
using testing::ElementsAre;
using testing::HasSubstr;

class PREFERENCE_EDIT : public ISOLATED_TEST
{
protected:
    PREFERENCE_EDIT()
    {
        write_file(file, before);
        make_old(file);
        environment.set("VELMAR2_INI", "user");
    }

    ~PREFERENCE_EDIT() override
    {
        cfg_close_user_ini_file();
    }

    static EDITED_FILE set(CFG_USER_INI_ENUMS number, const std::string& value, milliseconds patience = milliseconds(0))
    {
        return change_preferences({{number, value}}, {}, patience);
    }

    static EDITED_FILE try_to_set(CFG_USER_INI_ENUMS number, const std::string& value)
    {
        return try_preference_changes({{number, value}}, {}, milliseconds(0));
    }

    static constexpr const char* file = "user/velmar2.ini";
    static constexpr const char* before = "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\n";
    static constexpr const char* after = "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\n";
};

TEST_F(PREFERENCE_EDIT, changes_the_file_and_nothing_else)
{
    const EDITED_FILE edited = set(HDL_PREFERENCE, "KHDL");
    EXPECT_TRUE(edited.changed());
    EXPECT_EQ(edited.before, before);
    EXPECT_EQ(edited.plan.after, after);
    EXPECT_EQ(read_file(file), after);
    EXPECT_THAT(names_in("user"), ElementsAre("velmar2.ini"));
}

TEST_F(PREFERENCE_EDIT, a_trial_writes_nothing_and_locks_nothing)
{
    const FILE_FAULT writes(FILE_CALL::WRITE, 1);
    const CALL_WATCH locks(SYSTEM_CALL::FLOCK, EIO);
    const CALL_WATCH renames(SYSTEM_CALL::RENAMEAT2, EIO);
    // Every file that is opened is opened to be read, or does not exist.
    std::map<int, std::function<int()>> looks;
    int made = 0;
    bool looking = false; // which opens the directory
    for (int call = 1; call < 100; ++call)
        looks[call] = [&made, &looking]
        {
            if (!std::exchange(looking, true))
            {
                made = std::max(made, static_cast<int>(names_in("user").size()));
                looking = false;
            }
            return 0;
        };
    const CALL_WATCH opens(SYSTEM_CALL::OPENAT, looks);
    EXPECT_EQ(try_to_set(HDL_PREFERENCE, "KHDL").plan.after, after);
    EXPECT_FALSE(writes.was_reached());
    EXPECT_EQ(locks.calls_seen() + renames.calls_seen(), 0);
    EXPECT_EQ(made, 1);
    EXPECT_EQ(read_file(file), before);
}

TEST_F(PREFERENCE_EDIT, reads_the_file_once)
{
    for (const bool trial : {true, false})
    {
        // One read of the bytes, one that finds their end; and the same once more before the file is replaced, by the
        // same descriptor.
        const FILE_FAULT reads(FILE_CALL::READ, trial ? 3 : 5);
        if (trial)
            try_to_set(HDL_PREFERENCE, "KHDL");
        else
            set(HDL_PREFERENCE, "KHDL");
        EXPECT_FALSE(reads.was_reached()) << trial;
    }
}

// A file that a failing device cuts off is not taken for a shorter one.
TEST_F(PREFERENCE_EDIT, a_read_error_leaves_the_file_and_is_told)
{
    std::string large = before;
    for (int i = 0; i < 3000; ++i)
        large += "KEY" + std::to_string(i) + " = value\n";
    write_file(file, large);
    make_old(file);
    for (const bool trial : {true, false})
    {
        for (long nth = 1; nth <= (trial ? 2 : 4); ++nth)
        {
            const FILE_FAULT fault(FILE_CALL::READ, nth);
            const std::string complaint = complaint_of(
                [trial]
                {
                    if (trial)
                        try_to_set(HDL_PREFERENCE, "KHDL");
                    else
                        set(HDL_PREFERENCE, "KHDL");
                });
            EXPECT_TRUE(fault.was_reached());
            EXPECT_THAT(complaint, testing::StartsWith("3 ")) << nth;
            EXPECT_THAT(complaint, HasSubstr("velmar2.ini: Input/output error"));
        }
    }
    EXPECT_TRUE(read_file(file) == large);
    EXPECT_THAT(names_in("user"), ElementsAre("velmar2.ini"));
}

TEST_F(PREFERENCE_EDIT, a_snapshot_sees_read_errors_too)
{
    write_file("velmar.ini", "a = 1\n");
    for (long nth = 1; nth <= 4; ++nth) // two of each file
    {
        const FILE_FAULT fault(FILE_CALL::READ, nth);
        INPUT_FILES files;
        take_snapshot({}, files);
        EXPECT_THAT(files.problems(), ElementsAre(HasSubstr("Input/output error"))) << nth;
        EXPECT_TRUE(fault.was_reached());
    }
    INPUT_FILES files;
    for (const SNAPSHOT_FILE& row : take_snapshot({}, files).files)
        EXPECT_TRUE(row.role != preference_file_role || row.size == std::string(before).size());
}

// Whatever fails, the file is as it was, nothing is left beside it, and no message says otherwise.
TEST_F(PREFERENCE_EDIT, every_failing_call_leaves_the_old_file_or_says_that_it_was_changed)
{
    int failures = 0;
    for (const FILE_CALL call : {FILE_CALL::OPEN, FILE_CALL::READ, FILE_CALL::WRITE, FILE_CALL::SIZE})
    {
        for (long nth = 1;; ++nth)
        {
            write_file(file, before);
            make_old(file);
            FILE_FAULT fault(call, nth);
            const std::string complaint = complaint_of([] { set(HDL_PREFERENCE, "KHDL"); });
            if (!fault.was_reached())
                break;
            failures += complaint.empty() ? 0 : 1;
            ASSERT_EQ(read_file(file), complaint.empty() ? after : before) << complaint;
            ASSERT_THAT(names_in("user"), ElementsAre("velmar2.ini")) << complaint;
            ASSERT_LT(nth, 100);
        }
    }
    for (const SYSTEM_CALL call :
         {SYSTEM_CALL::FLOCK, SYSTEM_CALL::RENAMEAT2, SYSTEM_CALL::FSYNC, SYSTEM_CALL::FSTATAT, SYSTEM_CALL::OPENAT})
    {
        for (int nth = 1;; ++nth)
        {
            write_file(file, before);
            make_old(file);
            const CALL_WATCH watch(call, {{nth, [] { return EIO; }}});
            const std::string complaint = complaint_of([] { set(HDL_PREFERENCE, "KHDL"); });
            if (watch.calls_seen() < nth)
                break;
            failures += complaint.empty() ? 0 : 1;
            const bool changed = complaint.empty() || complaint.find(": was changed") != std::string::npos;
            ASSERT_EQ(read_file(file), changed ? after : before) << complaint;
            ASSERT_TRUE(!changed || complaint.find("nothing was changed") == std::string::npos) << complaint;
            // The lock's file may be left where what tells it is one's own fails.
            ASSERT_LE(names_in("user").size(), 1U) << complaint << " " << static_cast<int>(call) << " " << nth;
            ASSERT_LT(nth, 100);
        }
    }
    EXPECT_GT(failures, 10);
}

// --- Permissions ---

TEST_F(PREFERENCE_EDIT, hard_links_and_read_only_files_need_leave)
{
    std::filesystem::create_hard_link(file, "user/other");
    EDITED_FILE edited = set(HDL_PREFERENCE, "KHDL");
    EXPECT_THAT(edited.refusal,
                testing::EndsWith("velmar2.ini: the file has 2 names (hard links), and the others would "
                                  "keep the old content; --break-hard-links changes the file anyway"));
    EXPECT_FALSE(edited.changed());
    EXPECT_EQ(read_file(file), before);
    EXPECT_EQ(try_to_set(HDL_PREFERENCE, "KHDL").refusal, edited.refusal);
    EDIT_PERMISSIONS permissions;
    permissions.break_hard_links = true;
    EXPECT_TRUE(change_preferences({{HDL_PREFERENCE, "KHDL"}}, permissions, milliseconds(0)).changed());
    EXPECT_EQ(read_file(file), after);
    EXPECT_EQ(read_file("user/other"), before);

    ASSERT_EQ(chmod(file, 0444), 0);
    edited = set(HDL_PREFERENCE, "VHDL");
    EXPECT_THAT(edited.refusal,
                testing::EndsWith("velmar2.ini: the file is read-only; --replace-read-only changes it anyway"));
    EXPECT_EQ(read_file(file), after);
    // What is there already needs no leave.
    EXPECT_EQ(set(HDL_PREFERENCE, "KHDL").refusal, "");
    permissions = {};
    permissions.replace_read_only = true;
    EXPECT_TRUE(change_preferences({{HDL_PREFERENCE, "VHDL"}}, permissions, milliseconds(0)).changed());
    EXPECT_EQ(read_file(file), before);
    struct stat found;
    ASSERT_EQ(stat(file, &found), 0);
    EXPECT_EQ(found.st_mode & 07777U, 0444U);
}

// What no option gets round is not said to be only a matter of the mode, and a dry run sees it too.
TEST_F(PREFERENCE_EDIT, a_file_that_the_system_protects_is_refused)
{
    const int opened = open(file, O_RDONLY | O_CLOEXEC);
    int flags = 0;
    int immutable = FS_IMMUTABLE_FL;
    if (ioctl(opened, FS_IOC_GETFLAGS, &flags) != 0 || ioctl(opened, FS_IOC_SETFLAGS, &immutable) != 0)
        GTEST_SKIP() << "no such protection here";
    EDIT_PERMISSIONS permissions;
    permissions.replace_read_only = true;
    for (const EDIT_PERMISSIONS& given : {EDIT_PERMISSIONS(), permissions})
    {
        EXPECT_THAT(change_preferences({{HDL_PREFERENCE, "KHDL"}}, given, milliseconds(0)).refusal,
                    testing::EndsWith("velmar2.ini: Operation not permitted; the file cannot be changed where it is"));
        EXPECT_NE(try_preference_changes({{HDL_PREFERENCE, "KHDL"}}, given, milliseconds(0)).refusal, "");
    }
    EXPECT_EQ(ioctl(opened, FS_IOC_SETFLAGS, &flags), 0);
    close(opened);
    EXPECT_TRUE(set(HDL_PREFERENCE, "KHDL").changed());
}

TEST_F(PREFERENCE_EDIT, lost_values_need_leave)
{
    std::string lines = "k0 = v\n";
    for (int i = 1; i < 8; ++i)
        lines += "# note\nk" + std::to_string(i) + " = v\n";
    write_file(file, lines);
    EXPECT_THAT(
        set(HDL_PREFERENCE, "KHDL").refusal,
        testing::EndsWith("velmar2.ini: a save would lose or change the value in lines 1, 3, 5, 7, 9 and 3 more; "
                          "mend the file (see velmar-cfg prefs lint), or --allow-loss changes it anyway"));
    EXPECT_EQ(read_file(file), lines);
    write_file(file, "k = v\n# note\n");
    EXPECT_THAT(set(HDL_PREFERENCE, "KHDL").refusal, HasSubstr("the value in line 1; mend"));
    EDIT_PERMISSIONS permissions;
    permissions.lose_values = true;
    EXPECT_TRUE(change_preferences({{HDL_PREFERENCE, "KHDL"}}, permissions, milliseconds(0)).changed());
    EXPECT_EQ(read_file(file), after);
}

// --- Programs that save the file meanwhile ---

TEST_F(PREFERENCE_EDIT, is_made_anew_when_another_program_was_faster)
{
    const CALL_WATCH lease(SYSTEM_CALL::SETLEASE, EINVAL);
    const std::string saved = "\n[General 23.4_pro]\nHDL_PREFERENCE = VHDL\nUSER_LIBRARIES = /x\n";
    // Renames that leave others alone make the lock; the second one is the exchange.
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, {{2, [&]
                                                     {
                                                         write_file(file, saved);
                                                         return 0;
                                                     }}});
    EXPECT_TRUE(set(HDL_PREFERENCE, "KHDL", milliseconds(10'000)).changed());
    EXPECT_EQ(read_file(file), "\n[General 23.4_pro]\nHDL_PREFERENCE = KHDL\nUSER_LIBRARIES = /x\n");
    EXPECT_EQ(watch.calls_seen(), 4); // the lock, there and back, there
    EXPECT_THAT(names_in("user"), ElementsAre("velmar2.ini"));
}

TEST_F(PREFERENCE_EDIT, is_given_up_when_another_program_is_always_faster)
{
    const CALL_WATCH lease(SYSTEM_CALL::SETLEASE, EINVAL);
    std::map<int, std::function<int()>> saves;
    for (int call = 2; call < 100; ++call)
        saves[call] = []
        {
            write_file(file, std::string(before) + "# " + std::to_string(time(nullptr)) + "\n");
            return 0;
        };
    const CALL_WATCH watch(SYSTEM_CALL::RENAMEAT2, saves);
    EXPECT_THAT(complaint_of([] { set(HDL_PREFERENCE, "KHDL"); }),
                testing::EndsWith("velmar2.ini: another program changed it meanwhile; nothing was changed, run the "
                                  "command again"));
    EXPECT_THAT(read_file(file), testing::StartsWith(before));
    EXPECT_THAT(names_in("user"), ElementsAre("velmar2.ini"));
}

TEST_F(PREFERENCE_EDIT, is_given_up_when_another_program_keeps_the_file_open)
{
    const int writer = open(file, O_RDWR | O_CLOEXEC);
    EXPECT_THAT(complaint_of([] { set(HDL_PREFERENCE, "KHDL"); }),
                testing::EndsWith("velmar2.ini: another program has it open for writing; nothing was changed, run the "
                                  "command again when that program has closed it"));
    EXPECT_EQ(read_file(file), before);
    close(writer);
    EXPECT_TRUE(set(HDL_PREFERENCE, "KHDL").changed());
}

// A host that loads, sets a key and saves, over and over, through the library, and watches over its other keys.
class BESIDE_A_HOST : public PREFERENCE_EDIT
{
protected:
    static constexpr int keys = 120;

    struct SHARED
    {
        std::atomic<int> saves = 0;
        std::atomic<int> lost = 0; // keys of the host that a load did not find
        std::atomic<bool> stop = false;
    };

    BESIDE_A_HOST()
        : shared(new (mmap(nullptr, sizeof(SHARED), PROT_READ | PROT_WRITE, MAP_SHARED | MAP_ANONYMOUS, -1, 0)) SHARED)
    {
        std::string bytes = "\n[Host]\n";
        for (int i = 0; i < keys; ++i)
            bytes += "K" + std::to_string(1000 + i) + " = " + std::to_string(i) + "\n";
        write_file(file, bytes);
    }

    ~BESIDE_A_HOST() override
    {
        stop();
        munmap(shared, sizeof(SHARED));
    }

    void start(milliseconds between_saves)
    {
        host = fork();
        if (host == 0)
            be_host(between_saves);
    }

    [[noreturn]] void be_host(milliseconds between_saves) const
    {
        while (!shared->stop && getppid() != 1)
        {
            cfg_set_user_ini_value(NUM_PARALLEL_PROCESSORS, std::to_string(shared->saves % 8 + 1)); // loads
            int found = 0;
            for (const auto& [key, record] : *cfg_user_ini_records)
                found += record->section == "Host" ? 1 : 0;
            if (found < keys)
                shared->lost += keys - found;
            cfg_write_and_close_user_ini_file();
            ++shared->saves;
            if (between_saves.count() > 0)
                usleep(static_cast<useconds_t>(between_saves.count()) * 1000);
        }
        _exit(0);
    }

    void stop()
    {
        if (host <= 0)
            return;
        shared->stop = true;
        int status = 0;
        EXPECT_EQ(waitpid(host, &status, 0), host);
        EXPECT_EQ(status, 0);
        host = -1;
    }

    // Edits until the host has saved so often. Returns how many edits were made.
    int edit_until(int saves) const
    {
        int made = 0;
        for (int value = 0; shared->saves < saves; ++value)
        {
            try
            {
                made += set(CLOUD_SERVER, "host" + std::to_string(value)).changed() ? 1 : 0;
            }
            catch (const TOOL_ERROR& error)
            {
                EXPECT_EQ(error.exit_code, EXIT_CODE::NOT_WRITTEN) << error.what();
            }
        }
        return made;
    }

    // Counts the edits that are in the file once the host has saved again.
    int arrived_of(int edits, milliseconds between_saves, milliseconds patience) const
    {
        std::mt19937 random(20260101);
        int arrived = 0;
        for (int i = 0; i < edits; ++i)
        {
            const std::string value = "edit" + std::to_string(i);
            usleep(std::uniform_int_distribution<useconds_t>(0, static_cast<useconds_t>(between_saves.count()) *
                                                                    1000)(random));
            try
            {
                set(CLOUD_SERVER, value, patience);
            }
            catch (const TOOL_ERROR&)
            {
                continue;
            }
            const int saves = shared->saves;
            while (shared->saves == saves)
                usleep(1000);
            INPUT_FILES files;
            SECRETS secrets;
            arrived += load_preferences(files, secrets).look_up(CLOUD_SERVER).value == value ? 1 : 0;
        }
        return arrived;
    }

    SHARED* const shared;
    pid_t host = -1;
};

// The long form takes two minutes; scripts/prove sets the variable.
bool is_long()
{
    return std::getenv("ZON_LONG_TESTS") != nullptr;
}

TEST_F(BESIDE_A_HOST, that_saves_each_20_milliseconds_no_key_is_lost)
{
    start(milliseconds(20));
    edit_until(is_long() ? 1000 : 50);
    stop();
    EXPECT_EQ(shared->lost, 0);
}

TEST_F(BESIDE_A_HOST, that_saves_all_the_time_no_key_is_lost)
{
    start(milliseconds(0));
    edit_until(is_long() ? 10'000 : 300);
    stop();
    EXPECT_EQ(shared->lost, 0);
}

// Edits and saves meet: there is a time in which the last save is not just made and the next one may begin.
TEST_F(BESIDE_A_HOST, that_saves_each_100_milliseconds_no_key_is_lost)
{
    start(milliseconds(100));
    const int made = edit_until(is_long() ? 1000 : 30);
    stop();
    EXPECT_EQ(shared->lost, 0);
    EXPECT_TRUE(made > 0 || !is_long()); // a busy machine may leave no time between two saves
}

TEST_F(BESIDE_A_HOST, that_saves_each_half_second_edits_arrive)
{
    const int edits = is_long() ? 100 : 6;
    start(milliseconds(500));
    const int arrived = arrived_of(edits, milliseconds(500), milliseconds(5000));
    stop();
    EXPECT_GE(arrived, is_long() ? 95 : 3);
    EXPECT_EQ(shared->lost, 0);
}
}
