# shellcheck shell=bash
# A calendar server for end-to-end scripts: Radicale from its Debian package
# (/usr/bin/radicale; the `python3` on PATH may be another one that lacks it),
# on 127.0.0.1 and a free port, with plain htpasswd logins and owner_write
# rights (everyone reads every calendar, each user writes only their own).
#
#   . "$(dirname "$0")/lib/radicale.sh"
#   radicale_start "$dir" Ann:secret Bob:secret  # storage, config and log in
#                                  # $dir; sets $RADICALE_URL (ends in "/")
#   radicale_stop                  # stops it; also done at exit
#
# When the server cannot start, the script ends with exit code 77 (skipped)
# and says why, as the other end-to-end scripts do without an X server.

RADICALE_PID=""
RADICALE_URL=""

radicale_stop() {
  [ -n "$RADICALE_PID" ] || return 0
  kill "$RADICALE_PID" 2>/dev/null
  local _
  for _ in $(seq 1 50); do kill -0 "$RADICALE_PID" 2>/dev/null || break; sleep 0.1; done
  kill -KILL "$RADICALE_PID" 2>/dev/null
  wait "$RADICALE_PID" 2>/dev/null
  RADICALE_PID=""
}

# Whether something answers HTTP on the port.
radicale_answers() {
  local reply
  reply=$(exec 2>/dev/null 3<>"/dev/tcp/127.0.0.1/$1" &&
          printf 'OPTIONS / HTTP/1.0\r\n\r\n' >&3 && head -c 8 <&3)
  [[ "$reply" == HTTP/* ]]
}

# Stops the server at exit, after whatever exit trap the script set before.
radicale_stop_at_exit() {
  local previous
  previous=$(trap -p EXIT)
  RADICALE_PREVIOUS_EXIT=""
  if [ -n "$previous" ]; then
    eval "set -- $previous"
    RADICALE_PREVIOUS_EXIT="$3"
  fi
  trap 'radicale_stop; eval "$RADICALE_PREVIOUS_EXIT"' EXIT
}

radicale_start() {
  local dir="$1"; shift
  if [ ! -x /usr/bin/radicale ]; then
    echo "SKIPPED: /usr/bin/radicale is not installed (scripts/install-deps.sh installs it)"
    exit 77
  fi
  mkdir -p "$dir/collections"
  : > "$dir/users"
  local login
  for login in "$@"; do printf '%s\n' "$login" >> "$dir/users"; done
  radicale_stop_at_exit
  local attempt port _
  for attempt in 1 2 3 4 5; do
    # A random port that nothing listens on now; should another program take
    # it before the server does, the server ends and the next port is tried.
    port=$((20000 + RANDOM % 40000))
    (exec 2>/dev/null 3<>"/dev/tcp/127.0.0.1/$port") && continue
    cat > "$dir/config" <<EOF
[server]
hosts = 127.0.0.1:$port
[auth]
type = htpasswd
htpasswd_filename = $dir/users
htpasswd_encryption = plain
[rights]
type = owner_write
[storage]
filesystem_folder = $dir/collections
[logging]
level = warning
EOF
    /usr/bin/radicale --config "$dir/config" >> "$dir/radicale.log" 2>&1 &
    RADICALE_PID=$!
    for _ in $(seq 1 100); do
      if radicale_answers "$port"; then
        RADICALE_URL="http://127.0.0.1:$port/"
        export RADICALE_URL
        return 0
      fi
      kill -0 "$RADICALE_PID" 2>/dev/null || break
      sleep 0.1
    done
    radicale_stop
  done
  echo "SKIPPED: the Radicale server could not start; its log:"
  tail -n 20 "$dir/radicale.log" 2>/dev/null
  exit 77
}
