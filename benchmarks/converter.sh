#!/usr/bin/env bash
# The converter against the ffmpeg program on a 20-minute 44.1 kHz 24-bit FLAC, both writing 48 kHz float WAVE through the
# same resampler at 28 bits of precision; then the time and the memory of each step on that file.
#
# usage: converter.sh BUILD-FOLDER [FILE.flac]     RUNS=5 sets how often the two alternate
set -euo pipefail

afconvert="$1/resources/afconvert"
folder="$(mktemp -d)"
trap 'rm -rf "$folder"' EXIT
source="${2:-$folder/source.flac}"

if [ $# -lt 2 ]; then
  ffmpeg -nostdin -v error -f lavfi -i anoisesrc=color=pink:r=44100:a=0.25:d=1200:seed=1 \
    -f lavfi -i anoisesrc=color=brown:r=44100:a=0.3:d=1200:seed=2 -filter_complex \
    '[0]tremolo=f=2.1:d=0.7[a];[1]tremolo=f=0.7:d=0.5[b];[a][b]amerge=inputs=2,pan=stereo|c0=c0+0.4*c1|c1=0.6*c0-0.5*c1' \
    -c:a flac -sample_fmt s32 -bits_per_raw_sample 24 "$source"
fi

# Runs a command and appends its seconds by the clock, of processor time, and its peak memory in MB to a file.
measure() {
  local log="$1"
  shift
  /usr/bin/time -f '%e %U %S %M' -o "$folder/last" "$@"
  awk '{ printf "%.2f %.2f %.0f\n", $1, $2 + $3, $4 / 1024 }' "$folder/last" >> "$folder/$log"
}
median() { sort -n -k "$2,$2" "$folder/$1" | awk -v field="$2" '{ all[NR] = $field } END { print all[int((NR + 1) / 2)] }'; }
report() {
  printf '%-34s %6.2f s  %6.2f s of processor time  %4d MB\n' "$1" "$(median "$2" 1)" "$(median "$2" 2)" "$(median "$2" 3)"
}

for ((run = 0; run < ${RUNS:-5}; ++run)); do
  measure ours "$afconvert" "$source" "$folder/ours.wav" -f WAVE -d LEF32@48000 -c 2 -r 127
  measure theirs ffmpeg -nostdin -y -v error -i "$source" -af aresample=48000:resampler=soxr:precision=28 \
    -c:a pcm_f32le "$folder/theirs.wav"
done
rm "$folder/theirs.wav"
measure encode "$afconvert" "$folder/ours.wav" "$folder/a.m4a" -f m4af -d aac -b 256000 -q 127 -s 0
measure decode "$afconvert" "$folder/a.m4a" "$folder/a.caf" -f caff -d LEF32@48000 -c 2

report 'afconvert, FLAC to WAVE' ours
report 'ffmpeg, FLAC to WAVE' theirs
report 'afconvert, WAVE to AAC at 256 kbps' encode
report 'afconvert, AAC to CAF' decode
awk -v a="$(median ours 1)" -v b="$(median theirs 1)" -v c="$(median ours 2)" -v d="$(median theirs 2)" \
  'BEGIN { printf "afconvert / ffmpeg: %.2f by the clock, %.2f of processor time\n", a / b, c / d }'
