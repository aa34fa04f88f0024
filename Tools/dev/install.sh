help_install() {
    cat <<'END'
./dev install [--prefix DIR]

Builds the release preset and installs it, to /usr/local as root, otherwise to ~/.local: the programs, the
manual pages, the completions for bash, zsh and fish, and what a desktop and its session need to know.
END
}

dev_install() {
    local prefix=$HOME/.local
    [ "$(id -u)" -ne 0 ] || prefix=/usr/local
    case ${1:-} in
        --prefix) prefix=${2:?"--prefix wants a folder"} ;;
        "") ;;
        *) wrong_use "\"$1\" is not an option of install" ;;
    esac
    need build
    build_preset release quillora quillora-widget quillora-alarms quillora_manual_pages
    cmake --install build/release --prefix "$prefix"
    note "Installed under $prefix."
}
