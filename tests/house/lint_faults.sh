#!/usr/bin/env bash
# Does scripts/lint see a fault of each kind, and name its file and line?
#   tests/house/lint_faults.sh PROJECT_ROOT
set -euo pipefail
root=$1
place=$(mktemp -d)
trap 'rm -rf "$place"' EXIT
mkdir "$place/scripts" "$place/.hidden"
cp "$root"/scripts/{lint,common.sh,editorconfig_check.py,flatpak_check.py,flatpak_manifest.schema.json} \
    "$place/scripts"
cp "$root"/{.clang-format,.editorconfig,.codespellrc,.shellcheckrc} "$place"
cd "$place"
failures=0

# expect PATTERN ARGUMENT...: scripts/lint with these arguments fails, and a line of its output matches.
expect() {
    local pattern=$1
    shift
    if scripts/lint "$@" >output 2>&1 || ! grep -qE -e "$pattern" output; then
        echo "FAIL scripts/lint $*: no fault \"$pattern\"; it said: $(cat output)"
        failures=1
    fi
    rm output
}

# allow ARGUMENT...: scripts/lint with these arguments finds nothing.
allow() {
    if ! scripts/lint "$@" >output 2>&1; then
        echo "FAIL scripts/lint $*: it said: $(cat output)"
        failures=1
    fi
    rm output
}

# fault NAME TEXT PATTERN CHECK: a file of this text is a fault to the check, by itself and in the whole tree.
fault() {
    printf '%b' "$2" >"$1"
    expect "$1:$3" "$4" "$1"
    expect "$1:$3"
    rm "$1"
}

allow

if grep -q '^VERSION_CODENAME=bookworm' /etc/os-release; then
    fault Sum.cpp 'int sum(int a,int b)\n{\n    return a + b;\n}\n' '1:.*clang-format' format
    fault Sum.h '#pragma once\n\nint  sum();\n' '3:.*clang-format' format
fi
fault notes.txt 'one\r\n' '1: the line does not end with lf' layout
fault notes.txt 'one\ntwo' '2: the last line has no end' layout
fault notes.txt 'one\ntwo \n' '2: blanks at the end' layout
fault notes.txt 'one\n\ttwo\n' '2: indented' layout
fault notes.txt 'one\n\n\xff\n' '3: not utf-8' layout
fault notes.txt '\xef\xbb\xbfone\n' '1: begins with a byte order mark' layout
# shellcheck disable=SC2016  # a fault on purpose
fault start.sh '#!/bin/sh\nls $1\n' '2:.*SC2086' shell
# shellcheck disable=SC2016  # the same
fault .hidden/start '#!/usr/bin/env bash\nls $1\n' '2:.*SC2086' shell
# Put together here, or this file would be at fault.
fault notes.txt "one\nrec""ieve\n" '2: .*receive' spelling

# fault_in NAME FROM TO PATTERN: a file of the project with one thing changed in it is a fault to the check "desktop".
fault_in() {
    sed "s|$2|$3|" "$packaging/$1" >"${1##*/}"
    if cmp -s "$packaging/$1" "${1##*/}"; then
        echo "FAIL there is no $2 in $1"
        failures=1
    fi
    expect "${1##*/}:$4" desktop "${1##*/}"
    rm "${1##*/}"
}

packaging=$root/packaging
fault_in com.tavoran.Terminal.metainfo.xml '</summary>' '.</summary></summary>' ' E: '
fault_in com.tavoran.Terminal.metainfo.xml '<summary>.*</summary>' '' '.*summary'
fault_in com.tavoran.Terminal.metainfo.xml '<id>com.tavoran.Terminal' '<id>Terminal' '.*Terminal'
fault_in com.tavoran.Terminal.desktop 'Office;Finance' 'Stockbroking' '.*Stockbroking'
fault_in com.tavoran.Terminal.desktop '^Terminal=false' 'Terminal=perhaps' '.*perhaps'
fault_in flatpak/com.tavoran.Terminal.yaml '--share=network' '--filesystem=home' ' finish-args/0: .*home'
fault_in flatpak/com.tavoran.Terminal.yaml '^command: .*' '' " the manifest: 'command' is a required"
fault_in flatpak/com.tavoran.Terminal.yaml 'buildsystem:' 'buildsytem:' " modules/0: .*buildsytem"
fault_in flatpak/com.tavoran.Terminal.yaml '^id: .*' 'id: com.tavoran.Other' ' id: com.tavoran.Other is not'
fault_in flatpak/com.tavoran.Terminal.yaml '^modules:' 'modules: [' '[0-9]+: no YAML'
cp "$packaging"/com.* "$packaging"/flatpak/com.* .
allow
echo 'Terminal=perhaps' >>com.tavoran.Terminal.desktop
expect 'com.tavoran.Terminal.desktop:.*perhaps'
rm com.*

printf 'two blanks  \nend a line there\n' >notes.md
printf 'one\0 \n' >picture.bin
allow
expect "there is no check" everything

# A subject of sixty characters, and of one more.
printf 'Show %s\n\nThe body may be longer than any subject has ever been in all those years.\n' \
    "$(printf '%055d' 0)" >message
allow subject message
printf 'Show %s\n' "$(printf '%056d' 0)" >message
expect "message:1: .*60 are the most" subject message
printf 'show it\n' >message
expect "message:1: .*capital" subject message
printf 'Show it.\n' >message
expect "message:1: .*full stop" subject message
exit "$failures"
