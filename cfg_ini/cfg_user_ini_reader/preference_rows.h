// The catalogue of user preferences, written once: every other table of the store is derived from these rows.
// Included by preference_catalogue.cpp alone.
#ifndef CFG_INI_CFG_USER_INI_READER_PREFERENCE_ROWS_H
#define CFG_INI_CFG_USER_INI_READER_PREFERENCE_ROWS_H

#include "cfg_ini/cfg_ini.h"

#include <span>

namespace zon_cfg
{
// One row for each number from 0 to CFG_USER_INI_ENUMS_END, in this order. No text is null. A number that belongs to no
// preference has empty texts and no allowed values.
struct PREFERENCE_ROW
{
    CFG_USER_INI_ENUMS number;
    bool secret; // programs mask the value when they show it; stands here because padding has room for it
    const char* key;
    const char* section;
    std::span<const char* const> allowed_values; // the empty text allows any value
    const char* default_value;
    const char* registry_name;
    const char* registry_branch;
    const char* description;
};

namespace PREFERENCE_VALUES
{
constexpr const char* free_text[] = {""};
constexpr const char* on_off[] = {"off", "on"};
constexpr const char* on_off_0_1[] = {"off", "on", "0", "1"};
constexpr const char* zero_one[] = {"0", "1"};
// clang-format off
constexpr const char* color[] = {
    "15", "14", "13", "12", "11", "10", "9", "8", "7", "6", "5", "4", "3", "2", "1", "0",
    "White", "Bright_Yellow", "Bright_Magenta", "Bright_Red", "Bright_Cyan", "Bright_Green", "Bright_Blue", "Dark_Gray",
    "Light_Gray", "Yellow", "Magenta", "Red", "Cyan", "Green", "Blue", "Black"};
// clang-format on

// In this order because lists of the allowed values of COMPACT_REPORT_TABLE_FORMAT show it.
constexpr const char* one_zero_on_off[] = {"1", "0", "on", "off"};
constexpr const char* waveform_format[] = {"2", "1", "0", "vcd", "cvwf", "vwf"};
constexpr const char* default_off_on[] = {"default", "off", "on"};
constexpr const char* hdl[] = {"KHDL", "Verilog", "VHDL"};
}

// The key is the enumerator itself, so that the two cannot differ.
#define PREFERENCE(key, section, allowed_values, default_value, registry_name, registry_branch, description)           \
    {                                                                                                                  \
        key, false, #key, section, PREFERENCE_VALUES::allowed_values, default_value, registry_name, registry_branch,   \
            description                                                                                                \
    }
#define SECRET_PREFERENCE(key, section, registry_name, registry_branch, description)                                   \
    {                                                                                                                  \
        key, true, #key, section, PREFERENCE_VALUES::free_text, "", registry_name, registry_branch, description        \
    }
#define NO_PREFERENCE(number)                                                                                          \
    {                                                                                                                  \
        static_cast<CFG_USER_INI_ENUMS>(number), false, "", "", {}, "", "", "", ""                                     \
    }

// Some things are irregular on purpose, since users' files and scripts rely on them: the misspelt
// PROMOTE_CRITCAL_WARNING_..., the switches that take only "off" and "on", and the registry branches that differ from
// the sections.
constexpr PREFERENCE_ROW preference_rows[] = {
    PREFERENCE(DISPLAY_WARNING_MESSAGES, "Messages", free_text, "", "Post warning messages", "Messages",
               "Displays warning messages in the Messages window and on the command line. When this option is off, "
               "warnings still appear in the report files. You set it with the Warning check box on the Messages page "
               "of the Options dialog box."),
    PREFERENCE(DISPLAY_INFORMATION_MESSAGES, "Messages", free_text, "", "Post information messages", "Messages",
               "Displays information messages, which tell you what a process is doing and need no action from you. "
               "Turn the option off on the Messages page of the Options dialog box to keep long compilations quiet."),
    PREFERENCE(DISPLAY_EXTRA_INFORMATION_MESSAGES, "Messages", free_text, "", "Post extra information messages",
               "Messages",
               "Displays extra information messages, the detailed notes that follow an information message, such as "
               "the names of the nodes that an optimization removed. The check box stands below the one for "
               "information messages on the Messages page of the Options dialog box."),
    PREFERENCE(DISPLAY_CRITICAL_WARNING_MESSAGES, "Messages", free_text, "", "Post critical warning messages",
               "Messages",
               "Displays critical warning messages, which point at conditions that are likely to make the design fail "
               "in the device, such as unmet timing requirements. You can hide them on the Messages page of the "
               "Options dialog box, although you should rarely do so."),
    PREFERENCE(PROMOTE_CRITCAL_WARNING_TO_ERROR_MESSAGE, "Messages", on_off_0_1, "",
               "Promote critical warning message to error message", "Messages",
               "Treats every critical warning message as an error message, so that the process that issued it ends "
               "unsuccessfully. Select it on the Messages page of the Options dialog box when a design with critical "
               "warnings must never be accepted."),
    PREFERENCE(DISPLAY_COMMAND_LINE_MESSAGES_IN_COLOR, "Messages", on_off_0_1, "on",
               "Display command line messages in color", "Messages",
               "Displays the messages of command-line executables in color when the terminal supports it. You choose a "
               "color for each type of message on the Messages page of the Options dialog box, where you can also turn "
               "colors off for terminals on which they are hard to read."),
    PREFERENCE(COMMAND_LINE_INFORMATION_MESSAGE_COLOR, "Messages", color, "", "Information Message Color", "Messages",
               "Specifies foreground color for information messages when using the command line. Select one of the "
               "sixteen colors, by name or by number, in the Command line colors list on the Messages page of the "
               "Options dialog box."),
    PREFERENCE(COMMAND_LINE_EXTRA_INFORMATION_MESSAGE_COLOR, "Messages", color, "", "Extra Information Message Color",
               "Messages",
               "Specifies foreground color for extra information messages when using the command line. A color close "
               "to that of information messages, selected on the Messages page of the Options dialog box, shows that "
               "the two belong together."),
    PREFERENCE(
        COMMAND_LINE_WARNING_MESSAGE_COLOR, "Messages", color, "", "Warning Message Color", "Messages",
        "Specifies foreground color for warning messages when using the command line. Until you select a color on the "
        "Messages page of the Options dialog box, warnings keep the color that is built into the executables."),
    PREFERENCE(COMMAND_LINE_CRITICAL_WARNING_MESSAGE_COLOR, "Messages", color, "", "Critical Warning Message Color",
               "Messages",
               "Specifies foreground color for critical warning messages when using the command line. Select a color "
               "that sets them apart from ordinary warnings on the Messages page of the Options dialog box."),
    PREFERENCE(
        COMMAND_LINE_ERROR_MESSAGE_COLOR, "Messages", color, "", "Error Message Color", "Messages",
        "Specifies foreground color for error messages when using the command line. The list of colors is on the "
        "Messages page of the Options dialog box and is available while command-line messages are displayed in color."),
    PREFERENCE(COMMAND_LINE_INTERNAL_ERROR_MESSAGE_COLOR, "Messages", color, "", "", "",
               "Specifies foreground color for internal error messages when using the command line."),
    PREFERENCE(RUN_PROCESS_AT_LOWER_PRIORITY, "General", on_off_0_1, "", "Run processes at lower priority", "General",
               "Runs compilations and simulations at a lower priority of the operating system, so that other programs "
               "stay responsive while a large design is processed. You select it on the Processing page of the Options "
               "dialog box; processes that already run keep their priority."),
    PREFERENCE(
        GENERATE_HTML_REPORT_FILES, "General", on_off_0_1, "", "Generate HTML report file", "General",
        "Generates the compilation report as HTML files that you can read in a web browser, in addition to the text "
        "reports. You select it among the report formats on the Processing page of the Options dialog box."),
    PREFERENCE(
        GENERATE_JSON_REPORT_FILES, "General", on_off_0_1, "", "Generate JSON report file", "General",
        "Generates the compilation report as JSON files, the form to choose when your own scripts evaluate the "
        "results. The check box is with the other report formats on the Processing page of the Options dialog box."),
    PREFERENCE(
        GENERATE_SINGLE_REPORT_FILE, "General", on_off_0_1, "", "Generate single report file", "General",
        "Combines the text reports of all stages of a compilation in a single file instead of writing one file for "
        "each stage. You find the option below the report formats on the Processing page of the Options dialog box."),
    PREFERENCE(COMPACT_REPORT_TABLE_FORMAT, "General", one_zero_on_off, "off", "", "",
               "Displays tables in the Timing Analyzer report files in a vertical format, which allows you to more "
               "easily browse the report file in a text editor."),
    PREFERENCE(
        GENERATE_EQUATION_FILES, "General", on_off_0_1, "off", "", "",
        "Generates equation files, which list the logic function of every node of the design in text form. Because "
        "these files grow large, you must ask for them explicitly on the Processing page of the Options dialog box."),
    PREFERENCE(SOUND_WHEN_PROCESS_DONE, "General", on_off_0_1, "", "Beep when process done", "General",
               "Plays a sound when a compilation or another process ends, so that you need not watch the progress bar. "
               "You turn it on under Notifications on the Processing page of the Options dialog box."),
    PREFERENCE(
        DISPLAY_MESSAGE_WHEN_PROCESS_DONE, "General", on_off_0_1, "0", "Show message box when process done", "General",
        "Displays a message box that tells you whether the process was successful when it ends. You turn it on under "
        "Notifications on the Processing page of the Options dialog box; it has no effect on the command line."),
    PREFERENCE(VANTREL_ENABLED, "Vantrel", on_off_0_1, "", "Velmar Vantrel Enabled", "Velmar Vantrel",
               "Enables Vantrel, which sends facts about your compilations, such as the device, the resources used and "
               "the time taken, to help improve the tool; it never sends the design itself. You are asked once when "
               "the tool first starts, and can change your answer on the Vantrel page of the Options dialog box."),
    PREFERENCE(
        VANTREL_IE_ENABLED, "Vantrel", on_off_0_1, "", "Velmar Vantrel IE", "Velmar Vantrel",
        "Allows Vantrel to send a report when a process stops with an internal error (IE). The check box is on the "
        "Vantrel page of the Options dialog box and works independently of the reports on successful compilations."),
    PREFERENCE(VANTREL_COMPANY_NAME, "Vantrel", free_text, "", "Company Name", "Velmar Vantrel",
               "Specifies the name of your company as it appears in the data that Vantrel sends. Leave the Company "
               "name box on the Vantrel page of the Options dialog box empty if the data are to stay anonymous."),
    PREFERENCE(
        VANTREL_FAE_NAME, "Vantrel", free_text, "", "FAE Name", "Velmar Vantrel",
        "Specifies the field applications engineer (FAE) who looks after your company, so that findings from Vantrel "
        "data reach the person you work with. Type the name on the Vantrel page of the Options dialog box."),
    PREFERENCE(VANTREL_SAVE_XML_FILES, "Vantrel", on_off_0_1, "", "Keep XML Files", "Velmar Vantrel",
               "Keeps a copy of each XML file that Vantrel sends, which lets you see exactly what left your computer. "
               "You select it on the Vantrel page of the Options dialog box."),
    PREFERENCE(VANTREL_SAVE_XML_FILES_LOCATION, "Vantrel", free_text, "", "Keep XML Files In", "Velmar Vantrel",
               "Specifies the directory in which Vantrel keeps copies of the XML files it sends. Type a path or browse "
               "to it on the Vantrel page of the Options dialog box after turning on Keep XML files."),
    PREFERENCE(VANTREL2_USER_ID, "Vantrel", free_text, "", "", "",
               "Specifies the identifier by which Vantrel tells your compilations from those of other users without "
               "knowing who you are. The tool makes one up when you enable Vantrel; the Reset button on the Vantrel "
               "page of the Options dialog box replaces it."),
    PREFERENCE(
        SEND_CRASH_REPORT, "General", on_off_0_1, "", "", "",
        "Sends a report without further questions when the tool ends unexpectedly. You set it with the Always send "
        "check box of the crash reporter, or later on the Internet Connectivity page of the Options dialog box."),
    PREFERENCE(CLOUD_SEND_END_FLOW_NOTIFICATIONS, "Cloud", on_off_0_1, "", "", "",
               "Sends a notification to your cloud account when a compilation flow ends, so that you can follow long "
               "runs from a phone or another computer. You select it on the Cloud page of the Options dialog box after "
               "signing in."),
    PREFERENCE(CLOUD_USER_ID, "Cloud", free_text, "", "", "",
               "Specifies the number that identifies your cloud account to the server. The tool stores it when you "
               "sign in on the Cloud page of the Options dialog box, and you seldom need to change it by hand."),
    PREFERENCE(CLOUD_USERNAME, "Cloud", free_text, "", "", "",
               "Specifies the name with which you sign in to the cloud service, usually your e-mail address. Type it "
               "in the User name box on the Cloud page of the Options dialog box."),
    SECRET_PREFERENCE(
        CLOUD_TOKEN, "Cloud", "", "",
        "Specifies the access token that the cloud service issued to this computer, which spares you from "
        "signing in for each session. Signing out on the Cloud page of the Options dialog box removes it; treat "
        "it like a password."),
    PREFERENCE(CLOUD_SERVER, "Cloud", free_text, "", "", "",
               "Specifies the address of the server that receives notifications and reports. Enter the one that your "
               "administrator gave you in the Server box on the Cloud page of the Options dialog box."),
    PREFERENCE(
        CLOUD_LOGGING, "Cloud", on_off_0_1, "", "", "",
        "Writes a log of the exchange with the cloud server to your profile directory, which support may ask for when "
        "notifications do not arrive. The option is under Diagnostics on the Cloud page of the Options dialog box."),
    PREFERENCE(
        CLOUD_SEND_REPORTS, "Cloud", on_off_0_1, "on", "", "",
        "Attaches a summary of the compilation report to the notifications that the tool sends to your cloud account. "
        "Clear the check box on the Cloud page of the Options dialog box to send the bare result only."),
    PREFERENCE(CLOUD_SEND_ERROR_MESSAGES, "Cloud", on_off_0_1, "", "", "",
               "Includes the error messages of the compilation in the notifications sent to your cloud account, which "
               "often shows the cause of a failed run at once. You select it under Message types on the Cloud page of "
               "the Options dialog box."),
    PREFERENCE(CLOUD_SEND_WARNING_MESSAGES, "Cloud", on_off_0_1, "", "", "",
               "Includes warning messages in the notifications sent to your cloud account. Large designs issue many of "
               "them, so consider the amount of data before you select it under Message types on the Cloud page of the "
               "Options dialog box."),
    PREFERENCE(CLOUD_UPLOAD_REPORTS, "Cloud", on_off_0_1, "", "", "",
               "Uploads the complete report files to your cloud account after each compilation, where you can compare "
               "them with those of earlier runs. Select it on the Cloud page of the Options dialog box if your "
               "company's rules permit it."),
    PREFERENCE(READ_WRITE_HEX_FILES_TO_WORD_BOUNDARY, "General", on_off_0_1, "",
               "Read/Write HEX files to word boundary", "Memory Editor",
               "Reads and writes hexadecimal (.hex) files so that each address stands for a whole memory word rather "
               "than for a byte. You set it on the Memory Editor page of the Options dialog box, to match the program "
               "that made the file."),
    NO_PREFERENCE(39),
    NO_PREFERENCE(40),
    NO_PREFERENCE(41),
    NO_PREFERENCE(42),
    PREFERENCE(AUTO_RECOMPILE_BEFORE_SIM, "General", on_off_0_1, "", "Auto Recompile", "General",
               "Compiles the design again before a simulation starts when its source files have changed since the last "
               "compilation. You set it on the Processing page of the Options dialog box; when it is off, the "
               "simulation uses the older results."),
    PREFERENCE(OVERWRITE_WAVEFORM_INPUTS_WITH_SIMULATION_OUTPUTS, "Simulation", on_off_0_1, "",
               "Overwrite Waveform Inputs With Simulation Outputs", "General",
               "Replaces the waveform file that stimulates the simulation with the file that contains the results, "
               "instead of keeping the two apart. You set it on the Simulation page of the Options dialog box; keep a "
               "copy of input waveforms that you drew by hand."),
    PREFERENCE(GENERATE_SIMULATION_OUTPUTS_IN_CVWF_FORMAT, "Simulation", on_off_0_1, "on",
               "Generate Simulation Outputs In CVWF Format", "General",
               "Writes simulation results as compressed waveform files (.cvwf), which take far less disk space than "
               "uncompressed ones. Clear the check box on the Simulation page of the Options dialog box if another "
               "program must read the waveforms."),
    PREFERENCE(SIMULATION_OUTPUTS_FORMAT, "Simulation", waveform_format, "1", "Simulation Outputs Format", "General",
               "Specifies the file format of simulation results: 'vwf' or '0' for waveform files, 'cvwf' or '1' for "
               "compressed waveform files, and 'vcd' or '2' for value change dump files. Select it in the Output "
               "format list on the Simulation page of the Options dialog box."),
    PREFERENCE(MAXIMUM_VECTOR_COMPARISON_MISMATCHES, "Simulation", free_text, "",
               "Maximum Vector Comparison Mismatches", "General",
               "Specifies the number of differences between expected and simulated outputs after which the comparison "
               "of vectors stops. Type a positive integer on the Simulation page of the Options dialog box; a small "
               "one shortens the report of a design that fails early."),
    PREFERENCE(VANTREL_SAVE_XML_FILES_IN_PROJECT_DIRECTORY, "Vantrel", on_off_0_1, "",
               "Vantrel save xml files in project directory", "Velmar Vantrel",
               "Keeps the XML files that Vantrel sends in the directory of the project they describe rather than in "
               "one common directory. The choice is offered on the Vantrel page of the Options dialog box while Keep "
               "XML files is on."),
    PREFERENCE(WEB_BROWSER, "Internet Connectivity", free_text, "", "Web Browser", "General",
               "Specifies the path name of the web browser in which the tool opens online help and links. Browse to "
               "the executable on the Internet Connectivity page of the Options dialog box, or leave it empty for the "
               "default browser of your system."),
    PREFERENCE(
        PROXY_ENABLED, "Internet Connectivity", on_off_0_1, "", "Proxy Enabled", "General",
        "Connects to the Internet through a proxy server, which many company networks require. You select it on the "
        "Internet Connectivity page of the Options dialog box and enter the server's address there as well."),
    PREFERENCE(PROXY_SETTINGS, "Internet Connectivity", free_text, "", "Proxy Settings", "General",
               "Specifies the host name and port of the proxy server, separated by a colon. Ask your network "
               "administrator for the values and enter them in the Address and Port boxes on the Internet Connectivity "
               "page of the Options dialog box."),
    SECRET_PREFERENCE(
        PROXY_USER1, "Internet Connectivity", "Proxy User1", "General",
        "Specifies the user name for a proxy server that asks for one. Type it below the server's address on "
        "the Internet Connectivity page of the Options dialog box."),
    SECRET_PREFERENCE(
        PROXY_USER2, "Internet Connectivity", "Proxy User2", "General",
        "Specifies the second part of the credentials for the proxy server, in the encoded form in which the "
        "tool keeps it. It is filled in when you complete the Password box on the Internet Connectivity page of "
        "the Options dialog box, and is not meant to be edited."),
    PREFERENCE(USER_LIBRARIES, "General", free_text, "", "", "",
               "Allows you to specify the path name for a library you want to add to the Libraries list."),
    PREFERENCE(DELAY_VSF_UPDATES, "General", on_off_0_1, "on", "", "",
               "Collects changes of assignments in memory and writes them to the settings file of the project (.vsf) "
               "when you save the project or start a process. Turn it off on the Processing page of the Options dialog "
               "box to have each change written at once."),
    PREFERENCE(USE_64BIT, "General", default_off_on, "", "", "",
               "Specifies whether the 64-bit executables run processes where both kinds are installed. 'default' "
               "leaves the choice to the tool, which goes by the memory of the computer; you can force either kind on "
               "the Processing page of the Options dialog box."),
    PREFERENCE(SHOW_MESSAGE_ID, "Messages", on_off, "on", "", "",
               "Displays the numeric ID of the message after its type definition in parentheses."),
    PREFERENCE(
        EDA_TOOL_PATH_ACTIVEHDL, "EDA_Tool_Paths", free_text, "", "", "",
        "Specifies the directory that contains the Active-HDL executables, so that the tool can start this simulator "
        "for you. Double-click its row on the EDA Tool Options page of the Options dialog box to enter the path."),
    PREFERENCE(EDA_TOOL_PATH_RIVIERAPRO, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the Riviera-PRO executables. You enter it on the EDA Tool Options page of "
               "the Options dialog box before you run a simulation in Riviera-PRO from the Tools menu."),
    PREFERENCE(EDA_TOOL_PATH_MODELSIM, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the ModelSim executables for an edition that you licensed on your own. "
               "Enter it on the EDA Tool Options page of the Options dialog box; the edition delivered with the tool "
               "has a row of its own there."),
    PREFERENCE(
        EDA_TOOL_PATH_QUESTASIM, "EDA_Tool_Paths", free_text, "", "", "",
        "Specifies the directory in which the QuestaSim executables are installed. The tool uses the path from the EDA "
        "Tool Options page of the Options dialog box whenever the project names QuestaSim as its simulator."),
    PREFERENCE(
        EDA_TOOL_PATH_MODELSIM_KESTRIN, "EDA_Tool_Paths", free_text, "", "", "",
        "Specifies the directory of the ModelSim edition that is delivered with the tool. The installer normally sets "
        "it; change it on the EDA Tool Options page of the Options dialog box if you moved the simulator."),
    PREFERENCE(EDA_TOOL_PATH_QUESTA_DRAVON, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the Questa Dravon edition, whose simulation libraries are compiled before "
               "delivery. You can correct the path on the EDA Tool Options page of the Options dialog box when several "
               "releases are installed side by side."),
    PREFERENCE(EDA_TOOL_PATH_NCSIM, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the NCSim executables. It is kept for projects that have not yet changed to "
               "a newer simulator, and is entered on the EDA Tool Options page of the Options dialog box."),
    PREFERENCE(EDA_TOOL_PATH_XCELIUM, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the Xcelium executables, the one that contains xrun. Enter it on the EDA "
               "Tool Options page of the Options dialog box, or leave it empty if the executables are already on your "
               "search path."),
    PREFERENCE(EDA_TOOL_PATH_VCS, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the VCS executables for designs in Verilog HDL. Enter it in the VCS row on "
               "the EDA Tool Options page of the Options dialog box."),
    PREFERENCE(
        EDA_TOOL_PATH_VCS_MX, "EDA_Tool_Paths", free_text, "", "", "",
        "Specifies the directory of the VCS MX executables, which simulate designs of mixed languages. It may be the "
        "directory you entered for VCS; both have their rows on the EDA Tool Options page of the Options dialog box."),
    PREFERENCE(EDA_TOOL_PATH_LEONARDO_SPECTRUM, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the LeonardoSpectrum synthesis tool. Projects that take their netlists from "
               "it find it through the path on the EDA Tool Options page of the Options dialog box."),
    PREFERENCE(
        EDA_TOOL_PATH_PRECISION, "EDA_Tool_Paths", free_text, "", "", "",
        "Specifies the directory of the Precision Synthesis executables, which the tool starts when a project names "
        "Precision as its synthesis tool. You enter it on the EDA Tool Options page of the Options dialog box."),
    PREFERENCE(EDA_TOOL_PATH_SYNPLIFY, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the Synplify executables. Browse to it in the Synplify row on the EDA Tool "
               "Options page of the Options dialog box to have synthesis run from within the tool."),
    PREFERENCE(EDA_TOOL_PATH_SYNPLIFY_PRO, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the Synplify Pro executables. The path is separate from that of Synplify, "
               "so that you can keep both installed and choose between them for each project; enter it on the EDA Tool "
               "Options page of the Options dialog box."),
    PREFERENCE(EDA_TOOL_PATH_PRIMETIME, "EDA_Tool_Paths", free_text, "", "", "",
               "Specifies the directory of the PrimeTime executables for timing analysis outside the tool. You enter "
               "it on the EDA Tool Options page of the Options dialog box, below the simulators."),
    NO_PREFERENCE(73),
    PREFERENCE(EDA_TOOL_ENABLE_SIMULATION, "EDA_Tool_Paths", on_off, "off", "", "",
               "Starts the simulator of the project automatically after each successful compilation. You select it on "
               "the EDA Tool Options page of the Options dialog box, once the path of the simulator is entered there."),
    PREFERENCE(HDL_PREFERENCE, "General", hdl, "Verilog", "", "",
               "Specifies the hardware description language that the tool proposes for new files and uses for files it "
               "generates: KHDL, Verilog or VHDL. Select it in the Default HDL list on the General page of the Options "
               "dialog box."),
    PREFERENCE(EDA_TOOL_USE_VELMAR_EDA_PLUGIN_PATH_VARIABLE, "EDA_Tool_Paths", on_off, "on", "", "",
               "Takes the directory of EDA tool plug-ins from the VELMAR_EDA_PLUGIN_PATH environment variable, which "
               "suits installations shared by many users. Clear the check box on the EDA Tool Options page of the "
               "Options dialog box to enter a directory of your own."),
    PREFERENCE(
        EDA_TOOL_PLUGIN_PATH, "EDA_Tool_Paths", free_text, "", "", "",
        "Specifies the directory in which the tool looks for plug-ins that connect it to other EDA tools. You can type "
        "it on the EDA Tool Options page of the Options dialog box when the environment variable is not used."),
    PREFERENCE(RECENT_PROJECTS, "General", free_text, "", "", "",
               "Specifies the projects listed under Recent Projects on the File menu, most recent first. The tool adds "
               "each project that you open; use Clear List on the same menu to empty it."),
    PREFERENCE(NUM_PARALLEL_PROCESSORS, "General", free_text, "All", "", "",
               "Specifies the maximum number of processors allowed for use by excutables that support parallel "
               "processing. Set 'All' to use all processors available, or a positive integer to specify any lesser "
               "number. For example, on a four-processor machine 'All' allows all four processors to be used, while "
               "'3' leaves one of them free for your other work."),
    PREFERENCE(SHOW_MESSAGE_PARTITION_ID, "Messages", on_off, "off", "", "",
               "Displays the ID of the design partition that a message refers to in front of its text. Select it on "
               "the Messages page of the Options dialog box when you compile designs with several partitions."),
    PREFERENCE(PGMW_TRV_USE_ENHANCED_IP, "Programmer", on_off, "on", "", "",
               "Uses the enhanced IP to reach the flash memory behind the device when the Programmer works with TRV "
               "files, which shortens programming considerably. Turn it off in the Options dialog box of the "
               "Programmer if a board supports only the original IP."),
    PREFERENCE(PGMW_ENABLE_PR_COMPRESSION, "Programmer", on_off, "off", "", "",
               "Compresses the bitstreams that the Programmer generates for partial reconfiguration (PR). Compressed "
               "bitstreams load faster but need a PR host that can expand them; you turn the option on in the Options "
               "dialog box of the Programmer."),
    PREFERENCE(PGMW_TRV_USE_CRC_CHECK, "Programmer", on_off, "on", "", "",
               "Verifies flash memory by comparing checksums (CRC) instead of reading back every byte when the "
               "Programmer works with TRV files. The option is in the Options dialog box of the Programmer; turning it "
               "off makes verification slower and more thorough."),
    PREFERENCE(PGMW_TRV_UNPROTECT_KRDS, "Programmer", on_off, "off", "", "",
               "Removes the write protection of KRDS flash devices before the Programmer erases or programs them with "
               "TRV files. Turn it on in the Options dialog box of the Programmer only for boards whose protection you "
               "are allowed to lift."),
    PREFERENCE(PGMW_NAND_USE_ECC_CHECK, "Programmer", on_off, "on", "", "",
               "Checks and corrects the data of NAND flash memory by its error correction code (ECC) while the "
               "Programmer verifies or examines it. You can turn it off in the Options dialog box of the Programmer to "
               "see the raw contents."),
    PREFERENCE(
        PGMW_OVERWRITE_SERIAL_FLASH_PP_TIME, "Programmer", on_off, "off", "", "",
        "Uses the page program time that you enter in the Options dialog box of the Programmer in place of the one "
        "that the serial flash device reports. It is meant for devices that need longer than their data sheet says."),
    PREFERENCE(PGMW_SERIAL_FLASH_PP_TIME, "Programmer", free_text, "0", "", "",
               "Specifies how many microseconds the Programmer waits for a serial flash device to program one page. "
               "Type the time in the Options dialog box of the Programmer after turning on the option to overwrite it; "
               "0 stands for the device's own value."),
    PREFERENCE(PGMW_OVERWRITE_START_UP_DELAY_ENABLE, "Programmer", on_off, "off", "", "",
               "Makes the Programmer wait for the start-up delay that you specify before it accesses a device that was "
               "just configured. You turn it on in the Options dialog box of the Programmer if a board needs more time "
               "than usual to come up."),
    PREFERENCE(PGMW_OVERWRITE_START_UP_DELAY_US, "Programmer", free_text, "20000", "", "",
               "Specifies, in microseconds, the start-up delay that replaces the Programmer's own. The box is next to "
               "the option that enables it in the Options dialog box of the Programmer."),
    PREFERENCE(FIDV_INJECTION_INTERVAL_TIME, "Programmer", free_text, "100", "", "",
               "Specifies the time in milliseconds between two faults that the Fault Injection Debugger injects in a "
               "row. You set it on the Injection page of the debugger's Options dialog box."),
    PREFERENCE(FIDV_INJECTION_SENSITIVITY_TYPE, "Programmer", free_text, "0", "", "",
               "Specifies the number of the sensitivity class to which the Fault Injection Debugger confines the "
               "faults it injects; 0 stands for the whole device. The classes of the loaded design are listed on the "
               "Injection page of the debugger's Options dialog box."),
    PREFERENCE(FIDV_INJECTION_SENSITIVITY_SINGLE_ERROR_WEIGHT, "Programmer", free_text, "70", "", "",
               "Specifies the share of single-bit errors, in percent, among the faults that the Fault Injection "
               "Debugger injects at random. Adjust it with the Single slider on the Injection page of the debugger's "
               "Options dialog box; the three shares together make 100."),
    PREFERENCE(FIDV_INJECTION_SENSITIVITY_DOUBLE_ERROR_WEIGHT, "Programmer", free_text, "20", "", "",
               "Specifies the share of double-bit errors, in percent, among randomly injected faults. Such errors flip "
               "two neighboring bits of one frame; you set their share with the Double slider on the Injection page of "
               "the Fault Injection Debugger's Options dialog box."),
    PREFERENCE(FIDV_INJECTION_SENSITIVITY_UNCORRECTABLE_ERROR_WEIGHT, "Programmer", free_text, "10", "", "",
               "Specifies the share of errors that the device cannot correct by itself, in percent, among randomly "
               "injected faults. Use the Uncorrectable slider on the Injection page of the Fault Injection Debugger's "
               "Options dialog box to exercise the recovery of your system."),
    PREFERENCE(PGMDV_INTERNAL_SETTING, "Programmer", free_text, "0", "", "",
               "Specifies a number that switches on diagnostic features of the Programmer. It appears in no dialog "
               "box: leave it at 0 unless support asks you to enter another number in the preference file."),
    PREFERENCE(GFPDB_CUSTOM_DATABASE_DIRECTORY, "Programmer", free_text, "", "", "",
               "Specifies the directory of your own database of flash memory devices, which the Programmer reads in "
               "addition to the one it is delivered with. Browse to it under Flash device database in the Options "
               "dialog box of the Programmer."),
    PREFERENCE(VUI_USE_EXTERNAL_TEXT_EDITOR, "Preferred Text Editor", on_off_0_1, "", "Use External Text Editor",
               "Velmar User Interface",
               "Opens design files in the text editor that you prefer instead of the built-in Text Editor. You select "
               "it on the Preferred Text Editor page of the Options dialog box."),
    PREFERENCE(VUI_EXTERNAL_TEXT_EDITOR, "Preferred Text Editor", free_text, "", "External Text Editor",
               "Velmar User Interface",
               "Specifies the path name of the executable of the external text editor. Browse to it on the Preferred "
               "Text Editor page of the Options dialog box; for editors in the list the tool finds it by itself."),
    PREFERENCE(VUI_EXTERNAL_TEXT_EDITOR_CLO, "Preferred Text Editor", free_text, "",
               "External Text Editor Command Line", "Velmar User Interface",
               "Specifies the command-line options (CLO) with which the external text editor is told to open a file at "
               "a line, with %f in place of the file name and %l in place of the line number. You enter them on the "
               "Preferred Text Editor page of the Options dialog box."),
    PREFERENCE(VUI_EXTERNAL_TEXT_EDITOR_NAME, "Preferred Text Editor", free_text, "", "External Text Editor Name",
               "Velmar User Interface",
               "Specifies the name under which the external text editor appears on menus. It follows your selection in "
               "the Text editor list on the Preferred Text Editor page of the Options dialog box; type a name of your "
               "own for an editor that is not listed."),
    PREFERENCE(VUI_EXTERNAL_TEXT_EDITOR_COMPLETE_CLO, "Preferred Text Editor", free_text, "",
               "Complete External Text Editor Syntax", "Velmar User Interface",
               "Specifies the complete command that starts the external text editor, executable and command-line "
               "options together. The Preferred Text Editor page of the Options dialog box shows it as a preview and "
               "lets you edit it when the separate settings do not suffice."),
    PREFERENCE(
        FIDV_COVERAGE_TEST_START_INDEX, "Programmer", free_text, "0", "", "",
        "Specifies the index of the first fault location of a coverage test, so that a long test can be continued "
        "where it stopped. Type it on the Coverage Test page of the Fault Injection Debugger's Options dialog box."),
    PREFERENCE(FIDV_COVERAGE_TEST_SIZE, "Programmer", free_text, "0", "", "",
               "Specifies how many fault locations a coverage test of the Fault Injection Debugger visits; 0 visits "
               "all that follow the start index. You find it below the start index on the Coverage Test page of the "
               "debugger's Options dialog box."),
    PREFERENCE(FIDV_COVERAGE_TEST_KEY, "Programmer", free_text, "", "", "",
               "Specifies the key from which the Fault Injection Debugger derives the order of fault locations in a "
               "coverage test: the same key gives the same order again. Enter any text on the Coverage Test page of "
               "the debugger's Options dialog box."),
    PREFERENCE(USER_IP_SEARCH_PATHS, "General", free_text, "", "", "",
               "Allows you to specify the path you want to add to the IP search paths list."),
    PREFERENCE(
        MANAGED_FLOW_HDL_PREFERENCE, "General", free_text, "", "", "",
        "Specifies the hardware description language of the files that managed flows create in your projects. You "
        "choose it in the first step of the New Managed Flow wizard, which offers the same choice the next time."),
    PREFERENCE(MAX_ZORPAL_JVM_MEMORY, "General", free_text, "", "", "",
               "Specifies the largest amount of memory that the Java virtual machine of Zorpal may use, such as 2048m. "
               "Raise it on the IP Settings page of the Options dialog box if Zorpal runs out of memory with a large "
               "system; changes take effect when Zorpal is next started."),
    PREFERENCE(USER_FLOW_TEMPLATE_SEARCH_PATHS, "General", free_text, "", "", "",
               "Allows you to specify directories with flow templates of your own, which are then offered beside the "
               "built-in flows when you create a flow. Add them to the Flow templates list on the Design Templates "
               "page of the Options dialog box."),
    PREFERENCE(USER_PLATFORM_SEARCH_PATHS, "General", free_text, "", "", "",
               "Allows you to specify directories that contain descriptions of platforms and boards, in addition to "
               "those of the installation. You add them on the Board and Platform page of the Options dialog box; the "
               "New Project Wizard lists what it finds there."),
    PREFERENCE(USER_DESIGN_EXAMPLE_DOWNLOAD_PATH, "General", free_text, "", "", "",
               "Specifies the directory to which design examples are downloaded. Change it on the Design Templates "
               "page of the Options dialog box if your profile directory has little room."),
    PREFERENCE(UNSUPPORTED_PLATFORM_INSTALLED, "General", on_off_0_1, "off", "", "",
               "Records that the tool was installed on an operating system that it does not officially support. The "
               "installer sets it after you have confirmed the installation, and no dialog box changes it."),
    PREFERENCE(DISPLAY_UNSUPPORTED_PLATFORM, "General", on_off_0_1, "off", "", "",
               "Displays a reminder at start-up when the tool runs on an operating system that it does not officially "
               "support. Clear the check box in the reminder itself to see it no more, or change it on the General "
               "page of the Options dialog box."),
    PREFERENCE(IPGEN_INCLUDE_SIMULATION_FILESET, "General", on_off, "off", "", "",
               "Generates simulation files together with the synthesis files whenever you generate an IP component. "
               "You select it on the IP Settings page of the Options dialog box; it makes generation take longer."),
    PREFERENCE(ENABLE_ZORPAL_PRO_MODE, "General", on_off, "on", "", "",
               "Opens systems in the Pro mode of Zorpal, in which each component is kept in a file of its own and can "
               "be generated separately. You set it on the IP Settings page of the Options dialog box for the systems "
               "you create from then on."),
    PREFERENCE(
        DISABLE_ZORPAL_PRO_MODE, "General", on_off, "off", "", "",
        "Keeps Zorpal from using its Pro mode whatever else is set, for teams that still share systems with releases "
        "that lack it. The check box is under Compatibility on the IP Settings page of the Options dialog box."),
    PREFERENCE(
        ENABLE_PARALLEL_IP_GEN, "General", on_off, "on", "", "",
        "Generates several IP components at the same time on computers with more than one processor. Turn it off on "
        "the IP Settings page of the Options dialog box if generation needs more memory than the computer has."),
    PREFERENCE(
        IPGEN_INCLUDE_CDC_FILESET, "General", on_off, "off", "", "",
        "Generates the files for clock domain crossing (CDC) analysis whenever you generate an IP component. You "
        "select it on the IP Settings page of the Options dialog box when your flow includes a CDC checker."),
    PREFERENCE(IPGEN_INCLUDE_SIMULATION_FILESET_FOR_MODELSIM, "General", on_off, "off", "", "",
               "Adds setup scripts for ModelSim and the Questa simulators to the simulation files of generated IP "
               "components. Select ModelSim among the simulators on the IP Settings page of the Options dialog box."),
    PREFERENCE(
        IPGEN_INCLUDE_SIMULATION_FILESET_FOR_RIVIERA, "General", on_off, "off", "", "",
        "Adds setup scripts for Riviera-PRO, which also serve Active-HDL, to the simulation files of generated IP "
        "components. You select it in the list of simulators on the IP Settings page of the Options dialog box."),
    PREFERENCE(
        IPGEN_INCLUDE_SIMULATION_FILESET_FOR_VCS, "General", on_off, "off", "", "",
        "Adds a setup script for VCS to the simulation files of generated IP components, which compiles everything in "
        "one step. Turn it on with the VCS check box on the IP Settings page of the Options dialog box."),
    PREFERENCE(IPGEN_INCLUDE_SIMULATION_FILESET_FOR_VCS_MX, "General", on_off, "off", "", "",
               "Adds a setup script for VCS MX to the simulation files of generated IP components; it compiles Verilog "
               "HDL and VHDL files in separate steps. You select it on the IP Settings page of the Options dialog box, "
               "independently of VCS."),
    PREFERENCE(IPGEN_INCLUDE_SIMULATION_FILESET_FOR_XCELIUM, "General", on_off, "off", "", "",
               "Adds a setup script for Xcelium and the library definitions that go with it to the simulation files of "
               "generated IP components. Select Xcelium on the IP Settings page of the Options dialog box before you "
               "generate."),
    PREFERENCE(DISPLAY_KALDEN_MESSAGE_WHEN_OPENING_PROJECT, "General", zero_one, "1", "", "",
               "Displays the message about Kalden when you open a project that could use it. Select Do not show this "
               "again in the message to stop it, and turn it on again on the General page of the Options dialog box."),
    PREFERENCE(RTL_ANALYSIS_FLOW, "General", zero_one, "0", "", "",
               "Shows the RTL analysis flow in the Tasks window, with which you examine the elaborated design before "
               "synthesis. You select it in the flow list at the top of the Tasks window or on the Processing page of "
               "the Options dialog box."),
    PREFERENCE(DNI_COMPILATION_MODE_23_4, "General", on_off, "on", "", "",
               "This option is to set the compilation mode to DNI or classic."),
    NO_PREFERENCE(CFG_USER_INI_ENUMS_END),
};

#undef PREFERENCE
#undef NO_PREFERENCE
}

#endif
