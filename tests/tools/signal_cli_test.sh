#!/usr/bin/env bash
# End-to-end cases of zemcalc-signal on good and broken CSV and MME files: each row is the
# expected exit status, a text expected in the output (standard output and error together, and
# the written file's content), the
# output file that must (+) or must not (-) exist afterwards, and the command line.
# usage: signal_cli_test.sh <zemcalc-signal> <data folder>
set -u
tool=$1
data=$2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
cd "$work"

# A half sine of 100 g over 10 ms at 100 kHz: HIC 414.6456 by hand (see tests/math/test_injury.cpp).
awk 'BEGIN { print "t,a"; for (i = 0; i <= 1000; i++) printf "%.5f,%.15g\n", i * 1e-5, 100 * sin(3.14159265358979 * i / 1000) }' > sine.csv
# 5 everywhere at 10 kHz; a 100 Hz sine over 1024 samples (FFT bins 9.775 Hz apart: peak at bin 10).
awk 'BEGIN { print "time;c"; for (i = 0; i < 500; i++) printf "%.4f;5\n", i * 1e-4 }' > constant.csv
awk 'BEGIN { print "time,s"; for (i = 0; i < 1024; i++) printf "%.4f,%.15g\n", i * 1e-4, sin(2 * 3.14159265358979 * 100 * i * 1e-4) }' > tone.csv
printf 'time,a,b\n0,1,2\n0.0001,x,3\n' > badnumber.csv
printf 'time,a,b\n0,1,2\n0.0001,3\n' > badcount.csv
printf 'time,a\n0,1\n0.0001,1\n0.0003,1\n0.0004,1\n' > uneven.csv
sed '13s/.*/abc/' "$data/crash_pulse_head_x.mme" > badvalue.mme
sed 's/^Number of samples .*/Number of samples           :1200/' "$data/crash_pulse_head_x.mme" > badcount.mme
grep -v '^Sampling interval' "$data/crash_pulse_head_x.mme" > nointerval.mme

cases=(
  "0|HIC15 = 414.64|+ out.csv|hic sine.csv -o out.csv"
  "0|15,414.644|-|hic --windows 15 sine.csv"
  "0|clip 3 ms = 89.10|-|hic sine.csv"
  "0|0.0299,5|+ f.csv|filter --cfc 60 constant.csv -o f.csv"
  "0|head z|+ p.svg|filter --cfc 180 --channel head\ x,head\ z $data/crash_pulse.csv --svg p.svg -o f2.csv"
  "0|11HEAD0000H3ACXA|-|filter --fixed cfc60 $data/crash_pulse_head_x.mme"
  "0|97.7517106549358,|-|spectrum --window hann tone.csv"
  "0|0.1,0.005|-|convert --dimension acceleration --from m\ kg\ s\ K --to UNIT\ MM\ TON\ MS\ KELVIN constant.csv"
  "0|transmissibility head z/head x|-|transmissibility --input head\ x --output-channel head\ z $data/crash_pulse.csv"
  "1|badnumber.csv:3: column 2 ('a'): 'x' is not a finite number|- out1.csv|filter --cfc 60 badnumber.csv -o out1.csv"
  "1|badcount.csv:3: 2 values, the header names 3 columns|- out2.csv|filter --cfc 60 badcount.csv -o out2.csv"
  "1|badvalue.mme:13: 'abc' is not a number|- out3.csv|filter --cfc 60 badvalue.mme -o out3.csv"
  "1|badcount.mme:10: 'Number of samples' says 1200, the file holds 1100 values|-|spectrum badcount.mme"
  "1|nointerval.mme: no 'Sampling interval' line|-|filter --cfc 60 nointerval.mme"
  "1|The time step 0.0001 of interval 1 differs from the mean step 0.000133333 by more than 1 %|- out4.csv|filter --cfc 60 uneven.csv -o out4.csv"
  "1|lower than 10 times the channel frequency class 1001|-|filter --cfc 1001 $data/crash_pulse_head_x.mme --time-unit s"
  "1|no channel 'nope' in the input|-|hic --channel nope sine.csv"
  "1|missing.csv: cannot open the file|-|filter --cfc 60 missing.csv"
  "2|unknown command 'smooth'|-|smooth sine.csv"
  "2|give one of --cfc, --fixed and --mva|-|filter sine.csv"
  "2|unknown option --bogus|-|filter --bogus sine.csv"
  "0|usage: zemcalc-signal filter|-|filter --help"
  "0|usage: zemcalc-signal spectrum|-|spectrum --help"
  "0|usage: zemcalc-signal transmissibility|-|transmissibility --help"
  "0|usage: zemcalc-signal hic|-|hic --help"
  "0|usage: zemcalc-signal convert|-|convert --help"
  "0|commands:|-|--help"
)
failed=0
for row in "${cases[@]}"; do
  IFS='|' read -r status text file command <<< "$row"
  eval "args=($command)"
  output=$("$tool" "${args[@]}" 2>&1)
  actual=$?
  [[ "$file" == "+ "* ]] && [ -f "${file#+ }" ] && output="$output$(cat "${file#+ }")"
  problem=""
  [ "$actual" = "$status" ] || problem="exit $actual, expected $status"
  [[ "$output" == *"$text"* ]] || problem="$problem; no '$text' in the output"
  case "$file" in
    "+ "*) [ -s "${file#+ }" ] || problem="$problem; ${file#+ } not written" ;;
    "- "*) [ ! -e "${file#- }" ] || problem="$problem; ${file#- } written" ;;
  esac
  # Only the error line on failure: one line, nothing on standard output.
  if [ "$status" != 0 ] && [ "$(printf '%s\n' "$output" | wc -l)" != 1 ]; then problem="$problem; not one line"; fi
  if [ -n "$problem" ]; then
    echo "FAILED: $command: $problem"
    printf '%s\n' "$output" | head -5
    failed=1
  fi
done
[ $failed = 0 ] && echo "all ${#cases[@]} cases passed"
exit $failed
