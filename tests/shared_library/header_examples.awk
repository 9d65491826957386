# Writes a source of the examples in the comments of the headers that are its arguments, to be compiled with them.
#
# An example is the indented lines below a comment line such as "Example:" or "Example, at the end of a run:". It becomes the
# body of a function. One below "Example of an implementation" becomes text at global scope. The prelude declares what a
# host would have: route, print and warn.

function end_example()
{
    if (kind == "body")
        print "}"
    if (kind == "announced")
        print "#error an example without a line of code in " announced
    kind = ""
}

FNR == 1 {
    end_example()
}

/^ *\/\/ Example/ {
    end_example()
    kind = "announced"
    announced = FILENAME ":" FNR
    of_implementation = /implementation/
    next
}

kind != "" && /^ *\/\/     / {
    if (kind == "announced") {
        kind = of_implementation ? "implementation" : "body"
        if (kind == "body")
            printf "void example_%d()\n{\n", ++count
        else
            ++count
        printf "#line %d \"%s\"\n", FNR, FILENAME
    }
    sub(/^ *\/\/     /, "")
    print
    next
}

kind != "" && /^ *\/\/$/ {
    if (kind != "announced")
        print ""
    next
}

{
    end_example()
}

END {
    end_example()
    printf "#if !(%d >= 26)\n#error only %d examples were found\n#endif\n", count, count
}
