help_fuzz() {
    cat <<'END'
./dev fuzz [SECONDS]

Builds the fuzz preset and runs each fuzz target for SECONDS (60 unless given). What a target finds
is left beside its corpus in build/fuzz-corpus.
END
}

dev_fuzz() {
    local seconds=${1:-60} target name corpus words
    [[ $seconds =~ ^[1-9][0-9]*$ ]] || wrong_use "\"$seconds\" is not a number of seconds"
    need build
    build_preset fuzz quillora_fuzzers
    for target in build/fuzz/fuzzers/*; do
        name=$(basename "$target")
        corpus=build/fuzz-corpus/$name
        mkdir -p "$corpus"
        words=()
        [ ! -f "Fuzzing/Seeds/$name.dict" ] || words=(-dict="Fuzzing/Seeds/$name.dict")
        say "Fuzzing: $name, $seconds s"
        "$target" -max_total_time="$seconds" -timeout=5 "${words[@]}" -artifact_prefix="$corpus/" \
            "$corpus" "Fuzzing/Seeds/$name" ||
            fail "$name found something; the input is the newest file in $corpus"
    done
}
