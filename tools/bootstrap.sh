#!/usr/bin/env bash
# Installs the Debian packages that a job needs and this machine lacks:  tools/bootstrap.sh GROUP [GROUP ...]
# Groups: build test test-full demo player player-picture docs bench package fuzz lint coverage samples x86.
# Nothing is asked of apt when nothing is missing.
# As root, or with sudo at hand, it installs; otherwise it prints the one line to run and fails.
set -u

packagesOf() {
  case $1 in
    # wine64 also carries stdole2.tlb, which the type library refers to.
    build) echo cmake ninja-build g++ g++-mingw-w64-x86-64-posix g++-mingw-w64-i686-posix mingw-w64-tools \
                googletest python3 wine wine64 ;;
    # libclang-rt-14-dev has the header that the replayed inputs of the fuzzers are read with.
    test) echo wine wine64 fonts-liberation googletest python3 libclang-rt-14-dev ;;
    test-full) echo xvfb xdotool clang-14 ;;
    demo) echo wine wine64 fonts-liberation sonic-pi-samples flac ;;
    docs) echo mkdocs mkdocs-material python3 python3-yaml python3-selenium chromium chromium-driver fonts-liberation ;;
    player) echo wine wine64 fonts-liberation ;;
    player-picture) echo xvfb ;;
    bench) echo libbenchmark-dev libfftw3-dev libkissfft-dev pkg-config ffmpeg wine wine64 ;;
    package) echo msitools wixl faketime mkdocs mkdocs-material python3 python3-yaml ;;
    fuzz) echo cmake ninja-build clang-14 libclang-rt-14-dev libstdc++-12-dev python3 util-linux ;;
    lint) echo clang-format-14 clang-tidy-14 cppcheck shellcheck python3 ;;
    coverage) echo cmake ninja-build g++ googletest gcovr python3 ;;
    samples) echo mono-mcs libmono-system-windows-forms4.0-cil libmono-system-drawing4.0-cil \
                  libmono-microsoft-csharp4.0-cil fp-compiler fpc-source python3 ;;
    x86) echo debootstrap ;;
    *) echo "bootstrap: unknown group $1" >&2; return 1 ;;
  esac
}

wanted=()
for group in "$@"; do
  packages=$(packagesOf "$group") || exit 2
  # shellcheck disable=SC2206  # one word a package
  wanted+=($packages)
done
[ ${#wanted[@]} -gt 0 ] || { sed -n '2,5s/^# //p' "${BASH_SOURCE[0]}" >&2; exit 2; }

if ! command -v dpkg-query >/dev/null || ! command -v apt-get >/dev/null; then
  echo "bootstrap: this is no Debian system; please install the equivalents of: ${wanted[*]}" >&2
  exit 0
fi

installed=$(dpkg-query -W -f='${db:Status-Status} ${Package}\n' "${wanted[@]}" 2>/dev/null | sed -n 's/^installed //p')
missing=()
for package in "${wanted[@]}"; do
  grep -qxF "$package" <<<"$installed" || [[ " ${missing[*]-} " == *" $package "* ]] || missing+=("$package")
done
[ ${#missing[@]} -gt 0 ] || exit 0

asRoot=()
if [ "$(id -u)" != 0 ]; then
  asRoot=(sudo)
  # Without a terminal there is nobody to type a password.
  [ -t 0 ] || asRoot=(sudo -n)
  if ! command -v sudo >/dev/null || ! "${asRoot[@]}" true 2>/dev/null; then
    echo "These packages are missing. Please run as root:" >&2
    echo "apt-get install --no-install-recommends ${missing[*]}" >&2
    exit 1
  fi
fi

apt() { "${asRoot[@]}" env DEBIAN_FRONTEND=noninteractive apt-get -q -o DPkg::Lock::Timeout=300 "$@" </dev/null; }
install() { apt install -y --no-install-recommends "${missing[@]}"; }

echo "Installing: ${missing[*]}"
if compgen -G '/var/lib/apt/lists/*_Packages*' >/dev/null; then
  # The lists may be too old to name files that still exist.
  install || { apt update && install; }
else
  apt update && install
fi || { echo "bootstrap: could not install: ${missing[*]}" >&2; exit 1; }
