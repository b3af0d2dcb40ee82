# Makes the plain comments of a header of the C++ front ones that Doxygen reads.
#
# - The comment at the head of the file is that of the file. In it a heading ("Texts", with an indented text below)
#   becomes that of a paragraph. Other indented lines stand as they are.
# - "// ---- reading. More about it." begins a group of members, which ends with the next one or with what is public.

function isGroup() { return $0 ~ /^ *\/\/ ---- / }

!/^ *\/\/( |$)/ || /\/\/ NOLINT/ {
    if (beginsGroup) print indent "/// @{"
    if (/^ *(private|protected):/ || /^};/) {
        if (inGroup) print indent "/// @}\n"
        inGroup = 0
    }
    isPastHead = 1
    inParagraph = beginsGroup = 0
    print
    next
}

{
    match($0, /^ *\/\//)
    indent = substr($0, 1, RLENGTH - 2)
    text = substr($0, RLENGTH + 1)
}

FNR == 1 { text = " @file " FILENAME text }

!isPastHead && text ~ /^ [A-Z][a-z]+$/ {
    text = " @par" text
    inParagraph = 1
}

isGroup() {
    if (inGroup) print indent "/// @}\n"
    sub(/^ ---- /, "", text)
    title = text
    sub(/\. .*/, "", title)
    text = substr(text, length(title) + 2)
    printf "%s", indent "/// @name " title (text == "" ? "" : "\n")
    inGroup = beginsGroup = 1
}

text == "" { inParagraph = 0 }
inParagraph { sub(/^ +/, " ", text) }
!inParagraph && text ~ /^   / { text = "    " text }

text == "" && beginsGroup { print ""; next }

{ print indent "///" text }
