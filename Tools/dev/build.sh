help_build() {
    cat <<'END'
./dev build [PRESET] [TARGET...]

Builds PRESET (dev, gcc, release, asan, tsan, fuzz; "dev" unless named) in build/PRESET. After dev,
gcc or release, build/bin leads to its executables.
END
}

dev_build() {
    local preset=${1:-dev}
    [ $# -eq 0 ] || shift
    preset_exists "$preset" || wrong_use "there is no preset \"$preset\"; ./dev build --help lists them"
    need build
    build_preset "$preset" "$@"
    case $preset in
        dev | gcc | release)
            publish "$preset"
            note "The executables are in build/bin."
            ;;
    esac
}
