# Filters a header for Doxygen. A comment in the headers is about all declarations that follow it
# without an empty line or another comment; Doxygen is told so by a group.

function depth(line,    copy) {
    gsub(/"([^"\\]|\\.)*"|'([^'\\]|\\.)'|\/\/.*/, "", line)
    copy = line
    return gsub(/[({]/, "", copy) - gsub(/[)}]/, "", line)
}

function finish() {
    if (inGroup)
        print indent "/// @}"
    inGroup = 0
}

function start(line) {
    match(line, /^ */)
    indent = substr(line, 1, RLENGTH)
    print indent "/// @{"
    inGroup = 1
    level = 0
}

{
    isComment = $0 ~ /^ *\/\/\//
    if (inGroup && level == 0 && (isComment || $0 ~ /^ *($|}|[a-z]+:$|#)/))
        finish()
    # What a template is of stands on a later line.
    if (wasComment && $0 ~ /^ *(template|requires)/ && $0 !~ /[;{}]$/) {
        held = held $0 "\n"
        next
    }
    if (!isComment && wasComment && $0 !~ /^ *(class|struct|enum|namespace|union|friend|using|typedef|$)/)
        start($0)
    printf "%s", held
    held = ""
    if (inGroup)
        level += depth($0)
    wasComment = isComment
    print
}

END { finish() }
