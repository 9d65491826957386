# Writes the source of one program of docs/guide.md, -v program=NAME: the block marked "cpp" whose first line is "// NAME.cpp".

/^```/ {
    inside = 0
    first = $0 == "```cpp"
    next
}

first {
    first = 0
    inside = $0 == "// " program ".cpp"
    if (inside) {
        found = 1
        printf "#line %d \"%s\"\n", FNR, FILENAME
    }
}

inside

END {
    if (!found)
        printf "#error the guide has no program %s\n", program
}
