#!/bin/sh
# Unpacks Debian's packages of another architecture, and all that they depend on, from where the machine takes its own.
# The machine's packages stay as they are, for apt works on a state of its own. Nothing is done when all is there.
# usage: foreign_root.sh ARCHITECTURE ROOT PACKAGE...
set -eu

architecture=$1 root=$2
shift 2
[ "$(cat "$root/unpacked" 2>/dev/null)" != "$*" ] || exit 0

rm -rf "$root" "$root-apt"
mkdir -p "$root" "$root-apt/lists/partial" "$root-apt/archives/partial"
: >"$root-apt/status"
cat >"$root-apt/apt.conf" <<END
APT::Architecture "$architecture";
APT::Architectures { "$architecture"; };
APT::Sandbox::User "$(id -un)";
Dir::State "$root-apt";
Dir::State::status "$root-apt/status";
Dir::Cache "$root-apt";
END
export APT_CONFIG="$root-apt/apt.conf"
apt-get update -q || echo "goes on with the lists that came"
apt-get install -q -y --no-install-recommends --download-only "$@"
for archive in "$root-apt"/archives/*.deb; do dpkg -x "$archive" "$root"; done
rm -rf "$root-apt"
# Since Debian 13 the loader lies in /usr/lib, and /lib is a link that no library's package brings.
[ -e "$root/lib" ] || ln -s usr/lib "$root/lib"

# What links by an absolute path means the root that it is in.
find "$root" -lname '/*' | while read -r link; do ln -sfn "$root$(readlink "$link")" "$link"; done
echo "$*" >"$root/unpacked"
