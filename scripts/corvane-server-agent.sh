#!/usr/bin/env bash
# Lets an agent do one unit of work for a project on another machine, over ssh. See --help.
set -euo pipefail

usage() {
    cat <<'HELP'
usage: scripts/corvane-server-agent.sh PROJECT AGENT ROLE TASK

Runs corvane-work-agent.sh on the host of the agents. What it reports comes back through scripts/corvane-agent-relay.mjs and
scripts/corvane-agent-tunnel.sh, which must be running here. The task and the relay's token travel on standard input.

  PROJECT   slug of a project; the agent works in the folder of that name in the host's home, if there is one
  AGENT, ROLE, TASK   as for corvane-work-agent.sh

  CORVANE_AGENT_HOST       the host, as ssh knows it; else the first line of ~/.config/Corvane/agent-host
  CORVANE_AGENT_DRY_RUN=1  prints what would be done, and connects to nothing
HELP
}

case "${1:-}" in
--help | -h) usage && exit 0 ;;
esac
[ $# = 4 ] || { usage >&2 && exit 2; }
project=$1 agent=$2 role=$3 task=$4
[[ $project =~ ^[A-Za-z0-9][A-Za-z0-9._-]*$ ]] || { echo "A project's slug has letters, digits, dots and dashes." >&2 && exit 2; }
here=$(cd "$(dirname "$0")" && pwd)
host=${CORVANE_AGENT_HOST:-$(head -n 1 "${XDG_CONFIG_HOME:-$HOME/.config}/Corvane/agent-host" 2>/dev/null || true)}
[[ $host =~ ^[A-Za-z0-9][A-Za-z0-9._@:-]*$ ]] || { echo "Name the host in CORVANE_AGENT_HOST or in ~/.config/Corvane/agent-host." >&2 && exit 2; }

# What the host's shell reads: the arguments, then the script.
# shellcheck disable=SC2016 # the host's home, not this one's
orders() { # TOKEN
    printf 'agent_socket=$HOME/.corvane/agent.sock agent_project=%q agent_token=%q\n' "$project" "$1"
    printf 'cd "$HOME/"%q 2>/dev/null || cd\n' "$project"
    printf 'set --'
    printf ' %q' dev "$project" "$agent" "$role" "$task"
    echo
}

if [ "${CORVANE_AGENT_DRY_RUN:-}" = 1 ]; then
    echo "Would run on $host, by ssh, what follows and then corvane-work-agent.sh:"
    orders "(the relay's token)"
    exit 0
fi
token=$(cat "${XDG_DATA_HOME:-$HOME/.local/share}/Corvane/relay-token" 2>/dev/null) ||
    { echo "The relay has no token yet: start scripts/corvane-agent-relay.mjs first." >&2 && exit 3; }
{
    orders "$token"
    cat "$here/corvane-work-agent.sh"
} | exec ssh -T "$host" 'exec bash -s'
