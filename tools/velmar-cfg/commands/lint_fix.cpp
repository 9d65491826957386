// Applies the suggestions of lint (lint/fixes.h) to files by way of the edit of a file (base/file_edit.h).
//
// The layers are fixed one by one, each among the others as they are by then. The plan of an edit puts the text that
// the file has at that moment into its layer, with secrets hidden, and fixes it there; the secrets then come back where
// their marks are. A file that cannot be written is noted, and the next one is fixed. One that was changed is read
// again, so that all that follows is about its new text.
//
// Cost: that of the fixes for each file, with a run of the rules over all layers in each round. The old and the new
// bytes of all files are kept until the end.
#include "tools/velmar-cfg/commands/lint_fix.h"

#include <algorithm>
#include <memory>
#include <set>
#include <utility>

#include "tools/velmar-cfg/base/file_place.h"
#include "tools/velmar-cfg/base/input_file.h"
#include "tools/velmar-cfg/base/json_writer.h"
#include "tools/velmar-cfg/commands/diagnostics.h"
#include "tools/velmar-cfg/lint/fixes.h"
#include "tools/velmar-cfg/settings/secrets.h"
#include "tools/velmar-cfg/settings/settings_difference.h"

LAYERS FILE_FIXES::fix(LAYERS layers)
{
    std::set<std::string> done; // a file may be several layers
    for (std::size_t index = 0; index < layers.size(); ++index)
    {
        // What could be read of a broken file must not become all of it.
        if (is_file(layers[index].kind) && layers[index].source->problem.empty() &&
            done.insert(real_path(layers[index].source->path)).second)
            fix_file(layers, index);
    }
    return layers;
}

void FILE_FIXES::fix_file(LAYERS& layers, std::size_t index)
{
    const std::string path = layers[index].source->path;
    const auto hold = [&](const std::string& bytes)
    {
        for (LAYER& layer : layers)
        {
            if (is_file(layer.kind) && real_path(layer.source->path) == real_path(path))
                layer.source = std::make_shared<const INPUT_FILE>(INPUT_FILE{layer.source->path, bytes, {}});
        }
    };
    FIXED_TEXT fixed{};
    const auto plan = [&](const FILE_EDIT& file)
    {
        refuse_utf_16(file.path, file.before);
        // By now it may be another text than was read. What the user is shown is what is fixed: with secrets hidden.
        const std::string hidden =
            hide_in_settings_text(file.before, *tool.options.scope.secrets).value_or(file.before);
        hold(hidden);
        fixed = fix_findings(layers, index, ignored);
        return PLANNED_BYTES{with_secrets_shown(fixed.text, hidden, file.before),
                             fixed.refusal.empty() ? "" : file.path + ": " + fixed.refusal};
    };
    try
    {
        const auto make = options.dry_run ? try_file_edit : edit_file;
        FILE_EDIT edit = make(path, plan, options.permissions, options.patience());
        if (edit.changed())
            hold(fixed.text);
        files.push_back({std::move(edit), fixed.fixes});
    }
    catch (const TOOL_ERROR& error)
    {
        // The other files can be fixed all the same, and some are perhaps: they are to be named.
        files.push_back({{path, false, {}, {}, error.what()}, 0, error.exit_code});
    }
    if (files.back().edit.changed() && !options.dry_run)
    {
        tool.files.forget(path); // what is said of it from now on is about the new text
        tool.files.read(path);
    }
}

void FILE_FIXES::show_differences() const
{
    SECRETS& secrets = *tool.options.scope.secrets;
    if (!tool.options.json)
    {
        for (const FIXED_FILE& file : files)
            write_difference(shown_settings_difference(file.edit, secrets), tool.out);
        return;
    }
    answer_in_json(tool,
                   [&](JSON_WRITER& out)
                   {
                       out.list(files,
                                [&secrets](JSON_WRITER& row, const FIXED_FILE& file)
                                {
                                    row.begin_object();
                                    row.field("path", file.edit.path);
                                    row.field("changed", file.edit.changed());
                                    row.field_or_null("refusal", file.edit.refusal);
                                    row.field("fixes", file.fixes);
                                    row.field("difference", shown_settings_difference(file.edit, secrets));
                                    row.end_object();
                                });
                   });
}

EXIT_CODE FILE_FIXES::finish() const
{
    if (options.dry_run)
        show_differences();
    EXIT_CODE end = EXIT_CODE::FINE;
    for (const FIXED_FILE& file : files)
    {
        if (!file.edit.refusal.empty())
        {
            complain(file.edit.refusal);
            end = std::max(end, file.exit_code_of_refusal);
        }
        else if (file.edit.changed() && !options.dry_run)
            complain(file.edit.path + ": " + std::to_string(file.fixes) +
                     (file.fixes == 1 ? " line was" : " lines were") + " replaced");
    }
    return end;
}
