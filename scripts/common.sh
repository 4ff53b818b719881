# What run, test and .ci/run share. Sourced by bash, in the root of the project.

fail() {
    echo "tendel: $*" >&2
    exit 1
}

require_debian_12() {
    local ID= VERSION_ID= PRETTY_NAME=
    [ -r /etc/os-release ] && . /etc/os-release
    [ "$ID" = debian ] && [ "$VERSION_ID" = 12 ] ||
        fail "this needs Debian 12 (bookworm), and here runs ${PRETTY_NAME:-an unknown system}"
}

# packages_of GROUP…: the names listed in scripts/packages under these groups.
packages_of() {
    awk -v groups=" $* " '
        /^\[/ { group = substr($0, 2, length($0) - 2); next }
        /^[^#]/ && index(groups, " " group " ")' scripts/packages
}

# install_missing GROUP…: installs the packages of these groups that are not there yet.
install_missing() {
    local missing=() name as_root=()
    for name in $(packages_of "$@"); do
        [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] ||
            missing+=("$name")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    if [ "$(id -u)" != 0 ]; then
        command -v sudo >/dev/null ||
            fail "installing needs root or sudo; missing packages: ${missing[*]}"
        as_root=(sudo)
    fi
    echo "Installing ${missing[*]}"
    "${as_root[@]}" apt-get -qq update || fail "couldn't read the package lists"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -qq install --yes --no-install-recommends "${missing[@]}" >"$install_log" 2>&1 || {
        tail -n 20 "$install_log" >&2
        fail "couldn't install the packages"
    }
}

# build PRESET: configures and builds as CMakePresets.json says.
build() {
    cmake --preset "$1" && cmake --build --preset "$1" || fail "the build \"$1\" failed"
}

mkdir -p build
install_log=build/install.log
