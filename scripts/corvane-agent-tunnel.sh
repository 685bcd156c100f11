#!/usr/bin/env bash
# Lets the agents of another machine reach the relay, through a socket that only their user opens. See --help.
set -euo pipefail

usage() {
    cat <<'HELP'
usage: scripts/corvane-agent-tunnel.sh [HOST]

Holds an ssh connection to the host of the agents until Ctrl+C. There, ~/.corvane/agent.sock (0600) leads to
scripts/corvane-agent-relay.mjs on this machine.

  HOST                as ssh knows it; else CORVANE_AGENT_HOST, else the first line of ~/.config/Corvane/agent-host
  CORVANE_RELAY_PORT  port of the relay (8766)
HELP
}

case "${1:-}" in
--help | -h) usage && exit 0 ;;
esac
[ $# -le 1 ] || { usage >&2 && exit 2; }
host=${1:-${CORVANE_AGENT_HOST:-$(head -n 1 "${XDG_CONFIG_HOME:-$HOME/.config}/Corvane/agent-host" 2>/dev/null || true)}}
[[ $host =~ ^[A-Za-z0-9][A-Za-z0-9._@:-]*$ ]] || { echo "Name the host: see --help." >&2 && exit 2; }

# Makes the folder private before the socket exists, and removes the socket of an earlier tunnel.
socket=$(ssh -T "$host" 'umask 077 && mkdir -p ~/.corvane && chmod 700 ~/.corvane && rm -f ~/.corvane/agent.sock && echo ~/.corvane/agent.sock')
ssh -N -T -o ExitOnForwardFailure=yes -o ServerAliveInterval=30 -R "$socket:127.0.0.1:${CORVANE_RELAY_PORT:-8766}" "$host" &
tunnel=$!
trap 'kill "$tunnel" 2>/dev/null || true' EXIT
trap 'exit 0' INT TERM HUP
ssh -T "$host" 'for try in $(seq 50); do [ -S ~/.corvane/agent.sock ] && exec chmod 600 ~/.corvane/agent.sock; sleep 0.2; done; exit 1' ||
    { echo "The tunnel did not come up on $host." >&2 && exit 1; }
echo "Agents on $host reach the relay through $socket."
wait "$tunnel"
