#!/usr/bin/env bash
# Makes build/armhf-sysroot (or the directory given): Debian's armhf libraries that the library and
# its tests are linked with, unpacked beside the host's and not installed.
#
# apt works on a state of its own here, so that the host's package lists and its set of
# architectures stay as they are, and no root is needed. Ready at once when the tree is complete.
set -euo pipefail

packages=(libhwy1 libhwy-dev libpng16-16 libpng-dev zlib1g zlib1g-dev libgtest-dev)

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
sysroot=${1:-$root/build/armhf-sysroot}
stamp=$sysroot/.complete

if [[ -f $stamp && $(<"$stamp") == "${packages[*]}" ]]; then
  echo "$sysroot is complete"
  exit 0
fi

mkdir -p "$(dirname "$sysroot")"
work=$(mktemp -d "$(dirname "$sysroot")/armhf-sysroot.XXXXXX")
trap 'rm -rf "$work"' EXIT
mkdir -p "$work"/{state/lists/partial,cache/archives/partial,debs,tree}
: >"$work/state/status"

cat >"$work/apt.conf" <<EOF
APT::Architecture "armhf";
APT::Architectures { "armhf"; };
APT::Sandbox::User "root";
Dir::State "$work/state";
Dir::State::status "$work/state/status";
Dir::Cache "$work/cache";
EOF
export APT_CONFIG=$work/apt.conf

# A host's other package sources may have nothing for this architecture; what matters is whether
# the packages can be fetched.
apt-get -qq update >"$work/update.log" 2>&1 || true
if ! (cd "$work/debs" && apt-get -qq download "${packages[@]}" >"$work/download.log" 2>&1); then
  cat "$work/update.log" "$work/download.log" >&2
  echo "armhf-sysroot.sh: could not fetch Debian's armhf packages: ${packages[*]}" >&2
  exit 1
fi
for deb in "$work"/debs/*.deb; do
  dpkg -x "$deb" "$work/tree"
done

# Absolute links would lead to the host's own libraries.
while IFS= read -r link; do
  target=$(readlink "$link")
  ln -sfn "$(realpath -m --relative-to="$(dirname "$link")" "$work/tree$target")" "$link"
done < <(find "$work/tree" -type l -lname '/*')

echo "${packages[*]}" >"$work/tree/.complete"
chmod 755 "$work/tree"
rm -rf "$sysroot"
mv "$work/tree" "$sysroot"
echo "$sysroot is complete"
