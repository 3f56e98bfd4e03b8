# Shared by the scripts, which source it from the root of the project.

jobs=${CMAKE_BUILD_PARALLEL_LEVEL:-$(nproc)}

# karmp_build <preset> [cmake configure arguments...]: configures and builds, in silence unless
# something fails.
karmp_build() {
    local preset=$1 log=build/$1/build.log
    shift
    mkdir -p "build/$preset"
    if ! { cmake --preset "$preset" "$@" &&
        cmake --build --preset "$preset" --parallel "$jobs"; } >"$log" 2>&1 </dev/null; then
        cat "$log" >&2
        echo "build: failed ($preset)" >&2
        return 1
    fi
}
