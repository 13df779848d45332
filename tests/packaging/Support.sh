# What both tests of this folder share: $build, a scratch folder that goes when the test ends, and checks of an
# installed tree.

set -euo pipefail
build="$1"
scratch="$(mktemp -d)"
started=()
finish() {
  [ "${#started[@]}" = 0 ] || kill "${started[@]}" 2>/dev/null || true
  wait
  rm -rf "$scratch"
}
trap finish EXIT
trap 'echo "${BASH_SOURCE[0]}:$LINENO: failed: $BASH_COMMAND" >&2' ERR
set -o errtrace

# Nothing of the caller's desktop: neither his settings nor his display, bus or sound server.
mkdir -m 700 "$scratch"/{home,runtime,temporary}
export HOME="$scratch/home" XDG_CONFIG_HOME="$scratch/home" XDG_RUNTIME_DIR="$scratch/runtime"
export TMPDIR="$scratch/temporary" DBUS_SESSION_BUS_ADDRESS="unix:path=$scratch/none" PULSE_SERVER="unix:$scratch/none"
unset DISPLAY WAYLAND_DISPLAY QT_QPA_PLATFORM

track="$scratch/track.flac"
ffmpeg -v error -f lavfi -i "sine=440:duration=2" -ac 2 "$track"

# checkLayout ROOT: every file of an installation, with its permissions, and no other.
checkLayout() {
  local icons="usr/share/icons/hicolor" id="org.zarnet.Zarnet" size
  {
    printf '755 %s\n' usr/bin/zarnet{,-prepare} usr/libexec/zarnet/{afconvert,lame,vorbis-tool}
    printf '644 %s\n' usr/libexec/zarnet/Zarnet.png "usr/share/applications/$id.desktop" \
      "usr/share/metainfo/$id.metainfo.xml" usr/share/man/man1/zarnet{,-prepare}.1.gz \
      usr/share/doc/zarnet/{copyright,changelog.gz,changelog.Debian.gz} "$icons/scalable/apps/$id.svg"
    for size in 16 22 24 32 48 64 128 256 512; do echo "644 $icons/${size}x$size/apps/$id.png"; done
  } | sort >"$scratch/expected"
  (cd "$1" && find . -not -type d -printf '%m %P\n' | sort) | diff -u "$scratch/expected" -
}

# checkPrograms ROOT: both programs are of this version, and every encoder is found.
checkPrograms() {
  local codec program version
  version="$(sed -n 's/^CMAKE_PROJECT_VERSION:STATIC=//p' "$build/CMakeCache.txt")"
  for program in zarnet zarnet-prepare; do
    [ "$("$1/usr/bin/$program" --version)" = "$program $version" ]
  done
  for codec in AAC MP3 "Ogg Vorbis"; do
    "$1/usr/bin/zarnet-prepare" --codec "$codec" "$track" >"$scratch/record"
    grep -q '"decodedFrames": 96000' "$scratch/record"
    grep -q "\"codec\": \"$codec\"" "$scratch/record"
  done
}
