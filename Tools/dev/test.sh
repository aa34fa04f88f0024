help_test() {
    cat <<'END'
./dev test [--matrix] [CTEST OPTIONS]

Builds the dev preset and runs the whole suite. What else is given goes to ctest, for example
  ./dev test -R Calendar        only tests whose name matches
  ./dev test -L architecture    only one label: unit, contract, journey, architecture

--matrix runs the suite five times: clang, GCC, AddressSanitizer with UndefinedBehaviorSanitizer,
ThreadSanitizer, and under a Turkish locale in Kathmandu; then prints one line for each. The first
runs the fault tests in full (QUILLORA_FAULTS=full), the others a tenth of them.
END
}

# run_suite PRESET [CTEST OPTIONS]: the suite of a preset that is built.
run_suite() {
    local preset=$1
    shift
    say "Testing: $preset"
    ctest --preset "$preset" --parallel "$(jobs_that_fit)" "$@" </dev/null
}

# A locale in build/ needs no root: the C library is led there by LOCPATH.
hostile_suite() {
    local locales=$PWD/build/locales
    if [ ! -d "$locales/tr_TR.UTF-8" ]; then
        mkdir -p "$locales"
        localedef --no-archive -i tr_TR -f UTF-8 "$locales/tr_TR.UTF-8"
    fi
    env LOCPATH="$locales" LANG=tr_TR.UTF-8 LC_ALL=tr_TR.UTF-8 LANGUAGE=tr TZ=Asia/Kathmandu \
        bash -c 'source Tools/dev/common.sh; source Tools/dev/test.sh; run_suite "$@"' - dev "$@"
}

# matrix_row NAME COMMAND...: runs it, keeps its output, and remembers how it ended.
matrix_row() {
    local name=$1 log=build/matrix-${1//[^A-Za-z0-9]/-}.log began=$SECONDS outcome counts
    shift
    say "Matrix: $name"
    if ("$@") 2>&1 | tee "$log"; then outcome=passed; else outcome=FAILED; fi
    counts=$(grep -E '^[0-9]+% tests passed' "$log" | tail -n 1) || counts="did not reach the tests"
    matrix_rows+=("$(printf '%-34s %-7s %4d s  %s' "$name" "$outcome" $((SECONDS - began)) "$counts")")
}

build_and_test() {
    local preset=$1
    shift
    build_preset "$preset"
    run_suite "$preset" "$@"
}

test_matrix() {
    need build test matrix
    matrix_rows=()
    # Once in full is enough for the fault tests: they are about kills and flipped bits, not about compilers.
    QUILLORA_FAULTS=full matrix_row "clang-19" build_and_test dev "$@"
    publish dev
    matrix_row "clang-19, tr_TR in Asia/Kathmandu" hostile_suite "$@"
    matrix_row "GCC" build_and_test gcc "$@"
    matrix_row "ASan and UBSan" build_and_test asan "$@"
    matrix_row "TSan" build_and_test tsan "$@"
    say "The matrix"
    printf '%s\n' "${matrix_rows[@]}"
    case "${matrix_rows[*]}" in *FAILED*) fail "a row of the matrix failed; its output is in build/matrix-*.log" ;; esac
}

dev_test() {
    if [ "${1:-}" = --matrix ]; then
        shift
        test_matrix "$@"
        return
    fi
    need build test
    build_preset dev
    publish dev
    run_suite dev "$@" || fail "tests failed; the list is above"
}
