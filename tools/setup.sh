# Sourced by the root's commands: installs what is missing, by package name.
# shellcheck shell=bash

run_packages=(
    libgl1-mesa-dri fonts-inter ca-certificates
    qml6-module-qtquick qml6-module-qtquick-window qml6-module-qtquick-templates
    qml6-module-qtquick-controls qml6-module-qtquick-dialogs qml6-module-qtquick-layouts
    qml6-module-qtqml-workerscript qml6-module-qt-labs-folderlistmodel
    qml6-module-qtwebengine qt6-qpa-plugins qt6-wayland qt6-image-formats-plugins libqt6svg6
)
build_packages=(
    g++ cmake ninja-build ccache pkg-config
    qt6-base-dev qt6-declarative-dev qt6-svg-dev libgl-dev qcoro-qt6-dev libmpv-dev
    libavcodec-dev libavformat-dev libswresample-dev libswscale-dev libpulse-dev
    libcurl4-openssl-dev zlib1g-dev qt6-webengine-dev libdlib-dev librsvg2-bin
    qt6-l10n-tools
)
test_packages=(
    appstream desktop-file-utils clang-format-19 clang-tidy-19 dbus-daemon playerctl xvfb xdotool
    imagemagick nginx-light ffmpeg pulseaudio pulseaudio-utils x11-xserver-utils microsocks
    tinyproxy-bin nodejs opencv-doc openssl procps
)
# Some distributions of node bring npm along, and do not get on with the package.
command -v npm >/dev/null || test_packages+=(npm)
# What building the benchmarks needs, which the tests do; and what running them does.
bench_build_packages=(libx11-dev libxext-dev libopencv-objdetect-dev opencv-data)
fuzz_packages=(clang-19 libclang-rt-19-dev)
bench_packages=(bsdextrautils mpv curl yt-dlp opencv-doc python3-skimage)

# need_packages NAME…: installs those that are not there yet, and says which.
need_packages() {
    local missing=() name
    for name in "$@"; do
        dpkg-query -W -f='${Status}' "$name" 2>/dev/null | grep -q 'install ok installed' \
            || missing+=("$name")
    done
    ((${#missing[@]} == 0)) && return
    echo "Installing ${#missing[@]} packages: ${missing[*]}"
    local as_root=()
    if ((EUID != 0)); then
        command -v sudo >/dev/null || {
            echo "Installing them needs root: apt-get install ${missing[*]}" >&2
            exit 1
        }
        as_root=(sudo)
    fi
    "${as_root[@]}" apt-get update -q
    "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive \
        apt-get install -y -q --no-install-recommends "${missing[@]}"
}

# Fresh clones, such as those that guard a landing, share what was compiled before.
export CCACHE_BASEDIR=$PWD CCACHE_NOHASHDIR=1

# build PRESET [TARGET…]: configures once, then builds what changed.
build() {
    local preset=$1
    shift
    if [[ ! -f build/$preset/build.ninja ]]; then
        echo "Configuring build/$preset"
        cmake --preset "$preset" >"/tmp/lumaro-configure.$$" 2>&1 || {
            cat "/tmp/lumaro-configure.$$" >&2
            exit 1
        }
        rm -f "/tmp/lumaro-configure.$$"
    fi
    cmake --build --preset "$preset" ${1:+--target "$@"}
}
