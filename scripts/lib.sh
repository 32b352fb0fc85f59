# What the scripts share: where the tree is, which Debian packages each job needs, and how a display is found.
# Sourced, never run.

set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
caller=$PWD
cd "$top"

build_packages=(
    g++ cmake ninja-build ccache mold pkg-config git
    qtbase5-dev qtdeclarative5-dev qtquickcontrols2-5-dev qt3d5-dev libqt5svg5-dev qttools5-dev qttools5-dev-tools
    libopencv-core-dev libopencv-imgproc-dev libopencv-imgcodecs-dev libopencv-videoio-dev
    libswscale-dev libavutil-dev libeigen3-dev nlohmann-json3-dev libyaml-cpp-dev zlib1g-dev
    libgtest-dev libgmock-dev libbenchmark-dev cmark-gfm
)
run_packages=(
    qml-module-qtquick2 qml-module-qtquick-window2 qml-module-qtquick-layouts qml-module-qtqml qml-module-qtqml-models2
    qml-module-qtquick-controls qml-module-qtquick-controls2 qml-module-qtquick-templates2 qml-module-qtquick-extras
    qml-module-qtquick-dialogs qml-module-qtquick-privatewidgets qml-module-qt-labs-settings qml-module-qt-labs-platform
    qml-module-qt-labs-folderlistmodel qml-module-qtgraphicaleffects qml-module-qtquick-particles2
    qml-module-qtquick-scene3d qml-module-qt3d libgl1-mesa-dri
    fonts-dejavu-core fonts-crosextra-carlito fonts-noto-cjk
)
display_packages=(xvfb openbox x11-utils)
test_packages=(file qml-module-qttest desktop-file-utils appstream libxml2-utils ffmpeg pcl-tools)
package_packages=(dpkg-dev lintian)
lint_packages=(clang clang-format clang-tidy clazy qtdeclarative5-dev-tools)

# A Release build is what people run and what is measured; the tests use the everyday one.
jobs=${QV_JOBS:-$(nproc)}

say() { printf '%s\n' "$*"; }

as_root() {
    if [ "$(id -u)" = 0 ]; then
        "$@"
    elif command -v sudo >/dev/null; then
        sudo "$@"
    else
        say "This needs root to install packages: run it as root or install sudo." >&2
        return 1
    fi
}

# Installs what is missing of the named packages; silent when nothing is.
need() {
    local missing=() package
    for package in "$@"; do
        dpkg-query -W -f '${db:Status-Abbrev}' "$package" 2>/dev/null | grep -q '^ii' || missing+=("$package")
    done
    [ ${#missing[@]} -gt 0 ] || return 0
    say "Installing ${#missing[@]} missing packages: ${missing[*]}"
    as_root apt-get update -qq
    as_root env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
}

# configure PRESET [cmake arguments]; build PRESET [targets]
configure() {
    local preset=$1
    shift
    cmake --preset "$preset" "$@" >"build-$preset.log" 2>&1 || {
        cat "build-$preset.log" >&2
        return 1
    }
    rm -f "build-$preset.log"
}

build() {
    local preset=$1
    shift
    cmake --build "build/$preset" --parallel "$jobs" ${1:+--target "$@"} -- --quiet
}

has_display() {
    [ -n "${WAYLAND_DISPLAY:-}" ] || { [ -n "${DISPLAY:-}" ] && command -v xdpyinfo >/dev/null && xdpyinfo >/dev/null 2>&1; }
}

# Runs a command on a virtual display of its own, with a small window manager, and takes both down again.
with_virtual_display() {
    local number file=/tmp/qv-display-$$ xvfb wm status=0
    Xvfb -displayfd 3 -screen 0 1920x1080x24 -nolisten tcp +extension GLX 3>"$file" >/dev/null 2>&1 &
    xvfb=$!
    for _ in $(seq 200); do
        [ -s "$file" ] && break
        sleep 0.1
    done
    number=$(cat "$file")
    rm -f "$file"
    [ -n "$number" ] || {
        say "Xvfb did not start." >&2
        return 1
    }
    DISPLAY=:$number openbox >/dev/null 2>&1 &
    wm=$!
    DISPLAY=:$number LIBGL_ALWAYS_SOFTWARE=1 QT_QPA_PLATFORM=xcb "$@" || status=$?
    kill "$wm" "$xvfb" 2>/dev/null || true
    wait "$wm" "$xvfb" 2>/dev/null || true
    return $status
}
