#!/usr/bin/env bash
# Builds the plug-in and the renderer, with all they need. Without arguments it plays the demo into out/; with arguments it
# hands them to tarvelline-render (./run.sh --help lists them). Instead of these:
#   --install    puts plug-ins, programs and presets into your own folders;  --uninstall  removes exactly those
#   --package    makes a .deb and a .tar.gz in out/
#   --bench [SET]  compares cost with other programs', drawn over voices, shift, sample rate and block size into out/;
#                held to an instruction set if one is named, such as AVX2
set -euo pipefail

root="$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)"
source "$root/tools/setup"

if [[ "${1:-}" == --bench ]]; then
    packages+=(librubberband-dev libsoundtouch-dev libfftw3-dev)
    install_missing
    cmake -S "$root" --preset release >/dev/null # the peers may have come after the last configuring
    build_targets "$root" release compare
    exec "$root/build/release/bench/compare" "$root/out" "${@:2}"
fi

if [[ "${1:-}" == --uninstall ]]; then
    source "$root/tools/user-install"
    [[ -f "$installed_list" ]] || { echo "nothing was installed with --install" >&2; exit 1; }
    echo "removing $(grep -vc '/$' "$installed_list") files that --install has put below $HOME"
    remove_for_user
    exit
fi

if [[ "${1:-}" == --install ]]; then
    source "$root/tools/user-install"
    install_missing
    build_targets "$root" release tarvelline_product
    install_for_user "$root/build/release"
    cat <<END
installed for you alone, below $HOME:
  VST3 plug-in    ~/.vst3/Tarvelline.vst3, its presets in ~/.vst3/presets/Vorntaal/Tarvelline
  LV2 plug-in     ~/.lv2/Tarvelline.lv2
  programs        ~/.local/bin/tarvelline (without a DAW) and ~/.local/bin/tarvelline-render
  documents       ~/.local/share/doc/tarvelline, manual pages in ~/.local/share/man
In your DAW, scan for plug-ins again. ./run.sh --uninstall removes all of it; every file is listed in
${installed_list/#$HOME/\~}
END
    exit
fi

if [[ "${1:-}" == --package ]]; then
    packages+=(file) # the packer tells programs from other files with it
    install_missing
    build_targets "$root" release tarvelline_product
    mkdir -p "$root/out"
    (cd "$root/build/release" && quietly cpack -B "$root/out")
    rm -rf "$root/out/_CPack_Packages"
    ls -1 "$root"/out/tarvelline*.deb "$root"/out/tarvelline*.tar.gz
    exit
fi

install_missing
build_targets "$root" release Tarvelline_VST3 tarvelline_render tarvelline_preset_files

render="$root/build/release/render/tarvelline-render"

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

echo "Listen to out/gesture.wav (the wheel swings up and back, a note transposes, the timbre darkens; see out/gesture.png) and out/chord.wav (one guitar, four voices, a bend)."
echo "To install the plug-in: ./run.sh --install"
