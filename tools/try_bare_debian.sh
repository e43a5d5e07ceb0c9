#!/usr/bin/env bash
# Tries the README's two commands where nothing is installed: a fresh Debian 12 with its required packages only, in a chroot.
#   sudo tools/try_bare_debian.sh [DIR]
# Needs root and mmdebstrap; installs from where this machine installs. The root is made in DIR, which stays, or in a temporary
# directory, which is removed. Ends with the time that each command took.
set -euo pipefail
top=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
[[ $(id -u) -eq 0 ]] || { echo "needs root: sudo $0" >&2; exit 1; }
command -v mmdebstrap >/dev/null || { echo "needs mmdebstrap: apt-get install mmdebstrap" >&2; exit 1; }

keep=${1:-}
root=${keep:-$(mktemp -d)}
mkdir -p "$root"
chmod 755 "$root"
leave() {
  umount -R -l "$root/dev" "$root/proc" 2>/dev/null || true
  if [[ -z $keep ]]; then rm -rf --one-file-system "$root"; fi
}
trap leave EXIT

times=()
timed() { # timed NAME COMMAND...: runs the command and notes how long it took
  local name=$1 start
  shift
  start=$(date +%s)
  "$@"
  times+=("$(printf '%-14s %4d s' "$name" $(($(date +%s) - start)))")
}

make_root() {
  local sources=()
  mapfile -t sources < <(find /etc/apt/sources.list /etc/apt/sources.list.d -type f -size +0 \
    \( -name '*.list' -o -name '*.sources' \) 2>/dev/null | sort)
  mmdebstrap --quiet --variant=minbase bookworm "$root" "${sources[@]}"
  { grep -lrs Proxy /etc/apt/apt.conf.d || true; } | xargs -r cp -t "$root/etc/apt/apt.conf.d"
  cp -L /etc/resolv.conf /etc/hosts "$root/etc/"
}

copy_project() {
  mkdir "$root/kestrix"
  (cd "$top" && tools/sources | tar -c --files-from=-) | tar -x --no-same-owner -C "$root/kestrix"
}

inside() { # inside COMMAND: as a user's shell would run it in the project's folder, with nothing of this machine's environment
  chroot "$root" /usr/bin/env -i HOME=/ PATH=/usr/sbin:/usr/bin:/sbin:/bin http_proxy="${http_proxy:-}" \
    https_proxy="${https_proxy:-}" sh -c "cd /kestrix && $1" </dev/null
}

timed "the bare root" make_root
copy_project
mount --bind /proc "$root/proc"
mount --rbind --make-rslave /dev "$root/dev"
timed "./dev demo" inside "./dev demo"
timed "./dev test" inside "./dev test"
printf '\n'
printf '%s\n' "${times[@]}"
