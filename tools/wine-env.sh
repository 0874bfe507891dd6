# shellcheck shell=bash
# Sourced by tools/wine-run and tools/wine-stop: where the prefixes lie and how Wine is set up in them.
# Expects $arch (x64 or x86); sets $root and exports what Wine reads.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

# A display of 192 DPI is a machine setting, so it gets a prefix of its own.
dpi=${AV_DPI:-96}
suffix=
[ "$dpi" = 96 ] || suffix=-$dpi
# An X server's screen, for real pointers, is one too.
[ -z "${AV_DISPLAY:-}" ] || suffix=$suffix-x11
export WINEPREFIX=${AV_WINEPREFIX:-$root/build/wine-$arch$suffix}
export WINEDEBUG=${WINEDEBUG:--all}
# Without its debugger a crashing program ends with a failure at once; winedbg sometimes turns that into exit code 0.
# mscoree and mshtml would ask for downloads.
export WINEDLLOVERRIDES="mscoree=;mshtml=;winemenubuilder.exe=d;winedbg.exe=d"
if [ "$arch" = x86 ]; then export WINEARCH=win32; else export WINEARCH=win64; fi
unset DISPLAY WAYLAND_DISPLAY
[ -z "${AV_DISPLAY:-}" ] || export DISPLAY=$AV_DISPLAY
# One language for all runs, and file names of any script: in a bare environment Wine would take them for ASCII.
export LC_ALL=C.UTF-8

# The 32-bit Wine may live in an i386 system of its own, see tools/with-i386.
inWine=()
if [ "$arch" = x86 ] && [ -n "${AV_I386_ACTIVE:-}" ]; then
  # The tree lies at the same path in there, so the working folder can stay.
  # shellcheck disable=SC2016  # for the inner shell
  inWine=(chroot "$AV_I386_ACTIVE" sh -c 'cd "$1" && shift && exec "$@"' sh "$PWD")
fi

# The server stays for this many seconds after the last program, so that a run of many programs pays its start once.
keepServerS=${AV_WINE_KEEP_S:-20}

# Goes up when makePrefix changes, so that prefixes of older trees are made anew.
madeMark=.made-2

makePrefix() {
  # Somebody's own prefix is not ours to set up; one of ours that was left half made is.
  [ -z "${AV_WINEPREFIX:-}" ] || [ ! -e "$WINEPREFIX/system.reg" ] || compgen -G "$WINEPREFIX/.made-*" >/dev/null ||
    return 1
  touch "$WINEPREFIX/.made-0"
  quietly wineserver -k
  quietly wineserver -w
  rm -rf "${WINEPREFIX:?}"/{dosdevices,drive_c,*.reg,.update-timestamp,.ready,.made-[1-9]*}
  local graphics=null
  [ -z "${AV_DISPLAY:-}" ] || graphics=x11
  # Written before the first start, so that it already runs without a screen; the server reads it when it comes up.
  cat >"$WINEPREFIX/user.reg" <<REG
WINE REGISTRY Version 2

[Software\\\\Wine\\\\Drivers]
"Graphics"="$graphics"

[Software\\\\Wine\\\\Fonts\\\\Replacements]
"Arial"="Liberation Sans"

[Software\\\\Wine\\\\WineDbg]
"ShowCrashDialog"=dword:00000000

[Control Panel\\\\Desktop]
"LogPixels"=dword:$(printf '%08x' "$dpi")
REG
  quietly wineserver "-p$keepServerS"
  quietly wine wineboot -i && touch "$WINEPREFIX/$madeMark"
}

# Nothing that Wine leaves in the background may hold the caller's pipes open.
quietly() { "${inWine[@]}" "$@" </dev/null >/dev/null 2>&1 9>&-; }
