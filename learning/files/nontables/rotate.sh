#!/bin/sh
# Keeps the seven newest copies.
set -eu

dir=${1:-/srv/backup}
keep=7
stamp=$(date +%Y%m%d-%H%M)

tar -C /etc -czf "$dir/etc-$stamp.tar.gz" .
n=0
for f in $(ls -1t "$dir"/etc-*.tar.gz); do
  n=$((n + 1))
  if [ "$n" -gt "$keep" ]; then
    rm -f -- "$f" && echo "removed: $f"
  fi
done
