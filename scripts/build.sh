# Shared by the scripts, which source it from the root of the project.

jobs=${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}

# karmp_quietly <log file> <command...>: runs a command and shows its output only if it fails.
karmp_quietly() {
    local log=$1
    shift
    mkdir -p "$(dirname "$log")"
    if ! "$@" >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        echo "failed: $*" >&2
        return 1
    fi
}

# karmp_configure <preset> [cmake arguments...]
karmp_configure() {
    local preset=$1
    shift
    karmp_quietly "build/$preset/configure.log" cmake --preset "$preset" "$@"
}

# karmp_build <preset> [cmake configure arguments...]: configures and builds.
karmp_build() {
    karmp_configure "$@" &&
        karmp_quietly "build/$1/build.log" cmake --build --preset "$1" --parallel "$jobs"
}
