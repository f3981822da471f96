#!/usr/bin/env bash
# Called by scripts/verify-package in a bare root: what a trader does with the packages in /share, from installing to
# removing them. Pictures go to /share.
set -euo pipefail
cd "$(dirname "$0")/../.."
. scripts/common.sh
export DEBIAN_FRONTEND=noninteractive
printf '#!/bin/sh\nexit 101\n' >/usr/sbin/policy-rc.d
chmod +x /usr/sbin/policy-rc.d

# wait_for SECONDS COMMAND...: until the command succeeds.
wait_for() {
    local deadline=$((SECONDS + $1))
    shift
    until "$@"; do
        [ $SECONDS -lt $deadline ] || return 1
        sleep 0.2
    done
}

apt-get -q update >/dev/null
# install_ours FILE...: with nothing that is only recommended.
install_ours() {
    apt-get -q -y install --no-install-recommends "$@" >>/share/apt-install.log 2>&1 || {
        tail -n 20 /share/apt-install.log
        fail "apt-get could not install $*"
    }
}
: >/share/apt-install.log

say "The lab alone: its examples over simulated prices"
install_ours /share/tavoran-lab_*.deb
version=$(dpkg-query --show --showformat '${Version}' tavoran-lab)
tavoran-lab --version | grep -qx "tavoran-lab ${version%-*}" || fail "the lab is not version ${version%-*}"
! ldd /usr/bin/tavoran-lab | grep -E 'Qt6(Gui|Widgets)|libX11|libwayland' || fail "the lab needs a window system"
span=(--symbol EURUSD --seed 1 --from 2024-01-01 --to 2024-01-08)
strategies=$(mktemp -d)
for script in resources/examples/*.js docs/examples/*.js; do
    name=$(basename "$script" .js)
    installed=/usr/share/doc/tavoran-lab/examples/$name.js
    dpkg -L tavoran-lab | grep -qx "$installed" || fail "tavoran-lab has no $installed"
    # Minimal installations leave manual pages and most documentation out.
    [ ! -e "$installed" ] || cmp "$script" "$installed"
    (cd "$strategies" && tavoran-lab run "$OLDPWD/$script" "${span[@]}" >"$name.txt") \
        || fail "the lab could not run $name"
    for file in report.html summary.json trades.csv equity.csv daily.csv run.json; do
        [ -s "$strategies/$name-EURUSD/$file" ] || fail "the lab wrote no $file of $name"
    done
    echo "$name: $(($(wc -l <"$strategies/$name-EURUSD/trades.csv") - 1)) trades"
done
tavoran-lab sweep resources/examples/MA_Cross.js "${span[@]}" --set Fast=5,10 --set Slow=30,40 --jobs 2 \
    --min-trades 1 --out "$strategies/sweep" >"$strategies/sweep.txt" || fail "the lab could not sweep"
[ "$(wc -l <"$strategies/sweep/sweep.csv")" = 5 ] || fail "the lab swept otherwise than over four sets"
[ -s "$strategies/sweep/report.html" ] || fail "the lab wrote no report of the best set"
echo "four sets in two processes: swept"

say "Installing the others"
install_ours /share/*.deb
for program in tavoran-terminal tavoran-practice tavoran-lab; do
    ! ldd "/usr/bin/$program" | grep 'not found' || fail "$program lacks libraries"
    for file in "doc/$program/"{copyright,changelog.gz,changelog.Debian.gz} "man/man1/$program.1.gz"; do
        dpkg -L "$program" | grep -qx "/usr/share/$file" || fail "$program has no $file"
    done
done
for file in applications/com.tavoran.Terminal.desktop metainfo/com.tavoran.Terminal.metainfo.xml \
    icons/hicolor/{16x16,24x24,32x32,48x48,64x64,128x128,256x256,512x512}/apps/com.tavoran.Terminal.png \
    icons/hicolor/scalable/apps/com.tavoran.Terminal.svg \
    tavoran-terminal/translations/tavoran-terminal_de.qm; do
    [ -s "/usr/share/$file" ] || fail "there is no /usr/share/$file"
done

say "https and sound, without anything else than the packages asked for"
cp tests/support/tls/authority.pem /usr/local/share/ca-certificates/tests.crt
update-ca-certificates >/dev/null 2>&1
profile=$(mktemp -d)
set_setting "$profile/Tavoran/Terminal.conf" auth serverUrl https://localhost:5443
mkdir -p "$profile/api/settings"
echo '{"settings":{}}' >"$profile/api/settings/public"
(cd "$profile" && exec openssl s_server -accept 5443 -WWW -cert "$OLDPWD/tests/support/tls/localhost.pem" \
    -key "$OLDPWD/tests/support/tls/localhost.key") >"$profile/server.log" 2>&1 &
server=$!
wait_for 10 grep -q ACCEPT "$profile/server.log" || fail "openssl does not listen"
# asks_over_https: starts the terminal, which waits three seconds for an answer; whether it came.
asks_over_https() {
    local terminal asked=no
    XDG_CONFIG_HOME=$profile TMPDIR=$profile QT_QPA_PLATFORM=offscreen tavoran-terminal 2>>"$profile/terminal.out" &
    terminal=$!
    wait_for 10 grep -q 'FILE:api/settings/public' "$profile/server.log" && asked=yes
    kill "$terminal"
    wait "$terminal" || true
    [ "$asked" = yes ]
}
asks_over_https || asks_over_https || {
    tail -n 5 "$profile/server.log" "$profile/tavoran-terminal.log"
    fail "the terminal asked nothing over https"
}
kill "$server"
wait "$server" || true
echo "the terminal trusts what the system trusts"
find / -xdev -path '*/qt6/plugins/multimedia/*.so' | grep -q . || fail "there is no plugin for sound"

say "The menu entry, the description and the icons"
# shellcheck disable=SC2086  # the lists are meant to be split
install_packages $TOUR_PACKAGES $WIRE_PACKAGES $RUNTIME_PACKAGES \
    desktop-file-utils appstream gir1.2-gdkpixbuf-2.0 librsvg2-common
desktop-file-validate /usr/share/applications/com.tavoran.Terminal.desktop
appstreamcli validate --pedantic --no-net /usr/share/metainfo/com.tavoran.Terminal.metainfo.xml
/usr/bin/python3 tests/package/icons.py /usr/share/icons/hicolor com.tavoran.Terminal

say "A trader's first trade"
/usr/bin/python3 tests/tour/packaged.py --bin /usr/bin --out /share/pictures
say "Wayland, with what is recommended for it"
install_packages weston qt6-wayland python3-pil
scripts/wayland-picture /usr/bin/tavoran-terminal /usr/bin/tavoran-practice /share/pictures/wayland.png

say "Removing"
data=$HOME/.local/share/tavoran-practice/practice.db
tavoran-practice --port 0 >"$profile/platform.log" &
platform=$!
wait_for 10 grep -q '^Listening' "$profile/platform.log" || fail "the platform did not start"
kill "$platform"
wait "$platform" || true
apt-get -q -y purge tavoran-terminal tavoran-practice tavoran-lab >/share/apt-purge.log 2>&1 \
    || fail "apt-get could not purge"
[ -s "$data" ] || fail "the trader's own data is gone"
left=$(find / -xdev \( -path /proc -o -path /sys -o -path /share -o -path "$HOME" -o -path /tmp \) -prune \
    -o -iname '*tavoran*' -print)
[ -z "$left" ] || fail "this is left behind: $left"
echo "nothing is left but the trader's own data"
