# Completion of corvane(1) for fish.
complete -c corvane -f
complete -c corvane -l headless -d 'Run everything but the window'
complete -c corvane -l start-all -d 'Start the engine of every account'
complete -c corvane -l recover -x -a 'save backup new' -d 'What takes the place of a damaged database'
complete -c corvane -s h -l help -d 'Show the options'
complete -c corvane -s v -l version -d 'Show the version'
complete -c corvane -n __fish_use_subcommand -a ask -d 'Print what Lumo answers'
complete -c corvane -n __fish_use_subcommand -a capture -d 'Keep a task or a note'
complete -c corvane -n __fish_use_subcommand -a record -d 'Start or stop recording a call'
complete -c corvane -n __fish_use_subcommand -a mark -d 'Mark this moment of a call'
complete -c corvane -n __fish_use_subcommand -a calendar -d 'Import a calendar file'
complete -c corvane -n __fish_use_subcommand -a tool -d 'Call a tool of the local tool server'
complete -c corvane -n __fish_use_subcommand -a verify -d 'Check the record of decisions'
complete -c corvane -n '__fish_seen_subcommand_from capture' -l note -d 'Keep a note'
complete -c corvane -n '__fish_seen_subcommand_from calendar; and not __fish_seen_subcommand_from import' -a import
complete -c corvane -n '__fish_seen_subcommand_from import' -F
