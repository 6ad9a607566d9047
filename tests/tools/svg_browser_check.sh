#!/usr/bin/env bash
# Opens zemcalc-signal's SVG plots (raw and filtered channels; a spectrum on logarithmic axes)
# in headless Chromium (Debian's chromium) and checks that the browser loads each as an image of
# its stated size; a broken document is refused. Exit 77 (skipped) when no Chromium is installed.
# usage: svg_browser_check.sh <zemcalc-signal> <data folder>
set -u
tool=$1
data=$2
browser=$(command -v chromium || command -v chromium-browser || command -v google-chrome || true)
[ -n "$browser" ] || { echo "no chromium: skipped"; exit 77; }
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
"$tool" filter --cfc 180 "$data/crash_pulse.csv" --svg "$work/filtered.svg" -o "$work/filtered.csv" || exit 1
"$tool" spectrum --window hann "$data/crash_pulse_head_x.mme" --svg "$work/spectrum.svg" -o "$work/spectrum.csv" || exit 1
printf '<svg xmlns="http://www.w3.org/2000/svg"><polyline points="1,2 3' > "$work/broken.svg"
failed=0
for case in "filtered.svg|loaded 960x540" "spectrum.svg|loaded 960x540" "broken.svg|failed"; do
  IFS='|' read -r svg expected <<< "$case"
  cat > "$work/page.html" <<HTML
<html><head><title>pending</title></head><body>
<img src="$svg" onload="document.title='loaded ' + this.naturalWidth + 'x' + this.naturalHeight"
     onerror="document.title='failed'"></body></html>
HTML
  title=$(timeout 120 "$browser" --headless --no-sandbox --disable-gpu --dump-dom "file://$work/page.html" 2>/dev/null |
          grep -o '<title>[^<]*</title>')
  if [ "$title" != "<title>$expected</title>" ]; then
    echo "FAILED: $svg gave '$title', expected '$expected'"
    failed=1
  fi
done
[ $failed = 0 ] && echo "the browser loads the plots"
exit $failed
