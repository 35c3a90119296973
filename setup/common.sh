# What ./run, ./test and ./measure share: installing packages, configuring, building. Sourced by them, after `root` was
# set to the repository's own folder. Nothing here changes the caller's current folder or writes to standard output.
# shellcheck shell=bash

: "${root:?setup/common.sh is sourced by ./run, ./test and ./measure}"

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

# install_packages [LIST...]: installs what is missing of setup/packages, or of other lists beside it. Without anything
# to install it asks the package database alone, which takes a few hundredths of a second.
install_packages() {
    local package wanted=() missing=() installed log as_root=()
    while read -r package; do
        [[ -z $package || $package == '#'* ]] || wanted+=("$package")
    done < <(cd "$root/setup" && cat "${@:-packages}")

    if ! { command -v dpkg-query && command -v apt-get; } >/dev/null; then
        fail "This machine is no Debian: install what setup/packages names and use \"cmake --preset release\" instead."
    fi
    installed=$(dpkg-query --show --showformat='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null) || true
    for package in "${wanted[@]}"; do
        [[ $'\n'$installed$'\n' == *$'\n'"installed $package"$'\n'* ]] || missing+=("$package")
    done
    ((${#missing[@]})) || return 0

    if ((EUID != 0)); then
        command -v sudo >/dev/null || fail "Missing packages; as root, run: apt-get install ${missing[*]}"
        as_root=(sudo)
    fi
    log=$root/build/packages.log
    mkdir -p "$root/build"
    printf 'Installing %d packages (log: %s): %s\n' "${#missing[@]}" "$log" "${missing[*]}" >&2
    # An update that fails need not matter: the lists at hand may do.
    if ! {
        "${as_root[@]}" apt-get update || true
        "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
            apt-get install --yes --no-install-recommends -o DPkg::Lock::Timeout=300 "${missing[@]}"
    } >"$log" 2>&1 </dev/null; then
        tail -n 20 "$log" >&2
        fail "Could not install ${missing[*]}; the lines above are the end of $log."
    fi
}

# configure PRESET: only when the build folder is new, was made for another place, or is older than the presets; for
# everything else ninja runs cmake by itself.
configure() {
    local build=$root/build/$1 output
    if [[ -e $build/build.ninja && ! $root/CMakePresets.json -nt $build/build.ninja ]] &&
        grep --quiet --line-regexp --fixed-strings "CMAKE_HOME_DIRECTORY:INTERNAL=$root" "$build/CMakeCache.txt"; then
        return
    fi
    printf 'Configuring %s\n' "build/$1" >&2
    output=$(cd "$root" && cmake --fresh --preset "$1" 2>&1) || {
        rm -f "$build/build.ninja"
        fail "$output"
    }
}

# build PRESET [TARGET...]: every target when none is named. Says nothing when there is nothing to do.
build() (
    configure "$1"
    cd "$root/build/$1" || exit
    shift
    [[ $(ninja -n "$@" 2>&1) == *'no work to do.' ]] || ninja "$@" >&2
)
