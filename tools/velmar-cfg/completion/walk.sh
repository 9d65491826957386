# What a command line asks for at a place, for bash and zsh alike.

# _velmar_cfg_walk WORD...: takes the words that stand before the place, without the program's. Sets
#   named      the command, such as "prefs set"
#   arguments  how many of its arguments there are
#   key        the first of them
#   wanted     what the option before the place takes, if it takes something
#   ended      whether "--" has ended the options
_velmar_cfg_walk()
{
    local word candidate
    named='' arguments=0 key='' wanted='' ended=''
    for word do
        if [ -n "$wanted" ]; then
            wanted=''
            continue
        fi
        if [ -z "$ended" ]; then
            case $word in
                --) ended=1; continue ;;
                -*=*) continue ;;
                -*) wanted=$(_velmar_cfg_option_takes "$named" "$word"); continue ;;
            esac
            [ "$named $word" != ' help' ] || continue # what follows are a command's words
            candidate=${named:+$named }$word
            if _velmar_cfg_is_command "$candidate"; then
                named=$candidate
                continue
            fi
        fi
        [ "$arguments" -gt 0 ] || key=$word
        arguments=$((arguments + 1))
    done
}

# _velmar_cfg_kind_at WORD: what is to be completed when WORD stands at the place.
_velmar_cfg_kind_at()
{
    if [ -n "$wanted" ]; then
        printf '%s\n' "$wanted"
        return
    fi
    if [ -z "$ended" ]; then
        case $1 in
            --*=*) _velmar_cfg_option_takes "$named" "${1%%=*}"; return ;;
            -*) printf '%s\n' options; return ;;
        esac
        if [ -n "$(_velmar_cfg_commands "$named")" ]; then
            printf '%s\n' commands
            return
        fi
    fi
    _velmar_cfg_argument_is "$named" "$arguments"
}

# _velmar_cfg_candidates KIND: one a line, in some kinds with a tabulator and a description behind it. Nothing for kinds
# that the shell itself completes, "file" and "directory".
_velmar_cfg_candidates()
{
    case $1 in
        commands) _velmar_cfg_commands "$named" ;;
        options) _velmar_cfg_options "$named" ;;
        variable) _velmar_cfg_variables ;;
        key) _velmar_cfg_keys ;;
        value) _velmar_cfg_values "$key" ;;
        words:*) printf '%s\n' "${1#words:}" | tr ' ' '\n' ;;
    esac
}
