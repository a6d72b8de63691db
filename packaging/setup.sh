# Sourced by ./run, ./test and ./package: installs the Debian packages that are missing, and builds a preset.
# shellcheck shell=bash

# Compiler and build tools, the libraries the program is built on, and what it needs when it runs.
build_packages=(
  g++ cmake ninja-build pkg-config
  qt6-base-dev qt6-svg-dev libxcb1-dev libxcb-randr0-dev libxcb-screensaver0-dev libxcb-shape0-dev
  libxcb-xfixes0-dev
  libespeak-ng-dev flite1-dev libsonic-dev libsndfile1-dev libpulse-dev libexpat1-dev libmd-dev zlib1g-dev
  libpoppler-cpp-dev libzip-dev libxml2-dev libicu-dev libcmark-gfm-dev libcmark-gfm-extensions-dev libseccomp-dev
  libical-dev
  librsvg2-bin
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
# Only the tests need other window managers and Wayland compositors, another program's clipboard, keys of a media player and
# documents made by other programs (with the division of English words), and look at how the code is written and at what
# is installed.
test_packages=(
  libgtest-dev libgmock-dev clang-format clang-tidy xclip xterm playerctl xfwm4 marco mate-settings-daemon-common
  kwin-x11 mutter weston sway swaybg xwayland qt6-wayland util-linux iproute2 strace
  pandoc groff hyphen-en-us desktop-file-utils appstream shared-mime-info libglib2.0-bin
)
# What ./package needs besides: the tools that make a Debian package and look at it.
package_packages=(
  build-essential debhelper lintian
)

say() { printf '== %s\n' "$*"; }

install_packages() {
  local missing=() name
  for name in "$@"; do
    [ "$(dpkg-query -W -f '${db:Status-Status}' "$name" 2>/dev/null)" = installed ] || missing+=("$name")
  done
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
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -q -y --no-install-recommends "${missing[@]}"
}

build_preset() {
  say "Building the $1 preset"
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1"
}
