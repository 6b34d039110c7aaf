# Sourced by ./run, ./test and ./check: installs the Debian packages that the build needs and this machine lacks.
packages=(g++ cmake ninja-build ccache libexpected-dev libcli11-dev libgtest-dev libgmock-dev libbenchmark-dev libcairo2-dev libexpat1-dev
          libopencv-core-dev libopencv-imgproc-dev libopencv-imgcodecs-dev libpoppler-cpp-dev nettle-dev
          qt6-base-dev qt6-svg-dev qt6-serialport-dev fonts-dejavu-core xvfb
          unixodbc-dev odbcinst libsqliteodbc odbc-postgresql postgresql)
check_packages=(clang-format clang-tidy git)

install_packages() { # install_packages [MORE...]
  local missing=()
  for package in "${packages[@]}" "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  echo "installing: ${missing[*]}" >&2
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}" >&2
}

build() { # build PRESET [TARGET...]
  cmake --preset "$1" >/dev/null
  cmake --build --preset "$1" ${2:+--target "${@:2}"}
}
