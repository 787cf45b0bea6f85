# SPDX-License-Identifier: MIT
# SPDX-FileCopyrightText: the Vorlan authors
#
# Completion of vorlan's command line in bash: options that are not there yet, the values of options that choose, and
# file names.

# options: begin (tools/option_texts.py writes them from docs/options.toml)
# Each option with all its names, since none may be given twice.
_vorlan_options=(
  '-M --searchMode'
  '-u --minUnitLen'
  '-U --maxUnitLen'
  '-r --recursion'
  '-R --maximum_score_reduction'
  '-N --succN'
  '--NsAsMissense'
  '--firstSeq'
  '--lastSeq'
  '-m --mismatchScore'
  '-g --indelScore'
  '--preferShorterRepeats'
  '-s --minScore'
  '--minScore_a'
  '--minScore_b'
  '-l --minLength'
  '--minLength_a'
  '--minLength_b'
  '--minPerfection'
  '--maxPerfection'
  '--NPerfectionMode'
  '-D --dontRemoveMostlyOverlapping'
  '--outputFormat'
  '--printRepeatSeqMode'
  '-f --flanking'
  '--reportUnit'
  '--sequenceInfoAsComment'
  '--maskX'
  '-h --help'
  '--version'
)
# The values of options that take one; empty where any number may stand.
# -g: completions are loaded from within a function.
declare -gA _vorlan_values=(
  [-M]='exact extendExact imperfect'
  [--searchMode]='exact extendExact imperfect'
  [-u]=''
  [--minUnitLen]=''
  [-U]=''
  [--maxUnitLen]=''
  [-r]=''
  [--recursion]=''
  [-R]=''
  [--maximum_score_reduction]=''
  [-N]=''
  [--succN]=''
  [--firstSeq]=''
  [--lastSeq]=''
  [-m]=''
  [--mismatchScore]=''
  [-g]=''
  [--indelScore]=''
  [-s]=''
  [--minScore]=''
  [--minScore_a]=''
  [--minScore_b]=''
  [-l]=''
  [--minLength]=''
  [--minLength_a]=''
  [--minLength_b]=''
  [--minPerfection]=''
  [--maxPerfection]=''
  [--NPerfectionMode]='0 1 2'
  [--outputFormat]='0 1 2 3 4'
  [--printRepeatSeqMode]='0 1 2'
  [-f]=''
  [--flanking]=''
  [--reportUnit]='0 1 2'
)
# options: end

# The options before the current word that have not been given, one name each per line.
_vorlan_options_left() {
  local entry name given=" ${COMP_WORDS[*]:1:COMP_CWORD-1} "
  for entry in "${_vorlan_options[@]}"; do
    for name in $entry; do
      [[ $given == *" $name "* ]] && continue 2
    done
    printf '%s\n' $entry
  done
}

_vorlan() {
  local current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local only_names=
  [[ " ${COMP_WORDS[*]:1:COMP_CWORD-1} " == *' -- '* ]] && only_names=yes
  if [[ -z $only_names && ${_vorlan_values[$previous]+known} ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${_vorlan_values[$previous]}" -- "$current")
  elif [[ -z $only_names && $current == -* ]]; then
    mapfile -t COMPREPLY < <(compgen -W "$(_vorlan_options_left)" -- "$current")
  else
    mapfile -t COMPREPLY < <(compgen -f -- "$current")
    compopt -o filenames 2>/dev/null
  fi
}

complete -F _vorlan vorlan
