help_backend() {
    cat <<'END'
./dev backend [--port N] [--file FILE] [--read-only] [--hostile MODE]

Builds the dev preset's companion and the sample events service, starts the service on 127.0.0.1 and
prints its address, where its token is, and the commands to try it with; Ctrl-C ends it. The port is
the system's choice unless given. Events are kept in build/backend/events.json unless --file names
another file. --read-only and --hostile go to the service: quillora-backend --help lists the modes.
END
}

# The first line of a file that another process is about to write, or nothing if that process ends.
awaited_line() {
    local file=$1 process=$2
    until [ -s "$file" ]; do
        kill -0 "$process" 2>/dev/null || return 1
        sleep 0.1
    done
    head -n 1 "$file"
}

show_backend_commands() {
    local url=$1 token=$2
    cat <<END
The events service listens on $url
Its token is $(cat "$token"), which stands in $token

Try it from another terminal, for example:
  build/bin/quillora backend list --url $url --token-fd 0 < $token
  build/bin/quillora backend add --url $url --token-fd 0 \\
      --name "Stand-up" --start $(date +%F)T09:00 --duration 15 < $token
  build/bin/quillora backend login --url $url --token-fd 0 < $token
  build/bin/quillora day --with-backend

"login" keeps the token in your own keychain; "build/bin/quillora backend logout" takes it out again.
Ctrl-C ends the service.
END
}

dev_backend() {
    local folder=$PWD/build/backend options=() file="" service url
    while [ $# -gt 0 ]; do
        case $1 in
            --file)
                [ $# -gt 1 ] || wrong_use "--file needs a file"
                file=$2
                shift
                ;;
            --port | --hostile)
                [ $# -gt 1 ] || wrong_use "$1 needs a value"
                options+=("$1" "$2")
                shift
                ;;
            --read-only) options+=("$1") ;;
            *) wrong_use "\"$1\" is not an option of backend; ./dev backend --help lists them" ;;
        esac
        shift
    done
    need build
    build_preset dev quillora quillora-backend
    publish dev
    mkdir -p -m 700 "$folder"
    rm -f "$folder/url"

    say "The events service"
    build/bin/quillora-backend --token-file "$folder/token" --file "${file:-$folder/events.json}" \
        "${options[@]}" >"$folder/url" &
    service=$!
    trap 'kill "$service" 2>/dev/null; wait "$service" 2>/dev/null; exit 0' INT TERM
    url=$(awaited_line "$folder/url" "$service") || {
        wait "$service"
        fail "the service did not start; it says why above"
    }
    show_backend_commands "$url" "$folder/token"
    wait "$service"
}
