#!/usr/bin/env bash
# Shows velmar-cfg and the example hosts at work on the sample project and preferences.
# Usage: examples/run.sh BUILD_DIRECTORY
set -euo pipefail

if [ $# -ne 1 ] || [ ! -d "$1/bin" ]; then
    echo "usage: $0 BUILD_DIRECTORY (one that was built)" >&2
    exit 2
fi
PATH=$(cd "$1/bin" && pwd):$PATH
cd "$(dirname "$0")"

# Nobody's own settings take part.
unset VELMAR_INI VELMAR_INI_DISABLED VELMAR_INI_VARS APPENDED_VELMAR_INI VELMAR2_INI
HOME=$(mktemp -d)
export HOME
trap 'rm -rf "$HOME"' EXIT

title()
{
    printf '\n==== %s\n' "$1"
}

show()
{
    printf '\n$'
    printf ' %q' "$@"
    printf '\n'
    "$@"
}

if command -v velmar-cfg >/dev/null; then
    title "velmar-cfg on the sample project"
    show velmar-cfg --project project list
    show velmar-cfg --project project get max_fanout
    show env APPENDED_VELMAR_INI=appended.ini velmar-cfg --project project get max_fanout
    show velmar-cfg --project project --regtest get route_effort
    show env "VELMAR_INI_VARS=max_fanout=20;route_effort=9" velmar-cfg --project project --regtest list
fi

if command -v velmar-cfg >/dev/null; then
    title "A snapshot, and what has changed since"
    show velmar-cfg --project project snapshot -o "$HOME/before.json"
    show env VELMAR_INI_VARS=max_fanout=20 velmar-cfg --project project diff "$HOME/before.json" || true
fi

title "A host: settings read, variables asked for and set, what the run depended on"
show example_host project
show env APPENDED_VELMAR_INI=appended.ini VELMAR_INI_VARS=banner=inline \
    example_host --regtest --run-report "$HOME/run.json" project

if command -v velmar-cfg >/dev/null; then
    title "What that run depended on"
    show velmar-cfg run-report "$HOME/run.json"
fi

title "Preferences kept over three releases: read, carried over, assigned and saved (a copy)"
cp preferences/velmar2.ini "$HOME"
export VELMAR2_INI=$HOME
show cat "$HOME/velmar2.ini"
show example_preferences
show cat "$HOME/velmar2.ini"
