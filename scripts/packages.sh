# Sourced by ./run, ./test and ./check: installs the Debian packages that the build needs and this machine lacks.
packages=(g++ cmake ninja-build ccache libexpected-dev libcli11-dev libcairo2-dev libexpat1-dev
          libopencv-core-dev libopencv-imgproc-dev libopencv-imgcodecs-dev libpoppler-cpp-dev nettle-dev
          qt6-base-dev qt6-svg-dev qt6-serialport-dev fonts-dejavu-core unixodbc-dev odbcinst libsqliteodbc)
# Of the tests and benchmarks alone: ./run does without a database server.
test_packages=(libgtest-dev libgmock-dev libbenchmark-dev xvfb odbc-postgresql postgresql)
check_packages=(clang-format clang-tidy git)
coverage_packages=(gcovr python3)

lacking() { # lacking PACKAGE...
  local package
  for package in "$@"; do
    dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || echo "$package"
  done
}

install_packages() { # install_packages [MORE...]
  local missing
  mapfile -t missing < <(lacking "${packages[@]}" "$@")
  [ ${#missing[@]} -eq 0 ] && return
  echo "installing: ${missing[*]}" >&2
  local as_root=()
  [ "$(id -u)" -eq 0 ] || as_root=(sudo)
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get update -q >&2
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -q --no-install-recommends "${missing[@]}" >&2
}

build() { # build PRESET [TARGET...]
  local without=()
  [ -z "$(lacking libgtest-dev libgmock-dev libbenchmark-dev)" ] || without=(-DHYETEX_TESTS=OFF -DHYETEX_BENCH=OFF)
  cmake --preset "$1" "${without[@]}" >/dev/null
  cmake --build --preset "$1" ${2:+--target "${@:2}"}
}
