# Turns the headers' plain comments into what Doxygen reads, so that the headers themselves stay plain:
#   - the comment at the top describes the file;
#   - a title between rules opens a chapter, and "// --- Title ---", with the comment below it, a section in it;
#   - a comment describes every declaration up to the next blank line; a section's comment describes its declarations
#     that have none of their own;
#   - indented lines of a comment are set as they stand, unless they continue an item that begins with "- ";
#   - an enumerator is described by its number.

# `words` in code type, and no commands but that.
function as_text(text,    result)
{
    gsub(/[\\@<>#%&]/, "\\\\&", text)
    while (match(text, /`[^`]+`/))
    {
        result = result substr(text, 1, RSTART - 1) "<tt>" substr(text, RSTART + 1, RLENGTH - 2) "</tt>"
        text = substr(text, RSTART + RLENGTH)
    }
    return result text
}

function documentation(text)
{
    return text == "" ? "" : "/**\n" text "*/\n"
}

# Adds a line to the comment being read.
function add_line(line,    indented)
{
    in_item = line ~ /^- / || in_item && line ~ /^  [^ ]/
    indented = line ~ /^  / && !in_item
    if (indented && !preformatted)
        comment = comment "\\verbatim\n"
    else if (!indented && preformatted)
        comment = comment "\\endverbatim\n"
    preformatted = indented
    comment = comment (preformatted ? line : as_text(line)) "\n"
}

function open_group(title, parent)
{
    group = tolower(title)
    gsub(/[^a-z]+/, "_", group)
    printf "/** \\defgroup %s %s\n%s%s*/\n/** @{ */\n", group, title, parent == "" ? "" : "\\ingroup " parent "\n", comment
}

function close_group()
{
    if (group != "")
        print "/** @} */"
    group = section_comment = ""
}

# Called at the line behind a comment.
function end_comment()
{
    if (preformatted)
        comment = comment "\\endverbatim\n"
    preformatted = 0
    if (section != "")
    {
        open_group(section, chapter)
        section_comment = comment
        section = comment = ""
    }
    else if (about_file)
        printf "%s", documentation("\\file\n" comment)
    about_file = 0
}

NR == 1 {
    about_file = 1
}

/^\/\/ -+$/ { # above and below a chapter's title
    if (in_title)
    {
        comment = ""
        open_group(title)
        chapter = group
    }
    else
        close_group()
    in_title = !in_title
    next
}

in_title {
    title = substr($0, 4)
    next
}

/^\/\/ --- .* ---$/ {
    close_group()
    section = substr($0, 8, length($0) - 11)
    comment = ""
    next
}

/^ *\/\/( |$)/ {
    if (used)
        comment = ""
    used = 0
    sub(/^ *\/\/ ?/, "")
    add_line($0)
    next
}

{
    end_comment()
}

/^$/ {
    comment = ""
    print
    next
}

/^template <>$/ {
    instance = 1
    next
}

instance && /^class / {
    print "template <>"
    instance = 0
}

instance { # of a function that is described as a template already
    instance = !/;$/
    next
}

/^ +[A-Z_0-9]+ = [0-9]+,?$/ {
    number = $NF
    sub(/,$/, "", number)
    print $0 " /**< " number ". */"
    next
}

{
    sub(/; +\/\/.*$/, ";")
    if (!continued && !/^ *[{}#]/ && !/:$/)
        printf "%s", documentation(comment == "" && !/^ / ? section_comment : comment)
    used = 1
    continued = !/[;:{}]$/ && !/^#/
    if (/^ *{/)
        comment = ""
    print
}

END {
    close_group()
}
