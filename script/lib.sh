# Shared by the scripts of this folder; to be sourced.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
name=$(basename "$0")

# One clear line, then the end.
fail()
{
    echo "$name: $1" >&2
    exit "${2:-1}"
}

# Prints the comment at the head of the script, where --help stands among the arguments.
help_wanted()
{
    local argument
    for argument in "$@"; do
        [[ $argument == --help || $argument == -h ]] || continue
        sed -n '2,/^[^#]/{s/^# \{0,1\}//p}' "$0"
        exit 0
    done
}

no_arguments()
{
    [[ $# -eq 0 ]] || fail "unknown argument '$1' (--help says what there is)" 2
}

# build PRESET [ARGUMENT]...: configures and builds; the arguments go to the build tool.
build()
{
    local preset=$1
    shift
    (cd "$root" && cmake --preset "$preset" >"$(configure_log "$preset")" 2>&1) || {
        cat "$(configure_log "$preset")" >&2
        fail "the preset $preset could not be configured"
    }
    (cd "$root" && cmake --build --preset "$preset" "$@")
}

configure_log()
{
    mkdir -p "$root/build"
    echo "$root/build/configure-$1.log"
}

run_tests()
{
    (cd "$root" && ctest --preset "$1")
}
