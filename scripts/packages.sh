# Sourced by ./run and ./check: installs packages that are missing, and builds.

# install_missing_packages LIST...: the packages of these lists.
install_missing_packages() {
    local wanted missing as_root=()
    wanted=$(grep -hv '^#' "$@" | sort -u)
    missing=$(comm -23 <(echo "$wanted") \
        <(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null |
            sed -n 's/^installed //p' | sort -u))
    [ -z "$missing" ] && return
    [ "$(id -u)" -eq 0 ] || as_root=(sudo)
    echo "Installing" $missing >&2
    "${as_root[@]}" apt-get update -q >&2
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends $missing >&2
}

# build_programs PRESET: what a user starts. A new build tree is made without tests and benchmarks,
# whose packages may not be there.
build_programs() {
    [ -f "build/$1/build.ninja" ] ||
        cmake --preset "$1" -DCMDTEXTURE_TESTS=OFF -DCMDTEXTURE_BENCH=OFF >&2
    cmake --build --preset "$1" --target programs >&2
}

# build_all PRESET [TARGET [OPTION...]]: everything, or a target, in a build tree that ./run may have
# made; configured anew when options for CMake are given.
build_all() {
    local cache=build/$1/CMakeCache.txt
    if [ ! -f "build/$1/build.ninja" ]; then
        cmake --preset "$1" "${@:3}" >&2
    elif grep -q '^CMDTEXTURE_TESTS:BOOL=OFF' "$cache"; then
        cmake --preset "$1" -DCMDTEXTURE_TESTS=ON -DCMDTEXTURE_BENCH=ON "${@:3}" >&2
    elif [ $# -gt 2 ]; then
        cmake --preset "$1" "${@:3}" >&2
    fi
    cmake --build --preset "$1" --target "${2:-all}" >&2
}
