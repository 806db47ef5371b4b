# Shared by ./run and ./test: one line a step, the output of each step in build/logs, missing Debian packages
# installed. Sourced with the project's folder as working directory.

mkdir -p build/logs

say() { printf '== %s\n' "$*"; }

# step NAME TEXT COMMAND…: runs the command with its output in build/logs/NAME.log; on failure shows the end
# of it and ends the script.
step() {
  local log="build/logs/$1.log" text=$2
  shift 2
  say "$text"
  "$@" >"$log" 2>&1 </dev/null && return 0
  printf '%s\n' "-- failed; the end of $log:" >&2
  tail -n 60 "$log" >&2
  exit 1
}

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; else sudo "$@"; fi
}

missing_packages() {
  local name
  for name in "$@"; do
    dpkg-query -W -f '${Status}\n' "$name" 2>/dev/null | grep -q 'ok installed' || printf '%s\n' "$name"
  done
}

apt_install() {
  as_root apt-get update -q &&
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "$@"
}

install_packages() {
  local missing
  mapfile -t missing < <(missing_packages "$@")
  [ "${#missing[@]}" -eq 0 ] && return 0
  step packages "Installing ${#missing[@]} packages: ${missing[*]}" apt_install "${missing[@]}"
}

BUILD_PACKAGES=(ca-certificates cmake ninja-build g++ zlib1g-dev)
WINDOWS_PACKAGES=(g++-mingw-w64-x86-64-posix mingw-w64-tools binutils-mingw-w64-x86-64 libz-mingw-w64-dev)
WINE_PACKAGES=(wine wine64 xvfb xauth xdotool imagemagick x11-utils fonts-open-sans fonts-liberation
               fonts-unfonts-core)
# clang-format and clang-tidy by version: another one lays out and finds other things.
TEST_PACKAGES=(libgtest-dev googletest clang libclang-rt-dev clang-format-14 clang-tidy-14 gpsd-clients
               python3-nmea2 python3-segyio netcdf-bin python3-netcdf4 python3-xarray python3-dask
               python3-distributed python3-pandas cdo gdal-bin gpsbabel chromium poppler-utils)

configure_and_build() {
  local preset=$1
  shift
  cmake --preset "$preset" && cmake --build --preset "$preset" "$@"
}

# build PRESET TEXT [further arguments of cmake --build]
build() {
  local preset=$1 text=$2
  shift 2
  step "build-$preset" "$text" configure_and_build "$preset" "$@"
}
