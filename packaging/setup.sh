# Sourced by ./run, ./test and ./package: installs the Debian packages that are missing, and builds a preset.
# shellcheck shell=bash

# Compiler and build tools, the libraries the program is built on, and what it needs when it runs. Those with "?" are
# optional, and are taken where apt knows all of them: layers of the screen in Wayland sessions (what Debian 12 has by the
# second name is for Qt 5) and neural voices, both from Debian 13 on.
build_packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-svg-dev libxcb1-dev libxcb-randr0-dev libxcb-screensaver0-dev libxcb-shape0-dev
  libxcb-xfixes0-dev
  libespeak-ng-dev flite1-dev libsonic-dev libsndfile1-dev libpulse-dev libexpat1-dev libmd-dev zlib1g-dev
  libpoppler-cpp-dev libzip-dev libxml2-dev libicu-dev libcmark-gfm-dev libcmark-gfm-extensions-dev libseccomp-dev
  libical-dev nlohmann-json3-dev libcld2-dev
  librsvg2-bin
  liblayershellqtinterface6? liblayershellqtinterface-dev? libwayland-dev? libonnxruntime-dev?
)
run_packages=(
  espeak-ng-data libflite1 libpulse0 libexpat1 libmd0 fonts-dejavu-core xdg-utils libreoffice-writer-nogui
  poppler-data tzdata
)
# A desktop of its own for machines without one: display, window manager, sound server, and eyes, hands and ears.
desktop_packages=(
  xvfb openbox x11-utils x11-xserver-utils xdotool pulseaudio pulseaudio-utils procps
  dbus-x11 at-spi2-core python3 python3-numpy python3-pil python3-pyatspi gir1.2-atspi-2.0 python3-gi trayer picom
)
# Only the tests need other window managers and Wayland compositors, another program's clipboard, keys of a media player,
# the settings of two desktops, documents made by other programs (with the division of English words), and look at how
# the code is written and at what is installed.
test_packages=(
  libgtest-dev libgmock-dev clang-format clang-tidy xclip xterm playerctl xfwm4 marco mate-settings-daemon-common
  kwin-x11 mutter weston sway swaybg xwayland qt6-wayland util-linux iproute2 strace
  pandoc groff hyphen-en-us desktop-file-utils appstream shared-mime-info libglib2.0-bin
  xfconf gsettings-desktop-schemas dconf-gsettings-backend
)
# What ./package needs besides: the tools that make a Debian package and look at it.
package_packages=(
  build-essential debhelper lintian
)
# What ./windows needs: the compiler for Windows, the sources of GoogleTest, and Wine, which runs what it makes.
windows_packages=(
  cmake ninja-build pkg-config g++-mingw-w64-x86-64-posix googletest icu-devtools wine wine64
)

# What ./windows needs besides for the program itself and its set-up: what builds Qt, the
# characters and the icon, and NSIS.
windows_program_packages=("${windows_packages[@]}" "${build_packages[@]}" qt6-base-dev-tools icoutils nsis zip)

say() { printf '== %s\n' "$*"; }

# The names of packages without their "?"; the optional ones only if apt knows all of them.
known_packages() {
  local optional=() name
  for name in "$@"; do
    if [[ $name == *\? ]]; then optional+=("${name%\?}"); else echo "$name"; fi
  done
  for name in "${optional[@]}"; do
    apt-cache show --no-all-versions "$name" >/dev/null 2>&1 || return 0
  done
  ((!${#optional[@]})) || printf '%s\n' "${optional[@]}"
}

missing_packages() {
  local name
  known_packages "$@" | while read -r name; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || echo "$name"
  done
}

install_packages() {
  local missing known
  mapfile -t missing < <(missing_packages "$@")
  if [ ${#missing[@]} -eq 0 ]; then
    say "All packages are installed"
    return
  fi
  say "Installing ${missing[*]}"
  local as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || {
      say "These Debian packages are missing and can only be installed as root: ${missing[*]}"
      return 1
    }
    as_root=(sudo)
  fi
  "${as_root[@]}" apt-get update -q
  # Before its first update apt knows no package.
  known=${#missing[@]}
  mapfile -t missing < <(missing_packages "$@")
  [ ${#missing[@]} -eq "$known" ] || say "Of these packages apt now knows ${missing[*]}"
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

build_preset() {
  say "Building the $1 preset"
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1"
}
