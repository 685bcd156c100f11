#!/bin/sh
# What the gallery's terminal shows: a morning's work, the same each time.
# The second argument is the exit code of the command before.
prompt() {
    printf '\033]133;D;%s\007\033]133;A\007\033[1;32mmarta@studio\033[0m:\033[1;34m~/site\033[0m$ %s\n\033]133;C\007' "${2:-0}" "$1"
}
prompt 'git status --short'
printf ' \033[32mM\033[m pages/shop.html\n \033[31mM\033[m images/bowl-blue.jpg\n\033[31m??\033[m notes/glaze-tests.md\n'
prompt 'cat notes/glaze-tests.md'
printf '┌──────────────┬────────┬───────────────────────────┐\n'
printf '│ \033[1mglaze\033[0m        │ cone   │ how it came out           │\n'
printf '├──────────────┼────────┼───────────────────────────┤\n'
printf '│ celadon 12   │ 10     │ \033[32m✔\033[0m clear, a little green   │\n'
printf '│ tenmoku 3    │ 10     │ \033[33m⚠\033[0m ran over the foot ring  │\n'
printf '│ blue glaze 7 │  6     │ \033[31m✘\033[0m crawled at the rim      │\n'
printf '└──────────────┴────────┴───────────────────────────┘\n'
prompt 'ls kiln.log'
printf "ls: cannot access 'kiln.log': No such file or directory\n"
prompt 'npm run build' 2
printf '\n\033[2m> site@1.4.0 build\n> eleventy\033[0m\n\n'
printf '[11ty] Writing \033[4mpublic/index.html\033[0m from ./pages/index.html\n'
printf '[11ty] Writing \033[4mpublic/shop.html\033[0m from ./pages/shop.html\n'
printf '[11ty] Copied \033[36m42\033[0m files / Wrote \033[36m17\033[0m files in 0.61 seconds\n'
printf 'Kiln  \033[38;5;208m▁▂▂▃▄▅▆▇███▇▆\033[0m 1240 °C   🏺 陶器\n\n'
prompt 'ls'
printf '\033[1;34mimages\033[0m  \033[1;34mnotes\033[0m  package.json  \033[1;34mpages\033[0m  \033[1;34mpublic\033[0m  \033[1;32mdeploy.sh\033[0m\n'
printf '\033]133;D;0\007\033[1;32mmarta@studio\033[0m:\033[1;34m~/site\033[0m$ '
