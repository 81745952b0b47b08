# SPDX-License-Identifier: MIT
# Sets up the sandbox (fonts, settings, bus) and runs host and manager in it. Sourced by run, for the
# options that it has read.
# shellcheck shell=bash disable=SC2154

release="$root/build/release"
sandbox="$root/build/sandbox"
mkdir -p "$sandbox"
exec {lock}<"$sandbox"
flock --nonblock "$lock" || fail 'another run is using the sandbox; try again when it has ended'
$fresh && find "$sandbox" -mindepth 1 -maxdepth 1 ! -name debs -exec rm -rf {} +
mkdir -p "$sandbox"/{home,config,data,cache,state,debs,installed,library}
mkdir -p -m 700 "$sandbox/runtime"

# fetch PACKAGE: downloads it; only a whole one gets its place.
fetch() {
    rm -rf "$sandbox/debs/partial"
    mkdir -p "$sandbox/debs/partial"
    (cd "$sandbox/debs/partial" && apt-get download "$1" >/dev/null 2>&1) &&
        mv "$sandbox/debs/partial"/*.deb "$sandbox/debs/"
}

# place PACKAGE FOLDER PATTERN...: unpacks font files of a Debian package into FOLDER, once.
place() {
    local package=$1 folder=$2 deb unpacked
    shift 2
    [ -e "$folder/.from-$package" ] && return
    deb=$(find "$sandbox/debs" -name "${package}_*.deb" | head -n 1)
    if [ -z "$deb" ]; then
        say "fetching $package"
        fetch "$package" || { refresh_package_lists && fetch "$package"; } ||
            fail "the package $package could not be fetched (apt-get download $package)"
        deb=$(find "$sandbox/debs" -name "${package}_*.deb" | head -n 1)
    fi
    unpacked=$(mktemp -d "$sandbox/unpack.XXXXXX")
    if ! dpkg-deb --extract "$deb" "$unpacked" 2>/dev/null; then
        rm -rf "$unpacked" "$deb"
        fail "the package $package was damaged and is removed; try again"
    fi
    mkdir -p "$folder"
    local pattern found
    for pattern in "$@"; do
        found=$(find "$unpacked" -type f -name "$pattern" | wc -l)
        [ "$found" -gt 0 ] || fail "the package $package holds no file $pattern"
        find "$unpacked" -type f -name "$pattern" -exec cp -t "$folder" {} +
    done
    rm -rf "$unpacked"
    touch "$folder/.from-$package"
}

library="$sandbox/library"
place fonts-dejavu-core "$sandbox/installed" 'DejaVuSans.ttf' 'DejaVuSans-Bold.ttf'
place fonts-cantarell "$sandbox/installed" '*.otf'
place fonts-ebgaramond "$library/text" 'EBGaramond12-*.otf'
place fonts-oldstandard "$library/text" '*.ttf'
place fonts-quattrocento "$library/text" '*.otf'
place fonts-comfortaa "$library/display" '*.ttf'
place fonts-lobstertwo "$library/display" '*.otf'
place fonts-lobstertwo "$library/clients/harbour" '*.otf'
place fonts-wqy-microhei "$library/asian" '*.ttc'
# The client's edition is one of its own: files with the same bytes would be one font.
if [ ! -e "$library/clients/harbour/.edition" ]; then
    for file in "$library"/clients/harbour/*.otf; do printf 'client' >>"$file"; done
    touch "$library/clients/harbour/.edition"
fi
mkdir -p "$library/clients/mueller-soehne"
cp -u "$root"/samples/fonts/*.ttf "$library/clients/mueller-soehne/"

if $window; then
    place fonts-inter-variable "$sandbox/more" 'Inter.var.ttf'
    place fonts-firacode "$sandbox/more" '*.ttf'
    place fonts-jetbrains-mono "$sandbox/more" '*.ttf'
fi

escape() { printf '%s' "$1" | sed 's/&/\&amp;/g; s/</\&lt;/g'; }

# The sample sees the sandbox's fonts alone (so not the folder "xdg", which means the machine's data
# folders too); other documents also see the machine's and the user's
# fonts, read only.
system_fonts='' sample=false
if $window; then
    :
elif [ ${#documents[@]} -gt 0 ]; then
    for folder in /usr/share/fonts /usr/local/share/fonts "${XDG_DATA_HOME:-$HOME/.local/share}/fonts" "$HOME/.fonts"; do
        system_fonts+="<dir>$(escape "$folder")</dir>"
    done
else
    documents=("$root/samples/harbour-festival.svg")
    sample=true
fi
cat >"$sandbox/fonts.conf.new" <<CONF
<?xml version="1.0"?>
<!DOCTYPE fontconfig SYSTEM "fonts.dtd">
<fontconfig>
  <dir>$(escape "$sandbox")/installed</dir>
  <dir>$(escape "$sandbox")/data/fonts</dir>
  $system_fonts
  <alias><family>sans-serif</family><prefer><family>DejaVu Sans</family></prefer></alias>
  <match target="pattern">
    <edit name="family" mode="append_last"><string>DejaVu Sans</string></edit>
  </match>
  <cachedir prefix="xdg">fontconfig</cachedir>
</fontconfig>
CONF
mv "$sandbox/fonts.conf.new" "$sandbox/fonts.conf"

# The user's screen, if there is one, is found through these.
screen=false
if [ -n "${DISPLAY:-}${WAYLAND_DISPLAY:-}" ]; then
    screen=true
    export XAUTHORITY="${XAUTHORITY:-$HOME/.Xauthority}"
    if [ -n "${WAYLAND_DISPLAY:-}" ] && [ -n "${XDG_RUNTIME_DIR:-}" ]; then
        WAYLAND_DISPLAY=$(realpath -ms -- "$XDG_RUNTIME_DIR/$WAYLAND_DISPLAY")
    fi
fi
export HOME="$sandbox/home" XDG_CONFIG_HOME="$sandbox/config" XDG_DATA_HOME="$sandbox/data"
export XDG_CACHE_HOME="$sandbox/cache" XDG_STATE_HOME="$sandbox/state" XDG_RUNTIME_DIR="$sandbox/runtime"
export XDG_DATA_DIRS="$release/share:${XDG_DATA_DIRS:-/usr/local/share:/usr/share}"
$manager || export XDG_DATA_DIRS="$sandbox/none"
export FONTCONFIG_FILE="$sandbox/fonts.conf"
export PATH="$release/bin:$PATH"
unset DBUS_SESSION_BUS_ADDRESS

# Its standard error would only tell of limits that it could not raise.
exec {bus}< <(exec setpriv --pdeathsig TERM dbus-daemon --session --nofork --nopidfile --print-address=1 2>/dev/null)
bus_daemon=$!

# Ends the host, the manager even if it is just starting, and then the bus. All of them but the bus
# have its address in their environment.
finish() {
    trap '' INT TERM HUP
    local address=${DBUS_SESSION_BUS_ADDRESS:-} files
    unset DBUS_SESSION_BUS_ADDRESS
    for _ in {1..100}; do
        files=$(grep --fixed-strings --text --files-with-matches --no-messages \
            "DBUS_SESSION_BUS_ADDRESS=$address" /proc/[0-9]*/environ || true) # some have just ended
        [ -n "$address" ] && [ -n "$files" ] || break
        printf '%s\n' "$files" | cut -d / -f 3 | xargs kill 2>/dev/null || true
        sleep 0.05
    done
    kill "$bus_daemon" 2>/dev/null || true
}
trap finish EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

read -r DBUS_SESSION_BUS_ADDRESS <&"$bus" || fail 'the message bus did not start'
export DBUS_SESSION_BUS_ADDRESS

# What a command says is of interest when it fails.
quietly() {
    local said
    said=$("$@" 2>&1) || fail "$said"
}
$keep || quietly glyphora deactivate --all
quietly glyphora add "$library"

if $window; then
    quietly glyphora add "$sandbox/more"
    quietly glyphora activate 'EB Garamond' 'Fira Code'
    quietly glyphora activate --for 2h 'Quattrocento'
    quietly glyphora collection add 'Harbour Festival' 'EB Garamond' 'Lobster Two' 'Comfortaa'
    quietly glyphora tag add 'code' 'Fira Code' 'JetBrains Mono'
    if [ -n "$locale" ]; then
        unset LC_ALL LC_MESSAGES
        export LANG="$locale.UTF-8"
    fi
    options=()
    $screen || options+=(--pictures "$sandbox/pictures/library")
    setpriv --pdeathsig TERM glyphora show "${options[@]}" &
    status=0
    wait $! || status=$?
    exit $status
fi

earlier=$(glyphora history --all 2>/dev/null | wc -l)
options=() status=0
$json && options+=(--report json)
[ -n "$locale" ] && options+=(--locale "$locale")
if $sample && $manager && ! $json && ! $screen; then
    mkdir -p "$sandbox/pictures"
    rm -f "$sandbox"/pictures/*.png
    options+=(--answers "$root/samples/harbour-festival.answers" --pictures "$sandbox/pictures")
    save=${save:-$sandbox/harbour-festival.svg}
fi
[ -n "$save" ] && options+=(--save "$save")
# In the background, so that a signal to this script is not kept until the host has ended.
setpriv --pdeathsig TERM glyphora-host open "${options[@]}" -- "${documents[@]}" &
wait $! || status=$?
if ! $json; then
    printf '\nWhat the font manager did\n'
    glyphora history --all | tail -n "+$((earlier + 1))" | grep . || echo 'nothing: it was not asked'
fi
exit $status
