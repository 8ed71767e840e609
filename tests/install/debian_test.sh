#!/usr/bin/env bash
# Installs the Debian packages of a folder in a copy of this system that ends with the process, uses and
# removes them: debian_test.sh FOLDER. Standard input is what exchange.orv prints. Takes root and a mount
# namespace of its own.
set -euo pipefail
mount -t tmpfs tmpfs /mnt
mkdir /mnt/{upper,work,root}
cp "$1"/*.deb /mnt/upper
mount -t overlay overlay -o lowerdir=/,upperdir=/mnt/upper,workdir=/mnt/work /mnt/root
mount -t proc proc /mnt/root/proc
mount --rbind /dev /mnt/root/dev
exec env -i PATH=/usr/sbin:/usr/bin:/sbin:/bin LC_ALL=C.UTF-8 chroot /mnt/root bash -euo pipefail -c '
cd /
ours() { find /usr /etc /var/lib /var/cache/man -xdev -ipath "*orvane*" ! -path "/usr/share/doc/orvane/*" ! -path "/var/tmp/*" | sort; }
touch /mark
ours >before
dpkg --install *.deb >log 2>&1 || { cat log; exit 1; }
examples=/usr/share/doc/orvane/examples
orvane run --simulate $examples/exchange.orv | tail -n 1 | grep -qx "done  3 commands sent, 3 expectations met"
orvane --version | tee log | grep -c "/lib/[^/]*/orvane/lib\(orvane_crypto\|winscard\).so" | grep -qx 2 || { cat log; exit 1; }
gcc -o host $examples/c/exchange.c $(pkg-config --cflags --libs orvane) \
  "-DSIMULATOR=\"$(pkg-config --variable=simulators orvane)/libwinscard.so\""
./host $examples/exchange.orv | diff /dev/stdin <(cat <&3)
dpkg --purge orvane orvane-simulators liborvane-dev liborvane1 >log 2>&1 || { cat log; exit 1; }
ours | diff before -
' 3<&0 </dev/null
