#!/usr/bin/env bash
# Installs the Debian 12 packages the project builds, tests and benchmarks with.
# Does nothing when they are all present already.
set -euo pipefail

packages=(
  build-essential cmake ninja-build ccache git
  clang libclang-rt-14-dev            # libFuzzer and the sanitizer runtimes for clang
  lld                                 # faster links of the sanitized binaries
  qtbase5-dev
  libgtest-dev libgmock-dev libbenchmark-dev
  rapidjson-dev                       # benchmarks only: the reference JSON parser
  liblua5.4-dev                       # benchmarks only: the reference interpreter for Pulse
  antlr3                              # generates the expression parser; brings its Java runtime and
                                      # StringTemplate 4 (the C target needs neither StringTemplate 3 nor other recommends)
  libantlr3c-dev zlib1g-dev libpng-dev libjpeg-dev libtiff-dev libwebp-dev
  xvfb xauth libgl1-mesa-dri          # OpenGL tests and screenshots without a display
  python3                             # the command line tests read the JSON lines of zol sim --dump
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then sudo="sudo"; fi
echo "installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
