# Sourced by ./run and ./check: installs the Debian packages that are missing, as root or with sudo. When nothing is missing
# apt-get is not called at all.
install_missing() {
    local missing=()
    local package
    for package in "$@"; do
        dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'ok installed' || missing+=("$package")
    done
    [ ${#missing[@]} -eq 0 ] && return 0
    local as_root=()
    if [ "$(id -u)" -ne 0 ]; then
        if ! command -v sudo >/dev/null; then
            echo "These packages are missing, and installing them needs root or sudo: ${missing[*]}" >&2
            exit 1
        fi
        as_root=(sudo)
    fi
    echo "Installing: ${missing[*]}"
    "${as_root[@]}" apt-get update -qq </dev/null
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" </dev/null >/dev/null
}

BUILD_PACKAGES=(g++ cmake ninja-build qt6-base-dev libgl-dev zlib1g-dev)
WINDOW_PACKAGES=(qt6-qpa-plugins qt6-translations-l10n libxcb-cursor0 fonts-ipafont-gothic)
TEST_PACKAGES=(clang clang-format clang-tidy libgtest-dev libbenchmark-dev libx11-dev xvfb xdotool x11-utils imagemagick locales)
