help_run() {
    cat <<'END'
./dev run [--headless] [WIDGET OPTIONS]

Builds the dev preset, makes a throw-away home in build/home, fills it with sample calendars dated
around today, and shows the day: in the widget's window where there is a display, otherwise as text
and as a picture. --headless never opens the window. What else is given goes to the widget, for
example --family small.
END
}

# A home of its own, so that trying Quillora neither reads nor writes the person's calendars.
fresh_home() {
    home=$PWD/build/home
    rm -rf "$home"
    mkdir -p -m 700 "$home"/{config,data,cache}
    unset QUILLORA_GROUP_CONTAINER
    export HOME=$home XDG_CONFIG_HOME=$home/config XDG_DATA_HOME=$home/data XDG_CACHE_HOME=$home/cache
}

show_without_a_display() {
    note ""
    quillora day
    quillora day --png "$home/face.png" >/dev/null
    note ""
    note "There is no display, so this is the day as text; the drawn face is in ${home#"$PWD"/}/face.png."
}

dev_run() {
    local headless=no
    if [ "${1:-}" = --headless ]; then
        headless=yes
        shift
    fi
    need build
    build_preset dev quillora quillora-widget quillora-samples
    publish dev
    PATH=$PWD/build/bin:$PATH

    say "Setting up a home in build/home"
    fresh_home
    quillora-samples --out "$home/Calendars"
    # A bare machine has no keyring; in a throw-away home the key may as well be a file.
    quillora setup --yes --keychain file
    quillora sources add "$home/Calendars"

    say "Today"
    if [ $headless = no ] && [ -n "${WAYLAND_DISPLAY:-}${DISPLAY:-}" ]; then
        note "The widget is open; close its window or press Ctrl-C to end it."
        quillora-widget "$@" && return
        note "The window could not be opened."
    fi
    show_without_a_display
}
