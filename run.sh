#!/usr/bin/env bash
# Builds the plug-in and the renderer, with all they need. Without arguments it plays the demo into out/; with arguments it
# hands them to tarvelline-render (./run.sh --help lists them). --bench compares cost with other programs' instead, and draws
# it over voices, shift, sample rate and block size into out/.
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
source "$root/tools/setup"

if [[ "${1:-}" == --bench ]]; then
    packages+=(librubberband-dev libsoundtouch-dev libfftw3-dev)
    install_missing
    cmake -S "$root" --preset release >/dev/null # the peers may have come after the last configuring
    build_targets "$root" release compare
    exec "$root/build/release/bench/compare" "$root/out"
fi

install_missing
build_targets "$root" release Tarvelline_VST3 tarvelline_render

render="$root/build/release/tools/render/tarvelline-render"

if [[ $# -gt 0 ]]; then
    exec "$render" "$@"
fi

demo="$root/demo" out="$root/out"
mkdir -p "$out"

# The wheels with swing: a little less gravity than they come with.
"$render" "$demo/guitar.wav" "$out/gesture.wav" --plot "$out/gesture.png" \
    --automate "$demo/gesture.csv" --midi "$demo/gesture.mid" \
    --set mainRange=0.8 --set mainGravityPar=0.46 --set timbRange=0.8

# Notes as voices.
"$render" "$demo/guitar.wav" "$out/chord.wav" --midi "$demo/chord.mid" --set midiOptions=0

module="$(find "$root/build/release" -type d -name Tarvelline.vst3 -print -quit)"
echo "Listen to out/gesture.wav (the wheel swings up and back, a note transposes, the timbre darkens; see out/gesture.png) and out/chord.wav (one guitar, four voices, a bend)."
echo "To install the plug-in: mkdir -p ~/.vst3 && cp -r $module ~/.vst3/"
