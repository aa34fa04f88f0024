help_lint() {
    cat <<'END'
./dev lint [--all]

Checks the formatting of all C++ files, that every public header compiles on its own, the
architecture, and with clang-tidy the files that differ from the main branch (--all: every file).
END
}

# The .cpp files to read: those changed since the branch left main, and those not committed yet.
changed_sources() {
    local base
    base=$(git merge-base HEAD origin/main 2>/dev/null || git merge-base HEAD main 2>/dev/null || git rev-parse HEAD)
    {
        git diff --name-only --diff-filter=d "$base" -- '*.cpp'
        git ls-files --others --exclude-standard -- '*.cpp'
    } | sort -u
}

# Only files that the build knows have the flags that clang-tidy needs.
known_to_the_build() {
    while read -r file; do
        ! grep -qF "\"$PWD/$file\"" build/dev/compile_commands.json || printf '%s\n' "$file"
    done
}

dev_lint() {
    source Tools/dev/format.sh
    local failed=() sources
    need build test lint
    say "Formatting"
    cxx_files | xargs -r clang-format-19 --dry-run --Werror || failed+=("formatting (./dev format mends it)")

    say "Headers that stand alone"
    cmake --preset dev -DQUILLORA_VERIFY_HEADERS=ON >build/configure.log 2>&1 || fail "the dev preset could not be configured"
    cmake --build build/dev --parallel "$(jobs_that_fit)" --target all_verify_interface_header_sets ||
        failed+=("a header does not compile on its own")
    cmake --preset dev -DQUILLORA_VERIFY_HEADERS=OFF >build/configure.log 2>&1

    say "Architecture"
    ctest --preset dev -L architecture </dev/null || failed+=("architecture")

    say "clang-tidy"
    if [ "${1:-}" = --all ]; then
        mapfile -t sources < <(git ls-files -- '*.cpp' | known_to_the_build)
    else
        mapfile -t sources < <(changed_sources | known_to_the_build)
    fi
    note "${#sources[@]} files"
    if [ ${#sources[@]} -gt 0 ]; then
        printf '%s\0' "${sources[@]}" |
            xargs -0 -n 4 -P "$(jobs_that_fit)" clang-tidy-19 -p build/dev --quiet || failed+=("clang-tidy")
    fi
    [ ${#failed[@]} -eq 0 ] || fail "lint found: $(printf '%s; ' "${failed[@]}")"
    note "Nothing to complain about."
}
