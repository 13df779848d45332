#!/usr/bin/env bash
# InstallationTest.sh BUILD: installs the build tree BUILD below a scratch root, and looks at what is there.
source "$(dirname "$0")/Support.sh"

umask 077  # must not show in what is installed
DESTDIR="$scratch/root" cmake --install "$build" --prefix /usr >/dev/null
checkLayout "$scratch/root"
checkPrograms "$scratch/root"
desktop-file-validate "$scratch"/root/usr/share/applications/*.desktop
appstreamcli validate --no-net --no-color "$scratch"/root/usr/share/metainfo/*.xml
