# SPDX-License-Identifier: BSD-3-Clause
# Shared by the steps of scripts/verify.d.
# shellcheck shell=bash disable=SC2154  # setup.sh has the lists

# The bash scripts of the tree.
shell_scripts() {
    git ls-files -co --exclude-standard | while read -r file; do
        case $file in
            *.sh) echo "$file" ;;
            *) [ -f "$file" ] && head -c 60 "$file" | grep -aqE '^#!.*\bbash' && echo "$file" ;;
        esac
    done
    return 0
}

# run_ctest <arguments>: runs the tests and counts them.
run_ctest() {
    local status=0 log
    log=$(mktemp)
    ctest --parallel "$(nproc)" "$@" | tee "$log" || status=$?
    sed -nE 's/^.*% tests passed, ([0-9]+) tests failed out of ([0-9]+)/counts: \2 tests, \1 failed/p' \
        "$log"
    rm -f "$log"
    return "$status"
}

# configure_clang: makes clang's compile commands, and the files that moc and uic write.
configure_clang() {
    ensure_packages "${build_packages[@]}" "${run_packages[@]}" clang clang-tidy libbenchmark-dev \
        qttools5-dev
    cmake --preset lint -DFORMKIT_BUILD_BENCH=ON -DFORMKIT_BUILD_FUZZERS=ON
}

# The C++ sources of the tree that the given build folder compiles.
compiled_sources() {
    comm -12 <(git ls-files -co --exclude-standard '*.cpp' | sed "s,^,$PWD/," | sort) \
        <(sed -nE 's/^ *"file": "(.*)",?$/\1/p' "$1/compile_commands.json" | sort -u)
}
