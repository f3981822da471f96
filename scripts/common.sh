# shellcheck shell=bash disable=SC2034  # the lists of packages are read where this is sourced
# Shared by ./run, ./test, ./bench/run and the other scripts: packages, presets, settings files. Sourced, never run.

say() { printf '== %s\n' "$*"; }
fail() {
    printf 'error: %s\n' "$*" >&2
    exit 1
}

BUILD_PACKAGES="g++ cmake ninja-build ccache qt6-base-dev qt6-websockets-dev qt6-declarative-dev
    qt6-multimedia-dev qt6-l10n-tools libboost-dev nlohmann-json3-dev libsqlite3-dev libcrypt-dev"
RUNTIME_PACKAGES="ca-certificates fonts-dejavu-core qt6-translations-l10n"
TOUR_PACKAGES="xvfb xdotool openbox trayer dbus dbus-daemon at-spi2-core
    python3 python3-gi gir1.2-atspi-2.0"
WIRE_PACKAGES="python3 python3-jsonschema python3-yaml"
LAB_PACKAGES="python3 python3-numpy parallel" # a second opinion on the lab's figures; its chunks
SOAK_PACKAGES="xvfb openbox libxcb-res0-dev python3 python3-numpy"
PIXEL_PACKAGES="xvfb libxcb-xtest0-dev" # a screen that lies in a file, and a mouse for it
FUZZ_PACKAGES="clang libclang-rt-dev lld" # libFuzzer and the sanitizers' run-time libraries; a quick linker
PEERS_PACKAGES="chromium xvfb fonts-dejavu-core libqcustomplot-dev python3" # charts beside the terminal's
PACKAGE_PACKAGES="dpkg-dev git"

CLANG_FORMAT_VERSION=14 # what the sources are laid out with; Debian 12 has it, later ones have not
LINT_PACKAGES="shellcheck codespell appstream desktop-file-utils
    python3 python3-editorconfig python3-jsonschema python3-yaml"
if grep -qs '^VERSION_CODENAME=bookworm' /etc/os-release; then
    LINT_PACKAGES+=" clang-format-$CLANG_FORMAT_VERSION"
fi

# install_packages NAME...: installs with apt what is missing, and says so; does nothing otherwise.
install_packages() {
    local missing=() name as_root=()
    if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
        say "This is no Debian system; make sure you have: $*"
        return
    fi
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'ok installed' || missing+=("$name")
    done
    [ ${#missing[@]} -eq 0 ] && return
    say "Installing with apt: ${missing[*]}"
    if [ "$(id -u)" -ne 0 ]; then
        command -v sudo >/dev/null || fail "run as root, or install sudo, to install: ${missing[*]}"
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get -q update >/dev/null || say "apt-get update failed; trying with the lists at hand"
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get -q -y install --no-install-recommends "${missing[@]}" >/dev/null \
        || fail "apt-get could not install: ${missing[*]}"
}

# install_from_npm FOLDER: copies it into build/ and installs there what its lock file names; says so if it cannot.
install_from_npm() {
    local folder=$1 installed
    installed=build/$(basename "$folder")/node_modules/.package-lock.json
    mkdir -p build
    cp -r "$folder" build/
    if ! command -v npm >/dev/null; then
        say "There is no npm here; the figures of what it would bring will be missing"
    elif ! [ "$installed" -nt "$folder/package-lock.json" ]; then
        # Scripts of packages would fetch more, which nothing here needs.
        (cd "build/$(basename "$folder")" \
            && timeout 180 npm ci --ignore-scripts --no-audit --no-fund --loglevel=error --fetch-retries=1) \
            || say "npm could not install the packages; their figures will be missing"
    fi
}

# build_preset PRESET [TARGET...]: configures when needed and builds, with visible progress. CONFIGURE_OPTIONS go to
# cmake, too.
build_preset() {
    local preset=$1
    shift
    say "Building (preset $preset); the first time takes some minutes"
    # shellcheck disable=SC2086  # options are meant to be split
    cmake --preset "$preset" ${CONFIGURE_OPTIONS:-} >"$(log_file configure)" 2>&1 || {
        cat "$(log_file configure)"
        fail "cmake could not configure the project"
    }
    NINJA_STATUS='[%f/%t] ' cmake --build --preset "$preset" ${1:+--target "$@"} || fail "the build failed"
}

log_file() {
    mkdir -p build
    printf 'build/%s.log' "$1"
}

# set_setting FILE SECTION KEY VALUE: sets one value of the terminal's settings file, kept private.
set_setting() {
    local file=$1 section=$2 key=$3 value=$4 old_umask
    old_umask=$(umask)
    umask 077
    mkdir -p "$(dirname "$file")"
    [ -e "$file" ] || : >"$file"
    awk -v section="[$section]" -v key="$key" -v value="$value" '
        function put() { if (!done) { print key "=" value; done = 1 } }
        /^\[/ { if (inside) put(); inside = ($0 == section); seen = seen || inside }
        inside && index($0, key "=") == 1 { put(); next }
        { print }
        END { if (inside) put(); if (!seen) { print section; put() } }
    ' "$file" >"$file.new" && mv "$file.new" "$file"
    umask "$old_umask"
}
