# Sourced by run and check: installs what is missing of a list of Debian packages.

build_packages="g++ cmake ninja-build ccache libfmt-dev libmd-dev libcli11-dev nlohmann-json3-dev \
  qt6-base-dev libgl-dev libegl-dev fonts-liberation2"
run_packages="qt6-qpa-plugins fonts-liberation2"
test_packages="libgtest-dev libgmock-dev binutils xvfb xauth clang clang-format libclang-rt-14-dev git \
  poppler-utils librsvg2-bin"
bench_packages="libbenchmark-dev libfftw3-dev"

say() { printf '%s: %s\n' "$program" "$*"; }
fail() { printf '%s: %s\n' "$program" "$*" >&2; exit 1; }

as_root() {
  if [ "$(id -u)" -eq 0 ]; then "$@"; elif command -v sudo >/dev/null; then sudo "$@"; else
    fail "needs root to install packages ($*), and there is no sudo"
  fi
}

# install_missing PACKAGE...
install_missing() {
  local missing=() package
  for package in "$@"; do
    dpkg-query -W -f='${db:Status-Status}' "$package" 2>/dev/null | grep -qx installed || missing+=("$package")
  done
  [ ${#missing[@]} -eq 0 ] && return
  say "installing ${missing[*]}"
  as_root env DEBIAN_FRONTEND=noninteractive apt-get update -qq
  as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null ||
    fail "could not install ${missing[*]}"
}

# build PRESET [TARGET...]: configures once, then builds.
build() {
  local preset=$1; shift
  [ -f "build/$preset/build.ninja" ] || cmake --preset "$preset" $cmake_options >"/dev/null" ||
    fail "cmake could not configure build/$preset"
  say "building ($preset) ${*:-everything}"
  cmake --build "build/$preset" ${@:+--target "$@"} -- -k 0 >"build/$preset/build.log" 2>&1 ||
    { tail -n 60 "build/$preset/build.log" >&2; fail "the build failed; its log is build/$preset/build.log"; }
}
