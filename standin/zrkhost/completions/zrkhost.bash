# shellcheck shell=bash
# Bash completion for zrkhost. The members come from the program itself.

_zrkhost_members() {
  "$1" --describe 2>/dev/null | sed -n "s/^  \([A-Za-z0-9]*\)${2-}.*/\1/p"
}

_zrkhost() {
  local program=${COMP_WORDS[0]} word=${COMP_WORDS[COMP_CWORD]} before=${COMP_WORDS[COMP_CWORD - 1]}
  local command="" each
  for each in "${COMP_WORDS[@]:1:COMP_CWORD - 1}"; do
    [[ $each == try || $each == help ]] && command=$each && break
  done
  local words=""
  case "$command:$before" in
    help:*) words=$(_zrkhost_members "$program") ;;
    *:--color) words="always never auto" ;;
    *:--encoding) words="UTF-8 UTF-16 UTF-32 ASCII" ;;
    try:*)
      [[ $word == -* ]] && words="--caseless --dotall --multiline --extended --greedy --matchlimit=
        --matchlimitrecursion= --text --encoding --bytes --replace --print --count --only-matching --json --code
        --color --help $(_zrkhost_members "$program" ' as Boolean, read and write' | sed 's/^/--/')"
      ;;
    *:--host) words="2011 2012 2013 2013.03 2013.04 2016 2017 none" ;;
    *:--without)
      words=$("$program" --without '?' 2>&1 | sed -n 's/^  //p')
      ;;
    *)
      if [[ $word == -* ]]; then
        words="-e --library --host --without --no-direct-storage --trace --describe --describe=markdown
          --describe=json --help --version"
      else
        words="try help"
      fi
      ;;
  esac
  mapfile -t COMPREPLY < <(compgen -W "$words" -- "$word")
  [[ $word == -* || $command == help ]] || mapfile -t -O "${#COMPREPLY[@]}" COMPREPLY < <(compgen -f -- "$word")
}

complete -o filenames -F _zrkhost zrkhost
