#!/usr/bin/env bash
# Called by scripts/verify-package in a bare root: builds the packages, has lintian look them over, and leaves them
# in /share. With --twice, another build in another folder, without ccache, has to give the same bytes.
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/common.sh

# The scripts of packages that are installed here find no running system to act upon.
printf '#!/bin/sh\nexit 101\n' >/usr/sbin/policy-rc.d
chmod +x /usr/sbin/policy-rc.d
# shellcheck disable=SC2086  # the lists are meant to be split
install_packages $BUILD_PACKAGES $PACKAGE_PACKAGES lintian

build_preset package package
say "lintian"
lintian --allow-root --display-info --fail-on error,warning build/package/*.deb

say "Hardening"
for package in build/package/*.deb; do dpkg-deb --extract "$package" build/unpacked; done
for program in build/unpacked/usr/bin/*; do
    readelf --wide --file-header --program-headers --dynamic --symbols --dyn-syms "$program" >build/elf.txt
    for mark in 'Type: *DYN' GNU_RELRO 'Flags: NOW PIE' __stack_chk_fail; do
        grep -q -- "$mark" build/elf.txt || fail "${program##*/} is not hardened: there is no $mark"
    done
    ! grep -q '\.symtab' build/elf.txt || fail "${program##*/} is not stripped"
    echo "${program##*/} is stripped, position-independent, with read-only relocations and stack checks"
done
# The terminal calls none of the functions that have a checked form; the flags are the same for all.
readelf --wide --dyn-syms build/unpacked/usr/bin/tavoran-practice | grep '_chk@' >build/checked.txt \
    || fail "tavoran-practice calls no function in its checked form"
echo "tavoran-practice calls $(wc -l <build/checked.txt) functions in their checked form"

if [ "${1:-}" = --twice ]; then
    say "Building once more, in another folder and without ccache"
    elsewhere="/srv/another folder/tavoran"
    git clone --quiet --no-local . "$elsewhere"
    git -C "$elsewhere" checkout --quiet "$(git rev-parse HEAD)"
    (
        cd "$elsewhere"
        export CCACHE_DISABLE=1
        build_preset package package
    )
    for package in build/package/*.deb; do
        cmp "$package" "$elsewhere/$package" || fail "${package##*/} depends on the folder or on the time"
        echo "${package##*/} has the same bytes again: $(sha256sum <"$package")"
    done
fi
cp build/package/*.deb /share
