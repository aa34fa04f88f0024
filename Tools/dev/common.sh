# What the commands share: messages, packages, configuring and building a preset. Sourced by ./dev.

say() { printf '\n== %s\n' "$*"; }
note() { printf '%s\n' "$*"; }
fail() {
    printf 'dev: %s\n' "$*" >&2
    exit 1
}
wrong_use() {
    printf 'dev: %s\n' "$*" >&2
    exit 2
}

# The Debian packages of the named sections of Tools/packages.txt, one a line.
packages_of() {
    local wanted
    for wanted in "$@"; do
        awk -v wanted="[$wanted]" '
            /^\[/ { inside = ($1 == wanted); next }
            inside && NF && $1 !~ /^#/ { print $1 }' Tools/packages.txt
    done | sort -u
}

# Those of the named packages that are not installed.
missing_packages() {
    local installed
    installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "$@" 2>/dev/null |
        awk '$1 == "installed" { print $2 }' | sort -u) || true
    comm -23 <(printf '%s\n' "$@" | sort -u) <(printf '%s\n' "$installed")
}

# need SECTION...: installs what is missing. The package index is fetched only when something is.
need() {
    local packages missing root=()
    if ! command -v dpkg-query >/dev/null; then
        note "This is not a Debian system: the packages named in Tools/packages.txt are taken to be there."
        return
    fi
    mapfile -t packages < <(packages_of "$@")
    mapfile -t missing < <(missing_packages "${packages[@]}")
    [ ${#missing[@]} -gt 0 ] || return 0

    if [ "$(id -u)" -ne 0 ]; then
        if command -v sudo >/dev/null && sudo -n true 2>/dev/null; then
            root=(sudo -n)
        elif command -v sudo >/dev/null && [ -t 0 ] && [ -z "${CI:-}" ]; then
            root=(sudo)
        else
            fail "these packages are missing, and only root can install them:" \
                "apt-get install --no-install-recommends ${missing[*]}"
        fi
    fi
    say "Installing ${#missing[@]} Debian packages: ${missing[*]}"
    root+=(env DEBIAN_FRONTEND=noninteractive)
    # --no-remove: a package of the person's own that is in the way is a reason to stop, not to delete it.
    local get=(apt-get -q -o DPkg::Lock::Timeout=300 -o Dpkg::Use-Pty=0 -o Dpkg::Options::=--force-confold)
    "${root[@]}" "${get[@]}" update </dev/null >/dev/null ||
        fail "the package index could not be fetched (apt-get update); nothing was installed"
    "${root[@]}" "${get[@]}" install -y --no-install-recommends --no-remove "${missing[@]}" </dev/null >build/packages.log 2>&1 || {
        tail -n 20 build/packages.log >&2
        fail "the packages above could not be installed; nothing was built (build/packages.log has the rest)"
    }
}

# Jobs that fit: one a processor, and 1.5 GB of memory for each.
jobs_that_fit() {
    local processors memory
    processors=$(nproc)
    memory=$(awk '/^MemAvailable:/ { print int($2 / 1500000) }' /proc/meminfo)
    [ "$memory" -ge 1 ] || memory=1
    echo $((processors < memory ? processors : memory))
}

preset_exists() { grep -q "\"name\": \"$1\", *\"configurePreset\"" CMakePresets.json; }

# build_preset PRESET [TARGET...]: configures and builds; everything if no target is named. A warning is an
# error in continuous integration only, so that another compiler's new warning stops nobody's work.
build_preset() {
    local preset=$1 targets=() warnings_are_errors=OFF
    shift
    [ $# -eq 0 ] || targets=(--target "$@")
    # Objects are shared between build folders and clones: paths must not enter the cache's keys.
    export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1
    [ -z "${CI:-}" ] || warnings_are_errors=ON
    say "Building: $preset"
    cmake --preset "$preset" -DQUILLORA_WERROR=$warnings_are_errors >build/configure.log 2>&1 || {
        tail -n 40 build/configure.log >&2
        fail "the preset \"$preset\" could not be configured"
    }
    cmake --build "build/$preset" --parallel "$(jobs_that_fit)" "${targets[@]}" ||
        fail "the preset \"$preset\" does not build; see the first error above"
}

# build/bin and build/share lead to those of the preset that was built last for people to use.
publish() {
    ln -sfn "$1/bin" build/bin
    ln -sfn "$1/share" build/share
}

mkdir -p build
