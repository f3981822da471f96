#!/usr/bin/env bash
# What ./run hands on to the practice platform: a copy of it, among programs that only write down how they
# were called.
#   tests/house/run_options.sh PROJECT_ROOT
set -euo pipefail
root=$1
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT

mkdir -p "$place/clone/scripts" "$place/clone/build/release/bin" "$place/elsewhere/record"
cp "$root/run" "$place/clone/run"
cat >"$place/clone/scripts/common.sh" <<'END'
BUILD_PACKAGES= RUNTIME_PACKAGES= TOUR_PACKAGES= WIRE_PACKAGES=
say() { :; }
fail() { printf 'error: %s\n' "$*" >&2; exit 1; }
install_packages() { :; }
build_preset() { :; }
set_setting() { mkdir -p "$(dirname "$1")"; echo "$3=$4" >>"$1"; }
END
cat >"$place/clone/build/release/bin/tavoran-practice" <<'END'
#!/usr/bin/env bash
printf '%s\n' "$@" >"$CALLED"
echo "Listening on http://127.0.0.1:5001"
exec sleep 60
END
printf '#!/bin/sh\nexit 0\n' >"$place/clone/build/release/bin/tavoran-terminal"
chmod +x "$place/clone/build/release/bin/"*

export DISPLAY=:9 CALLED=$place/called
failures=0

# expect ARGUMENT... -- WORD...: ./run with these arguments hands on these words, behind those of its own, each
# as one word.
expect() {
    local arguments=() wanted got
    while [ "$1" != -- ]; do
        arguments+=("$1")
        shift
    done
    shift
    wanted=$(printf '%s\n' "$@")
    : >"$CALLED"
    (cd "$place/elsewhere" && "$place/clone/run" "${arguments[@]}") >"$place/output" 2>&1 || true
    got=$(sed 1,4d "$CALLED")
    if [ "$got" != "$wanted" ]; then
        printf 'FAIL ./run %s: handed on\n%s\nand not\n%s\nit said: %s\n' "${arguments[*]}" "$got" "$wanted" \
            "$(tail -n 1 "$place/output")"
        failures=1
    fi
}

# refuse PART ARGUMENT...: ./run with these arguments starts nothing and says why.
refuse() {
    local part=$1
    shift
    : >"$CALLED"
    if (cd "$place/elsewhere" && "$place/clone/run" "$@") >"$place/output" 2>&1 \
        || [ -s "$CALLED" ] || ! grep -q -e "$part" "$place/output"; then
        echo "FAIL ./run $*: not refused with \"$part\"; it said: $(tail -n 1 "$place/output")"
        failures=1
    fi
}

expect --record session -- --record "$place/elsewhere/session"
expect --record=/tmp/session -- --record /tmp/session
expect --
expect --seed 7 -- --seed 7
expect --seed=7 --speed 60 -- --seed 7 --speed 60
expect --replay record -- --replay "$place/elsewhere/record"
expect --replay=record -- --replay "$place/elsewhere/record"
expect --replay "my  record" -- --replay "$place/elsewhere/my  record"
expect "--replay=my record" -- --replay "$place/elsewhere/my record"
expect --replay /nowhere/at/all -- --replay /nowhere/at/all
expect --replay "/nowhere/at *" -- --replay "/nowhere/at *"
expect --latency 300 --jitter=20 --drop 0.01 -- --latency 300 --jitter 20 --drop 0.01
expect --cut 60 --throttle=8 --refuse 0.1 -- --cut 60 --throttle 8 --refuse 0.1
expect --no-replay --close-open-trades -- --no-replay --close-open-trades
refuse "needs a value" --seed
refuse "needs a value" --latency
refuse "unknown argument" --sped 5
refuse "--speed" --server http://127.0.0.1:1 --speed 5
refuse "--speed" --tour --speed 5
exit "$failures"
