# SPDX-License-Identifier: BSD-3-Clause
# For scripts/packages: what the Debian packages must hold, and a fresh Debian to try them in.
# shellcheck shell=bash disable=SC2034,SC2154  # the scripts use the list; setup.sh has qt

package_packages=(dpkg-dev file pkgconf make)

# The libraries, as <name> <folder of its headers>.
package_libraries=("HostApi hostapi" "FormKit formkit" "Ftp formkit/FtpClient"
    "FtpTls formkit/FtpTls" "FtpJobs formkit/FtpJobs" "State formkit" "EmbeddedHost embeddedhost")

# What the names of this Qt's packages begin with.
stem=libformkit-qt$qt

version_of_tree() {
    sed -nE 's/^project\(.* VERSION ([0-9.]+).*/\1/p' CMakeLists.txt
}

# expected_files <package> <libdir>: the files that it must hold, except its licence and changes.
expected_files() {
    local lib=/usr/$2 include=/usr/include/FormKitQt$qt pair name folder version
    version=$(version_of_tree)
    case $1 in
        "$stem-doc")
            { git ls-files docs 'examples/*/*'; printf '%s\n' {LICENSE,README.md,C*.md} \
                hostapi formkit embeddedhost; } | sed "s,^,/usr/share/doc/formkit-qt$qt/,"
            return ;;
        "$stem-designer")
            echo "/usr/lib/*/qt$qt/plugins/designer/formkitdesigner.so"
            return ;;
        "$stem-dev")
            echo "/usr/bin/formkit-mkdb$([ "$qt" -eq 5 ] || echo "-qt$qt")"
            echo "$include/formkit/formkit_version.h"
            printf "$lib/cmake/FormKitQt$qt/FormKitQt$qt%s.cmake\n" Config ConfigVersion Targets
            echo "$lib/cmake/FormKitQt$qt/FormKitQt${qt}Targets-*.cmake" ;;
    esac
    for pair in "${package_libraries[@]}"; do
        read -r name folder <<<"$pair"
        if [ "$1" = "$stem-dev" ]; then
            echo "$lib/libFormKitQt$qt$name.so"
            echo "$lib/pkgconfig/FormKitQt$qt$name.pc"
            git ls-files "$folder/*.h" | grep -E "^$folder/[^/]+$" | grep -v '_p\.h$' |
                sed "s,^,$include/,"
            echo "$include/$folder/*_export.h"
        else
            printf '%s\n' "$lib/libFormKitQt$qt$name.so."{"${version%%.*}","$version"}
        fi
    done
}

# held_files <deb>: the files that it holds, in the notation of expected_files.
held_files() {
    dpkg-deb --fsys-tarfile "$1" | tar -t | grep -v '/$' |
        sed -E 's,^\.,,; s,(Targets-)[a-z]+(\.cmake)$,\1*\2,; s,/[a-z]+(_export\.h)$,/*\1,
            s,^(/usr/lib/)[^/]+(/qt[56]/),\1*\2,'
}

# check_depends <package> <deb> <extended regular expression>...: each must match its Depends.
check_depends() {
    local package=$1 depends wanted
    depends=$(dpkg-deb --field "$2" Depends)
    shift 2
    for wanted in "$@"; do
        grep -qE "(^|, )$wanted(,|$)" <<<"$depends" && continue
        echo "$package depends on: $depends; missing: $wanted" >&2
        return 1
    done
}

# check_package <package> <deb> <libdir>
check_package() {
    local documents=/usr/share/doc/$1 difference
    difference=$(diff \
        <({ expected_files "$1" "$3"; printf '%s\n' "$documents"/{copyright,changelog.gz}; } | sort -u) \
        <(held_files "$2" | sort -u)) || {
        echo "$1 (< expected, > held):"$'\n'"$difference" >&2
        return 1
    }
    local same core='libqt5core5a \(>= 5\.15[^)]*\)' headers='qtbase5-dev \(>= 5\.15\)'
    if [ "$qt" -eq 6 ]; then
        core='libqt6core6 \(>= 6\.4[^)]*\)' headers='qt6-base-dev \(>= 6\.4\)'
    fi
    same="$stem-0 \(= $(version_of_tree | sed 's/\./\\./g')\)"
    case $1 in
        "$stem-0")
            check_depends "$1" "$2" "$core" "libqt${qt}widgets$qt [^,]*" \
                "libqt${qt}sql$qt [^,]*" "libqt${qt}sql$qt-sqlite" 'libxkbcommon0 [^,]*' \
                'libssl3 [^,]*' 'libc6 [^,]*' &&
                dpkg-deb --ctrl-tarfile "$2" | tar -xO ./shlibs |
                grep -q "^libFormKitQt${qt}FormKit 0 $stem-0" ;;
        "$stem-dev") check_depends "$1" "$2" "$same" "$headers" ;;
        "$stem-designer") check_depends "$1" "$2" "$same" "libqt${qt}designer$qt [^,]*" ;;
    esac
}

# check_packages <folder> <libdir>
check_packages() {
    local deb package failures=0 count=0
    for deb in "$1"/*.deb; do
        package=$(dpkg-deb --field "$deb" Package)
        count=$((count + 1))
        if check_package "$package" "$deb" "$2"; then
            echo "right: $(basename "$deb"): $(held_files "$deb" | wc -l) files"
        else
            failures=$((failures + 1))
        fi
    done
    for package in "$stem"-{0,dev,designer,doc}; do
        compgen -G "$1/${package}_*.deb" >/dev/null && continue
        echo "no package $package" >&2
        failures=$((failures + 1))
    done
    [ "$failures" -eq 0 ] && [ "$count" -gt 0 ]
}

# try_in_fresh_root <folder> [<folder>]: installs the packages in a Debian with nothing else, so that a
# missing dependency shows, and builds and runs the consumer of tests/package there. The packages in a
# second folder, for the other Qt, are installed and removed beside them.
try_in_fresh_root() {
    ensure_packages debootstrap
    local root mirror
    root=$(mktemp -d)
    # shellcheck disable=SC2064  # the folder of now
    trap "rm -rf --one-file-system '$root' '$root.log'" EXIT
    # shellcheck disable=SC2016  # apt's own variable
    mirror=$(apt-get indextargets --format '$(SITE)' 'Created-By: Packages' | head -n 1)
    debootstrap --variant=minbase bookworm "$root" "$mirror" >"$root.log" || {
        tail -n 20 "$root.log" >&2
        return 1
    }
    mkdir "$root/tmp/other"
    cp "$1"/*.deb "$root/tmp/"
    [ $# -lt 2 ] || cp "$2"/*.deb "$root/tmp/other/"
    cp -r tests/package/consumer "$root/tmp/"
    # Takes from this machine's environment only what the network needs. A compiler's launcher, say, is
    # not there.
    local environment
    mapfile -t environment < <(env | grep -iE '^[a-z]+_proxy=')
    environment+=("qt=$qt" PATH=/usr/sbin:/usr/bin:/sbin:/bin HOME=/root)
    # shellcheck disable=SC2016  # the inner shell's variables
    env -i "${environment[@]}" chroot "$root" /bin/bash -euo pipefail -c '
        export DEBIAN_FRONTEND=noninteractive LC_ALL=C.UTF-8 QT_QPA_PLATFORM=offscreen
        quiet() { "$@" >/tmp/log 2>&1 || { tail -n 30 /tmp/log >&2; return 1; }; }
        quiet apt-get install -y --no-install-recommends "/tmp/libformkit-qt$qt"-0_*.deb
        for library in $(dpkg -L "libformkit-qt$qt-0" | grep "so\.0$"); do
            if ldd "$library" | grep "not found"; then exit 1; fi
        done
        quiet apt-get install -y --no-install-recommends $(find /tmp -name "*.deb")
        quiet apt-get install -y --no-install-recommends g++ cmake make pkgconf
        [ "$qt" -eq 5 ] || quiet apt-get install -y --no-install-recommends qt6-scxml-dev
        quiet make -C /tmp/consumer "QT=$qt"
        /tmp/consumer/consumer
        quiet cmake -S /tmp/consumer -B /tmp/build -D "PACKAGE=FormKitQt$qt"
        quiet cmake --build /tmp/build --target consumer
        /tmp/build/consumer
        quiet apt-get remove -y "libformkit-qt[56]-0"
        if find /usr/lib /usr/include -name "*FormKitQt*" | grep .; then exit 1; fi'
    echo "right: installed, used and removed in a fresh Debian"
}
