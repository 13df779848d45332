#!/usr/bin/env bash
# PackageTest.sh BUILD: makes the Debian package of the build tree BUILD, has it judged, unpacks it, and opens the window
# from there.
source "$(dirname "$0")/Support.sh"

(cd "$build" && cpack -B "$scratch/package" >"$scratch/log" 2>&1) || { cat "$scratch/log"; exit 1; }
package="$(echo "$scratch"/package/*.deb)"
lintian --no-cfg --allow-root --fail-on error,warning --info "$package"

# What is started or only read must be there, and whatever holds the libraries that the programs are linked to.
dpkg-deb -f "$package" Depends | tr ',' '\n' | awk '{ print $1 }' | sort >"$scratch/depends"
owner() { dpkg-query -S "*/$1.so.*" | sed -n '1s/:.*//p'; }
for needed in lame fonts-inter "$(owner libQt6Widgets)" "$(owner libavformat)" "$(owner libpulse)" "$(owner libvorbisenc)"; do
  grep -qx "$needed" "$scratch/depends"
done

dpkg-deb -x "$package" "$scratch/root"
checkLayout "$scratch/root"
checkPrograms "$scratch/root"

# The window opens, and a session that ends closes it properly.
mkfifo "$scratch/display"
Xvfb -displayfd 3 -screen 0 1280x1024x24 -nolisten tcp 3>"$scratch/display" 2>/dev/null &
started+=($!)
read -r -t 60 number <"$scratch/display"
export DISPLAY=":$number"
mkdir "$scratch/window"
TMPDIR="$scratch/window" "$scratch/root/usr/bin/zarnet" "$track" &
zarnet=$!
started+=("$zarnet")
timeout 60 xdotool search --sync --onlyvisible --pid "$zarnet" --name '^Zarnet$' >/dev/null
kill -TERM "$zarnet"
wait "$zarnet"
rmdir "$scratch/window"  # empty again
