help_bench() {
    cat <<'END'
./dev bench [--peers]

Builds the release preset and measures it: each figure beside its floor, taken in the same run.
--peers also installs and measures the other programs that read calendars.
END
}

dev_bench() {
    need build bench
    build_preset release
    publish release
    fail "nothing is measured yet"
}
