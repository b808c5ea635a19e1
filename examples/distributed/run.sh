#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the examples and runs each with 1, 2 and 4 ranks; ends with a table of seconds and speed-ups.
#   sh run.sh                        with an installed ork (PKG_CONFIG_PATH says where, if not in the usual places)
#   sh run.sh ../../build/release    with a build tree
# Variables: RANKS="1 2 4", ROUNDS=1 (of so many the table shows the median and the least), BIN=build (folder of the
# programs), MPIRUN=mpirun, and the programs' arguments: DENSE="2000 64", CG="96 3", FFT2D="2048 2048".
set -eu
fail() { echo "run.sh: $*" >&2; exit 2; }
[ $# -le 1 ] || fail "one argument at most, the folder of a build tree."
tree=
if [ $# = 1 ]; then
    [ -f "$1/lib/libork_core.so" ] || fail "$1 is no build tree of ork: it has no lib/libork_core.so."
    tree=$(cd "$1" && pwd)
fi
cd "$(dirname "$0")"
for tool in make mpicc "${MPIRUN:=mpirun}"; do
    command -v "$tool" >/dev/null || fail "$tool is missing: apt-get install libscalapack-openmpi-dev libopenmpi-dev openmpi-bin"
done
ranks=${RANKS:-1 2 4} rounds=${ROUNDS:-1} bin=${BIN:-build}
for count in $ranks $rounds; do
    case $count in '' | *[!0-9]* | 0*) fail "RANKS and ROUNDS are positive integers, not \"$count\"." ;; esac
done
if [ -n "$tree" ]; then
    drop_in=$tree/lib
    make -s BIN="$bin" ORK_BUILD="$tree"
else
    libraries=$(pkg-config --variable=libdir ork 2>/dev/null) || fail "pkg-config knows no ork: set PKG_CONFIG_PATH, or name a build tree."
    drop_in=$(cd "$libraries/ork" && pwd -P)
    make -s BIN="$bin"
fi

# A rank is a process of one thread; more ranks than processors share them.
export ORK_NUM_THREADS=1 OMP_NUM_THREADS=1 OPENBLAS_NUM_THREADS=1
# On a machine that does other work too, a rank that is tied to a processor or never yields it while it waits costs more
# than it gains. What the environment says already stays.
export OMPI_MCA_hwloc_base_binding_policy="${OMPI_MCA_hwloc_base_binding_policy:-none}"
export OMPI_MCA_mpi_yield_when_idle="${OMPI_MCA_mpi_yield_when_idle:-1}"
set -- --oversubscribe
[ "$(id -u)" != 0 ] || set -- "$@" --allow-run-as-root
log=$(mktemp)
trap 'rm -f "$log" "$log.one"' EXIT
wrong=0
run() { # ranks program arguments
    count=$1
    shift
    # shellcheck disable=SC2086
    if ! env LD_LIBRARY_PATH="$drop_in${LD_LIBRARY_PATH:+:$LD_LIBRARY_PATH}" $MPIRUN $options -n "$count" "$@" >"$log.one"; then
        wrong=1
    fi
    cat "$log.one"
    cat "$log.one" >>"$log"
}
options=$*
round=0
while [ $round -lt "$rounds" ]; do
    round=$((round + 1))
    for count in $ranks; do
        # shellcheck disable=SC2086
        {
            run "$count" "$bin/dense" ${DENSE:-2000 64}
            run "$count" "$bin/cg" ${CG:-96 3}
            run "$count" "$bin/fft2d" ${FFT2D:-2048 2048}
        }
    done
done
# The drop-in's dgemm_, or the core's own where LD_PRELOAD puts ork's LAPACK in front.
if grep 'dgemm_ is that of' "$log" | grep -Fv "is that of $drop_in/" | grep -q -v '/libork_core[.]so[.0-9]*$'; then
    echo "run.sh: the loader found another BLAS than ork's." >&2
    wrong=1
fi

echo
awk '
function median(list, count,   value, i, j, t) {
    split(list, value)
    for (i = 2; i <= count; ++i)
        for (j = i; j > 1 && value[j] + 0 < value[j - 1] + 0; --j) { t = value[j]; value[j] = value[j - 1]; value[j - 1] = t }
    return value[int((count + 1) / 2)]
}
$3 == "ranks" && $5 == "s" {
    key = $1 " " $2
    if (!(key in count)) order[++keys] = key
    seconds[key] = seconds[key] " " $4
    ++count[key]
    if (!(key in least) || $4 + 0 < least[key] + 0) least[key] = $4
    if ($NF != "ok") bad[key] = 1
}
END {
    printf "%-8s %5s %10s %9s %10s %9s  %s\n", "program", "ranks", "median s", "speed-up", "least s", "speed-up", "check"
    for (p = 1; p <= split("pdgemm pdgesv cg fft2d", names); ++p)
        for (k = 1; k <= keys; ++k) {
            split(order[k], part)
            if (part[1] != names[p]) continue
            now = median(seconds[order[k]], count[order[k]])
            if (!(part[1] in base)) { base[part[1]] = now; fastest[part[1]] = least[order[k]] }
            printf "%-8s %5d %10.4f %9.2f %10.4f %9.2f  %s\n", part[1], part[2], now, base[part[1]] / now,
                least[order[k]], fastest[part[1]] / least[order[k]], order[k] in bad ? "WRONG" : "ok"
        }
}' "$log"
[ $wrong = 0 ] || echo "Something is wrong: see above"
exit $wrong
