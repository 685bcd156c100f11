# Completion of corvane(1) for bash.
_corvane() {
    local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
    case "$COMP_CWORD:${COMP_WORDS[1]}:$previous" in
    1:*) mapfile -t COMPREPLY < <(compgen -W "ask backup calendar capture doctor export import list mark record restore search send show status tool verify --headless --background --toggle-dictation --start-all --recover --help --version" -- "$current") ;;
    *:--recover) mapfile -t COMPREPLY < <(compgen -W "save backup new" -- "$current") ;;
    2:capture:*) mapfile -t COMPREPLY < <(compgen -W "--note" -- "$current") ;;
    2:calendar:*) mapfile -t COMPREPLY < <(compgen -W "import" -- "$current") ;;
    *:backup:*) mapfile -t COMPREPLY < <(compgen -W "--verify --encrypt --secrets --no-media" -- "$current"; compgen -f -- "$current") ;;
    *:restore:*) mapfile -t COMPREPLY < <(compgen -W "--into --replace" -- "$current"; compgen -f -- "$current") ;;
    *:doctor:*) mapfile -t COMPREPLY < <(compgen -W "--fix --json" -- "$current") ;;
    *:list:*) mapfile -t COMPREPLY < <(compgen -W "--all --limit --json" -- "$current") ;;
    *:show:* | *:search:*) mapfile -t COMPREPLY < <(compgen -W "--limit --json" -- "$current") ;;
    *:status:*) mapfile -t COMPREPLY < <(compgen -W "--json" -- "$current") ;;
    *:export:*) mapfile -t COMPREPLY < <(compgen -d -- "$current") ;;
    *:import:*) mapfile -t COMPREPLY < <(compgen -W "--account --own-address" -- "$current"; compgen -f -- "$current") ;;
    3:calendar:import) mapfile -t COMPREPLY < <(compgen -f -X '!*.ics' -- "$current"; compgen -d -- "$current") ;;
    esac
}
complete -o filenames -F _corvane corvane
