#!/bin/sh
# SPDX-License-Identifier: MIT
# Runs the programs of this folder on the reference BLAS and LAPACK, on what the system uses, and on ork, in turn, and prints
# median times and the libraries that each process really had in it.
#     compare.sh [--rounds N] [--only PROGRAM] [--check] [folder of ork's libraries]
# --check: one run on ork alone; exit status 77 when the program is not installed.
set -u
here=$(cd "$(dirname "$0")" && pwd)
rounds=5 only="" check="" ork=$here/../../build/release/lib
while [ $# -gt 0 ]; do
    case $1 in
    --rounds | --only)
        [ $# -gt 1 ] || { echo "compare.sh: $1 needs a value" >&2; exit 2; }
        [ "$1" = --rounds ] && rounds=$2 || only=$2
        shift
        ;;
    --check) check=yes rounds=1 ;;
    -*) echo "usage: compare.sh [--rounds N] [--only PROGRAM] [--check] [folder of ork's libraries]" >&2; exit 2 ;;
    *) ork=$1 ;;
    esac
    shift
done
[ -e "$ork/libblas.so.3" ] || { echo "compare.sh: there is no libblas.so.3 in $ork" >&2; exit 2; }
ork=$(cd "$ork" && pwd -P)
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
trap 'exit 1' INT TERM

# Where Debian keeps the reference's own copies, whichever library is the system's choice.
blas="" lapack=""
for folder in /usr/lib/*/blas /usr/lib/*/lapack; do
    [ -e "$folder/libblas.so.3" ] && blas=$folder
    [ -e "$folder/liblapack.so.3" ] && lapack=$folder
done
reference=${blas:+$blas${lapack:+:$lapack}}

# Sets `command`, or says what is missing.
find_program() {
    case $1 in
    numpy_scipy)
        python=${PYTHON:-/usr/bin/python3}
        "$python" -c 'import numpy' 2> /dev/null || { missing="NumPy for $python"; return 1; }
        "$python" -c 'import scipy.linalg' 2> /dev/null || echo "numpy_scipy: without SciPy's part, which is not installed"
        command="$python $here/numpy_scipy.py"
        ;;
    statistics)
        command -v Rscript > /dev/null || { missing="R (Rscript)"; return 1; }
        command="Rscript --vanilla $here/statistics.R"
        ;;
    signals)
        command -v octave-cli > /dev/null || { missing="Octave (octave-cli)"; return 1; }
        command="octave-cli --norc $here/signals.m"
        ;;
    digits)
        command -v gfortran > /dev/null || { missing=gfortran; return 1; }
        gfortran -O2 "$here/digits.f90" -l:liblapack.so.3 -l:libblas.so.3 -o "$work/digits" 2> "$work/log" || {
            cat "$work/log"
            missing="LAPACK or BLAS to link with"
            return 1
        }
        command=$work/digits
        ;;
    esac
}

# R puts the system's libraries in front of LD_LIBRARY_PATH, but its own variable before those. The rest of LAPACK, which ork
# has not, is the reference's, because other builds of it call a BLAS of their own.
run_on() {
    case $1 in
    reference) set -- "$reference" "" ;;
    system) set -- "" "" ;;
    ork) set -- "$ork${lapack:+:$lapack}" "$ork/liblapack_ork.so.3" ;;
    esac
    [ -n "$2" ] && { LD_PRELOAD=$2${LD_PRELOAD:+ $LD_PRELOAD}; export LD_PRELOAD; }
    [ -n "$1" ] && { LD_LIBRARY_PATH=$1 R_LD_LIBRARY_PATH=$(R RHOME 2> /dev/null)/lib:$1; export LD_LIBRARY_PATH R_LD_LIBRARY_PATH; }
    exec $command "$here/../data"
}

libraries() { # of a run's output: numerical ones
    sed -n 's/^library //p' "$1" | grep -E '/lib(blas|lapack|openblas|blis|fftw3|atlas|ork)[^/]*$' | sort -u
}

status=0 ran=""
kinds="${reference:+reference }system ork"
[ -n "$check" ] && kinds=ork
for program in numpy_scipy statistics signals digits; do
    [ -z "$only" ] || [ "$only" = $program ] || continue
    find_program $program || { echo "$program: skipped, $missing is not installed"; continue; }
    ran="$ran $program"
    round=0
    while [ $((round += 1)) -le "$rounds" ]; do
        for kind in $kinds; do
            out=$work/$program.$kind.$round
            # Some LAPACKs stop with status 0 at an error; the libraries come last.
            if ! (run_on "$kind") > "$out" 2> "$work/log" || ! grep -q "^library" "$out"; then
                echo "$program on $kind: failed"
                cat "$work/log"
                grep ' wrong$' "$out"
                status=1
            fi
            libraries "$out" > "$work/libraries.$program.$kind"
            if [ "$kind" = ork ]; then
                if ! grep -q "^$ork/libblas" "$work/libraries.$program.ork" ||
                    grep -E '/lib(blas|fftw3)[^/]*$' "$work/libraries.$program.ork" | grep -qv "^$ork/"; then
                    echo "$program: not on ork's libraries alone"
                    status=1
                fi
            elif grep -q libork "$work/libraries.$program.$kind"; then
                echo "$program on $kind: ork is in use"
                status=1
            fi
        done
    done
done
[ -n "$ran" ] || exit 77
if [ -n "$check" ]; then
    cat "$work"/*.ork.1
    exit $status
fi

# One line a run and step: program, step, kind, ms.
for program in $ran; do
    for kind in $kinds; do
        for out in "$work/$program.$kind".*; do
            awk -v p="$program" -v k="$kind" '$1 == "time" { print p, $2, k, $3, NR }' "$out"
        done
    done
done | sort -k1,3 -k4,4n | awk -v kinds="$kinds" '
    function finish() { if (n) median[step, kind] = n % 2 ? t[(n + 1) / 2] : (t[n / 2] + t[n / 2 + 1]) / 2 }
    $1 " | " $2 != step || $3 != kind { finish(); n = 0 }
    { step = $1 " | " $2; kind = $3; t[++n] = $4; if (!(step in at)) { at[step] = $5; order[++steps] = step } }
    END {
        finish()
        count = split(kinds, k, " ")
        head = "| program | step |"; line = "|---|---|"
        for (i = 1; i <= count; ++i) { head = head " " k[i] " ms |"; line = line "---|" }
        for (i = 1; i < count; ++i) { head = head " " k[i] " / ork |"; line = line "---|" }
        print head; print line
        for (s = 1; s <= steps; ++s) {
            row = "| " order[s] " |"
            for (i = 1; i <= count; ++i) row = row sprintf(" %.3g |", median[order[s], k[i]])
            for (i = 1; i < count; ++i) row = row sprintf(" %.2f |", median[order[s], k[i]] / median[order[s], "ork"])
            print row
        }
    }'
echo
for program in $ran; do
    for kind in $kinds; do
        echo "$program on $kind: $(grep -c '^check' "$work/$program.$kind.1") checks, libraries:"
        while read -r library; do echo "    $(readlink -f "$library")"; done < "$work/libraries.$program.$kind"
    done
done
exit $status
