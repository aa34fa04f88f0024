help_fuzz() {
    cat <<'END'
./dev fuzz [SECONDS]

Builds the fuzz preset and runs each fuzz target for SECONDS (60 unless given). What a target finds
is left beside its corpus in build/fuzz-corpus.
END
}

dev_fuzz() {
    local seconds=${1:-60} target corpus
    [[ $seconds =~ ^[1-9][0-9]*$ ]] || wrong_use "\"$seconds\" is not a number of seconds"
    ls Fuzzing/*.cpp >/dev/null 2>&1 || fail "there are no fuzz targets yet"
    need build
    build_preset fuzz
    for target in build/fuzz/fuzzers/*; do
        [ -x "$target" ] || continue
        corpus=build/fuzz-corpus/$(basename "$target")
        mkdir -p "$corpus"
        say "Fuzzing $(basename "$target") for $seconds s"
        "$target" -max_total_time="$seconds" -artifact_prefix="$corpus/" "$corpus" "Fuzzing/Corpus/$(basename "$target")" ||
            fail "$(basename "$target") found something; the input is in $corpus"
    done
}
