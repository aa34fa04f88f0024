help_bench() {
    cat <<'END'
./dev bench [--peers]

Builds the release preset and measures it: each figure beside its floor, taken in the same run.
--peers also installs and measures the other programs that read calendars.
END
}

dev_bench() {
    local peers=()
    case ${1:-} in
        --peers) peers=(--peers) ;;
        "") ;;
        *) wrong_use "\"$1\" is not an option of bench" ;;
    esac
    need build bench ${peers:+peers}
    build_preset release quillora quillora-widget quillora-samples quillora-backend quillora_benchmarks
    say "Measuring; this takes some ten minutes, with --peers half an hour, and wants an idle machine"
    python3 -B Benchmarks/bench.py build/release "${peers[@]}"
}
