#!/bin/bash
# Judges the Debian packages: by lintian and the validators of the desktop, then in a bare Debian 12,
# where they are installed, used, upgraded and purged. Needs root.
# run.sh PACKAGES FOLDER: FOLDER/bare.tar, the bare system, is kept for the next time.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
packages=$(realpath "$1")
mkdir -p "$2"
folder=$(realpath "$2")
root=$folder/root
say() { echo "== $*"; }

say "lintian and the validators"
lintian --fail-on error,warning --tag-display-limit 0 "$packages"/*.deb
rm -rf "$folder/desktop" "$folder/next" "$root"
dpkg-deb -x "$packages"/cmdtexture-desktop_*.deb "$folder/desktop"
desktop-file-validate "$folder"/desktop/usr/share/applications/*.desktop
appstreamcli validate --no-net "$folder"/desktop/usr/share/metainfo/*.xml

say "a bare Debian 12"
if [ ! -f "$folder/bare.tar" ]; then
    mmdebstrap --quiet --variant=minbase --format=tar bookworm "$folder/bare.tar.part"
    mv "$folder/bare.tar.part" "$folder/bare.tar"
fi
mkdir "$root"
tar -C "$root" -xf "$folder/bare.tar"
cp /etc/resolv.conf /etc/hosts "$root/etc/"
echo force-unsafe-io >"$root/etc/dpkg/dpkg.cfg.d/quick"
mkdir "$root"/srv/{packages,next,roads}
cp "$packages"/*.deb "$root/srv/packages"
cp "$here/roads.sh" "$here/../../samples/photos/coffee.png" "$root/srv/roads"
chmod -R a+rX "$root/srv/packages" "$root/srv/roads"

# inside COMMAND...: in the bare system, with processes of its own that end with the command.
inside() {
    unshare --mount --pid --fork sh -c 'mount -t proc proc "$0/proc" && exec chroot "$0" "$@"' "$root" \
        env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 HOME=/root DEBIAN_FRONTEND=noninteractive "$@"
}
apt() { inside apt-get -q -y --no-install-recommends "$@" >>"$folder/apt.log" 2>&1; }
debs() { (cd "$root" && printf '/%s\n' srv/"$1"/*.deb); }
ours() { for file in "$root/srv/packages"/*.deb; do dpkg-deb -f "$file" Package; done; }
needs() {
    for file in "$root/srv/packages"/*.deb; do dpkg-deb -f "$file" Depends; done | tr ',' '\n' |
        grep -v cmdtexture | sort -u | paste -sd,
}
everything() { inside find / -xdev -path /proc -prune -o -path /var/lib/apt -prune -o -path /var/log -prune \
    -o -path /var/cache/apt -prune -o -path /srv -prune -o -path /home -prune -o -path /tmp -prune -o -print | sort; }
roads() { inside runuser -u visitor -- env HOME=/home/visitor bash /srv/roads/roads.sh; }

: >"$folder/apt.log"
trap 'echo "FAILED; the last of $folder/apt.log:"; tail -n 20 "$folder/apt.log"' ERR
apt update
# What the roads need besides our packages: a compiler, GEGL's program, a screen, a reader of pictures.
apt install gcc libc6-dev pkgconf gegl python3-pil xvfb openbox xdotool
inside useradd --create-home visitor

apt satisfy "$(needs)"
everything >"$folder/before"

say "installing, and one example of every road"
apt install $(debs packages)
roads
made=$(stat -c %Y "$root/var/lib/cmdtexture/resources/patterns/stone/marble.png")

say "upgrading"
for file in "$packages"/*.deb; do
    rm -rf "$folder/next"
    dpkg-deb -R "$file" "$folder/next"
    version=$(dpkg-deb -f "$file" Version)
    sed -i "s/${version//./\\.}/$version+next/g" "$folder/next/DEBIAN/control"
    dpkg-deb --root-owner-group -Znone -b "$folder/next" "$root/srv/next" >/dev/null
done
apt install $(debs next)
inside dpkg-query -W -f '${Package} ${Version} ${db:Status-Status}\n' $(ours)
[ "$(inside dpkg-query -W -f '${Version} ${db:Status-Status}\n' $(ours) | grep -c '+next installed$')" \
    -eq "$(ours | wc -l)" ]
roads
[ "$made" = "$(stat -c %Y "$root/var/lib/cmdtexture/resources/patterns/stone/marble.png")" ]

say "purging"
apt purge $(ours)
everything >"$folder/after"
diff "$folder/before" "$folder/after" || { echo "These were left behind, or taken away." && exit 1; }
rm -rf "$root" "$folder/next"
say "passed"
