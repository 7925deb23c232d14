#!/usr/bin/env bash
# Feeds the fuzz fronts: fuzz.sh [--keep] [SECONDS [FRONT ...]], 10 seconds for each of all fronts by default. An
# input that breaks a promise is left in build/fuzz/findings and told. With --keep the inputs that reach what none
# of the kept ones reaches are added to tests/fuzz/corpus, and those that are no longer needed go.
set -euo pipefail
. "$(dirname "$0")/lib.sh"

keep=no
if [ "${1:-}" = --keep ]; then
    keep=yes
    shift
fi
seconds=${1:-10}
fronts=("${@:2}")
[ ${#fronts[@]} -gt 0 ] || fronts=(envelope line document stored values plant http)

cd "$repository"
command -v clang++ >/dev/null || fail "no clang++ here, which the fuzz fronts need"
scripts/build.sh fuzz "${fronts[@]/%/_fuzz}"

scratch=$repository/build/fuzz/scratch
findings=$repository/build/fuzz/findings
mkdir -p "$scratch" "$findings"

front_run() { # FRONT
    local corpus=$repository/tests/fuzz/corpus/$1 found=$scratch/$1 log=$scratch/$1.log
    mkdir -p "$corpus" "$found"
    # A search for leaks behind each input, and the weighing of inputs, take most of the time.
    "build/fuzz/bin/$1_fuzz" -detect_leaks=0 -entropic=0 -max_total_time="$seconds" -timeout=30 -rss_limit_mb=4096 -print_final_stats=1 \
        -artifact_prefix="$findings/$1-" "$found" "$corpus" >"$log" 2>&1 || {
        grep -a -E -A5 'broken promise|ERROR|runtime error' "$log" | head -n 30
        return 1
    }
    say "fuzz: $1: $(sed -n 's/stat::number_of_executed_units: *//p' "$log") inputs, no finding"
    [ "$keep" = no ] || front_keep "$1" "$corpus" "$found"
}

front_keep() { # FRONT CORPUS FOUND
    local smallest=$scratch/$1.smallest
    rm -rf "$smallest"
    mkdir "$smallest"
    "build/fuzz/bin/$1_fuzz" -set_cover_merge=1 -use_counters=0 -max_len=4096 "$smallest" "$2" "$3" >"$scratch/$1.merge.log" 2>&1
    rm -rf "$2" "$3"
    mv "$smallest" "$2"
}

failed=()
for front in "${fronts[@]}"; do
    front_run "$front" || failed+=("$front")
done
[ ${#failed[@]} -eq 0 ] || fail "fuzz: ${failed[*]}; the inputs lie in build/fuzz/findings"
