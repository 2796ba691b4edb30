# SPDX-License-Identifier: BSD-3-Clause
# Shared by the scripts of this folder: installs missing packages, configures and builds.
# shellcheck shell=bash disable=SC2034  # the scripts use the lists

# The packages for building, and those for running as well.
build_packages=(g++ cmake ninja-build qtbase5-dev qttools5-dev qttools5-dev-tools
    libxkbcommon-dev libxkbcommon-x11-dev libssl-dev)
run_packages=(libqt5sql5-sqlite fonts-dejavu-core)
# The packages for the plug-in of Qt Designer: headers, Designer itself, and its reader of icons.
designer_packages=(qttools5-dev qttools5-dev-tools libqt5svg5)

# ensure_packages <package...>: installs those that are missing, as root or through sudo.
ensure_packages() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q '^install ok installed$' ||
            missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0

    local as_root=() errors
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "Missing packages: ${missing[*]}. Install them as root, or install sudo." >&2
            return 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    # apt waits by itself while another installation runs, but not while another apt reads the lists.
    until errors=$("${as_root[@]}" env LC_ALL=C apt-get -qq update 2>&1); do
        if ! grep -q 'Could not get lock' <<<"$errors"; then
            echo "$errors" >&2
            return 1
        fi
        sleep 2
    done
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -qq -o DPkg::Lock::Timeout=1800 \
        install -y --no-install-recommends "${missing[@]}" >/dev/null
}

# build <preset> [target...]: builds in build/<preset>; configures that folder if nothing has done so
# before.
build() {
    local preset=$1
    shift
    [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset"
    cmake --build "build/$preset" --parallel "$(nproc)" ${1:+--target "$@"}
}
