#!/usr/bin/env bash
# SourcePackageTest.sh BUILD: makes the source archive of the build tree BUILD, and begins to build what it holds, outside of any
# repository.
source "$(dirname "$0")/Support.sh"

(cd "$build" && cpack --config CPackSourceConfig.cmake -B "$scratch/package" >"$scratch/log" 2>&1) || { cat "$scratch/log"; exit 1; }
tar -x -C "$scratch" -f "$scratch"/package/*.tar.xz
cd "$scratch"/zarnet-*/
grep -q "GNU GENERAL PUBLIC LICENSE" COPYING
[ ! -e build ] && [ ! -e .git ]
cmake --preset release --log-level=WARNING >/dev/null
cmake --build --preset release --target zarnet_system >/dev/null
