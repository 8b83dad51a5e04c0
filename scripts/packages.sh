# Sourced by ./run and ./check: installs the packages of packages.txt that are missing, and builds.

install_missing_packages() {
    local wanted missing as_root=()
    wanted=$(grep -v '^#' packages.txt | sort)
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

# build PRESET [TARGET...]: configures once, then builds what changed.
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" >&2
    cmake --build --preset "$preset" ${1:+--target "$@"} >&2
}
