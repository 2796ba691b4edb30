# SPDX-License-Identifier: BSD-3-Clause
# Shared by the scripts of this folder: installs missing packages, configures and builds.
# shellcheck shell=bash disable=SC2034  # the scripts use the lists

# A script whose first argument is --qt6 works with Qt 6, in build folders of its own, and so do
# those that it calls.
if [ "${1-}" = --qt6 ]; then
    export FORMKIT_QT=6
    shift
fi
qt=${FORMKIT_QT:-5}

# The packages for building, and those for running as well; those for the plug-in of Qt Designer:
# headers, Designer itself, and its reader of icons; and those for Wayland.
build_packages=(g++ cmake ninja-build libxkbcommon-dev libxkbcommon-x11-dev libssl-dev)
run_packages=("libqt${qt}sql${qt}-sqlite" fonts-dejavu-core)
if [ "$qt" -eq 5 ]; then
    build_packages+=(qtbase5-dev qttools5-dev qttools5-dev-tools)
    designer_packages=(qttools5-dev qttools5-dev-tools libqt5svg5)
    wayland_packages=(weston qtwayland5)
else
    build_packages+=(qt6-base-dev qt6-scxml-dev qt6-tools-dev qt6-tools-dev-tools qt6-l10n-tools)
    designer_packages=(qt6-tools-dev libqt6opengl6-dev designer-qt6 libqt6svg6)
    wayland_packages=(weston qt6-wayland)
fi

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

# folder_of <preset>: where it is built.
folder_of() {
    case $qt-$1 in
        5-*) echo "build/$1" ;;
        6-dev) echo build/qt6 ;;
        *) echo "build/$1-qt6" ;;
    esac
}

# build <preset> [target...]: builds in the preset's folder; configures that folder if nothing has done
# so before. A compiler cache is used if there is one.
build() {
    local preset=$1 folder
    shift
    folder=$(folder_of "$preset")
    if command -v ccache >/dev/null; then
        export CMAKE_CXX_COMPILER_LAUNCHER=${CMAKE_CXX_COMPILER_LAUNCHER-ccache}
    fi
    [ -f "$folder/build.ninja" ] || cmake --preset "$preset" -B "$folder" -DQT_MAJOR_VERSION="$qt"
    cmake --build "$folder" --parallel "$(nproc)" ${1:+--target "$@"}
}
