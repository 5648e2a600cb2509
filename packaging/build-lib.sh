# Shared by ./run and ./test: configures a preset's build folder once and builds it.

# build PRESET [TARGET...]: configures where needed, then builds.
build() {
    local preset=$1
    shift
    local dir=build-$preset
    [ "$preset" = release ] && dir=build
    local options=()
    [ -n "${TOMELET_WERROR:-}" ] && options+=("-DTOMELET_WERROR=$TOMELET_WERROR")
    if [ ! -f "$dir/build.ninja" ] || [ ${#options[@]} -gt 0 ]; then
        cmake --preset "$preset" "${options[@]}" >&2
    fi
    cmake --build "$dir" ${1:+--target "$@"} >&2
}
