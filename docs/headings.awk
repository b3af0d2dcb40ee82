# Adds to each heading of a Markdown file, except its title, the identifier by which other Markdown readers let links
# refer to it; Doxygen knows only identifiers that are written out. The name of the file goes before each one, because
# all pages share one namespace. In docs/file-format.md:
#
#   ## The child "UI"                    ## The child "UI" {#file-format_the-child-ui}
#   [Bytes](#bytes)                      [Bytes](#file-format_bytes)
#   [Bytes](docs/file-format.md#bytes)   [Bytes](#file-format_bytes)

FNR == 1 {
    page = FILENAME
    sub(/.*\//, "", page)
    sub(/\.md$/, "", page)
}

/^ *```/ { isCode = !isCode }

!isCode && /^###* / {
    name = tolower($0)
    sub(/^#* */, "", name)
    gsub(/[^a-z0-9 _-]/, "", name)
    gsub(/ /, "-", name)
    if (used[name]++) name = name "-" used[name] - 1
    print $0 " {#" page "_" name "}"
    next
}

!isCode {
    while (match($0, /\]\([A-Za-z0-9_.\/-]*#[a-z0-9_-]*\)/)) {
        target = substr($0, RSTART + 2, RLENGTH - 3)
        file = target
        sub(/#.*/, "", file)
        sub(/.*\//, "", file)
        sub(/\.md$/, "", file)
        sub(/.*#/, "", target)
        $0 = substr($0, 1, RSTART - 1) "](\001" (file == "" ? page : file) "_" target ")" substr($0, RSTART + RLENGTH)
    }
    gsub(/\001/, "#")
}

{ print }
